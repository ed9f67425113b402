// What a log or journal says of itself, numbers big-endian:
//   log     = magic:u32 version:u32 page size:u32 byte{20} frame{};    frame = byte{24} page
//   journal = magic:u8{8} byte{12} sector:u32 page size:u32 filling Page{}
//   Page    = number:u32 page sum:u32      the first begins at the end of the sector
// A journal whose transaction has ended may keep its pages behind a head of zeros.

#include "readers/sqlite/LoneLog.h"

#include "base/Files.h"
#include "base/Text.h"
#include "db/sql/SideFiles.h"
#include "readers/BrowserOf.h"
#include "readers/ProfileFolder.h"

#include <fmt/format.h>

namespace nv {

namespace fs = std::filesystem;

namespace {

constexpr std::uint64_t kHead = 32; ///< bytes that are looked at of either
constexpr std::uint32_t kSmallestPage = 512;
constexpr std::uint32_t kLargestPage = 65536;

/// Empty for any other file.
std::string_view suffixOf(const fs::path &file) {
    const std::string name = toLower(textOf(file.filename()));
    for (const std::string_view suffix : kRowSuffixes)
        if (name.size() > suffix.size() && name.ends_with(suffix))
            return suffix;
    return {};
}

/// How many lie in `size` bytes behind a head; 0 for what is no size of pages.
std::uint64_t pagesIn(std::uint64_t size, std::uint64_t head, std::uint32_t page,
                      std::uint64_t more) {
    const bool isSize = page >= kSmallestPage && page <= kLargestPage;
    return isSize && size > head ? (size - head) / (page + more) : 0;
}

std::uint64_t pagesOfLog(ByteView head, std::uint64_t size) {
    constexpr std::uint32_t kMagic = 0x377F0682; ///< the lowest bit says how its sums are made
    constexpr std::uint64_t kFrameHead = 24;
    if (!head.has(0, kHead) || (head.u32be(0) & ~1U) != kMagic)
        return 0;
    return pagesIn(size, kHead, head.u32be(8), kFrameHead);
}

std::uint64_t pagesOfJournal(ByteView head, std::uint64_t size) {
    constexpr std::string_view kMagic = "\xd9\xd5\x05\xf9\x20\xa1\x63\xd7";
    constexpr std::uint64_t kNumberAndSum = 8;
    if (!head.has(0, kHead) || !head.raw().starts_with(kMagic))
        return 0;
    return pagesIn(size, head.u32be(20), head.u32be(24), kNumberAndSum);
}

} // namespace

std::optional<fs::path> databaseOfLog(const fs::path &file) {
    const std::string_view suffix = suffixOf(file);
    if (suffix.empty())
        return std::nullopt;
    std::string path = file.native();
    path.resize(path.size() - suffix.size());
    return path;
}

std::string loneLogText(const fs::path &log, const Candidate &database, const Reader &format,
                        bool isNamed) {
    const bool isJournal = suffixOf(log) == kJournalSuffix;
    const EvidenceFile file = database.evidence->open(log);
    const Bytes head = file.read(0, kHead);
    const std::uint64_t pages = isJournal ? pagesOfJournal(ByteView(head), file.size())
                                          : pagesOfLog(ByteView(head), file.size());
    const auto isBrowsers = [&] { return isNamed || liesInProfile(database, engineOf(&format)); };
    if (file.size() == 0 || (pages == 0 && !isBrowsers()))
        return {};
    return fmt::format("\"{}\" is the {} of a database that isn't there (\"{}\", {}): rows may lie "
                       "in its {}, and none is read without the database",
                       textOf(log), isJournal ? "journal" : "log of pages",
                       textOf(database.file.filename()), format.kind,
                       pages > 0 ? counted(pages, "page") : counted(file.size(), "byte"));
}

} // namespace nv
