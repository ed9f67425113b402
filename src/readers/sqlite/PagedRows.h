#pragma once

#include "base/ByteView.h"
#include "readers/ByteSource.h"
#include "readers/sqlite/PagedValues.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace nv {

/// A row that was deleted: in a page that the file has freed, or in free space of one in use.
struct FreedRow {
    struct Value {
        std::int64_t number = 0; ///< of a whole number
        std::string bytes;       ///< of a text or blob
    };
    std::uint64_t page = 0;
    std::int64_t rowId = 0; ///< 0 where that was overwritten
    bool goesOn = false;    ///< in further pages, which may have been written over since
    std::vector<Value> values;
};

/// Single rows of an SQLite file, by its pages as they lie: for a row out of thousands, where a
/// copy of the file would be made for each. What still lies in a journal or log beside the file
/// isn't seen, so that a caller has to check what it gets. Numbers are big-endian.
///   page        = kind:u8 free:u16 cells:u16 content:u16 fragments:u8 [last:u32] at:u16{cells}
///   inner table = 05: child:u32 rowid:varint        leaf table = 0D: size:varint rowid:varint row
///   inner index = 02: child:u32 size:varint row     leaf index = 0A: size:varint row
///   row         = size of head:varint kind:varint{} value{}     its end may lie in further pages
class PagedRows {
  public:
    /// The file must outlive this. Throws FileFailure.
    explicit PagedRows(const ByteSource &file);

    /// First page of the table or index of that name; 0 when there is none.
    std::uint64_t rootOf(std::string_view name) const;

    /// The numbers in the rows of an index whose first number is `first`, in their order. At most
    /// `most` rows.
    std::vector<std::vector<std::int64_t>> indexRows(std::uint64_t root, std::int64_t first,
                                                     std::size_t most) const;

    /// How long the bytes of a column are, by the head of the row; 0 when the row isn't there.
    std::uint64_t columnSize(std::uint64_t root, std::int64_t rowId, std::size_t column) const;

    bool hasRow(std::uint64_t root, std::int64_t rowId) const;

    /// Where a value lies in its row's own page.
    struct ValuePlace {
        std::uint64_t kind = 0; ///< as the row's head has it
        std::uint64_t at = 0;   ///< of its first byte in the file; the kind's where it has none
        std::uint64_t size = 0; ///< bytes, or those of the kind; what goes on in other pages not
    };
    /// Of a column (from 0). Nothing where the row isn't there, or ends before.
    std::optional<ValuePlace> placeOf(std::uint64_t root, std::int64_t rowId,
                                      std::size_t column) const;
    /// Of the row's number, whose kind is 0.
    std::optional<ValuePlace> placeOfRowId(std::uint64_t root, std::int64_t rowId) const;

    using Write = std::function<void(std::string_view bytes)>;
    /// Hands on the bytes of a column (from 0) of the row. False when the row isn't there, or isn't
    /// whole: then some of the bytes may have been handed on.
    bool writeColumn(std::uint64_t root, std::int64_t rowId, std::size_t column,
                     const Write &write) const;

    /// Rows of so many columns that are whole in freed pages, or go on in others, which may have
    /// been written over since: page by page in the order of their freeing.
    void freedRows(std::size_t columns, const std::function<void(const FreedRow &row)> &take) const;

    /// Rows that lie in free space of the table's pages. `columns` has a letter for each: 'n' the
    /// one that is the row's number, 'i' a whole number, 't' a text, 'b' bytes or nothing. Bytes
    /// that read as such a row by chance can't be told from one: the caller looks at the values.
    void deletedRows(std::uint64_t root, std::string_view columns,
                     const std::function<void(const FreedRow &row)> &take) const;

  private:
    struct Page {
        Bytes bytes;
        std::uint64_t at = 0; ///< in the file
        std::uint8_t kind = 0;
        std::uint64_t count = 0;
        std::uint64_t cells = 0; ///< where their places stand
        std::uint64_t last = 0;  ///< the last child of an inner page
    };
    /// A row's bytes in its own page, and where they go on.
    struct Payload {
        std::uint64_t size = 0;
        ByteView local;
        std::uint64_t next = 0; ///< page; 0 when all are local
        ByteView id = {};       ///< the row's number, where it was looked for by that
    };

    /// A cell of a table's page: of a leaf its row, of an inner page the number of a child.
    struct RowCell {
        ByteView bytes;
        std::uint64_t idAt = 0; ///< of the row's number
        std::uint64_t at = 0;   ///< of the row's own bytes
        std::uint64_t size = 0; ///< of the row
        std::int64_t rowId = 0;
    };

    /// Where a row that was deleted may have its first kind.
    struct DeletedPlace {
        std::uint64_t page = 0;
        ByteView space;
        std::uint64_t at = 0; ///< not 0
        std::string_view columns;
    };

    std::optional<Page> page(std::uint64_t number) const;
    /// The first cell for that row or a later one.
    std::optional<RowCell> cellFrom(const Page &page, std::int64_t rowId) const;
    /// The numbers of an index's row.
    std::vector<std::int64_t> numbersIn(ByteView cell, bool isInner) const;
    std::optional<ByteView> cell(const Page &page, std::uint64_t i) const;
    std::optional<Payload> payload(ByteView cell, std::uint64_t at, std::uint64_t size,
                                   bool isIndex) const;
    void walkIndex(std::uint64_t number, std::int64_t first, std::size_t most, int depth,
                   std::vector<std::vector<std::int64_t>> &rows) const;
    std::vector<std::uint64_t> childrenOf(const Page &page) const;
    /// First page of the table or index of that name, as a leaf page of the schema tells; or 0.
    std::uint64_t rootIn(const Page &page, std::string_view name) const;
    /// Hands on the row of that id, as far as its own page has it. False when it isn't there.
    bool atRow(std::uint64_t root, std::int64_t rowId,
               const std::function<bool(const Payload &row)> &take) const;
    void takeFreed(std::uint64_t number, std::size_t columns, std::uint64_t &bytesLeft,
                   const std::function<void(const FreedRow &row)> &take) const;
    static std::optional<std::pair<std::uint64_t, std::uint64_t>> bytesIn(const Payload &row,
                                                                          std::size_t column);
    /// From where to where.
    std::vector<std::pair<std::uint64_t, std::uint64_t>> freeSpaceOf(const Page &page) const;
    /// Where the row's last byte stands in the space; nothing when none begins there.
    std::optional<std::uint64_t>
    takeDeleted(const DeletedPlace &place, std::uint64_t &bytesLeft,
                const std::function<void(const FreedRow &row)> &take) const;
    void fill(FreedRow &freed, const Payload &row, const std::vector<paged::Value> &values) const;
    bool writeRest(const Payload &row, std::uint64_t from, std::uint64_t size,
                   const Write &write) const;

    const ByteSource &m_file;
    std::uint64_t m_pageSize = 0;
    std::uint64_t m_usable = 0; ///< of a page
};

} // namespace nv
