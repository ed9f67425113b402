#pragma once

#include "readers/Evidence.h"
#include "readers/sqlite/EvidenceDatabase.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <variant>

namespace nv {

/// A cell of an SQLite file.
struct CellName {
    std::string table;
    std::int64_t rowId = 0;
    std::string column; ///< "rowid" for the number of the row itself
};

/// A value of a cell: null, numbers, or the bytes of a text or blob.
using CellValue = std::variant<std::monostate, std::int64_t, double, std::string>;

/// Where a cell lies.
struct CellBytes {
    std::filesystem::path file; ///< the SQLite file, or the log beside it ("-wal")
    std::uint64_t offset = 0;   ///< of its first byte in that file
    std::uint64_t length = 0;   ///< of those that lie together: long values go on in other pages
};

/// Finds cells in the bytes of an SQLite file of the evidence. A value that has no bytes of its own
/// (null, 0, 1) lies in the head of its row, where its kind stands.
class CellFinder {
  public:
    /// `evidence` must outlive this. Throws EvidenceFailure.
    CellFinder(const Evidence &evidence, const std::filesystem::path &file);
    ~CellFinder();
    CellFinder(const CellFinder &) = delete;
    CellFinder &operator=(const CellFinder &) = delete;

    /// `database` is a copy of the file, and `value` what it has in the cell. Nothing where those
    /// bytes aren't found: of tables without numbers of rows, of texts in UTF-16, of rows that only
    /// a journal has. Throws EvidenceFailure and what SQLite says.
    std::optional<CellBytes> find(EvidenceDatabase &database, const CellName &cell,
                                  const CellValue &value) const;

  private:
    struct Files;
    std::unique_ptr<Files> m_files;
};

} // namespace nv
