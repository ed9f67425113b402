#pragma once

#include "base/TaskMonitor.h"
#include "db/marks/NamedTags.h"
#include "db/schema/Ids.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace SQLite {
class Database;
class Statement;
} // namespace SQLite

namespace nv {

/// A tag as a row has it.
struct RowTag {
    NamedTag tag;
    std::string note; ///< why this row has it
};

/// The tags' names, separated by ", ".
std::string namesOf(const std::vector<RowTag> &tags);

/// What was done to the rows of a tag, as it is needed to take it back.
struct TagChange {
    std::int64_t tagID = 0;
    bool isSet = true;             ///< the rows have got the tag; otherwise they have lost it
    std::string note;              ///< of rows that have got it
    std::vector<std::int32_t> ids; ///< rows that have got or lost it, ascending
    /// What was noted before of rows that have lost the tag, or have another note now.
    std::vector<std::pair<std::int32_t, std::string>> earlierNotes;

    bool isNothing() const { return ids.empty() && earlierNotes.empty(); }
};

/// Which rows have which tags. Many rows are written by few statements: a million in some seconds.
/// Each change is one transaction, and a cancel leaves nothing of it. Errors of the database are
/// thrown; a project that can't be written gives a StorageFailure.
class RecordTags {
  public:
    explicit RecordTags(SQLite::Database &database) : m_database(database) {}

    /// Gives the rows the tag. Those that have it keep it, with `note` unless that is empty.
    /// Nothing after a cancel. `ids` are in any order.
    std::optional<TagChange> set(std::int64_t tagID, std::span<const std::int32_t> ids,
                                 const std::string &note, TaskMonitor &task);
    /// Takes it away.
    std::optional<TagChange> take(std::int64_t tagID, std::span<const std::int32_t> ids,
                                  TaskMonitor &task);
    /// Makes rows as they were before a change; false after a cancel.
    bool undo(const TagChange &change, TaskMonitor &task);
    bool redo(const TagChange &change, TaskMonitor &task);
    /// How many of the rows have the tag. Nothing after a cancel.
    std::optional<std::size_t> countOf(std::int64_t tagID, std::span<const std::int32_t> ids,
                                       TaskMonitor &task);
    /// Rows with the tag, ascending.
    std::vector<std::int32_t> rowsOf(std::int64_t tagID) const;

  private:
    struct Asked;
    bool insert(const Asked &asked, const std::string &note, TaskMonitor &task);
    bool erase(const Asked &asked, TaskMonitor &task);
    void writeNotes(const TagChange &change, bool earlier);
    std::vector<std::int32_t> having(const Asked &asked) const;

    SQLite::Database &m_database;
};

/// Reads the tags of one row after another; must be gone before the connection is closed.
class RowTagReader {
  public:
    explicit RowTagReader(SQLite::Database &database);
    ~RowTagReader();
    RowTagReader(const RowTagReader &) = delete;
    RowTagReader &operator=(const RowTagReader &) = delete;

    /// In the order of the tags. None in a project without tags.
    std::vector<RowTag> of(UrlId id);

  private:
    std::unique_ptr<SQLite::Statement> m_rows; ///< null in a project without tags
};

} // namespace nv
