#pragma once

#include "app/program/Program.h"
#include "db/records/RecordStore.h"
#include "readers/Evidence.h"
#include "views/links/LinkAnalysis.h"
#include "views/links/LinkList.h"

#include <filesystem>

namespace nv {

/// Runs link analysis over the open project. `scratch` is an existing folder of the program's own.
/// Throws what runLinkAnalysis throws.
LinkTotals analyseLinks(Program &program, TaskMonitor &task, const std::filesystem::path &scratch);

/// The pairs of one record, within the limit of the settings.
LinkList linksOf(Program &program, UrlId urlID);

} // namespace nv
