// The head of an SQLite file, numbers big-endian:
//   head = "SQLite format 3\0" page size:u16@10 user version:u32@3C kind of the first page:u8@64
// The first page holds the schema, or the way to it. Pages that were written last may still lie in
// the log beside the file, the first one among them.

#include "readers/sqlite/SchemaHead.h"

#include "db/sql/SideFiles.h"
#include "readers/sqlite/FileHead.h"

namespace nv {

namespace {

namespace fs = std::filesystem;

constexpr std::uint64_t kUserVersionAt = 0x3C;
constexpr std::uint64_t kKindAt = 0x64;
constexpr std::uint8_t kLeafOfTable = 0x0D;
/// A log of a file whose own first page says nothing of tables begins with them.
constexpr std::uint64_t kLongestLog = std::uint64_t{1} << 20;

/// The first page when it holds all of the schema, otherwise nothing.
std::optional<ByteView> schemaPage(ByteView head) {
    const auto size = sqlitePageSize(head);
    if (!size || !head.has(kKindAt, 1) || head.u8(kKindAt) != kLeafOfTable)
        return std::nullopt;
    return head.has(0, *size) ? std::optional(head.sub(0, *size)) : std::nullopt;
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
