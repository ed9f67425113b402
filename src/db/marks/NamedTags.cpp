#include "db/marks/NamedTags.h"

#include "base/Text.h"
#include "db/schema/SchemaCatalogue.h"
#include "db/sql/Savepoint.h"
#include "db/sql/SqliteErrors.h"
#include "db/sql/StoredText.h"

#include <SQLiteCpp/Statement.h>
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <stdexcept>

namespace nv {

namespace {

constexpr std::size_t kMostLetters = 100;
constexpr std::string_view kInOrder = "ORDER BY Position, NamedTag_ID";

/// Apart from each other for most eyes; white or black text can be read on each.
constexpr std::array<std::string_view, 9> kFirstColors = {"#d13438", "#0f6cbd", "#13a10e",
                                                          "#f7b500", "#8764b8", "#00b7c3",
                                                          "#e3008c", "#8e562e", "#69797e"};

std::string selectTags(std::string_view rest) {
    return fmt::format("SELECT NamedTag_ID, Name, Color, Position, Note FROM NamedTags {}", rest);
}

/// Of blanks alone, whatever their width: nobody could see such a tag, nor type its name.
bool isBlank(std::string_view name) {
    constexpr std::array kBlanks = {"\u00A0", "\u00AD", "\u1680", "\u2000", "\u2001", "\u2002",
                                    "\u2003", "\u2004", "\u2005", "\u2006", "\u2007", "\u2008",
                                    "\u2009", "\u200A", "\u200B", "\u202F", "\u205F", "\u2060",
                                    "\u2800", "\u3000", "\uFEFF"};
    std::string rest(name.substr(0, kMostLetters * 4)); // longer ones are refused anyway
    for (const char *blank : kBlanks)
        rest = replaceAll(rest, blank, " ");
    return trim(rest).empty();
}

} // namespace

std::string faultOfTagName(std::string_view name) {
    const auto isControl = [](char c) {
        constexpr unsigned char kBlank = 0x20;
        constexpr unsigned char kDelete = 0x7F;
        const auto byte = static_cast<unsigned char>(c);
        return byte < kBlank || byte == kDelete;
    };
    if (isBlank(name))
        return "a name of more than blanks was expected";
    if (trim(name).size() != name.size())
        return "a name without blanks around it was expected";
    if (charCount(name) > kMostLetters)
        return fmt::format("a name of at most {} letters was expected", kMostLetters);
    if (std::ranges::any_of(name, isControl))
        return "a name in one line was expected";
    return {};
}

bool isTagColor(std::string_view color) {
    constexpr std::string_view kDigits = "0123456789abcdefABCDEF";
    constexpr std::size_t kLength = 7;
    return color.size() == kLength && color.front() == '#' &&
           color.find_first_not_of(kDigits, 1) == std::string_view::npos;
}

std::string firstTagColor(std::int64_t position) {
    constexpr auto kCount = static_cast<std::int64_t>(kFirstColors.size());
    const std::int64_t place = ((position % kCount) + kCount - 1) % kCount;
    return std::string(kFirstColors.at(static_cast<std::size_t>(place)));
}

NamedTag namedTagIn(SQLite::Statement &row) {
    NamedTag tag{row.getColumn(0).getInt64(), row.getColumn(1).getString(),
                 row.getColumn(2).getString(), row.getColumn(3).getInt64(),
                 row.getColumn(4).getString()};
    if (!isTagColor(tag.color))
        tag.color = firstTagColor(tag.position);
    return tag;
}

std::vector<NamedTag> NamedTags::list() const {
    std::vector<NamedTag> all;
    if (!m_database.tableExists(kNamedTagsTable))
        return all;
    SQLite::Statement row(m_database, selectTags(kInOrder));
    while (row.executeStep())
        all.push_back(namedTagIn(row));
    return all;
}

std::optional<NamedTag> NamedTags::find(std::string_view name) const {
    if (!m_database.tableExists(kNamedTagsTable))
        return std::nullopt;
    SQLite::Statement row(m_database,
                          selectTags(fmt::format("WHERE Name = ? COLLATE NOCASE {}", kInOrder)));
    row.bind(1, std::string(name));
    return row.executeStep() ? std::optional(namedTagIn(row)) : std::nullopt;
}

std::optional<NamedTag> NamedTags::find(std::int64_t tagID) const {
    if (!m_database.tableExists(kNamedTagsTable))
        return std::nullopt;
    SQLite::Statement row(m_database, selectTags("WHERE NamedTag_ID = ?"));
    row.bind(1, tagID);
    return row.executeStep() ? std::optional(namedTagIn(row)) : std::nullopt;
}

TagCounts NamedTags::counts() const {
    TagCounts counts;
    if (!m_database.tableExists(kRecordTagsTable))
        return counts;
    SQLite::Statement row(m_database,
                          "SELECT NamedTag_ID, count(*) FROM RecordTags GROUP BY NamedTag_ID");
    while (row.executeStep())
        counts[row.getColumn(0).getInt64()] = row.getColumn(1).getInt64();
    return counts;
}

std::uint64_t NamedTags::rows() const {
    if (!m_database.tableExists(kRecordTagsTable))
        return 0;
    return static_cast<std::uint64_t>(
        m_database.execAndGet("SELECT count(DISTINCT URL_ID) FROM RecordTags").getInt64());
}

std::string NamedTags::faultOf(const NamedTag &tag) const {
    if (std::string fault = faultOfTagName(tag.name); !fault.empty())
        return fmt::format("\"{}\" can't be a tag: {}", tag.name, fault);
    if (!isTagColor(tag.color))
        return fmt::format("\"{}\" is no colour: one such as #d13438 was expected", tag.color);
    if (const auto other = find(tag.name); other && other->tagID != tag.tagID)
        return fmt::format("there is a tag \"{}\" already", other->name);
    return {};
}

void NamedTags::check(const NamedTag &tag) const {
    if (const std::string fault = faultOf(tag); !fault.empty())
        throw std::invalid_argument(fault);
}

NamedTag NamedTags::add(const NamedTag &tag) {
    NamedTag added = tag;
    added.tagID = 0;
    const auto all = list();
    added.position = all.empty() ? 1 : std::max<std::int64_t>(all.back().position, 0) + 1;
    if (added.color.empty())
        added.color = firstTagColor(added.position);
    check(added);
    onProject(m_database, [&] {
        Savepoint whole(m_database);
        SchemaCatalogue(m_database).addOnFirstUse(kNamedTagsTable);
        SQLite::Statement insert(
            m_database, "INSERT INTO NamedTags (Name, Color, Position, Note) VALUES (?, ?, ?, ?)");
        bindText(insert, 1, added.name);
        bindText(insert, 2, added.color);
        insert.bind(3, added.position);
        bindText(insert, 4, added.note);
        insert.exec();
        added.tagID = m_database.getLastInsertRowid();
        whole.release();
    });
    return added;
}

void NamedTags::change(const NamedTag &tag) {
    check(tag);
    onProject(m_database, [&] {
        SQLite::Statement update(
            m_database, "UPDATE NamedTags SET Name = ?, Color = ?, Note = ? WHERE NamedTag_ID = ?");
        bindText(update, 1, tag.name);
        bindText(update, 2, tag.color);
        bindText(update, 3, tag.note);
        update.bind(4, tag.tagID);
        update.exec();
    });
}

void NamedTags::reorder(const std::vector<std::int64_t> &tagIDs) {
    std::vector<NamedTag> all = list();
    const auto placeOf = [&tagIDs](const NamedTag &tag) {
        return std::ranges::find(tagIDs, tag.tagID) - tagIDs.begin();
    };
    std::ranges::stable_sort(all, {}, placeOf);
    onProject(m_database, [&] {
        Savepoint whole(m_database);
        std::int64_t position = 0;
        for (const NamedTag &tag : all) {
            SQLite::Statement update(m_database,
                                     "UPDATE NamedTags SET Position = ? WHERE NamedTag_ID = ?");
            update.bind(1, ++position);
            update.bind(2, tag.tagID);
            update.exec();
        }
        whole.release();
    });
}

void NamedTags::remove(std::int64_t tagID) {
    onProject(m_database, [&] {
        Savepoint whole(m_database);
        for (const char *table : {kRecordTagsTable, kNamedTagsTable}) {
            if (!m_database.tableExists(table))
                continue;
            SQLite::Statement row(m_database,
                                  fmt::format("DELETE FROM {} WHERE NamedTag_ID = ?", table));
            row.bind(1, tagID);
            row.exec();
        }
        whole.release();
    });
}

} // namespace nv
