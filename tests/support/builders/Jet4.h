#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace nv::test {

/// The types that are made, by the number that the file keeps.
enum class JetType : std::uint8_t {
    boolean = 1,
    shortInteger = 3,
    longInteger = 4,
    dateTime = 8,
    text = 10,
    binary = 11,
    memo = 12,
};

struct JetColumn {
    std::string name;
    JetType type = JetType::text;
};

/// Null, bool, integer, days since 1899-12-30, text in UTF-8.
using JetValue = std::variant<std::monostate, bool, std::int32_t, double, std::string>;

/// Where a row's bytes are.
enum class JetPlace {
    here,
    deleted,   ///< marked as deleted; its bytes stay
    elsewhere, ///< it outgrew its page: an entry there refers to another page
};

/// Makes a Jet 4 database without indexes: header, list of tables, definitions, rows, long texts.
/// Text that Latin-1 holds is packed to one byte a character, other text is UTF-16. A long text
/// stands in its row up to 64 bytes, else in a row of a page of its own, else in a chain of these.
class Jet4 {
  public:
    static constexpr std::size_t kPage = 4096;
    /// On a table's definition page: how many rows it has, u32.
    static constexpr std::size_t kRowCountAt = 16;
    /// On a page of rows: how many there are, u16; after it the rows' entries, u16 each.
    static constexpr std::size_t kPageRowsAt = 12;

    Jet4();
    Jet4 &table(std::string_view name, std::vector<JetColumn> columns);
    /// The last table lists its pages as large tables do, on a page of their own.
    Jet4 &longList();
    /// Adds to the last table; a value for each column.
    Jet4 &row(std::vector<JetValue> values, JetPlace place = JetPlace::here);

    /// At most 500 pages.
    std::string bytes() const;
    /// Where the last bytes() put things, by number of the page.
    std::size_t definitionPage(std::string_view table) const;
    std::vector<std::size_t> rowPages(std::string_view table) const;

  private:
    struct Row {
        std::vector<JetValue> values;
        JetPlace place = JetPlace::here;
    };
    struct Table {
        std::string name;
        std::vector<JetColumn> columns;
        std::vector<Row> rows;
        bool hasLongList = false;
        mutable std::size_t definition = 0;
        mutable std::vector<std::size_t> pages;
    };
    const Table &tableNamed(std::string_view name) const;

    std::vector<Table> m_tables;

    friend class Jet4Pages;
};

} // namespace nv::test
