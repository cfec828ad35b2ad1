#include "model/ReadAside.h"

#include "model/ConnectionSettings.h"
#include "model/Database.h"

#include <QEventLoop>
#include <QThread>

#include <memory>

#if defined(__GLIBC__)
#include <malloc.h>
#endif

namespace sx {

DbError readAside(const ConnectionSettings& settings, const std::function<void(Database&)>& read)
{
    DbError opened;
    std::unique_ptr<QThread> worker(QThread::create([&] {
        // The connection is made, used and dropped in this thread only.
        Database db;
        opened = db.open(settings);
        if (opened.isError())
            return;
        read(db);
        db.close();
    }));
    QEventLoop loop;
    QObject::connect(worker.get(), &QThread::finished, &loop, &QEventLoop::quit);
    worker->start();
    loop.exec();
    // The loop also ends when the application quits: the read ends first.
    worker->wait();
#if defined(__GLIBC__)
    // A year of rows is tens of megabytes, freed in the worker's own heap
    // arena: give it back rather than keep it for the process's life.
    malloc_trim(0);
#endif
    return opened;
}

} // namespace sx
