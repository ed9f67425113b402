#include "readers/chrome/cache/LaterWalk.h"

#include "base/Files.h"
#include "base/Text.h"
#include "readers/Limits.h"
#include "readers/chrome/cache/CacheBlocks.h"
#include "readers/chrome/cache/LaterEntry.h"

#include <algorithm>
#include <charconv>
#include <optional>

namespace nv {

namespace fs = std::filesystem;

namespace {

bool couldBeEntry(ByteView block) {
    constexpr std::uint32_t kRankings = 0x9000'0000;
    constexpr std::uint32_t kKind = 0xF000'0000;
    return (block.u32le(8) & kKind) == kRankings && block.u32le(20) <= LaterEntry::doomed &&
           block.u32le(32) > 0 && block.u32le(32) <= limits::kChromeSeparateText;
}

/// "f_" and six hexadecimal digits, or seven of a number that needs them.
std::optional<std::uint32_t> separateNumber(std::string_view name) {
    constexpr std::string_view kStart = "f_";
    constexpr std::size_t kDigits = 6;
    if (!name.starts_with(kStart))
        return std::nullopt;
    name.remove_prefix(kStart.size());
    if (name.size() != kDigits && name.size() != kDigits + 1)
        return std::nullopt;
    std::uint32_t number = 0;
    const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), number, 16);
    return error == std::errc() && end == name.data() + name.size() ? std::optional(number)
                                                                    : std::nullopt;
}

} // namespace

void addNextLaterFiles(ChromeBlockFiles &blocks, std::set<std::uint8_t> &files) {
    constexpr std::uint64_t kHead = 0x18;
    constexpr std::int16_t kLastFile = 255;
    std::vector<std::uint8_t> open(files.begin(), files.end());
    while (!open.empty()) {
        const EvidenceFile *file = blocks.file(open.back());
        open.pop_back();
        const Bytes head = file ? file->read(0, kHead) : Bytes();
        if (head.size() < kHead)
            continue;
        const std::int16_t next = chromeDataFileOf(ByteView(head)).dataFileNextIndex;
        if (next > 0 && next <= kLastFile && files.insert(static_cast<std::uint8_t>(next)).second)
            open.push_back(static_cast<std::uint8_t>(next));
    }
}

std::uint64_t laterBlocksIn(const EvidenceFile &file) {
    constexpr std::uint64_t kMostBlocks = 0x10000;
    if (file.size() <= ChromeDataFile::kSize)
        return 0;
    return std::min((file.size() - ChromeDataFile::kSize) / LaterEntry::kBlock, kMostBlocks);
}

void eachLaterBlock(const EvidenceFile &file, std::uint8_t number, std::uint64_t first,
                    const TakeLaterBlock &take) {
    const Bytes part = file.read(ChromeDataFile::kSize + first * LaterEntry::kBlock,
                                 kLaterPart * LaterEntry::kBlock);
    const ByteView view(part);
    const std::uint64_t count = laterBlocksIn(file);
    for (std::uint64_t at = 0;
         view.has(at, LaterEntry::kBlock) && first + at / LaterEntry::kBlock < count;
         at += LaterEntry::kBlock)
        if (couldBeEntry(view.sub(at, LaterEntry::kBlock)))
            take(chromeEntryAddress(
                number, static_cast<std::uint16_t>(first + at / LaterEntry::kBlock), 1));
}

void eachLaterBlock(ChromeBlockFiles &blocks, const TakeLaterBlock &take) {
    std::set<std::uint8_t> files = {1};
    addNextLaterFiles(blocks, files);
    for (const std::uint8_t number : files) {
        const EvidenceFile *file = blocks.file(number);
        for (std::uint64_t first = 0; file && first < laterBlocksIn(*file); first += kLaterPart)
            eachLaterBlock(*file, number, first, take);
    }
}

bool hasLaterEntries(const Evidence &evidence, const fs::path &folder) {
    ChromeBlockFiles blocks(evidence, folder);
    LaterEntries entries(blocks, evidence, folder);
    const EvidenceFile *file = blocks.file(1);
    bool isFound = false;
    for (std::uint64_t first = 0; file && !isFound && first < laterBlocksIn(*file);
         first += kLaterPart)
        eachLaterBlock(*file, 1, first, [&](const ChromeAddressMap &map) {
            const auto entry = isFound ? std::nullopt : entries.at(map);
            isFound |= entry && entry->hasItsHash();
        });
    return isFound;
}

std::vector<LaterFile> separateFilesIn(const Evidence &evidence, const fs::path &folder) {
    std::vector<LaterFile> files;
    for (const fs::path &file : evidence.contentsOf(folder).files)
        if (const auto number = separateNumber(toLower(textOf(file.filename()))))
            files.push_back({file, *number});
    std::ranges::sort(files, {}, &LaterFile::number);
    return files;
}

} // namespace nv
