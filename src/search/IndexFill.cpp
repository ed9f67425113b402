#include "search/IndexFill.h"

#include "base/Text.h"
#include "search/FoldedText.h"
#include "search/IndexFile.h"

#include <SQLiteCpp/Database.h>
#include <fmt/format.h>

#include <bit>
#include <charconv>
#include <limits>
#include <utility>

namespace nv {

namespace {

constexpr int kRoundShift = 32;

/// The statement of a table that the index may lack.
std::optional<SQLite::Statement> partsOf(SQLite::Database &index, bool isThere) {
    if (!isThere)
        return std::nullopt;
    return SQLite::Statement(index, "INSERT INTO Parts (rowid, Page, Headers) VALUES (?, ?, ?)");
}

void bindText(SQLite::Statement &statement, int at, const std::string &text) {
    statement.bindNoCopy(at, text);
}

} // namespace

std::int64_t docOf(std::int32_t id, std::int32_t round) {
    return (static_cast<std::int64_t>(round) << kRoundShift) | id;
}

std::int32_t rowOfDoc(std::int64_t doc) {
    constexpr std::int64_t kLower = 0xFFFFFFFF;
    return static_cast<std::int32_t>(doc & kLower);
}

IndexFill::IndexFill(SQLite::Database &project, SQLite::Database &index, bool parts,
                     bool fillsParts)
    : m_index(index), m_reader(project), m_fillsParts(fillsParts),
      m_knownRows(index, "SELECT URL_ID, Round, Print FROM Rows WHERE URL_ID > ? ORDER BY URL_ID"),
      m_brief(index, "INSERT INTO Brief (rowid, Text) VALUES (?, ?)"),
      m_words(index, "INSERT INTO Words (rowid, Page, Headers) VALUES (?, ?, ?)"),
      m_parts(nv::partsOf(index, parts)),
      m_row(index, "INSERT OR REPLACE INTO Rows VALUES (?, ?, ?, ?, ?, ?, ?)"),
      m_bury(index, "INSERT OR IGNORE INTO Dead VALUES (?)"),
      m_remove(index, "DELETE FROM Rows WHERE URL_ID = ?") {}

/// The next row that the index knows, by its id. Null when there are no more: what this pass adds
/// lies before.
const IndexFill::Known *IndexFill::known() {
    constexpr std::size_t kAtOnce = 50'000;
    if (m_next == m_known.size() && !m_knowsAll) {
        m_known.clear();
        m_next = 0;
        m_knownRows.bind(1, m_lastKnown);
        while (m_known.size() < kAtOnce && m_knownRows.executeStep())
            m_known.push_back({m_knownRows.getColumn(0).getInt(), m_knownRows.getColumn(1).getInt(),
                               std::bit_cast<std::uint64_t>(m_knownRows.getColumn(2).getInt64())});
        m_knownRows.reset();
        m_knowsAll = m_known.size() < kAtOnce;
        if (!m_known.empty())
            m_lastKnown = m_known.back().id;
    }
    return m_next < m_known.size() ? &m_known[m_next] : nullptr;
}

bool IndexFill::run(TaskMonitor &task) {
    const std::string round = index_file::fact(m_index, "round");
    std::from_chars(round.data(), round.data() + round.size(), m_round);
    // Numbers of a pass that was cut short are never given again.
    index_file::setFact(m_index, "round", std::to_string(m_round + 1));
    const bool goesOn = lookAtAll(task);
    keepUnread();
    return goesOn;
}

/// False when cancelled.
bool IndexFill::lookAtAll(TaskMonitor &task) {
    RowsAhead rows(m_reader);
    for (RowBatch batch = rows.next();; batch = rows.next()) {
        if (batch.unread)
            m_unread = *std::move(batch.unread);
        for (const PrintedRow &each : batch.rows) {
            passOver(each.row.id);
            look(each);
            if (!task.advance(batch.fraction))
                return false;
        }
        if (batch.rows.empty())
            break;
    }
    passOver(std::numeric_limits<std::int32_t>::max());
    return true;
}

/// Rows before this one that the index knows and the project doesn't have. Of those that can't be
/// read any more the index still tells what they held.
void IndexFill::passOver(std::int32_t before) {
    for (const Known *row = known(); row != nullptr && row->id < before; row = known()) {
        ++m_next;
        if (m_unread.contains(row->id))
            continue;
        bury(*row);
        m_remove.bind(1, row->id);
        m_remove.exec();
        m_remove.reset();
        ++m_gone;
    }
}

void IndexFill::look(const PrintedRow &printed) {
    const auto &[row, print] = printed;
    const Known *before = known();
    if (before == nullptr || before->id != row.id) {
        ++m_added;
        return insert(row, print);
    }
    ++m_next;
    if (before->print == print) {
        if (m_fillsParts)
            insertParts(row, before->round);
        return;
    }
    ++m_changed;
    bury(*before);
    insert(row, print);
}

void IndexFill::bury(const Known &known) {
    m_bury.bind(1, docOf(known.id, known.round));
    m_bury.exec();
    m_bury.reset();
}

void IndexFill::insert(const SearchedRow &row, std::uint64_t print) {
    const std::int64_t doc = docOf(row.id, m_round);
    joinValues(row, m_joined);
    m_brief.bind(1, doc);
    bindText(m_brief, 2, partText(m_joined, m_folded));
    m_brief.exec();
    m_brief.reset();
    const std::string &page = row.at(SearchField::page);
    const std::string &headers = row.at(SearchField::headers);
    if (!page.empty() || !headers.empty()) {
        m_words.bind(1, doc);
        bindText(m_words, 2, wordText(page, m_pageWords));
        bindText(m_words, 3, wordText(headers, m_headerWords));
        m_words.exec();
        m_words.reset();
    }
    insertParts(row, m_round);
    int at = 0;
    m_row.bind(++at, row.id);
    m_row.bind(++at, m_round);
    m_row.bind(++at, std::bit_cast<std::int64_t>(print));
    bindText(m_row, ++at, row.at(SearchField::host));
    bindText(m_row, ++at, row.browser);
    bindText(m_row, ++at, row.cacheType);
    if (row.actionDateUTC.has())
        m_row.bind(++at, row.actionDateUTC.days());
    else
        m_row.bind(++at);
    m_row.exec();
    m_row.reset();
}

void IndexFill::insertParts(const SearchedRow &row, std::int32_t round) {
    const std::string &page = row.at(SearchField::page);
    const std::string &headers = row.at(SearchField::headers);
    if (!m_parts || (page.empty() && headers.empty()))
        return;
    m_parts->bind(1, docOf(row.id, round));
    bindText(*m_parts, 2, partText(page, m_pageWords));
    bindText(*m_parts, 3, partText(headers, m_headerWords));
    m_parts->exec();
    m_parts->reset();
}

void IndexFill::keepUnread() {
    m_index.exec("DELETE FROM Unread");
    SQLite::Statement insert(m_index, "INSERT INTO Unread VALUES (?)");
    for (const std::int32_t id : m_reader.unread()) {
        insert.bind(1, id);
        insert.exec();
        insert.reset();
    }
    index_file::setFact(m_index, "outside", std::to_string(m_reader.outside()));
}

std::int64_t IndexFill::dead() {
    return m_index.execAndGet("SELECT count(*) FROM Dead").getInt64();
}

std::int64_t IndexFill::rows() {
    return m_index.execAndGet("SELECT count(*) FROM Rows").getInt64();
}

} // namespace nv
