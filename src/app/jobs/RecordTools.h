#pragma once

#include "app/program/DrawingTools.h"
#include "app/program/Program.h"
#include "db/records/RecordStore.h"
#include "readers/Evidence.h"
#include "rebuild/RebuildContext.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>

namespace nv {

/// The settings that rebuilding goes by.
RebuildSettings rebuildSettings(const Program &program);

/// What records are read with.
struct RecordsFrom {
    SQLite::Database &project;
    const TimeZone &zone;
    FailureLog &log;
};

/// The records of the open project, their evidence and a scratch folder, for all that fetches,
/// shows or rebuilds their content: make it, use it, let it go while the project stays open.
class RecordTools {
  public:
    /// `scratch` is an existing folder of the program's own: content is fetched into it, and pages
    /// are rebuilt there.
    RecordTools(Program &program, TaskMonitor &task, const std::filesystem::path &scratch);
    /// For a thread of its own, which reads by a connection of its own: `from` outlives it, and of
    /// the program only the clock is used later.
    RecordTools(Program &program, const RecordsFrom &from, TaskMonitor &task,
                const std::filesystem::path &scratch);
    ~RecordTools() = default;
    RecordTools(const RecordTools &) = delete; // the context refers to the other members
    RecordTools &operator=(const RecordTools &) = delete;

    const RebuildContext &context() const { return m_context; }
    std::optional<UrlRecord> record(UrlId urlID) { return m_records.getURL(urlID); }

    /// Makes what draws thumbnails of rebuilt pages; asked only when there is one to draw.
    std::function<std::unique_ptr<Drawing>(const std::filesystem::path &scratch)> drawing =
        makeDrawing;

  private:
    RecordStore m_records;
    Evidence m_evidence;
    RebuildContext m_context;
};

} // namespace nv
