#include "reports/events/FileDates.h"

#include "readers/RecordKind.h"
#include "readers/chrome/Kinds.h"
#include "readers/ie/Kinds.h"
#include "readers/opera/Kinds.h"
#include "readers/results/Kinds.h"

#include <algorithm>
#include <array>

namespace nv {

namespace {

constexpr std::array<const RecordKind *, 8> kCreatedInRecord = {
    &kIEHistory, &kIEDaily,   &kIEWeekly,       &kIECache,
    &kIECookies, &kIERemnant, &kImportedBinary, &kUnallocated};
constexpr std::array<const RecordKind *, 4> kAccessedInRecord = {&kChromeCache, &kChromeSiteCache,
                                                                 &kChromeCacheRemnant, &kIECookies};
constexpr std::array<const RecordKind *, 5> kOfCachedFile = {&kIECache, &kIERemnant, &kOperaCache,
                                                             &kNetAnalysis, &kSimpleHtml};

/// Of a kind that nobody knows the file may be its own.
template <class Kinds>
FileDateFrom dateFrom(std::string_view cacheType, const Kinds &inRecord) {
    const RecordKind *kind = recordKind(cacheType);
    if (std::ranges::find(inRecord, kind) != inRecord.end())
        return FileDateFrom::record;
    return !kind || std::ranges::find(kOfCachedFile, kind) != kOfCachedFile.end()
               ? FileDateFrom::cachedFile
               : FileDateFrom::container;
}

} // namespace

FileDateFrom createdDateFrom(std::string_view cacheType) {
    return dateFrom(cacheType, kCreatedInRecord);
}

FileDateFrom accessedDateFrom(std::string_view cacheType) {
    return dateFrom(cacheType, kAccessedInRecord);
}

} // namespace nv
