#include "views/rows/RecordFilters.h"

#include "base/Text.h"
#include "db/records/UrlRecord.h"
#include "readers/RecordKind.h"

#include <algorithm>

namespace nv {

namespace {

using F = RecordFilters;
using Group = FilterGroup;

// Four kinds go by category. "MUSIC/AUDIO", "MOVIES", "COMPRESSED FILES" and "EXECUTABLES" are the
// words of projects of earlier versions and other tools; categorising writes the others. Archives
// admit programs too, and word documents plain text: examiners know these groups.
constexpr FilterFlag kFlags[] = {
    {&F::showHistoryURLs, "showHistoryURLs", "History", Group::Source},
    {&F::showCacheURLs, "showCacheURLs", "Cache", Group::Source},
    {&F::showCookies, "showCookies", "Cookies", Group::Source},
    {&F::showBookmarks, "showBookmarks", "Bookmarks", Group::Source},

    {&F::showBitmaps, "showBitmaps", "Bitmaps", Group::Kind, {"bmp"}},
    {&F::showPNG, "showPNG", "PNG pictures", Group::Kind, {"png"}},
    {&F::showGIF, "showGIF", "GIF pictures", Group::Kind, {"gif"}},
    {&F::showJPEG, "showJPEG", "JPEG pictures", Group::Kind, {"jpg", "jpe", "jpeg"}},
    {&F::showMusic,
     "showMusic",
     "Music",
     Group::Kind,
     {},
     {"MUSIC/AUDIO", "MUSIC, AUDIO", "AUDIO"}},
    {&F::showAudioFiles,
     "showAudioFiles",
     "Audio files",
     Group::Kind,
     {},
     {"MUSIC/AUDIO", "MUSIC, AUDIO", "AUDIO"}},
    {&F::showPDF, "showPDF", "PDF documents", Group::Kind, {"pdf"}, {}, {"ADOBE"}},
    {&F::showHTML, "showHTML", "HTML pages", Group::Kind, {"html", "htm"}, {}, {"HTML"}},
    {&F::showXML, "showXML", "XML", Group::Kind, {"xml"}},
    {&F::showASP, "showASP", "ASP pages", Group::Kind, {"asp", "aspx"}},
    {&F::showJS, "showJS", "Scripts (js)", Group::Kind, {"js"}},
    {&F::showCSS, "showCSS", "Style sheets", Group::Kind, {"css"}},
    {&F::showPHPCGI,
     "showPHPCGI",
     "PHP and CGI",
     Group::Kind,
     {"php", "cgi"},
     {},
     {},
     {".cgi", ".php"}},
    {&F::showMissingFileExt, "showMissingFileExt", "Without extension", Group::Kind, {""}},
    {&F::showExcelDocs, "showExcelDocs", "Spreadsheets (xls)", Group::Kind, {"xls"}},
    {&F::showPowerpoint, "showPowerpoint", "Presentations (ppt)", Group::Kind, {"ppt"}},
    {&F::showEXEs, "showEXEs", "Programs (exe)", Group::Kind, {"exe"}},
    {&F::showHelp, "showHelp", "Help files", Group::Kind, {"chm", "hlp"}},
    {&F::showAccessFiles, "showAccessFiles", "Databases (mdb)", Group::Kind, {"mdb"}},
    {&F::showMovies, "showMovies", "Movies", Group::Kind, {}, {"MOVIES", "MOVIES, ANIMATION"}},
    {&F::showWordDocs, "showWordDocs", "Texts (doc, txt, rtf)", Group::Kind, {"doc", "txt", "rtf"}},
    {&F::showArchiveFiles,
     "showArchiveFiles",
     "Archives, programs",
     Group::Kind,
     {},
     {"COMPRESSED FILES", "EXECUTABLES", "ARCHIVE, COMPRESSED", "BINARY, EXECUTABLES"}},

    {&F::showGoogle, "showGoogle", "Google", Group::Site, {}, {}, {}, {"google"}},
    {&F::showYahoo, "showYahoo", "Yahoo", Group::Site, {}, {}, {}, {"yahoo", "yim"}},
    {&F::showHotmailLive,
     "showHotmailLive",
     "Hotmail, Live",
     Group::Site,
     {},
     {},
     {},
     {"hotmail.com", "live.com"}},
    {&F::showAOL, "showAOL", "AOL", Group::Site, {}, {}, {}, {"aol"}},
    {&F::showFacebook, "showFacebook", "Facebook", Group::Site, {}, {}, {}, {"facebook"}},
    {&F::showMySpace, "showMySpace", "MySpace", Group::Site, {}, {}, {}, {"myspace"}},
    {&F::showYouTube, "showYouTube", "YouTube", Group::Site, {}, {}, {}, {"youtube"}},
    {&F::showEBAY, "showEBAY", "eBay", Group::Site, {}, {}, {}, {"ebay"}},
    {&F::showBlogs, "showBlogs", "Blogs", Group::Site, {}, {}, {}, {"blog"}},
    {&F::showFilesOpened, "showFilesOpened", "Files opened", Group::Site, {}, {}, {}, {"file:///"}},

    {&F::showAll, "showAll", "Show all", Group::All},
};

bool isOneOf(const std::string &text, const FilterWords &words) {
    return std::ranges::find(words.all(), text) != words.all().end();
}

bool containsOneOf(const std::string &text, const FilterWords &parts) {
    return std::ranges::any_of(
        parts.all(), [&](std::string_view part) { return text.find(part) != std::string::npos; });
}

bool admits(const FilterFlag &test, const FilterFacts &facts) {
    return isOneOf(facts.urlFileExt, test.extensions) || isOneOf(facts.category, test.categories) ||
           containsOneOf(facts.category, test.categoryParts) ||
           containsOneOf(facts.url, test.urlParts);
}

constexpr OriginFilter kOrigins[] = {
    {&F::browser, &FilterFacts::browser, "browser", "Browser"},
    {&F::profile, &FilterFacts::profile, "profile", "Profile"},
    {&F::person, &FilterFacts::person, "person", "Person"},
};

bool isOfOthers(const RecordFilters &filters, const FilterFacts &facts) {
    return std::ranges::any_of(kOrigins, [&](const OriginFilter &each) {
        const std::string &wanted = filters.*each.text;
        return !wanted.empty() && !equalsNoCase(wanted, facts.*each.fact);
    });
}

/// A source that is off hides its records, even from `showAll`.
bool isVetoed(const RecordFilters &filters, const FilterFacts &facts) {
    return (facts.isHistory && !filters.showHistoryURLs) ||
           (!filters.showCacheURLs && facts.isCache) || (facts.isCookie && !filters.showCookies) ||
           (facts.isBookmark && !filters.showBookmarks);
}

FilterFacts factsOf(const UrlRecord &record) {
    return {.isHistory = record.IsHistory,
            .isCookie = record.IsCookie,
            .isBookmark = record.IsBookmark,
            .isCache = groupOf(record.cacheType) == RecordGroup::cache,
            .category = toUpper(record.Category),
            .urlFileExt = record.URLFileExt,
            .url = toLower(record.URL),
            .browser = record.Browser,
            .profile = record.Profile,
            .person = record.Person};
}

} // namespace

RecordFilters firstFilters() {
    RecordFilters filters;
    for (const FilterFlag &each : kFlags)
        if (each.group == Group::Source || each.group == Group::All)
            filters.*each.flag = true;
    return filters;
}

std::span<const FilterFlag> filterFlags() {
    return kFlags;
}

std::span<const OriginFilter> originFilters() {
    return kOrigins;
}

const FilterFlag *findFilterFlag(std::string_view name) {
    static constexpr std::string_view kShow = "show";
    const auto *found = std::ranges::find_if(kFlags, [name](const FilterFlag &each) {
        return equalsNoCase(each.name, name) || equalsNoCase(each.name.substr(kShow.size()), name);
    });
    return found == std::ranges::end(kFlags) ? nullptr : found;
}

bool filterRecord(const RecordFilters &filters, const UrlRecord &record) {
    return filterRecord(filters, factsOf(record));
}

bool filterRecord(const RecordFilters &filters, const FilterFacts &facts) {
    if (isVetoed(filters, facts) || isOfOthers(filters, facts))
        return false;
    // Not vetoed, so their flags are on.
    if (facts.isCookie || facts.isBookmark || filters.showAll)
        return true;
    return std::ranges::any_of(
        kFlags, [&](const FilterFlag &each) { return filters.*each.flag && admits(each, facts); });
}

FilterNeeds needsOf(const RecordFilters &filters) {
    FilterNeeds needs;
    needs.origin = std::ranges::any_of(
        kOrigins, [&](const OriginFilter &each) { return !(filters.*each.text).empty(); });
    if (filters.showAll)
        return needs;
    for (const FilterFlag &each : kFlags)
        if (filters.*each.flag) {
            needs.category |= each.categories.count + each.categoryParts.count > 0;
            needs.urlFileExt |= each.extensions.count > 0;
            needs.url |= each.urlParts.count > 0;
        }
    return needs;
}

bool hasSource(const RecordFilters &filters) {
    return filters.showHistoryURLs || filters.showCacheURLs || filters.showCookies ||
           filters.showBookmarks;
}

Message missingRecordType() {
    return {"missing-record-type",
            "Missing Record Type",
            "At least one DATA SOURCE option must be selected.",
            Choices::Ok,
            Tone::Warning,
            Answer::Ok};
}

} // namespace nv
