#pragma once

#include "base/FailureLog.h"
#include "base/TaskMonitor.h"
#include "db/records/RecordStore.h"
#include "readers/CachedBody.h"
#include "rebuild/RebuildMethod.h"
#include "rebuild/TagScan.h"

#include <filesystem>
#include <functional>
#include <string>

namespace SQLite {
class Database;
}

namespace nv {

/// What the examiner's settings say of rebuilding.
struct RebuildSettings {
    std::string htmlReplaceablePictureTags{kHTMLReplaceablePictureTags};
    std::string htmlReplaceableHREFTags{kHTMLReplaceableHREFTags};
    bool disableScriptTags = false;
    bool creatingReport = false; ///< a report owns the status window
    /// Record ids above 32,767, which earlier versions could not hold, are used like any other.
    bool wideRecordIds = false;
    MethodChoice method = MethodChoice::automatic;

    ReplaceableLists lists() const { return {htmlReplaceablePictureTags, htmlReplaceableHREFTags}; }
};

/// All that rebuilding a page needs. Everything must outlive it.
struct RebuildContext {
    SQLite::Database &project;
    RecordStore &records;
    const Evidence &evidence;
    std::filesystem::path tempFolderPath; ///< an existing folder of the program's own
    FailureLog &log;
    TaskMonitor &task;
    RebuildSettings settings;

    /// Hears of what page and parts are brought back from; `content` is null for what is gone.
    using PartFetched = std::function<void(const UrlRecord &part, const Body *content)>;
    PartFetched partFetched = {};

    Extraction extraction() const { return {evidence, tempFolderPath, log}; }
};

} // namespace nv
