#include "readers/results/RecordSignatures.h"

#include <algorithm>
#include <array>

namespace nv {

namespace {

// In the order in which a file's first record is sought. The blank counts: "URL" alone stands in
// the header of some of these files.
constexpr std::array<std::string_view, 3> kSignatures = {"URL ", "REDR", "LEAK"};
constexpr std::uint64_t kBlock = 0x80;

/// Records are some blocks long. After a signature that is but a word of some text stand letters,
/// which as a number are far above this.
constexpr std::int32_t kMostBlocks = 0xFFFF;

bool beginsRecord(ByteView file, std::uint64_t at) {
    if (!file.has(at, 8) || !isRecordSignature(file.sub(at, kSignatureLength).raw()))
        return false;
    const std::int32_t blocks = file.i32le(at + kSignatureLength);
    return blocks > 0 && blocks <= kMostBlocks;
}

/// Why the record at `at` wasn't carved; empty when carving looked at it.
std::string_view reasonAt(std::uint64_t at, std::uint64_t start, const CarvedRange *around) {
    if (at < start)
        return "record signatures before the first record";
    if ((at - start) % kBlock != 0)
        return "record signatures off the 128-byte grid";
    if (around && at > around->begin)
        return "record signatures inside of another record";
    return {};
}

} // namespace

bool isRecordSignature(std::string_view text) {
    return std::find(kSignatures.begin(), kSignatures.end(), text) != kSignatures.end();
}

std::optional<std::uint64_t> firstRecord(ByteView file) {
    for (const std::string_view signature : kSignatures)
        if (const auto at = file.find(signature))
            return *at;
    return std::nullopt;
}

void countUncarved(ByteView file, std::uint64_t start, const std::vector<CarvedRange> &carved,
                   ReadResult &result) {
    const std::string_view bytes = file.raw();
    auto range = carved.begin();
    for (std::size_t at = bytes.find_first_of("URL"); at != std::string_view::npos;
         at = bytes.find_first_of("URL", at + 1)) {
        if (!beginsRecord(file, at))
            continue;
        while (range != carved.end() && range->end <= at)
            ++range;
        const bool within = range != carved.end() && range->begin <= at;
        const std::string_view reason = reasonAt(at, start, within ? &*range : nullptr);
        if (!reason.empty())
            ++result.passedOver[std::string(reason)];
    }
}

} // namespace nv
