#include "readers/chrome/HistoryFormats.h"

#include "readers/chrome/History.h"
#include "readers/chrome/Kinds.h"
#include "readers/chrome/Options.h"
#include "readers/sqlite/SchemaTables.h"

namespace nv {

namespace {

using enum HistoryFileType;

constexpr const RecordKind *kHistoryKinds[] = {&kChromeHistory, &kChromeVisit, &kChromeDownload,
                                               &kChromeSearchTerm};

bool isHistory(const Candidate &file) {
    return (file.name == "history" || file.name == "archived history") &&
           hasTables(file, {"urls", "visits"});
}

} // namespace

constinit const Reader kChromiumHistoryFormat = {
    .type = chromiumHistory,
    .key = "chromium-history",
    .kind = "Chromium History",
    .version = "1.0",
    .option = &kChromeHistoryOption,
    .mask = "History;Archived History",
    .recognises = isHistory,
    .read = parseChromeHistoryFile,
    .kinds = kHistoryKinds,
    .page = "chrome-history",
    .cases = {"chromium-history", "History;Archived History", "chromium-history/every-table"},
    .isBeyondClassic = true,
};

} // namespace nv
