#include "readers/FieldPlaces.h"
#include "readers/Reader.h"
#include "readers/RecordKind.h"
#include "readers/chrome/Formats.h"
#include "readers/chrome/cache/CacheFormats.h"
#include "readers/chrome/cache/CachePlaces.h"
#include "readers/chrome/profile/ProfileFormats.h"
#include "readers/chrome/profile/ProfilePlaces.h"
#include "readers/firefox/Formats.h"
#include "readers/firefox/cache/Cache2Formats.h"
#include "readers/firefox/cache/CachePlaces.h"
#include "readers/firefox/profile/ProfileFormats.h"
#include "readers/firefox/profile/ProfilePlaces.h"
#include "readers/ie/CookiePlaces.h"
#include "readers/ie/Formats.h"
#include "readers/ie/IndexPlaces.h"
#include "readers/ie/Kinds.h"
#include "readers/mac/CachePlaces.h"
#include "readers/mac/Formats.h"
#include "readers/opera/CachePlaces.h"
#include "readers/opera/Formats.h"
#include "readers/opera/HistoryPlaces.h"
#include "readers/results/Formats.h"
#include "readers/results/PagePlaces.h"
#include "readers/safari/CachePlaces.h"
#include "readers/safari/Formats.h"
#include "readers/safari/HistoryPlaces.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

namespace nv {

namespace {

bool isOfLaterBlocks(const UrlRecord &record) {
    return record.HistoryVersion.starts_with("Block files");
}

/// What was recovered of an index has one kind, whatever the index was of.
bool isCookie(const UrlRecord &record) {
    return record.IsCookie || record.cacheType != kIERemnant.word;
}

/// A list of values has the same kind and no record of an index.
bool isCarved(const UrlRecord &record) {
    return !record.HistoryFilePath.empty();
}

/// The same file may give a permission, which is that of a site.
bool isLogin(const UrlRecord &record) {
    return factWords(record, "source_table") == "logins";
}

struct Row {
    const Reader *format;
    Locate locate;
    /// In place of the format's own.
    bool (*isSourceOf)(const UrlRecord &record) = nullptr;
};

/// In the order of trial: records of formats that share a kind are told apart by `isSourceOf`.
constexpr std::array<Row, 23> kLocators = {{
    {&kIECookiesFormat, locateInCookies, isCookie},
    {&kIEHistoryFormat, locateInIndex}, // and those of the cache, which has the same kinds
    {&kChromiumLoneIndexFormat, locateInBlockFiles, isOfLaterBlocks},
    {&kChromeCacheFormat, locateInBlockFiles},
    {&kChromiumSimpleCacheFormat, locateInSimpleCache},
    {&kChromiumSqlCacheFormat, locateInSqlCache},
    {&kFirefoxCacheFormat, locateInFirefoxCache},
    {&kFirefoxCache2Format, locateInCache2},
    {&kFirefoxSiteCacheFormat, locateInSiteCache},
    {&kSafariCacheFormat, locateInSafariCache},
    {&kOperaCacheFormat, locateInOperaCache},
    {&kMacIECacheFormat, locateInMacCache},
    {&kHistExFormat, locateCarved, isCarved},
    {&kNvdFormat, locateCarved},
    {&kNetAnalysisFormat, locateInCase},
    {&kSimpleHtmlFormat, locateInPage},
    {&kMorkHistoryFormat, locateInMork},
    {&kFirefoxLoginsFormat, locateInLogins, isLogin},
    {&kOperaHistoryFormat, locateInOperaHistory},
    {&kSafariHistoryFormat, locateInSafariHistory},
    {&kChromiumBookmarksFormat, locateInBookmarks},
    {&kChromiumPreferencesFormat, locateInSettings},
    {&kChromiumLocalStateFormat, locateInSettings},
}};

const Row *rowOf(const UrlRecord &record) {
    // Redirects that were carved have no kind.
    const bool isRedirect = record.cacheType.empty() && record.Action == "Redirected";
    const RecordKind *kind = isRedirect ? &kUnallocated : recordKind(record.cacheType);
    const auto found = std::ranges::find_if(kLocators, [&](const Row &row) {
        const Reader &format = *row.format;
        const auto isSourceOf = row.isSourceOf ? row.isSourceOf : format.isSourceOf;
        return kind && std::ranges::find(format.kinds, kind) != format.kinds.end() &&
               (!isSourceOf || isSourceOf(record));
    });
    return found == kLocators.end() ? nullptr : &*found;
}

} // namespace

Locate locatorOf(const UrlRecord &record) {
    const Row *row = rowOf(record);
    return row ? row->locate : nullptr;
}

std::string formatPageOf(const UrlRecord &record) {
    const Row *row = rowOf(record);
    const std::string_view page = row ? row->format->page : pageOf(record.cacheType);
    return page.empty() ? std::string() : fmt::format("docs/formats/{}.md", page);
}

} // namespace nv
