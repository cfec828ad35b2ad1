#pragma once

#include "model/DbError.h"

#include <functional>

namespace sx {

class Database;
struct ConnectionSettings;

// Opens a connection of its own on a worker thread and runs `read` on it
// there, while the calling thread keeps serving its events (the caller
// disables what must not take input). Returns the open's error; `read` keeps
// its own result. The heap the worker used for a large read is given back.
[[nodiscard]] DbError readAside(const ConnectionSettings& settings,
                                const std::function<void(Database&)>& read);

} // namespace sx
