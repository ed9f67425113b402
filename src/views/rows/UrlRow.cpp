#include "views/rows/UrlRow.h"

#include "db/sql/BindId.h"
#include "views/rows/CellText.h"
#include "views/rows/UrlQuery.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

#include <string_view>

namespace nv {
namespace {

/// Longer paths open no file.
constexpr std::size_t kPathBytes = 4096;

/// As bytes: substr() over text would end at a zero, and what stands after it must be seen.
std::string cutText(std::string_view column, std::size_t bytes) {
    return fmt::format("substr(CAST({} AS BLOB), 1, {})", column, bytes);
}

/// What the rules need whatever the columns; readFacts() takes them in this order.
std::string factColumns() {
    return fmt::format(
        "Tagged, IsHistory, IsBookmark, IsCookie, CacheFileExists, {},"
        " ActionDateUTC, {}, {}, {}, {}, {}, {}, {}, {}",
        kRebuiltCondition, cutText("CacheType", kCellBytes), cutText("Category", kCellBytes),
        cutText("COALESCE(NULLIF(URLFileExt, ''), CacheFileExt)", kCellBytes),
        cutText("MIMEType", kCellBytes), cutText("RootPath", kPathBytes),
        cutText("CacheFileRelativePath", kPathBytes), cutText("CacheFileName", kPathBytes),
        cutText("HistoryFilePath", kPathBytes));
}
constexpr int kFactCount = 15;

bool holdsText(CellRule rule) {
    return rule == CellRule::Text || rule == CellRule::Status || rule == CellRule::RebuiltTime;
}

/// The other rules make do with the facts.
bool holdsStored(CellRule rule) {
    return holdsText(rule) || rule == CellRule::Number || rule == CellRule::Flag ||
           rule == CellRule::Date || rule == CellRule::FileCreated || rule == CellRule::Note;
}

std::string storedIn(const UrlColumnFacts &facts) {
    if (facts.rule == CellRule::Note) // a note may be long: its cell only says that there is one
        return fmt::format("({} <> '')", facts.source);
    return holdsText(facts.rule) ? cutText(facts.source, kCellBytes) : std::string(facts.source);
}

void readFacts(SQLite::Statement &row, UrlRow &into) {
    int at = 0;
    const auto flag = [&] { return row.getColumn(at++).getInt() != 0; };
    const auto text = [&] { return row.getColumn(at++).getString(); };
    into.tagged = flag();
    into.isHistory = flag();
    into.isBookmark = flag();
    into.isCookie = flag();
    into.cacheFileExists = flag();
    into.rebuilt = flag();
    const SQLite::Column date = row.getColumn(at++);
    if (!date.isNull())
        into.actionDateUtc = Date::fromDays(date.getDouble());
    into.cacheType = text();
    into.category = text();
    into.extension = text();
    into.mimeType = text();
    into.rootPath = text();
    into.relativePath = text();
    into.cacheFileName = text();
    into.historyFilePath = text();
}

/// A statement that isn't reset would keep the read transaction, and with it the log, open. One
/// that has failed says so again when it is reset, which is of no use to anybody.
class Finished {
  public:
    explicit Finished(SQLite::Statement &statement) : m_statement(statement) {}
    ~Finished() { m_statement.tryReset(); }
    Finished(const Finished &) = delete;
    Finished &operator=(const Finished &) = delete;

  private:
    SQLite::Statement &m_statement;
};

} // namespace

StoredValue valueIn(const SQLite::Column &column) {
    if (column.isNull())
        return {};
    if (column.isInteger())
        return column.getInt64();
    if (column.isFloat())
        return column.getDouble();
    return column.getString();
}

RowReader::RowReader(SQLite::Database &database, std::span<const UrlColumn> columns) {
    std::string select = "SELECT " + factColumns();
    for (const UrlColumn column : columns) {
        if (reads(column))
            continue;
        m_reads.at(indexOf(column)) = true;
        const UrlColumnFacts &facts = factsOf(column);
        if (!holdsStored(facts.rule))
            continue;
        m_stored.push_back(column);
        select += ", " + storedIn(facts);
    }
    select += " FROM URLs WHERE URL_ID = ?";
    m_row = std::make_unique<SQLite::Statement>(database, select);
    if (reads(UrlColumn::TagNames))
        m_tags = std::make_unique<RowTagReader>(database);
    if (reads(UrlColumn::HashSets))
        m_hashSets = std::make_unique<RowHashSetReader>(database);
    if (!reads(UrlColumn::Linked))
        return;
    m_linksToChild = std::make_unique<SQLite::Statement>(
        database, "SELECT Count(Link_ID) As LinkCount FROM LinkAnalysis WHERE Child_ID = ?");
    m_linksOfParent = std::make_unique<SQLite::Statement>(
        database, "SELECT Count(Link_ID) As LinkCount FROM LinkAnalysis WHERE Parent_ID = ?");
}

RowReader::~RowReader() = default;

UrlRow RowReader::read(UrlId id) {
    UrlRow row;
    row.id = id;
    const Finished reading(*m_row);
    bindId(*m_row, 1, id);
    row.found = m_row->executeStep();
    if (!row.found)
        return row;
    readFacts(*m_row, row);
    int at = kFactCount;
    for (const UrlColumn column : m_stored)
        row.stored.at(indexOf(column)) = valueIn(m_row->getColumn(at++));
    row.links = reads(UrlColumn::Linked) ? linksOf(row) : 0;
    if (m_tags)
        row.tags = m_tags->of(id);
    if (m_hashSets)
        row.hashSets = m_hashSets->of(id);
    return row;
}

std::int64_t RowReader::linksOf(const UrlRow &row) {
    SQLite::Statement &count = row.isHistory ? *m_linksToChild : *m_linksOfParent;
    const Finished counting(count);
    bindId(count, 1, row.id);
    return count.executeStep() ? count.getColumn(0).getInt64() : 0;
}

std::optional<std::string> fullTextOf(SQLite::Database &database, UrlId id, UrlColumn column) {
    const std::string_view source = factsOf(column).source;
    if (source.empty())
        return std::nullopt;
    SQLite::Statement statement(database,
                                fmt::format("SELECT {} FROM URLs WHERE URL_ID = ?", source));
    bindId(statement, 1, id);
    if (!statement.executeStep())
        return std::nullopt;
    return statement.getColumn(0).getString();
}

} // namespace nv
