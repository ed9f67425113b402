#include "search/SearchedRowReader.h"

#include "address/DomainNames.h"
#include "address/RawAddress.h"
#include "base/NoLog.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "db/records/RecordFacts.h"

#include <SQLiteCpp/Database.h>
#include <fmt/format.h>
#include <sqlite3.h>

#include <algorithm>
#include <limits>

namespace nv {

namespace {

constexpr std::int64_t kLastListed = std::numeric_limits<std::int32_t>::max();

bool hasColumn(SQLite::Database &project, const char *column) {
    SQLite::Statement row(project, "SELECT 1 FROM pragma_table_info('URLs') WHERE name = ?");
    row.bind(1, column);
    return row.executeStep();
}

/// In the order of take(). What a project of an earlier build has no column for is empty.
std::string statementFor(SQLite::Database &project, RowTexts which) {
    std::string text = "SELECT URL_ID";
    for (const char *column :
         {"URL", "WebPageTitle", "Host", "User", "Notes", "Referrer", "URLParameters",
          "URLRawValue", "CacheType", "ActionDateUTC", "Browser"})
        text += fmt::format(", {}", hasColumn(project, column) ? column : "NULL");
    text += which == RowTexts::all ? ", HTMLBody, MetaData" : ", NULL, NULL";
    return text + fmt::format(" FROM URLs WHERE URL_ID >= ? AND URL_ID <= {} ORDER BY URL_ID",
                              kLastListed);
}

/// 0 where damage hides it: whoever reads the rows learns of that.
std::int64_t numberOf(SQLite::Database &project, const std::string &query) {
    NoLog unheard;
    return trapped(unheard, Severity::Low, {}, {}, std::int64_t{0},
                   [&] { return project.execAndGet(query).getInt64(); });
}

void assignText(std::string &into, const SQLite::Column &column) {
    const char *bytes = column.getText(); // before the length, which it settles
    into.assign(bytes, static_cast<std::size_t>(column.getBytes()));
}

/// The terms of a row, a line each, and none that its address or another one has.
class Terms {
  public:
    explicit Terms(SearchedRow &row)
        : m_address(row.at(SearchField::address)), m_text(row.at(SearchField::terms)),
          m_spans(row.termSpans) {
        m_text.clear();
        m_spans.clear();
    }
    void add(std::string_view term) {
        if (has(m_address, term) || has(m_text, term))
            return;
        if (!m_text.empty())
            m_text.push_back('\n');
        m_spans.push_back({m_text.size(), term.size()});
        m_text.append(term);
    }

  private:
    static bool has(const std::string &text, std::string_view part) {
        return text.find(part) != std::string::npos;
    }

    const std::string &m_address;
    std::string &m_text;
    std::vector<TextSpan> &m_spans;
};

void addDecoded(Terms &terms, std::string_view text, std::string_view coded) {
    if (text.find_first_of(coded) == std::string_view::npos)
        return;
    const bool isForm = coded.find('+') != std::string_view::npos;
    if (const std::string decoded = isForm ? parameterText(text) : percentDecode(text);
        decoded != text)
        terms.add(decoded);
}

/// What forms and scripts put into an address, where "+" stands for a blank.
std::string parametersIn(const std::string &address) {
    const std::size_t at = address.find_first_of("?#");
    return at == std::string::npos ? std::string() : address.substr(at + 1);
}

/// Names and values of an address with its escapes.
void addParameters(Terms &terms, std::string_view parameters) {
    while (!parameters.empty())
        addDecoded(terms, takeParameter(parameters), "+%");
}

/// What the artefact says beside the address: schemes, partitions, users. `raw` is the part of it
/// that gives the address, which says nothing more without its escapes.
void addBesideAddress(Terms &terms, std::string_view stored, std::optional<std::string_view> raw) {
    if (!raw)
        return addDecoded(terms, stored, "%");
    const auto at = static_cast<std::size_t>(raw->data() - stored.data());
    addDecoded(terms, stored.substr(0, at), "%");
    addDecoded(terms, stored.substr(at + raw->size()), "%");
}

/// Facts keep addresses with their escapes.
void addDecodedFacts(Terms &terms, const SearchedRow &row) {
    const std::string_view facts = row.at(SearchField::facts);
    for (const TextSpan &span : row.factSpans)
        addDecoded(terms, facts.substr(span.at, span.length), "%");
}

/// What the address, or the value of a cookie or a form, and the address before it say to people,
/// where that isn't what stands in them. Without its escapes nobody knows what a "+" of an address
/// was: both are found. Not each reader cuts the parameters from an address.
void addTerms(SearchedRow &row, const std::string &parameters, std::string_view stored) {
    const std::string &address = row.at(SearchField::address);
    const std::string &referrer = row.at(SearchField::referrer);
    Terms terms(row);
    if (const auto host = readableDomain(row.at(SearchField::host)))
        terms.add(*host);
    addDecoded(terms, address, "%");
    const bool isOfAddress = address.find(parameters) != std::string::npos;
    if (stored.find(parameters) == std::string_view::npos)
        terms.add(parameters);
    const auto raw = rawAddressOf(address, stored);
    addBesideAddress(terms, stored, raw);
    const auto parts = raw ? roughAddress(*raw) : std::nullopt;
    if (parts) {
        addParameters(terms, parts->query);
        addParameters(terms, parts->fragment);
    }
    if (!parts || !isOfAddress)
        addDecoded(terms, parameters.empty() ? parametersIn(address) : parameters, "+%");
    addDecoded(terms, referrer, "%");
    addDecoded(terms, parametersIn(referrer), "+%");
    addDecodedFacts(terms, row);
}

FactValue valueIn(const SQLite::Column &column) {
    if (column.isNull())
        return {};
    if (column.isInteger())
        return column.getInt64();
    if (column.isFloat())
        return column.getDouble();
    return column.getString();
}

} // namespace

FactLines::FactLines(SQLite::Database &project) {
    if (project.tableExists(kRecordFactsTable))
        m_rows.emplace(project, "SELECT URL_ID, Value, RawValue FROM RecordFacts "
                                "WHERE URL_ID >= ? AND Name NOT IN ('source_table', "
                                "'source_rowid', 'source_offset') ORDER BY URL_ID");
}

bool FactLines::step() {
    const int answer = m_rows->tryExecuteStep();
    m_hasRow = answer == SQLITE_ROW;
    m_isDamaged = !m_hasRow && answer != SQLITE_DONE;
    if (m_hasRow)
        m_id = m_rows->getColumn(0).getInt64();
    return m_hasRow;
}

/// The value and what it was in the artefact are values of their own.
void FactLines::addLine(SearchedRow &row) {
    const RecordFact fact{{}, valueIn(m_rows->getColumn(1)), valueIn(m_rows->getColumn(2))};
    const std::string text = factText(fact);
    if (text.empty())
        return;
    std::string &lines = row.at(SearchField::facts);
    if (!lines.empty())
        lines.push_back('\n');
    row.factSpans.push_back({lines.size(), factText(fact.value).size()});
    lines.append(text);
    if (const std::size_t raw = factText(fact.raw).size(); raw > 0)
        row.factSpans.push_back({lines.size() - 1 - raw, raw}); // before its "]"
}

bool FactLines::fill(SearchedRow &row) {
    constexpr std::int64_t kNear = 64;
    row.at(SearchField::facts).clear();
    row.factSpans.clear();
    if (!m_rows)
        return true;
    if (m_asked < 0 || m_isDamaged || row.id <= m_asked || (m_hasRow && row.id - m_id > kNear)) {
        m_rows->tryReset();
        m_rows->bind(1, row.id);
        step();
    }
    m_asked = row.id;
    while (m_hasRow && m_id < row.id)
        step();
    while (m_hasRow && m_id == row.id) {
        addLine(row);
        step();
    }
    return !m_isDamaged;
}

SearchedRowReader::SearchedRowReader(SQLite::Database &project, RowTexts which)
    : m_rows(project, statementFor(project, which)), m_facts(project) {
    m_greatest = numberOf(
        project, fmt::format("SELECT max(URL_ID) FROM URLs WHERE URL_ID <= {}", kLastListed));
    m_outside =
        numberOf(project, "SELECT count(*) FROM URLs WHERE URL_ID < 1") +
        numberOf(project, fmt::format("SELECT count(*) FROM URLs WHERE URL_ID > {}", kLastListed));
    m_walk.emplace(project, m_rows, [this](std::int64_t lost) {
        m_unread.insert(static_cast<std::int32_t>(lost));
        return true;
    });
    m_look.emplace(m_rows);
}

bool SearchedRowReader::next() {
    if (m_walk->next() != KeyStep::Row)
        return false;
    take();
    return true;
}

bool SearchedRowReader::goTo(std::int32_t id) {
    NoLog unheard;
    const bool isThere = trapped(unheard, Severity::Low, {}, {}, std::optional<bool>(), [&] {
                             return std::optional(m_look->goTo(id));
                         }).value_or(false);
    if (isThere)
        take();
    else
        m_unread.insert(id);
    return isThere;
}

double SearchedRowReader::fraction() const {
    if (m_greatest <= 0)
        return 0;
    return std::min(1.0, static_cast<double>(m_row.id) / static_cast<double>(m_greatest));
}

void SearchedRowReader::take() {
    int at = 0;
    m_row.id = static_cast<std::int32_t>(m_rows.getColumn(at++).getInt64());
    for (const SearchField field : {SearchField::address, SearchField::title, SearchField::host,
                                    SearchField::user, SearchField::notes, SearchField::referrer})
        assignText(m_row.at(field), m_rows.getColumn(at++));
    const std::string parameters = m_rows.getColumn(at++).getString();
    const std::string stored = m_rows.getColumn(at++).getString();
    assignText(m_row.cacheType, m_rows.getColumn(at++));
    const SQLite::Column date = m_rows.getColumn(at++);
    m_row.actionDateUTC = date.isNull() ? Date() : Date::fromDays(date.getDouble());
    assignText(m_row.browser, m_rows.getColumn(at++));
    assignText(m_row.at(SearchField::page), m_rows.getColumn(at++));
    assignText(m_row.at(SearchField::headers), m_rows.getColumn(at++));
    if (!m_facts.fill(m_row))
        m_unread.insert(m_row.id);
    m_row.at(SearchField::rawAddress) = stored == m_row.at(SearchField::address) ? "" : stored;
    addTerms(m_row, parameters, stored);
}

} // namespace nv
