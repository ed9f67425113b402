// The head of an SQLite file, numbers big-endian:
//   head = "SQLite format 3\0" page size:u16@10 user version:u32@3C kind of the first page:u8@64
// The first page holds the schema, or the way to it. Pages that were written last may still lie in
// the log beside the file, the first one among them.

#include "readers/sqlite/SchemaHead.h"

#include "db/SideFiles.h"

namespace nv {

namespace {

namespace fs = std::filesystem;
using namespace std::string_view_literals;

constexpr std::string_view kMagic = "SQLite format 3\0"sv;
constexpr std::uint64_t kPageSizeAt = 0x10;
constexpr std::uint64_t kUserVersionAt = 0x3C;
constexpr std::uint64_t kKindAt = 0x64;
constexpr std::uint8_t kLeafOfTable = 0x0D;
constexpr std::uint64_t kLargestPage = 65536;
/// A log of a file whose own first page says nothing of tables begins with them.
constexpr std::uint64_t kLongestLog = std::uint64_t{1} << 20;

std::uint64_t bigEndian(ByteView bytes) {
    std::uint64_t number = 0;
    for (std::uint64_t at = 0; at < bytes.size(); ++at)
        number = number << 8 | bytes.u8(at);
    return number;
}

/// The first page when it holds all of the schema, otherwise nothing.
std::optional<ByteView> schemaPage(ByteView head) {
    if (!head.raw().starts_with(kMagic) || !head.has(kKindAt, 1) ||
        head.u8(kKindAt) != kLeafOfTable)
        return std::nullopt;
    const std::uint64_t stored = bigEndian(head.sub(kPageSizeAt, 2));
    const std::uint64_t size = stored == 1 ? kLargestPage : stored; // 65536 has no room of its own
    return head.has(0, size) ? std::optional(head.sub(0, size)) : std::nullopt;
}

} // namespace

std::optional<SchemaHead> schemaHead(const Candidate &file) {
    const auto page = schemaPage(file.head);
    if (!page)
        return std::nullopt;
    SchemaHead schema{std::string(page->raw()),
                      static_cast<std::uint32_t>(bigEndian(page->sub(kUserVersionAt, 4)))};
    const fs::path log = sideFile(file.file, kLogSuffix);
    if (!file.evidence->isPlainFile(log))
        return schema;
    if (file.evidence->factsOf(log).size > kLongestLog)
        return std::nullopt;
    const Bytes pages = file.evidence->head(log, kLongestLog);
    schema.bytes += ByteView(pages).raw();
    return schema;
}

} // namespace nv
