#include "db/marks/RecordTags.h"

#include "db/schema/SchemaCatalogue.h"
#include "db/sql/BindId.h"
#include "db/sql/Savepoint.h"
#include "db/sql/SqliteErrors.h"
#include "db/sql/StoredText.h"

#include <SQLiteCpp/Statement.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <functional>
#include <iterator>

namespace nv {

namespace {

constexpr std::size_t kChunk = 10'000; // ids of one statement

using Ids = std::span<const std::int32_t>;

/// What an SQL function takes for a table.
std::string listOf(Ids ids) {
    return fmt::format("[{}]", fmt::join(ids, ","));
}

std::vector<std::int32_t> ascending(Ids ids) {
    std::vector<std::int32_t> sorted(ids.begin(), ids.end());
    std::ranges::sort(sorted);
    sorted.erase(std::unique(sorted.begin(), sorted.end()), sorted.end());
    return sorted;
}

/// False after a cancel.
bool inChunks(Ids ids, TaskMonitor &task, const std::function<void(Ids)> &work) {
    for (std::size_t at = 0; at < ids.size(); at += kChunk) {
        if (!task.advance(static_cast<double>(at) / static_cast<double>(ids.size())))
            return false;
        work(ids.subspan(at, std::min(kChunk, ids.size() - at)));
    }
    return true;
}

} // namespace

/// A tag and rows, ascending.
struct RecordTags::Asked {
    std::int64_t tagID = 0;
    Ids ids;
};

std::string namesOf(const std::vector<RowTag> &tags) {
    std::string names;
    for (const RowTag &each : tags)
        names.append(names.empty() ? "" : ", ").append(each.tag.name);
    return names;
}

std::vector<std::int32_t> RecordTags::having(const Asked &asked) const {
    std::vector<std::int32_t> rows;
    const std::string list = listOf(asked.ids);
    SQLite::Statement row(m_database,
                          "SELECT value FROM json_each(?2) WHERE EXISTS (SELECT 1 FROM RecordTags "
                          "WHERE URL_ID = value AND NamedTag_ID = ?1)");
    row.bind(1, asked.tagID);
    row.bind(2, list);
    while (row.executeStep())
        rows.push_back(row.getColumn(0).getInt());
    return rows;
}

bool RecordTags::insert(const Asked &asked, const std::string &note, TaskMonitor &task) {
    SQLite::Statement insert(m_database, "INSERT INTO RecordTags (NamedTag_ID, URL_ID, Note) "
                                         "SELECT ?1, value, ?3 FROM json_each(?2)");
    return inChunks(asked.ids, task, [&](Ids ids) {
        const std::string list = listOf(ids);
        insert.tryReset();
        insert.bind(1, asked.tagID);
        insert.bind(2, list);
        bindText(insert, 3, note);
        insert.exec();
    });
}

bool RecordTags::erase(const Asked &asked, TaskMonitor &task) {
    SQLite::Statement remove(m_database,
                             "DELETE FROM RecordTags WHERE URL_ID IN (SELECT value FROM "
                             "json_each(?2)) AND +NamedTag_ID = ?1");
    return inChunks(asked.ids, task, [&](Ids ids) {
        const std::string list = listOf(ids);
        remove.tryReset();
        remove.bind(1, asked.tagID);
        remove.bind(2, list);
        remove.exec();
    });
}

namespace {

/// What is noted of rows with the tag, other than `unless`.
void addNotes(SQLite::Database &database, std::int64_t tagID, Ids ids,
              const std::optional<std::string> &unless, TagChange &change) {
    const std::string list = listOf(ids);
    SQLite::Statement row(database, "SELECT URL_ID, ifnull(Note, '') FROM RecordTags WHERE URL_ID "
                                    "IN (SELECT value FROM json_each(?2)) AND +NamedTag_ID = ?1");
    row.bind(1, tagID);
    row.bind(2, list);
    while (row.executeStep()) {
        std::string note = row.getColumn(1).getString();
        if (unless ? note != *unless : !note.empty())
            change.earlierNotes.emplace_back(row.getColumn(0).getInt(), std::move(note));
    }
}

} // namespace

void RecordTags::writeNotes(const TagChange &change, bool earlier) {
    SQLite::Statement update(
        m_database, "UPDATE RecordTags SET Note = ?3 WHERE URL_ID = ?2 AND +NamedTag_ID = ?1");
    for (const auto &[id, note] : change.earlierNotes) {
        update.tryReset();
        update.bind(1, change.tagID);
        update.bind(2, id);
        bindText(update, 3, earlier ? note : change.note);
        update.exec();
    }
}

std::optional<TagChange> RecordTags::set(std::int64_t tagID, Ids ids, const std::string &note,
                                         TaskMonitor &task) {
    constexpr double kLooking = 0.4; // of the whole
    TagChange change{.tagID = tagID, .isSet = true, .note = note, .ids = {}, .earlierNotes = {}};
    const std::vector<std::int32_t> all = ascending(ids);
    return onProject(m_database, [&]() -> std::optional<TagChange> {
        Savepoint whole(m_database);
        SchemaCatalogue(m_database).addOnFirstUse(kRecordTagsTable);
        SubTask looking(task, 0, kLooking);
        const bool looked = inChunks(all, looking, [&](Ids some) {
            const std::vector<std::int32_t> known = having({tagID, some});
            std::ranges::set_difference(some, known, std::back_inserter(change.ids));
            if (!note.empty())
                addNotes(m_database, tagID, known, note, change);
        });
        SubTask writing(task, kLooking, 1);
        if (!looked || !insert({tagID, change.ids}, note, writing))
            return std::nullopt;
        writeNotes(change, false);
        whole.release();
        return std::move(change);
    });
}

std::optional<TagChange> RecordTags::take(std::int64_t tagID, Ids ids, TaskMonitor &task) {
    constexpr double kLooking = 0.4;
    TagChange change{.tagID = tagID, .isSet = false, .note = {}, .ids = {}, .earlierNotes = {}};
    if (!m_database.tableExists(kRecordTagsTable))
        return change;
    const std::vector<std::int32_t> all = ascending(ids);
    return onProject(m_database, [&]() -> std::optional<TagChange> {
        Savepoint whole(m_database);
        SubTask looking(task, 0, kLooking);
        const bool looked = inChunks(all, looking, [&](Ids some) {
            const std::vector<std::int32_t> known = having({tagID, some});
            change.ids.insert(change.ids.end(), known.begin(), known.end());
            addNotes(m_database, tagID, known, std::nullopt, change);
        });
        SubTask writing(task, kLooking, 1);
        if (!looked || !erase({tagID, change.ids}, writing))
            return std::nullopt;
        whole.release();
        return std::move(change);
    });
}

bool RecordTags::undo(const TagChange &change, TaskMonitor &task) {
    return onProject(m_database, [&] {
        Savepoint whole(m_database);
        const bool done = change.isSet ? erase({change.tagID, change.ids}, task)
                                       : insert({change.tagID, change.ids}, {}, task);
        if (!done)
            return false;
        writeNotes(change, true);
        whole.release();
        return true;
    });
}

bool RecordTags::redo(const TagChange &change, TaskMonitor &task) {
    return onProject(m_database, [&] {
        Savepoint whole(m_database);
        const bool done = change.isSet ? insert({change.tagID, change.ids}, change.note, task)
                                       : erase({change.tagID, change.ids}, task);
        if (!done)
            return false;
        if (change.isSet)
            writeNotes(change, false);
        whole.release();
        return true;
    });
}

std::optional<std::size_t> RecordTags::countOf(std::int64_t tagID, Ids ids, TaskMonitor &task) {
    std::size_t count = 0;
    if (!m_database.tableExists(kRecordTagsTable))
        return count;
    const bool whole = inChunks(ids, task, [&](Ids some) {
        count += having({tagID, some}).size();
    });
    return whole ? std::optional(count) : std::nullopt;
}

std::vector<std::int32_t> RecordTags::rowsOf(std::int64_t tagID) const {
    std::vector<std::int32_t> rows;
    if (!m_database.tableExists(kRecordTagsTable))
        return rows;
    SQLite::Statement row(m_database,
                          "SELECT URL_ID FROM RecordTags WHERE NamedTag_ID = ? AND "
                          "typeof(URL_ID) = 'integer' AND URL_ID BETWEEN 1 AND 2147483647");
    row.bind(1, tagID);
    while (row.executeStep())
        rows.push_back(row.getColumn(0).getInt());
    return ascending(rows);
}

RowTagReader::RowTagReader(SQLite::Database &database) {
    if (database.tableExists(kNamedTagsTable) && database.tableExists(kRecordTagsTable))
        m_rows = std::make_unique<SQLite::Statement>(
            database, "SELECT n.NamedTag_ID, n.Name, n.Color, n.Position, n.Note, "
                      "max(ifnull(r.Note, '')) FROM RecordTags r JOIN NamedTags n "
                      "ON n.NamedTag_ID = r.NamedTag_ID WHERE r.URL_ID = ? "
                      "GROUP BY n.NamedTag_ID ORDER BY n.Position, n.NamedTag_ID LIMIT 1000");
}

RowTagReader::~RowTagReader() = default;

std::vector<RowTag> RowTagReader::of(UrlId id) {
    std::vector<RowTag> tags;
    if (!m_rows)
        return tags;
    m_rows->tryReset();
    bindId(*m_rows, 1, id);
    while (m_rows->executeStep()) {
        tags.push_back({namedTagIn(*m_rows), m_rows->getColumn(5).getString()});
    }
    m_rows->tryReset();
    return tags;
}

} // namespace nv
