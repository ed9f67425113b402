#include "readers/Registry.h"

#include "base/Files.h"
#include "base/Text.h"
#include "readers/Evidence.h"
#include "readers/Limits.h"
#include "readers/chrome/Cache.h"
#include "readers/chrome/CacheBody.h"
#include "readers/chrome/Cookies.h"
#include "readers/chrome/History.h"
#include "readers/firefox/CacheBody.h"
#include "readers/firefox/CacheParse.h"
#include "readers/firefox/Cookies.h"
#include "readers/firefox/MorkHistory.h"
#include "readers/firefox/Places.h"
#include "readers/ie/Cookies.h"
#include "readers/ie/Index.h"
#include "readers/mac/Cache.h"
#include "readers/opera/Cache.h"
#include "readers/opera/Cookies.h"
#include "readers/opera/History.h"
#include "readers/results/HistEx.h"
#include "readers/results/LooseFile.h"
#include "readers/results/NetAnalysis.h"
#include "readers/results/Nvd.h"
#include "readers/safari/Cache.h"
#include "readers/safari/Cookies.h"
#include "readers/safari/History.h"
#include "readers/sqlite/SchemaHead.h"

#include <algorithm>
#include <array>

namespace nv {

namespace {

namespace fs = std::filesystem;

/// In an Internet Explorer index: how many cache folders it has, lowest byte. 0-based.
constexpr std::uint64_t kFolderCountAt = 72;

// The mark that hist-ex puts in the names of the files it recovers.
constexpr std::string_view kRecoveredIndex = "-uc-index.dat";

/// Lower-case; those of "Dawn", such as "DawnGraphiteCache", are known by their beginning and end.
constexpr std::array<std::string_view, 4> kShaderFolders = {"gpucache", "shadercache",
                                                            "grshadercache", "graphitedawncache"};

bool nameHas(const Candidate &file, std::string_view part) {
    return file.name.find(part) != std::string::npos;
}

bool pathHas(const Candidate &file, std::string_view part) {
    return file.path.find(part) != std::string::npos;
}

/// Without verification the name alone decides, and this is always true.
bool contentHas(const Candidate &file, std::string_view mark) {
    return !file.verifySignatures || file.head.raw().find(mark) != std::string_view::npos;
}

/// Chrome's index beside the block file. Names may have lost their case on the way here.
std::optional<fs::path> indexBeside(const Candidate &file) {
    return file.evidence->find(file.file.parent_path(), "index");
}

bool isFirefoxCache(const Candidate &file) {
    return nameHas(file, "_cache_map_");
}

/// Browsers write "global_history.dat" and "typed_history.xml"; examiners know the other names.
bool isOperaHistory(const Candidate &file) {
    constexpr std::array<std::string_view, 5> kNames = {"global.dat", "global_history.dat",
                                                        "download.dat", "type_history.xml",
                                                        "typed_history.xml"};
    return std::ranges::find(kNames, file.name) != kNames.end();
}

/// Without verification Opera's global history would be taken by its name.
bool isMorkHistory(const Candidate &file) {
    return nameHas(file, "history") && file.extension == "dat" && !isOperaHistory(file) &&
           contentHas(file, "<mdb:mork:z");
}

bool isChromeHistory(const Candidate &file) {
    return (file.name == "history" || file.name == "archived history") && pathHas(file, "chrome");
}

bool isChromeCache(const Candidate &file) {
    return file.name == "data_0" && indexBeside(file).has_value();
}

bool isFirefox3History(const Candidate &file) {
    return nameHas(file, "places") && file.extension == "sqlite";
}

bool isOperaCache(const Candidate &file) {
    return nameHas(file, "dcache4");
}

/// Many programs call a database so; Safari's has tables of its own. Where they can't be told, as
/// in a damaged file, the name decides.
bool isSafariCache(const Candidate &file) {
    if (!nameHas(file, "cache") || file.extension != "db")
        return false;
    const auto schema = schemaHead(file);
    return !schema || containsNoCase(schema->bytes, "cfurl_cache");
}

bool isSafariHistory(const Candidate &file) {
    return nameHas(file, "history") && file.extension == "plist";
}

bool hasIndexName(const Candidate &file) {
    return nameHas(file, "index") && file.extension == "dat" && !nameHas(file, kRecoveredIndex);
}

bool isIEIndex(const Candidate &file) {
    return hasIndexName(file) && contentHas(file, "Client UrlCache");
}

/// An index with folders is a cache index; one without lists a history, whatever its own folder is
/// called.
bool hasCacheFolders(ByteView head) {
    return head.has(kFolderCountAt, 1) && head.u8(kFolderCountAt) != 0;
}

bool isIECookies(const Candidate &file) {
    return isIEIndex(file) && pathHas(file, "/cookies/");
}

/// Takes every index when contents aren't verified: the name can't tell history from cache.
bool isIEHistory(const Candidate &file) {
    return isIEIndex(file) && (!file.verifySignatures || !hasCacheFolders(file.head));
}

bool isIECache(const Candidate &file) {
    return isIEIndex(file) && hasCacheFolders(file.head);
}

bool isHistExIndex(const Candidate &file) {
    return hasIndexName(file) && contentHas(file, "NetAnalysisURLCacheMSIE5Hstex");
}

bool isOperaCookies(const Candidate &file) {
    return file.name == "cookies4.dat";
}

/// Programs with libsoup, such as Epiphany, keep a file with the name and the table of Firefox's.
/// Firefox notes when a cookie was created; before version 4 it didn't, but numbered its schema.
bool isFirefoxCookies(const Candidate &file) {
    if (file.name != "cookies.sqlite")
        return false;
    const auto schema = schemaHead(file);
    return !schema || schema->userVersion != 0 || !containsNoCase(schema->bytes, "moz_cookies") ||
           containsNoCase(schema->bytes, "creationTime");
}

bool isSafariCookies(const Candidate &file) {
    return file.name == "cookies.plist";
}

bool isChromeCookies(const Candidate &file) {
    return file.name == "cookies" && pathHas(file, "/chrome/");
}

bool isNetAnalysis(const Candidate &file) {
    return file.extension == "net";
}

bool isNorvelaneNVD(const Candidate &file) {
    return file.extension == "nvd";
}

bool isHistEx(const Candidate &file) {
    return nameHas(file, kRecoveredIndex);
}

/// Formats whose files have no name of their own: the examiner says what a file is.
bool isNeverMet(const Candidate &) {
    return false;
}

bool isSimpleHTML(const Candidate &file) {
    return file.extension == "htm" || file.extension == "html";
}

using enum HistoryFileType;

// The mask stands with the option: rows that share an option show the same mask. Cookies of
// Internet Explorer add none, so they are met only where history or cache is looked for too.
constexpr std::array<Reader, 23> kReaders = {{
    {firefoxCache, "firefox-cache", "Firefox Cache", "", "chkCacheFirefox", "_cache_map_*",
     isFirefoxCache, ParseFirefoxCache, fetchFirefoxCacheBody},
    {morkHistory, "firefox-mork-history", "Firefox2 History", "2.0", "chkHistoryFirefox",
     "history*.dat;places*.sqlite", isMorkHistory, ParseMorkFile},
    {chromeHistory, "chrome-history", "Chrome History", "1.0", "chkHistoryChrome",
     "History;Archived History", isChromeHistory, ParseChromeHistoryFile},
    {chromeCache, "chrome-cache", "Chrome Cache", "1.0", "chkCacheChrome", "data_0", isChromeCache,
     ParseChromeCache, fetchChromeBody},
    {firefox3History, "firefox3-history", "Firefox3 History", "3.0", "chkHistoryFirefox",
     "history*.dat;places*.sqlite", isFirefox3History, ParseFirefox3HistoryFile},
    {operaCache, "opera-cache", "Opera Cache", "9.0", "chkCacheOpera", "dcache4*.url", isOperaCache,
     ParseOperaCache},
    {operaHistory, "opera-history", "Opera History", "9.0", "chkHistoryOpera",
     "global*.dat;download.dat;type_history.xml;typed_history.xml", isOperaHistory,
     ParseOperaHistoryFile},
    {safariCache, "safari-cache", "Safari Cache", "3.0", "chkCacheSafari", "cache*.db",
     isSafariCache, ParseSafariCacheFile, fetchSafariBody},
    {safariHistory, "safari-history", "Safari History", "3.0", "chkHistorySafari", "history*.plist",
     isSafariHistory, ParseSafariHistoryFile},
    {ieCookies, "ie-cookies", "IE Cookies", "", "chkCookiesIE", "", isIECookies, ParseIECookies},
    {ieHistory, "ie-history", "IE History", "", "chkHistoryIE", "index*.dat", isIEHistory,
     ParseIECacheFile},
    {ieCache, "ie-cache", "IE Cache", "", "chkCacheIE", "index*.dat", isIECache, ParseIECacheFile},
    {histExIndex, "hist-ex-index", "Hist-Ex Index", "", "chkHistEx", "*-UC-index.dat",
     isHistExIndex, ParseHistExFile},
    {operaCookies, "opera-cookies", "Opera Cookies", "9.0", "chkCookiesOpera", "cookies4.dat",
     isOperaCookies, ParseOperaCookiesFile},
    {firefoxCookies, "firefox-cookies", "Firefox Cookies", "3.0", "chkCookiesFirefox",
     "cookies.sqlite", isFirefoxCookies, ParseFirefoxCookiesFile},
    {safariCookies, "safari-cookies", "Safari Cookies", "3.0", "chkCookiesSafari", "cookies.plist",
     isSafariCookies, ParseSafariCookiesFile},
    {chromeCookies, "chrome-cookies", "Chrome Cookies", "1.0", "chkCookiesChrome", "Cookies",
     isChromeCookies, ParseChromeCookiesFile},
    {netAnalysis, "netanalysis", "NetAnalysis", "1.x", "IncludeNetAnalysis", "*.net", isNetAnalysis,
     ParseNetAnalysisFile},
    {norvelaneNVD, "nvd", "Norvelane NVD", "2.x", "chkHistoryNVD", "*.nvd", isNorvelaneNVD,
     ParseNorvelaneNVDFile},
    {histEx, "hist-ex", "Hist-Ex", "1.x", "chkHistEx", "*-UC-index.dat", isHistEx, ParseHistExFile},
    {simpleHTML, "html", "Simple HTML", "", "chkHTMLFiles", "*.htm;*.html", isSimpleHTML,
     ParseSimpleHTML},
    {macIECache, "mac-cache", "Mac IE Cache", "", "", "", isNeverMet, ParseMACIECache,
     ExtractMACFile},
    {csv, "csv", "Unallocated", "", "", "", isNeverMet, ParseCSVFile},
}};

bool isShaderFolder(const fs::path &folder) {
    const std::string name = toLower(textOf(folder.filename()));
    const bool isDawn = name.starts_with("dawn") && name.ends_with("cache");
    return isDawn || std::ranges::find(kShaderFolders, name) != kShaderFolders.end();
}

/// The type under which a type without a row of its own is read.
HistoryFileType readAs(HistoryFileType type) {
    switch (type) {
    case ieDaily:
    case ieWeekly:
    case ieIndexByCommandLine:
        return ieHistory;
    case firefoxCacheByName:
        return firefoxCache;
    default:
        return type;
    }
}

template <class Wanted>
const Reader *findReader(Wanted &&wanted) {
    const auto *found = std::ranges::find_if(kReaders, wanted);
    return found == kReaders.end() ? nullptr : found;
}

} // namespace

std::span<const Reader> registry() {
    return kReaders;
}

const Reader *recognise(const Candidate &candidate) {
    return findReader([&](const Reader &reader) { return reader.recognises(candidate); });
}

const Reader *readerFor(HistoryFileType type) {
    return findReader([type = readAs(type)](const Reader &reader) { return reader.type == type; });
}

const Reader *readerByKey(std::string_view key) {
    return findReader([key](const Reader &reader) { return reader.key == key; });
}

const Reader *readerOfKind(std::string_view cacheType) {
    return findReader(
        [cacheType](const Reader &reader) { return equalsNoCase(reader.kind, cacheType); });
}

Candidate candidateOf(const std::filesystem::path &file, const Evidence &evidence) {
    Candidate candidate;
    candidate.evidence = &evidence;
    candidate.file = file;
    candidate.name = toLower(textOf(file.filename()));
    candidate.path = toLower(replaceAll(textOf(file), "\\", "/"));
    candidate.extension = GetFileExtension(candidate.path);
    return candidate;
}

std::filesystem::path artefactOf(const Reader &reader, const Candidate &candidate) {
    if (reader.type != chromeCache)
        return candidate.file;
    return indexBeside(candidate).value_or(candidate.file);
}

/// Later browsers keep them as a database in a folder of its own, "GPUCache/.../cache.db".
bool holdsShaders(const Reader &reader, const Candidate &candidate) {
    const fs::path folder = candidate.file.parent_path();
    return (reader.type == chromeCache && isShaderFolder(folder)) ||
           (reader.type == safariCache && isShaderFolder(folder.parent_path()));
}

/// A cache that is taken by its name alone, or by itself, passes for a history.
std::string warningOn(const Reader &reader, const std::filesystem::path &file,
                      const Evidence &evidence) {
    if (reader.type != ieHistory)
        return {};
    const Bytes head = evidence.head(file, limits::kHeadBytes);
    if (!hasCacheFolders(ByteView(head)))
        return {};
    return "read as a history, but it lists cache folders as a cache does: what is called \"Last "
           "Visited\" here is a date of the server's, and cached files are not looked for. Import "
           "its folder with file signatures verified";
}

} // namespace nv
