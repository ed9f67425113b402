// database = checksum:u32 magic:u32le ...

#include "readers/ie/UnreadFormats.h"

#include "readers/Candidate.h"
#include "readers/FileForm.h"
#include "readers/SourceOption.h"

namespace nv {

namespace {

constexpr SourceOption kOther = {"chkOtherIE", RecordGroup::other, &families::internetExplorer};

/// Windows keeps many databases of this form; those of browsers are known by their names.
bool isWebCache(const Candidate &file) {
    constexpr std::uint64_t kMagicAt = 4;
    constexpr std::uint32_t kMagic = 0x89ABCDEF;
    const bool isNamed = file.name.starts_with("webcachev") || file.name == "spartan.edb";
    return isNamed && (!file.verifySignatures ||
                       (file.head.has(kMagicAt, 4) && file.head.u32le(kMagicAt) == kMagic));
}

/// No other program's file has such a name.
constexpr FileForm kWebCacheForm = {
    .words = "EF CD AB 89 at offset 4",
    .hasRemains = [](const Candidate &) { return true; },
};

} // namespace

constinit const Reader kIEWebCacheFormat = {
    .type = HistoryFileType{80},
    .key = "ie-webcache",
    .kind = "Internet Explorer 10 and 11, and Edge to 18: WebCache",
    .option = &kOther,
    .mask = "WebCacheV*.dat;spartan.edb",
    .recognises = isWebCache,
    .page = "not-read-yet",
    .form = &kWebCacheForm,
    .isBeyondClassic = true,
};

} // namespace nv
