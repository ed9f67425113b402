// The schema of an SQLite file is a table itself; its tree begins on page 1, numbers big-endian:
//   file     = "SQLite format 3\0" page size:u16@10 ...
//   page     = kind:u8 free:u16 cells:u16 content:u16 fragments:u8 [last:u32] cell at:u16{cells}
//   inner 05 = cell: child:u32 rowid:varint; last is a child too
//   leaf 0D  = cell: size:varint rowid:varint Record
//   Record   = size of head:varint kind of value:varint{} value{}; the first two are type and name
// Page 1 has the file's head before its own. Pages that were written last may still lie in the log
// beside the file, behind frames' heads; what is looked for in them is "CREATE TABLE name".

#include "readers/sqlite/SchemaTables.h"

#include "base/NoLog.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "db/SideFiles.h"
#include "readers/sqlite/FileHead.h"

#include <algorithm>
#include <optional>
#include <vector>

namespace nv {

namespace {

namespace fs = std::filesystem;

constexpr std::uint64_t kFileHead = 100;
constexpr std::uint8_t kInner = 0x05;
constexpr std::uint8_t kLeaf = 0x0D;
/// The schemas of browsers take 3 to 20 pages.
constexpr std::size_t kMostPages = 400;
constexpr std::uint64_t kLongestLog = std::uint64_t{16} << 20;
constexpr std::size_t kLongestName = 200;

/// Reads a number of variable length and moves `at` past it.
std::uint64_t varint(ByteView bytes, std::uint64_t &at) {
    std::uint64_t number = 0;
    for (int i = 0; i < 8; ++i) {
        const std::uint8_t byte = bytes.u8(at++);
        number = number << 7 | (byte & 0x7FU);
        if (byte < 0x80U)
            return number;
    }
    return number << 8 | bytes.u8(at++);
}

/// The length of a value of this kind; nothing where no text is.
std::optional<std::uint64_t> lengthOfText(std::uint64_t kind) {
    constexpr std::uint64_t kFirstText = 13;
    if (kind < kFirstText || kind % 2 == 0)
        return std::nullopt;
    return (kind - kFirstText) / 2;
}

/// The name when the record is that of a table.
std::string tableOf(ByteView cell) {
    std::uint64_t at = 0;
    varint(cell, at); // size
    varint(cell, at); // rowid
    const std::uint64_t head = at;
    const std::uint64_t values = head + varint(cell, at);
    const auto type = lengthOfText(varint(cell, at));
    const auto name = lengthOfText(varint(cell, at));
    if (!type || !name || *name > kLongestName || cell.sub(values, *type).raw() != "table")
        return {};
    return toLower(cell.sub(values + *type, *name).raw());
}

/// A walk through the pages of the schema. Damage ends a page's reading, never the walk.
class SchemaWalk {
  public:
    SchemaWalk(const EvidenceFile &file, std::uint64_t pageSize)
        : m_file(file), m_pageSize(pageSize) {}

    std::set<std::string> tables() {
        m_next = {1};
        for (std::size_t i = 0; i < m_next.size() && i < kMostPages; ++i)
            page(m_next[i]);
        return std::move(m_tables);
    }

  private:
    void page(std::uint64_t number) {
        if (number == 0 || number > m_file.size() / m_pageSize + 1)
            return;
        const Bytes bytes = m_file.read((number - 1) * m_pageSize, m_pageSize);
        NoLog unheard; // what a damaged page has told so far stands; its reader tells of damage
        trapped(unheard, Severity::Low, {}, {},
                [&] { cells(ByteView(bytes), number == 1 ? kFileHead : 0); });
    }

    void cells(ByteView page, std::uint64_t head) {
        const std::uint8_t kind = page.u8(head);
        if (kind != kInner && kind != kLeaf)
            return;
        const std::uint64_t count = bigEndian(page.sub(head + 3, 2));
        const std::uint64_t places = head + (kind == kInner ? 12 : 8);
        for (std::uint64_t i = 0; i < count; ++i)
            cell(page.from(bigEndian(page.sub(places + 2 * i, 2))), kind);
        if (kind == kInner)
            follow(bigEndian(page.sub(head + 8, 4)));
    }

    void cell(ByteView cell, std::uint8_t kind) {
        if (kind == kInner)
            follow(bigEndian(cell.sub(0, 4)));
        else if (std::string name = tableOf(cell); !name.empty())
            m_tables.insert(std::move(name));
    }

    void follow(std::uint64_t page) {
        if (m_next.size() < kMostPages && std::ranges::find(m_next, page) == m_next.end())
            m_next.push_back(page);
    }

    const EvidenceFile &m_file;
    std::uint64_t m_pageSize;
    std::vector<std::uint64_t> m_next;
    std::set<std::string> m_tables;
};

bool isOfName(char c) {
    return c == '_' || (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

void addTablesOfLog(const Candidate &file, std::set<std::string> &tables) {
    const fs::path log = sideFile(file.file, kLogSuffix);
    if (!file.evidence->isPlainFile(log))
        return;
    constexpr std::string_view kMark = "CREATE TABLE ";
    const Bytes pages = file.evidence->head(log, kLongestLog);
    const std::string_view bytes = ByteView(pages).raw();
    for (std::size_t at = bytes.find(kMark); at != std::string_view::npos;
         at = bytes.find(kMark, at + 1)) {
        std::string_view name = bytes.substr(at + kMark.size(), kLongestName);
        if (!name.empty() && !isOfName(name.front()))
            name.remove_prefix(1); // a quote of any form
        name = name.substr(
            0, static_cast<std::size_t>(std::ranges::find_if_not(name, isOfName) - name.begin()));
        if (!name.empty())
            tables.insert(toLower(name));
    }
}

} // namespace

std::set<std::string> schemaTables(const Candidate &file) {
    const auto size = sqlitePageSize(file.head);
    if (!size)
        return {};
    constexpr std::uint64_t kSmallestPage = 512;
    std::set<std::string> tables;
    if (*size >= kSmallestPage)
        tables = SchemaWalk(file.evidence->open(file.file), *size).tables();
    addTablesOfLog(file, tables);
    return tables;
}

bool hasTables(const Candidate &file, std::initializer_list<std::string_view> tables) {
    if (!file.verifySignatures)
        return true;
    const std::set<std::string> there = schemaTables(file);
    return std::ranges::all_of(
        tables, [&](std::string_view name) { return there.contains(std::string(name)); });
}

} // namespace nv
