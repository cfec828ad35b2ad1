#pragma once

#include "SkipOrFail.h"
#include "model/ConnectionSettings.h"
#include "model/Database.h"

#include <QTemporaryDir>

#include <memory>

namespace sx::test {

// A fresh database of the kind SX_TEST_DB names ("sqlite", "postgresql"): a file in a
// temporary folder, or one on the server of SX_TEST_PG, made on first use (a copy of a
// template with the schema when that is open() with it) and dropped at the end.
class ScratchDatabase {
public:
    ScratchDatabase();
    ~ScratchDatabase();
    ScratchDatabase(const ScratchDatabase&) = delete;
    ScratchDatabase& operator=(const ScratchDatabase&) = delete;

    // Empty when the database is ready; else why it could not be made.
    [[nodiscard]] QString problem() const { return m_problem; }
    [[nodiscard]] bool isPostgres() const { return m_settings.kind == DbKind::PostgreSQL; }
    [[nodiscard]] const ConnectionSettings& settings() const;
    // The --db argument of the simulator for this database.
    [[nodiscard]] QString url() const;
    // A folder that lives as long as this object.
    [[nodiscard]] QString folder() const { return m_dir.path(); }

    // Opens `db` on it (and creates the schema when asked).
    [[nodiscard]] bool open(Database& db, bool withSchema = true);

    // The admin URL of the test server, empty when there is none.
    [[nodiscard]] static QString serverUrl();
    [[nodiscard]] static QString kindName();

private:
    void create(bool withSchema) const;

    QTemporaryDir m_dir;
    ConnectionSettings m_settings;
    ConnectionSettings m_admin;
    // The database is made on first use, which may be a const accessor.
    mutable Database m_server;
    mutable QString m_problem;
    mutable bool m_created = false;
    mutable bool m_cloned = false;
};

} // namespace sx::test

// Skips (on a build machine fails) the test when the scratch database is not available.
#define SX_REQUIRE_DB(scratch)                                                                     \
    do {                                                                                           \
        if (!(scratch).problem().isEmpty())                                                        \
            SX_SKIP_OR_FAIL(qPrintable((scratch).problem()));                                      \
    } while (false)
