// All numbers are little-endian.
//   row    = columns:u16 fixed var end:u16 offset[var]:u16 (last first) vars:u16 notNull[bits]
//   page   = 01 01 free:u16 owner:u32 0:u32 rows:u16 entry[rows]:u16 ... row[rows]
//   table  = 02 01 free:u16 next:u32 size:u32 ... rows:u32@16 ... kind:u8@40 columns:u16@41
//            vars:u16@43 columns:u16@45 indexes:u32@47 u32@51 pagesMap:u32@55 freeMap:u32@59
//            column[columns] (size:u16 name)[columns] FFFF
//   column = type:u8 0659:u32 number:u16 var:u16 number:u16 order:u32 flags:u8 packed:u8 0:u32
//            fixed:u16 size:u16

#include "support/builders/Jet4Rows.h"

#include <algorithm>
#include <bit>
#include <stdexcept>

namespace nv::test {

namespace {

constexpr std::size_t kEntriesAt = Jet4::kPageRowsAt + 2;
constexpr std::size_t kTextCharacters = 255;

template <class Number>
void add(std::string &bytes, Number number) {
    for (std::size_t i = 0; i < sizeof(Number); ++i)
        bytes.push_back(static_cast<char>(number >> (8 * i) & 0xFF));
}

template <class Number>
void put(std::string &bytes, std::size_t at, Number number) {
    std::string raw;
    add(raw, number);
    bytes.replace(at, raw.size(), raw);
}

/// Well-formed UTF-8 only: tests write their texts themselves.
std::vector<std::uint16_t> utf16(std::string_view utf8) {
    std::vector<std::uint16_t> units;
    for (std::size_t i = 0; i < utf8.size();) {
        const auto lead = static_cast<std::uint8_t>(utf8[i]);
        const std::size_t length = lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
        std::uint32_t point = length == 1 ? lead : lead & (0x7FU >> length);
        for (std::size_t k = 1; k < length; ++k)
            point = point << 6 | (static_cast<std::uint8_t>(utf8[i + k]) & 0x3FU);
        i += length;
        if (point >= 0x10000) {
            units.push_back(static_cast<std::uint16_t>(0xD7C0 + (point >> 10)));
            point = 0xDC00 + (point & 0x3FF);
        }
        units.push_back(static_cast<std::uint16_t>(point));
    }
    return units;
}

std::size_t widthOf(JetType type) {
    switch (type) {
    case JetType::boolean:
        return 0; // its value is the bit that says of others whether they are null
    case JetType::shortInteger:
        return 2;
    case JetType::longInteger:
        return 4;
    default:
        return 8;
    }
}

bool isNull(const JetValue &value) {
    const auto *truth = std::get_if<bool>(&value);
    return truth ? !*truth : std::holds_alternative<std::monostate>(value);
}

std::string fixedBytes(JetType type, const JetValue &value) {
    std::string bytes;
    if (const auto *number = std::get_if<std::int32_t>(&value))
        add(bytes, static_cast<std::uint32_t>(*number));
    if (const auto *days = std::get_if<double>(&value))
        add(bytes, std::bit_cast<std::uint64_t>(*days));
    bytes.resize(widthOf(type), '\0');
    return bytes;
}

std::uint16_t shortOf(std::size_t number) {
    if (number > 0xFFFF)
        throw std::length_error("a Jet page can't hold that");
    return static_cast<std::uint16_t>(number);
}

/// What a definition says of one column; `var` and `fixed` are where the next columns of each kind
/// begin.
std::string columnEntry(const JetColumn &column, std::size_t number, std::size_t &var,
                        std::size_t &fixed) {
    const bool hasText = column.type == JetType::text || column.type == JetType::memo;
    std::string bytes;
    add(bytes, static_cast<std::uint8_t>(column.type));
    add(bytes, std::uint32_t{0x659});
    add(bytes, shortOf(number));
    add(bytes, shortOf(var));
    add(bytes, shortOf(number));
    add(bytes, std::uint32_t{hasText ? 0x409U : 0U}); // sort order: English
    add(bytes, std::uint8_t{isFixed(column.type) ? std::uint8_t{3} : std::uint8_t{2}});
    add(bytes, std::uint8_t{hasText ? std::uint8_t{1} : std::uint8_t{0}});
    add(bytes, std::uint32_t{0});
    add(bytes, shortOf(isFixed(column.type) ? fixed : 0));
    add(bytes, shortOf(column.type == JetType::text      ? 2 * kTextCharacters
                       : column.type == JetType::boolean ? 1
                       : isFixed(column.type)            ? widthOf(column.type)
                                                         : 0));
    (isFixed(column.type) ? fixed : var) += isFixed(column.type) ? widthOf(column.type) : 1;
    return bytes;
}

} // namespace

bool isFixed(JetType type) {
    return type != JetType::text && type != JetType::memo && type != JetType::binary;
}

std::string jetText(std::string_view utf8) {
    const std::vector<std::uint16_t> units = utf16(utf8);
    const bool packs =
        std::all_of(units.begin(), units.end(), [](auto unit) { return unit > 0 && unit < 0x100; });
    std::string bytes = packs ? "\xFF\xFE" : "";
    for (const std::uint16_t unit : units)
        if (packs)
            bytes.push_back(static_cast<char>(unit));
        else
            add(bytes, unit);
    return bytes;
}

std::string jetRow(const std::vector<JetColumn> &columns, const std::vector<JetValue> &values,
                   const std::function<std::string(const std::string &)> &longText) {
    std::string row;
    std::string var;
    std::vector<std::size_t> offsets;
    std::string notNull((columns.size() + 7) / 8, '\0');
    add(row, shortOf(columns.size()));
    for (std::size_t i = 0; i < columns.size(); ++i) {
        const JetValue &value = values.at(i);
        if (!isNull(value))
            notNull[i / 8] = static_cast<char>(notNull[i / 8] | 1 << i % 8);
        if (isFixed(columns[i].type)) {
            row += fixedBytes(columns[i].type, value);
            continue;
        }
        offsets.push_back(var.size());
        if (const auto *text = std::get_if<std::string>(&value))
            var += columns[i].type == JetType::text ? jetText(*text) : longText(jetText(*text));
    }
    const std::size_t fixedEnd = row.size();
    row += var;
    add(row, shortOf(fixedEnd + var.size()));
    for (auto offset = offsets.rbegin(); offset != offsets.rend(); ++offset)
        add(row, shortOf(fixedEnd + *offset));
    add(row, shortOf(offsets.size()));
    return row + notNull;
}

std::string jetDefinition(const std::vector<JetColumn> &columns, std::size_t rows,
                          std::uint32_t pagesMap, std::uint32_t freeMap, bool isSystem) {
    std::string page("\x02\x01", 2);
    page.resize(63, '\0');
    const auto vars = std::count_if(columns.begin(), columns.end(),
                                    [](const JetColumn &column) { return !isFixed(column.type); });
    put(page, 12, std::uint32_t{0x659});
    put(page, Jet4::kRowCountAt, static_cast<std::uint32_t>(rows));
    page[40] = isSystem ? 'S' : 'N';
    put(page, 41, shortOf(columns.size()));
    put(page, 43, shortOf(static_cast<std::size_t>(vars)));
    put(page, 45, shortOf(columns.size()));
    put(page, 55, pagesMap);
    put(page, 59, freeMap);
    std::size_t var = 0;
    std::size_t fixed = 0;
    for (std::size_t i = 0; i < columns.size(); ++i)
        page += columnEntry(columns[i], i, var, fixed);
    for (const JetColumn &column : columns) {
        add(page, shortOf(2 * utf16(column.name).size()));
        for (const std::uint16_t unit : utf16(column.name))
            add(page, unit);
    }
    add(page, std::uint16_t{0xFFFF});
    put(page, 8, static_cast<std::uint32_t>(page.size() - 8));
    put(page, 2, shortOf(Jet4::kPage - page.size() - 8));
    return page;
}

JetRowPage::JetRowPage(std::uint32_t owner) : m_bytes(Jet4::kPage, '\0') {
    m_bytes.replace(0, 2, "\x01\x01");
    put(m_bytes, 2, shortOf(Jet4::kPage - kEntriesAt));
    put(m_bytes, 4, owner);
}

bool JetRowPage::hasRoom(std::size_t bytes) const {
    return kEntriesAt + 2 * (m_rows + 1) + bytes <= m_lowest;
}

std::size_t JetRowPage::add(std::string_view row, std::uint16_t flags) {
    if (!hasRoom(row.size()))
        throw std::length_error("the row is too long for its page");
    m_lowest -= row.size();
    m_bytes.replace(m_lowest, row.size(), row);
    put(m_bytes, kEntriesAt + 2 * m_rows, static_cast<std::uint16_t>(m_lowest | flags));
    ++m_rows;
    put(m_bytes, Jet4::kPageRowsAt, shortOf(m_rows));
    put(m_bytes, 2, shortOf(m_lowest - kEntriesAt - 2 * m_rows));
    return m_rows - 1;
}

} // namespace nv::test
