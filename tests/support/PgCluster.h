#pragma once

#include <QStringList>
#include <QTemporaryDir>

namespace sx::test {

// A PostgreSQL server of a test's own on one loopback address: initdb (as the user postgres when
// run as root), fsync off, the fixed credentials, password log-on from 127/8 (replication too).
class PgCluster {
public:
    // Where the server's programs are (SX_PG_BIN, else the newest installed); empty: none.
    [[nodiscard]] static QString binDir();
    // A port free on 127.0.0.1 and 127.0.0.2 alike.
    [[nodiscard]] static int freePort();

    explicit PgCluster(QString name);
    ~PgCluster();

    [[nodiscard]] bool init();
    // Starts on address:port with extra settings ("ssl=on", ...).
    [[nodiscard]] bool start(const QString& address, int port, const QStringList& settings = {});
    bool stop(); // immediate
    [[nodiscard]] bool promote();
    // A file of the server's own (a key, a certificate), readable by it only.
    [[nodiscard]] bool give(const QString& from, const QString& name) const;

    [[nodiscard]] QString dataDir() const { return m_dir.path() + QStringLiteral("/data"); }
    [[nodiscard]] QString address() const { return m_address; }
    [[nodiscard]] int port() const { return m_port; }
    // What failed last, with the server's log.
    [[nodiscard]] QString problem() const { return m_problem; }
    // Runs one of the server's programs (bin/`program`) as the server's user.
    bool run(const QString& program, const QStringList& args);

private:
    QString m_name;
    QTemporaryDir m_dir;
    QString m_address;
    int m_port = 0;
    bool m_running = false;
    QString m_problem;
};

// A primary on 127.0.0.1 and its streaming standby on 127.0.0.2, one port, with a database `name`
// that the simulator seeded with `units` units; on failure `problem` says why.
[[nodiscard]] bool makeReplicatedPair(PgCluster& primary, PgCluster& standby, const QString& name,
                                      int units, QString& problem);
[[nodiscard]] QString pairUrl(const PgCluster& primary, const PgCluster& standby,
                              const QString& name);

} // namespace sx::test
