#pragma once

#include "readers/Engine.h"

#include <span>
#include <string_view>

namespace nv {

/// Browsers that belong together, as the wizard and reports name them.
struct BrowserFamily {
    std::string_view name;   ///< of its row in the wizard
    std::string_view words;  ///< what the words of its kinds begin with, upper case
    std::string_view report; ///< what cards of a report call it
    std::string_view image;  ///< of tabular reports
    std::string_view title;  ///< what they say of the image
    Engine engine;
};

namespace families {
inline constexpr BrowserFamily internetExplorer = {"Internet Explorer", "IE",
                                                   "Internet Explorer", "ie.gif",
                                                   "Internet Explorer", Engine::internetExplorer};
inline constexpr BrowserFamily firefox = {"Firefox",     "FIREFOX",         "Firefox",
                                          "firefox.gif", "Mozilla Firefox", Engine::gecko};
inline constexpr BrowserFamily chrome = {"Chrome",     "CHROME",        "Google Chrome",
                                         "chrome.gif", "Google Chrome", Engine::chromium};
inline constexpr BrowserFamily safari = {"Safari",     "SAFARI", "Safari",
                                         "safari.gif", "Safari", Engine::safari};
/// Its title says "Safari": reports of earlier cases do.
inline constexpr BrowserFamily opera = {"Opera",     "OPERA",  "Opera",
                                        "opera.gif", "Safari", Engine::opera};
inline constexpr BrowserFamily macIE = {"Internet Explorer for Macintosh", "MAC",
                                        "MAC Internet Explorer",           "net.gif",
                                        "MAC Internet Explorer",           Engine::macIE};
inline constexpr BrowserFamily netAnalysis = {"NetAnalysis", "NETANALYSIS", "NetAnalysis",
                                              "net.gif",     "NetAnalysis", Engine::unknown};
} // namespace families

/// All families, in the order of the wizard's rows.
std::span<const BrowserFamily *const> browserFamilies();

/// What a record is a trace of. Filters, the wizard's columns and lists of links go by it.
enum class RecordGroup {
    cache,
    history,
    cookies,
    bookmarks,
    other,
};
/// "Cache", "History", "Cookies", "Bookmarks", "Other".
std::string_view groupWord(RecordGroup group);

/// How a page finds its parts among the records of the same cache.
enum class CacheParts {
    none,   ///< it isn't rebuilt
    byUrl,  ///< by the addresses of the records
    byPath, ///< by the cached files, which lie in folders of their own
};

/// A kind of record: all that the program knows of its `CacheType`. It stands in the folder of the
/// readers that make it; their rows in the table of formats name it.
struct RecordKind {
    std::string_view key;  ///< "chrome-cache"; once given, it stays
    std::string_view word; ///< what readers write to `cacheType`: at most 50 characters
    const BrowserFamily *family = nullptr;
    RecordGroup group = RecordGroup::other;
    CacheParts parts = CacheParts::none;
    std::string_view otherWord = {}; ///< another word for the same, which projects may hold
    std::string_view icon = {};      ///< the image key; empty: by extension and category
    std::string_view title = {};     ///< in tabular reports, when the family's doesn't do
    /// Cards of a report call the browser "Internet Explorer", whichever it is: those of earlier
    /// cases do so for all but caches. No kind that comes anew needs it.
    bool reportedAsInternetExplorer = false;
    bool inLocalTime = false;    ///< its dates are those of the clock on the wall
    bool mayLackContent = false; ///< its cached files are looked for, and may never have been there
    /// A body that begins as XML does is a page when it has the tags of one. Kinds of the first
    /// version keep the category by the first bytes that earlier cases were counted with.
    bool hasXhtmlPages = false;
};

/// Every kind that a format of the table can make, each once.
std::span<const RecordKind *const> recordKinds();

/// The kind of a `CacheType` in any case, with or without blanks around it; null for words that
/// other programs and earlier builds may have written.
const RecordKind *recordKind(std::string_view cacheType);

// What can be said of any word, known or not.

RecordGroup groupOf(std::string_view cacheType);
CacheParts partsOf(std::string_view cacheType);
/// Null when none is known.
const BrowserFamily *familyOf(std::string_view cacheType);
/// The same of records that a browser itself wrote; null for those that another program recovered,
/// which tell of whatever browser it was.
const BrowserFamily *browserOf(std::string_view cacheType);

} // namespace nv
