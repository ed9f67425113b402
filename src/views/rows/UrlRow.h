#pragma once

#include "db/hashes/FoundHashSets.h"
#include "db/marks/RecordTags.h"
#include "db/schema/Ids.h"
#include "time/Date.h"
#include "views/rows/UrlColumns.h"

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <variant>
#include <vector>

namespace SQLite {
class Column;
class Database;
class Statement;
} // namespace SQLite

namespace nv {

/// A stored value as it is; long texts are cut at kCellBytes.
using StoredValue = std::variant<std::monostate, std::int64_t, double, std::string>;

StoredValue valueIn(const SQLite::Column &column);

/// What cells are made of. Columns that weren't asked for hold nothing.
struct UrlRow {
    UrlId id = UrlId::none;
    bool found = false; ///< false when the row could not be read, or has gone since it was listed
    bool tagged = false;
    bool isHistory = false;
    bool isBookmark = false;
    bool isCookie = false;
    bool cacheFileExists = false;
    bool rebuilt = false;
    std::string cacheType;
    std::string category;
    std::string extension; ///< of the URL, otherwise of the cached file
    std::string mimeType;
    std::string rootPath;
    std::string relativePath;
    std::string cacheFileName;
    std::string historyFilePath;
    Date actionDateUtc;
    std::int64_t links = 0;   ///< counted only when that column was asked for
    std::vector<RowTag> tags; ///< read only when that column was asked for
    std::string hashSets;     ///< the same
    std::array<StoredValue, kTableColumnCount> stored;
};

/// Reads rows by their key with one prepared statement that names only what the columns need.
class RowReader {
  public:
    RowReader(SQLite::Database &database, std::span<const UrlColumn> columns);
    ~RowReader();
    RowReader(const RowReader &) = delete;
    RowReader &operator=(const RowReader &) = delete;

    bool reads(UrlColumn column) const { return m_reads.at(indexOf(column)); }
    /// Throws what the database says.
    UrlRow read(UrlId id);

  private:
    std::int64_t linksOf(const UrlRow &row);

    std::vector<UrlColumn> m_stored; ///< in the order of the statement
    std::array<bool, kTableColumnCount> m_reads{};
    std::unique_ptr<SQLite::Statement> m_row;
    std::unique_ptr<SQLite::Statement> m_linksToChild;
    std::unique_ptr<SQLite::Statement> m_linksOfParent;
    std::unique_ptr<RowTagReader> m_tags;
    std::unique_ptr<RowHashSetReader> m_hashSets;
};

/// The whole text of a row's column, as it is stored; nothing when there is no such row or column.
std::optional<std::string> fullTextOf(SQLite::Database &database, UrlId id, UrlColumn column);

} // namespace nv
