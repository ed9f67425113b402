#pragma once

#include "base/FailureLog.h"
#include "base/TaskMonitor.h"
#include "db/records/RecordStore.h"
#include "readers/Evidence.h"

#include <cstdint>
#include <filesystem>
#include <string>

namespace SQLite {
class Database;
}

namespace nv {

/// What link analysis works with. Everything must outlive it.
struct LinkContext {
    SQLite::Database &project;
    RecordStore &records;
    const Evidence &evidence;
    std::filesystem::path scratch; ///< an existing folder of the program's own, for bodies
    FailureLog &log;
    TaskMonitor &task;
};

/// What became of a run.
struct LinkTotals {
    std::int64_t records = 0;     ///< rows of the project
    std::int64_t links = 0;       ///< hyperlinks that imports found in its pages
    std::int64_t examined = 0;    ///< rows that the run came to
    std::int64_t matches = 0;     ///< pairs of a page and a record that it links to
    std::int64_t withoutUrl = 0;  ///< rows that nothing can link to, as they have no URL
    std::int64_t withoutPage = 0; ///< pairs left out, as the page of the link isn't there
    std::int64_t withoutHash = 0; ///< hyperlinks without a hash, which match nothing
    std::int64_t refreshed = 0;   ///< pages whose `HTMLBody` and `Links` were written anew
    std::int64_t notFetched = 0;  ///< rows whose cached content the evidence doesn't hold
    std::int64_t notRead = 0;     ///< rows whose content can't be read as a page; the log has why
    bool cancelled = false;
};

/// Fills `LinkAnalysis` anew with a pair for each record and each cached page that holds a link to
/// its URL, and refreshes the texts of cached pages. After a cancel the pairs of the rows examined
/// so far are kept. Throws after a failure of the project, which then holds no pairs at all.
LinkTotals runLinkAnalysis(const LinkContext &ctx);

/// What an examiner has to know beyond the number of matches, a line each; mostly nothing.
std::string notesOn(const LinkTotals &totals);

} // namespace nv
