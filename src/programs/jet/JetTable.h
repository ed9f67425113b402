#pragma once

#include "programs/jet/JetFile.h"

#include <functional>

namespace nv::jet {

/// One table, read row by row in the order of its pages.
class JetTable {
  public:
    /// The table that the file lists under the name, compared without regard to case. Throws
    /// JetFailure when there is none.
    static JetTable named(const JetFile &file, std::string_view name);

    /// How many rows the table's definition counts.
    std::uint64_t rowsCounted() const { return m_rowsCounted; }
    /// The column's place in Row::fields; nothing when there is none of that name.
    std::optional<std::size_t> column(std::string_view name) const;
    /// One of the library's MDB_... types.
    int typeOf(std::size_t column) const { return columnAt(column).col_type; }

    /// Hands on all rows that are not deleted, also those that can't be read, with the damage.
    void eachRow(const std::function<void(const Row &row)> &take);
    /// Rows that eachRow() met whose entry says that they are deleted while they have bytes.
    std::uint64_t deletedRows() const;
    /// Of the rows that eachRow() met: those on pages that the table's list of pages lacks. They
    /// are looked for when rows are missing.
    std::uint64_t unlistedRows() const { return m_unlisted; }

  private:
    struct Slot {
        int start = 0; ///< offset on the page, without flags
        std::size_t length = 0;
        bool isDeleted = false;
        bool isElsewhere = false; ///< it holds the reference to its row
    };
    struct Free {
        void operator()(MdbTableDef *table) const { mdb_free_tabledef(table); }
    };

    JetTable(const JetFile &file, std::uint32_t definitionPage);
    MdbColumn &columnAt(std::size_t index) const;
    void readPage(std::uint32_t page, const std::function<void(const Row &row)> &take);
    std::optional<Slot> slotAt(int row) const;
    Row read(const Slot &slot);
    Row readElsewhere(const Slot &slot);
    void crack(const Slot &slot, Row &row);

    const JetFile &m_file;
    std::unique_ptr<MdbCatalogEntry> m_entry; ///< what the library knows of the table beforehand
    std::unique_ptr<MdbTableDef, Free> m_table;
    std::uint64_t m_rowsCounted = 0;
    std::uint64_t m_unlisted = 0;
    std::uint64_t m_deleted = 0;
    std::uint64_t m_referredTo = 0; ///< of them, those that rows of other pages refer to
    std::vector<MdbField> m_fields;
};

} // namespace nv::jet
