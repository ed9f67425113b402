#include "views/tags/Tagging.h"

#include "base/Succeeds.h"
#include "base/Trap.h"
#include "db/sql/BindId.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

#include <optional>
#include <stdexcept>

namespace nv {
namespace {

constexpr std::string_view kProcedure = "MainForm.URLGrid_Click()";

/// How many of the rows there are, or nothing after a cancel: then none is written.
template <class Key>
std::optional<std::size_t> writeAll(SQLite::Database &database, std::span<const Key> ids,
                                    bool tagged, TaskMonitor &task) {
    SQLite::Transaction transaction(database);
    SQLite::Statement update(database, "UPDATE URLs SET Tagged = ? WHERE URL_ID = ?");
    update.bind(1, tagged ? 1 : 0);
    std::size_t done = 0;
    std::size_t written = 0;
    for (const Key id : ids) {
        if (!task.advance(static_cast<double>(done++) / static_cast<double>(ids.size())))
            return std::nullopt;
        bindId(update, 2, UrlId{id});
        written += static_cast<std::size_t>(update.exec());
        update.reset();
    }
    transaction.commit();
    return written;
}

} // namespace

// Errors of the database are kept as they are here: a full disk that ends an import must not end
// the program over a tick.

bool setTagged(SQLite::Database &database, FailureLog &log, UrlId id, bool tagged) {
    return succeeds(log, Severity::Low, kProcedure, kNotSerious, [&] {
        Unwatched task;
        if (writeAll(database, std::span<const UrlId>(&id, 1), tagged, task) != 1)
            throw std::runtime_error(fmt::format("there is no row with URL_ID {}", id));
    });
}

bool setTagged(SQLite::Database &database, FailureLog &log, std::span<const std::int32_t> ids,
               bool tagged, TaskMonitor &task) {
    return trapped(log, Severity::Low, kProcedure, kNotSerious, false,
                   [&] { return writeAll(database, ids, tagged, task).has_value(); });
}

} // namespace nv
