// The schema of an SQLite file is a table itself; its tree begins on page 1, numbers big-endian:
//   file     = "SQLite format 3\0" page size:u16@10 ...
//   page     = kind:u8 free:u16 cells:u16 content:u16 fragments:u8 [last:u32] cell at:u16{cells}
//   inner 05 = cell: child:u32 rowid:varint; last is a child too
//   leaf 0D  = cell: size:varint rowid:varint Record
//   Record   = size of head:varint kind of value:varint{} value{}; the first two are type and name
// Page 1 has the file's head before its own. Pages that were written last may still lie in the log
// beside the file, behind frames' heads; what is looked for in them is "CREATE TABLE name".

#include "readers/sqlite/SchemaTables.h"

#include "base/Files.h"
#include "base/NoLog.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "db/sql/SideFiles.h"
#include "readers/sqlite/FileHead.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>
#include <string_view>
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

/// Type and name of what a record of the schema stands for.
struct SchemaRecord {
    std::string_view type;
    std::string_view name;
};

/// Nothing when no record of a schema is there.
std::optional<SchemaRecord> recordIn(ByteView cell) {
    std::uint64_t at = 0;
    const std::uint64_t size = varint(cell, at);
    varint(cell, at); // rowid
    const std::uint64_t head = at;
    const std::uint64_t values = head + varint(cell, at);
    const auto type = lengthOfText(varint(cell, at));
    const auto name = lengthOfText(varint(cell, at));
    if (!type || !name)
        return std::nullopt;
    if (*name > kLongestName || (!cell.has(values, *type + *name) && size > cell.size()))
        return SchemaRecord{}; // of no browser; the rest may lie on other pages
    return SchemaRecord{cell.sub(values, *type).raw(), cell.sub(values + *type, *name).raw()};
}

/// A walk through the pages of the schema. Damage ends a page's reading, never the walk; where it
/// was met first is kept.
class SchemaWalk {
  public:
    SchemaWalk(const EvidenceFile &file, std::uint64_t pageSize)
        : m_file(file), m_pageSize(pageSize) {}

    void run() {
        m_next = {1};
        for (std::size_t i = 0; i < m_next.size() && i < kMostPages; ++i)
            page(m_next[i]);
    }
    const std::set<std::string> &tables() const { return m_tables; }
    /// Empty when the whole schema could be read.
    const std::string &damage() const { return m_damage; }

  private:
    void page(std::uint64_t number) {
        if (number == 0 || number > m_file.size() / m_pageSize + 1)
            return note(number, "isn't in the file");
        const Bytes bytes = m_file.read((number - 1) * m_pageSize, m_pageSize);
        if (bytes.size() < m_pageSize)
            note(number, "isn't whole");
        NoLog unheard; // what a damaged page has told so far stands
        const bool isSound = trapped(unheard, Severity::Low, {}, {}, false, [&] {
            return cells(ByteView(bytes), number == 1 ? kFileHead : 0);
        });
        if (!isSound)
            note(number, "is damaged");
    }

    void note(std::uint64_t page, std::string_view what) {
        if (m_damage.empty())
            m_damage = fmt::format("page {} of {} bytes {}", page, m_pageSize, what);
    }

    /// Whether all of them are what a schema holds.
    bool cells(ByteView page, std::uint64_t head) {
        const std::uint8_t kind = page.u8(head);
        if (kind != kInner && kind != kLeaf)
            return false;
        const std::uint64_t count = bigEndian(page.sub(head + 3, 2));
        const std::uint64_t places = head + (kind == kInner ? 12 : 8);
        bool areSound = true;
        for (std::uint64_t i = 0; i < count; ++i) {
            const ByteView cell = page.from(bigEndian(page.sub(places + 2 * i, 2)));
            if (kind == kInner)
                follow(bigEndian(cell.sub(0, 4)));
            else
                areSound = take(cell) && areSound;
        }
        if (kind == kInner)
            follow(bigEndian(page.sub(head + 8, 4)));
        return areSound;
    }

    bool take(ByteView cell) {
        const auto record = recordIn(cell);
        if (record && record->type == "table" && !record->name.empty())
            m_tables.insert(toLower(record->name));
        return record.has_value();
    }

    void follow(std::uint64_t page) {
        if (m_next.size() < kMostPages && std::ranges::find(m_next, page) == m_next.end())
            m_next.push_back(page);
    }

    const EvidenceFile &m_file;
    std::uint64_t m_pageSize;
    std::vector<std::uint64_t> m_next;
    std::set<std::string> m_tables;
    std::string m_damage;
};

constexpr std::uint64_t kSmallestPage = 512;

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
    std::set<std::string> tables;
    if (*size >= kSmallestPage) {
        const EvidenceFile pages = file.evidence->open(file.file);
        SchemaWalk walk(pages, *size);
        walk.run();
        tables = walk.tables();
    }
    addTablesOfLog(file, tables);
    return tables;
}

std::string schemaDamage(const Candidate &file) {
    if (!beginsAsSqlite(file.head))
        return {};
    const auto size = sqlitePageSize(file.head);
    std::string what = "its head holds no size of pages";
    if (size && *size >= kSmallestPage) {
        const EvidenceFile pages = file.evidence->open(file.file);
        SchemaWalk walk(pages, *size);
        walk.run();
        what = walk.damage();
    }
    return what.empty() ? what
                        : fmt::format("\"{}\" is damaged or cut short: its tables can't be listed, "
                                      "since {}",
                                      textOf(file.file), what);
}

bool hasTables(const Candidate &file, std::initializer_list<std::string_view> tables) {
    if (!file.verifySignatures)
        return true;
    const std::set<std::string> there = schemaTables(file);
    return std::ranges::all_of(
        tables, [&](std::string_view name) { return there.contains(std::string(name)); });
}

} // namespace nv
