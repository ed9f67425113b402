#include "db/records/RecordFacts.h"

#include "base/Text.h"
#include "db/sql/StoredText.h"

#include <SQLiteCpp/Column.h>
#include <SQLiteCpp/Database.h>
#include <fmt/format.h>

#include <algorithm>

namespace nv {

namespace {

/// Texts aren't copied.
void bindValue(SQLite::Statement &statement, int at, const FactValue &value) {
    if (const auto *whole = std::get_if<std::int64_t>(&value))
        statement.bind(at, *whole);
    else if (const auto *real = std::get_if<double>(&value))
        statement.bind(at, *real);
    else if (const auto *text = std::get_if<std::string>(&value))
        bindText(statement, at, *text);
    else
        statement.bind(at);
}

/// What another program may have put there as bytes is shown as text.
FactValue valueIn(const SQLite::Column &column) {
    if (column.isNull())
        return {};
    if (column.isInteger())
        return column.getInt64();
    if (column.isFloat())
        return column.getDouble();
    return decodeText(column.getString());
}

} // namespace

void RecordFacts::store(UrlId record, const FactList &facts) {
    auto next = facts.begin();
    for (std::size_t left = facts.size(); left > 0;) {
        const std::size_t count = std::min(left, kRowsTogether);
        SQLite::Statement &insert = insertOf(count);
        insert.tryReset();
        insert.bind(1, number(record));
        int at = 1;
        for (std::size_t row = 0; row < count; ++row, ++next) {
            insert.bindNoCopy(++at, next->name);
            bindValue(insert, ++at, next->value);
            bindValue(insert, ++at, next->raw);
        }
        insert.exec();
        insert.reset();
        left -= count;
    }
}

SQLite::Statement &RecordFacts::insertOf(std::size_t rows) {
    std::optional<SQLite::Statement> &insert = m_inserts.at(rows - 1);
    if (!insert) {
        std::string text = "INSERT INTO RecordFacts (URL_ID, Name, Value, RawValue) VALUES ";
        for (std::size_t row = 0; row < rows; ++row)
            text += row == 0 ? "(?1, ?, ?, ?)" : ", (?1, ?, ?, ?)";
        insert.emplace(m_database, text);
    }
    return *insert;
}

FactList RecordFacts::of(UrlId record) {
    FactList facts;
    if (!isThere())
        return facts;
    if (!m_select)
        m_select.emplace(m_database, "SELECT Name, Value, RawValue FROM RecordFacts "
                                     "WHERE URL_ID = ? ORDER BY rowid");
    m_select->tryReset();
    m_select->bind(1, number(record));
    while (m_select->executeStep())
        facts.addStored({decodeText(m_select->getColumn(0).getString()),
                         valueIn(m_select->getColumn(1)), valueIn(m_select->getColumn(2))});
    m_select->tryReset(); // an open one would keep the project's log from being taken up
    return facts;
}

bool RecordFacts::isThere() {
    if (!m_isThere)
        m_isThere = m_database.tableExists(kRecordFactsTable);
    return *m_isThere;
}

std::string factText(const FactValue &value) {
    if (const auto *whole = std::get_if<std::int64_t>(&value))
        return std::to_string(*whole);
    if (const auto *real = std::get_if<double>(&value))
        return fmt::format("{}", *real);
    const auto *text = std::get_if<std::string>(&value);
    return text ? *text : std::string();
}

std::string factText(const RecordFact &fact) {
    const std::string raw = factText(fact.raw);
    return raw.empty() ? factText(fact.value) : fmt::format("{} [{}]", factText(fact.value), raw);
}

} // namespace nv
