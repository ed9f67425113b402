// Pages of 4096 bytes: 0 header, 1 maps (which pages a table has, one row each), 2 the definition
// of the list of tables, then for each table its definition, its rows and its long texts.
//   header   = 00 01 00 00 "Standard Jet DB\0" version:u32@14 settings[128]@18    enciphered: RC4
//   map      = 00 first:u32 pages[512 bits] | 01 page[16]:u32
//   longText = length:u32 reference:u32 0:u32 text    the length's high bits say where the text is
// A reference is row:u8 page:u24.

#include "support/builders/Jet4.h"

#include "support/builders/Jet4Rows.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <stdexcept>
#include <utility>

namespace nv::test {

namespace {

constexpr std::size_t kMapsPage = 1;
constexpr std::size_t kFirstFreePage = 2;
constexpr std::size_t kMostPages = 500;
constexpr std::uint32_t kLongTextOwner = 0x4C41564C; // "LVAL"
constexpr std::uint32_t kTextHere = 0x80000000;
constexpr std::uint32_t kTextInOneRow = 0x40000000;
constexpr std::size_t kShortText = 64;
constexpr std::size_t kPieceOfText = 4000;
constexpr std::uint16_t kReferredTo = 0x8000;
constexpr std::uint16_t kReference = 0x4000;
constexpr std::uint16_t kDeleted = 0xC000;

std::string u32(std::uint32_t number) {
    std::string bytes;
    for (int shift = 0; shift < 32; shift += 8)
        bytes.push_back(static_cast<char>(number >> shift & 0xFF));
    return bytes;
}

std::uint32_t reference(std::size_t page, std::size_t row) {
    return static_cast<std::uint32_t>(page << 8 | row);
}

/// The header's settings are enciphered with a key that every file has.
void encipher(std::string &bytes, std::size_t begin, std::size_t count) {
    constexpr std::array<std::uint8_t, 4> kKey = {0xC7, 0xDA, 0x39, 0x6B};
    std::array<std::uint8_t, 256> state{};
    std::iota(state.begin(), state.end(), std::uint8_t{0});
    std::uint8_t j = 0;
    for (std::size_t i = 0; i < state.size(); ++i) {
        j = static_cast<std::uint8_t>(j + state[i] + kKey[i % kKey.size()]);
        std::swap(state[i], state[j]);
    }
    std::uint8_t i = 0;
    j = 0;
    for (std::size_t at = begin; at < begin + count; ++at) {
        ++i;
        j = static_cast<std::uint8_t>(j + state[i]);
        std::swap(state[i], state[j]);
        const auto key = state[static_cast<std::uint8_t>(state[i] + state[j])];
        bytes[at] = static_cast<char>(static_cast<std::uint8_t>(bytes[at]) ^ key);
    }
}

std::string headerPage() {
    std::string page(Jet4::kPage, '\0');
    page.replace(0, 4, std::string("\0\1\0\0", 4));
    page.replace(4, 15, "Standard Jet DB");
    page.replace(0x14, 4, u32(1));
    page.replace(0x3C, 2, std::string("\xE4\x04", 2)); // code page 1252
    page.replace(0x6E, 2, std::string("\x09\x04", 2)); // sort order: English
    encipher(page, 0x18, 128);
    return page;
}

std::string pagesMap(const std::vector<std::size_t> &pages) {
    std::string map(69, '\0');
    for (const std::size_t page : pages)
        map[5 + page / 8] = static_cast<char>(map[5 + page / 8] | 1 << page % 8);
    return map;
}

const std::vector<JetColumn> &catalogueColumns() {
    static const std::vector<JetColumn> columns = {{"Id", JetType::longInteger},
                                                   {"Name", JetType::text},
                                                   {"Type", JetType::shortInteger},
                                                   {"Flags", JetType::longInteger},
                                                   {"LvProp", JetType::binary}};
    return columns;
}

} // namespace

/// The pages of one file, as they are made.
class Jet4Pages {
  public:
    Jet4Pages() { m_pages.resize(kFirstFreePage); }

    void addTable(const Jet4::Table &table, bool isSystem) {
        table.definition = newPage();
        table.pages.clear();
        m_long.clear();
        for (const Jet4::Row &row : table.rows)
            addRow(table, row);
        const std::size_t pages =
            m_maps.add(table.hasLongList ? longList(table.pages) : pagesMap(table.pages));
        const std::size_t free = m_maps.add(pagesMap({}));
        const auto kept = static_cast<std::size_t>(
            std::count_if(table.rows.begin(), table.rows.end(),
                          [](const Jet4::Row &row) { return row.place != JetPlace::deleted; }));
        m_pages[table.definition] = jetDefinition(table.columns, kept, reference(kMapsPage, pages),
                                                  reference(kMapsPage, free), isSystem);
    }
    std::string bytes() {
        m_pages[0] = headerPage();
        m_pages[kMapsPage] = m_maps.bytes();
        std::string file;
        for (std::string &page : m_pages) {
            page.resize(Jet4::kPage, '\0');
            file += page;
        }
        return file;
    }

  private:
    std::size_t newPage() {
        if (m_pages.size() == kMostPages)
            throw std::length_error("the file has too many pages");
        m_pages.emplace_back();
        return m_pages.size() - 1;
    }

    /// A page of bits of its own, and the list that names it.
    std::string longList(const std::vector<std::size_t> &pages) {
        const std::size_t map = newPage();
        m_pages[map] = std::string("\x05\x01\0\0", 4) + pagesMap(pages).substr(5);
        return '\1' + u32(static_cast<std::uint32_t>(map)) + std::string(64, '\0');
    }

    void addRow(const Jet4::Table &table, const Jet4::Row &row) {
        const std::string bytes = jetRow(table.columns, row.values,
                                         [this](const std::string &text) { return keep(text); });
        if (row.place != JetPlace::elsewhere) {
            addTo(table, bytes, row.place == JetPlace::deleted ? kDeleted : 0);
            return;
        }
        const std::size_t target = addTo(table, bytes, kReferredTo);
        addTo(table, u32(static_cast<std::uint32_t>(target)), kReference);
    }

    /// Returns the reference to the row.
    std::size_t addTo(const Jet4::Table &table, const std::string &row, std::uint16_t flags) {
        const auto owner = static_cast<std::uint32_t>(table.definition);
        if (table.pages.empty() || !m_rows.hasRoom(row.size())) {
            table.pages.push_back(newPage());
            m_rows = JetRowPage(owner);
        }
        const std::size_t number = m_rows.add(row, flags);
        m_pages[table.pages.back()] = m_rows.bytes();
        return reference(table.pages.back(), number);
    }

    /// The field of a long text, whose bytes go to a page of their own when they are many.
    std::string keep(const std::string &text) {
        const auto length = static_cast<std::uint32_t>(text.size());
        if (text.size() <= kShortText)
            return u32(length | kTextHere) + u32(0) + u32(0) + text;
        if (text.size() <= kPieceOfText)
            return u32(length | kTextInOneRow) + u32(keepPiece(text)) + u32(0);
        std::uint32_t next = 0; // the last piece comes first: each refers to the one after it
        for (std::size_t end = text.size(); end > 0;) {
            const std::size_t begin = (end - 1) / kPieceOfText * kPieceOfText;
            next = keepPiece(u32(next) + text.substr(begin, end - begin));
            end = begin;
        }
        return u32(length) + u32(next) + u32(0);
    }

    std::uint32_t keepPiece(const std::string &piece) {
        if (m_long.empty() || !m_long.back().second.hasRoom(piece.size()))
            m_long.emplace_back(newPage(), JetRowPage(kLongTextOwner));
        auto &[page, rows] = m_long.back();
        const std::size_t number = rows.add(piece);
        m_pages[page] = rows.bytes();
        return reference(page, number);
    }

    std::vector<std::string> m_pages;
    JetRowPage m_maps = JetRowPage(0);
    JetRowPage m_rows = JetRowPage(0); ///< the last page of rows of the table in hand
    std::vector<std::pair<std::size_t, JetRowPage>> m_long;
};

Jet4::Jet4() = default;

Jet4 &Jet4::table(std::string_view name, std::vector<JetColumn> columns) {
    m_tables.push_back({std::string(name), std::move(columns), {}, false, 0, {}});
    return *this;
}

Jet4 &Jet4::longList() {
    m_tables.back().hasLongList = true;
    return *this;
}

Jet4 &Jet4::row(std::vector<JetValue> values, JetPlace place) {
    m_tables.back().rows.push_back({std::move(values), place});
    return *this;
}

std::string Jet4::bytes() const {
    // The list of tables comes first: all is made once to learn which pages it has to name.
    Table list{"MSysObjects", catalogueColumns(), {}, false, 0, {}};
    const auto entry = [](const std::string &name, std::size_t page, std::int32_t flags) {
        return Row{{static_cast<std::int32_t>(page), name, std::int32_t{1}, flags, {}}, {}};
    };
    list.rows.push_back(entry(list.name, kFirstFreePage, std::int32_t{-0x7FFFFFFF - 1}));
    for (const Table &table : m_tables)
        list.rows.push_back(entry(table.name, 0, 0));
    Jet4Pages trial;
    trial.addTable(list, true);
    for (std::size_t i = 0; i < m_tables.size(); ++i) {
        trial.addTable(m_tables[i], false);
        list.rows[i + 1] = entry(m_tables[i].name, m_tables[i].definition, 0);
    }
    Jet4Pages pages;
    pages.addTable(list, true);
    for (const Table &table : m_tables)
        pages.addTable(table, false);
    return pages.bytes();
}

const Jet4::Table &Jet4::tableNamed(std::string_view name) const {
    const auto found = std::find_if(m_tables.begin(), m_tables.end(),
                                    [name](const Table &table) { return table.name == name; });
    return found == m_tables.end() ? throw std::out_of_range("no such table") : *found;
}

std::size_t Jet4::definitionPage(std::string_view table) const {
    return tableNamed(table).definition;
}

std::vector<std::size_t> Jet4::rowPages(std::string_view table) const {
    return tableNamed(table).pages;
}

} // namespace nv::test
