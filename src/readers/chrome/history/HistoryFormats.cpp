#include "readers/chrome/history/HistoryFormats.h"

#include "readers/Candidate.h"
#include "readers/FileForm.h"
#include "readers/chrome/Kinds.h"
#include "readers/chrome/Options.h"
#include "readers/chrome/history/Favicons.h"
#include "readers/chrome/history/History.h"
#include "readers/chrome/history/Shortcuts.h"
#include "readers/chrome/history/TopSites.h"
#include "readers/sqlite/SchemaTables.h"

namespace nv {

namespace {

using enum HistoryFileType;

constexpr const RecordKind *kHistoryKinds[] = {&kChromeHistory, &kChromeVisit, &kChromeDownload,
                                               &kChromeSearchTerm};
constexpr const RecordKind *kIconKinds[] = {&kChromeIcon};
constexpr const RecordKind *kTopSiteKinds[] = {&kChromeTopSite};
constexpr const RecordKind *kShortcutKinds[] = {&kChromeShortcut};

bool isNamedHistory(const Candidate &file) {
    return file.name == "history" || file.name == "archived history";
}

bool isChromesHistory(const Candidate &file) {
    return isNamedHistory(file) && pathHas(file, "chrome");
}

bool isHistory(const Candidate &file) {
    return isNamedHistory(file) && hasTables(file, {"urls", "visits"});
}

bool isFavicons(const Candidate &file) {
    return file.name == "favicons" && hasTables(file, {"icon_mapping", "favicons"});
}

bool isTopSites(const Candidate &file) {
    return file.name == "top sites" &&
           (hasTables(file, {"top_sites"}) || hasTables(file, {"thumbnails"}));
}

bool isShortcuts(const Candidate &file) {
    return file.name == "shortcuts" && hasTables(file, {"omni_box_shortcuts"});
}

bool isPredictor(const Candidate &file) {
    return file.name == "network action predictor" && hasTables(file, {"network_action_predictor"});
}

} // namespace

namespace {

/// What Chrome's own history and that of other Chromium browsers have in common: the first one is
/// known by its path, as ever, and the other by its tables.
constexpr Reader historyFormat(Reader own) {
    own.version = "1.0";
    own.option = &kChromeHistoryOption;
    own.mask = "History;Archived History";
    own.read = parseChromeHistoryFile;
    own.kinds = kHistoryKinds;
    own.page = "chrome-history";
    return own;
}

} // namespace

constinit const Reader kChromeHistoryFormat = historyFormat({
    .type = chromeHistory,
    .key = "chrome-history",
    .kind = "Chrome History",
    .recognises = isChromesHistory,
    .cases = {"chrome-history", "History", "chromium-history/every-table"},
});

constinit const Reader kChromiumHistoryFormat = historyFormat({
    .type = chromiumHistory,
    .key = "chromium-history",
    .kind = "Chromium History",
    .recognises = isHistory,
    .cases = {"chromium-history", "History;Archived History", "chromium-history/every-table"},
    .form = &kTablesForm,
    .isBeyondClassic = true,
});

constinit const Reader kChromiumFaviconsFormat = {
    .type = chromiumFavicons,
    .key = "chromium-favicons",
    .kind = "Chromium Favicons",
    .version = "1.0",
    .option = &kChromeOtherOption,
    .mask = "Favicons",
    .recognises = isFavicons,
    .read = parseChromeFaviconsFile,
    .kinds = kIconKinds,
    .page = "chromium-favicons",
    .cases = {"chromium-favicons", "Favicons", "chromium-favicons/alone"},
    .form = &kTablesForm,
    .isBeyondClassic = true,
};

constinit const Reader kChromiumTopSitesFormat = {
    .type = chromiumTopSites,
    .key = "chromium-top-sites",
    .kind = "Chromium Top Sites",
    .version = "1.0",
    .option = &kChromeOtherOption,
    .mask = "Top Sites",
    .recognises = isTopSites,
    .read = parseChromeTopSitesFile,
    .kinds = kTopSiteKinds,
    .page = "chromium-top-sites",
    .cases = {"chromium-top-sites", "Top Sites", "chromium-top-sites/alone"},
    .form = &kTablesForm,
    .isBeyondClassic = true,
};

constinit const Reader kChromiumShortcutsFormat = {
    .type = chromiumShortcuts,
    .key = "chromium-shortcuts",
    .kind = "Chromium Shortcuts",
    .version = "1.0",
    .option = &kChromeOtherOption,
    .mask = "Shortcuts",
    .recognises = isShortcuts,
    .read = parseChromeShortcutsFile,
    .kinds = kShortcutKinds,
    .page = "chromium-shortcuts",
    .cases = {"chromium-shortcuts", "Shortcuts", "chromium-shortcuts/three-texts"},
    .form = &kTablesForm,
    .isBeyondClassic = true,
};

constinit const Reader kChromiumPredictorFormat = {
    .type = chromiumPredictor,
    .key = "chromium-predictor",
    .kind = "Chromium Network Action Predictor",
    .version = "1.0",
    .option = &kChromeOtherOption,
    .mask = "Network Action Predictor",
    .recognises = isPredictor,
    .read = parseChromePredictorFile,
    .kinds = kShortcutKinds,
    .page = "chromium-shortcuts",
    .cases = {"chromium-predictor", "Network Action Predictor", "chromium-predictor/guesses"},
    .form = &kDatabaseForm,
    .isBeyondClassic = true,
};

} // namespace nv
