#include "readers/mac/Formats.h"

#include "readers/mac/Cache.h"
#include "readers/mac/Kinds.h"

namespace nv {

namespace {

constexpr const RecordKind *kKinds[] = {&kMacIECache};

} // namespace

// Its files have no name of their own: the examiner says what a file is.
constinit const Reader kMacIECacheFormat = {
    .type = HistoryFileType::macIECache,
    .key = "mac-cache",
    .kind = "Mac IE Cache",
    .read = ParseMACIECache,
    .fetch = ExtractMACFile,
    .kinds = kKinds,
    .page = "mac-cache",
    .cases = {"mac-cache", "cache.waf", "mac-cache/three-entries"},
};

} // namespace nv
