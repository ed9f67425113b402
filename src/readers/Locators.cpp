#include "readers/FieldPlaces.h"
#include "readers/Reader.h"
#include "readers/RecordKind.h"
#include "readers/chrome/CacheFormats.h"
#include "readers/chrome/CachePlaces.h"
#include "readers/chrome/Formats.h"
#include "readers/firefox/Cache2Formats.h"
#include "readers/firefox/CachePlaces.h"
#include "readers/firefox/Formats.h"
#include "readers/ie/Formats.h"
#include "readers/ie/IndexPlaces.h"
#include "readers/mac/CachePlaces.h"
#include "readers/mac/Formats.h"
#include "readers/opera/CachePlaces.h"
#include "readers/opera/Formats.h"
#include "readers/safari/CachePlaces.h"
#include "readers/safari/Formats.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

namespace nv {

namespace {

bool isOfLaterBlocks(const UrlRecord &record) {
    return record.HistoryVersion.starts_with("Block files");
}

struct Row {
    const Reader *format;
    Locate locate;
    /// In place of the format's own.
    bool (*isSourceOf)(const UrlRecord &record) = nullptr;
};

/// In the order of trial: records of formats that share a kind are told apart by `isSourceOf`.
constexpr std::array<Row, 11> kLocators = {{
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
}};

const Row *rowOf(const UrlRecord &record) {
    const RecordKind *kind = recordKind(record.cacheType);
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
