#include "views/queries/QueryCommands.h"

#include "base/Text.h"
#include "base/Trap.h"
#include "db/project/StoredQueries.h"
#include "db/sql/ReadOnlyConnection.h"
#include "views/queries/QueryMessages.h"

#include <SQLiteCpp/SQLiteCpp.h>

#include <algorithm>
#include <optional>
#include <utility>

namespace nv {

bool isReservedQuery(std::string_view name) {
    return name.starts_with('_');
}

bool isListedQuery(std::string_view name) {
    return !isSystemObject(name) && name != kDefaultQueryName;
}

void QueryCommands::start() {
    const std::string stored =
        trapped(m_log, Severity::Warning, "MainForm.LoadStoredQuery()", kContactSupport,
                std::optional<std::string>(),
                [this] { return StoredQueries(m_project).text(kDefaultQueryName); })
            .value_or(m_state.defaultSQLDef);
    m_state.currentSQLDef = stored;
    m_state.lastSQLDef.clear();
    m_state.customQueryDef.clear();
    m_state.activeQueryName.clear();
    m_view.showStatement(stored);
    loadStoredQueries();
}

bool QueryCommands::formatQuerySQL(std::span<const QueryRow> rows,
                                   std::span<const QuerySortRow> sorts) {
    return trapped(m_log, Severity::Warning, "MainForm.FormatQuerySQL()", kContactSupport, false,
                   [&] {
                       const auto sql = nv::formatQuerySQL(rows, sorts);
                       if (sql)
                           m_view.showStatement(*sql);
                       return sql.has_value();
                   });
}

QueryCheck QueryCommands::checked(Test test) const {
    const auto reader = openReadOnly(m_project.getFilename());
    return test(m_view.statement(), *reader, m_log);
}

void QueryCommands::btnValidateSQL() {
    const QueryCheck query = checked(testTyped);
    m_examiner.tell(query.errCode == 0 ? messages::statementValid()
                                       : messages::statementInvalid(query.errDescription));
}

void QueryCommands::keepAsDefault(const std::string &sql) {
    StoredQueries(m_project).save({std::string(kDefaultQueryName), sql});
}

void QueryCommands::putInForce(std::string sql, std::string name) {
    const bool isOther = sql != m_state.currentSQLDef;
    m_state.lastSQLDef = std::exchange(m_state.currentSQLDef, std::move(sql));
    m_state.activeQueryName = std::move(name);
    if (isOther)
        m_view.statementChanged();
}

bool QueryCommands::btnApplyQuery() {
    const QueryCheck query = checked(testForTable);
    if (query.errCode != 0) {
        m_examiner.tell(messages::badDefinition());
        return false;
    }
    // A statement on "_DEFAULT" itself can be run, but not be kept as "_DEFAULT".
    const auto failure =
        failureOf(m_log, "MainForm.btnApplyQuery_Click()", [&] { keepAsDefault(query.sql); });
    if (failure) {
        m_examiner.tell(messages::statementNotKept(*failure));
        return false;
    }
    putInForce(query.sql, std::string(kDefaultQueryName));
    m_view.loadURLs();
    return true;
}

void QueryCommands::btnUndoQuery() {
    if (m_state.lastSQLDef.empty())
        return;
    const std::string last = m_state.lastSQLDef;
    if (const auto failure =
            failureOf(m_log, "MainForm.btnUndoQuery_Click()", [&] { keepAsDefault(last); }))
        return m_examiner.tell(messages::undoFailed(*failure));
    putInForce(last, std::string(kDefaultQueryName));
    m_view.showStatement(last);
    m_view.loadURLs();
}

void QueryCommands::btnDefaultQuery() {
    const auto failure = failureOf(m_log, "MainForm.btnDefaultQuery_Click()", [this] {
        keepAsDefault(m_state.defaultSQLDef);
        putInForce(m_state.defaultSQLDef, std::string(kDefaultQueryName));
        m_view.showStatement(m_state.defaultSQLDef);
        loadStoredQueries();
        m_view.loadURLs();
    });
    if (failure)
        m_examiner.tell(messages::defaultQueryFailed(*failure));
}

void QueryCommands::loadStoredQueries(std::string_view select) {
    const bool loads = trapped(m_log, Severity::Warning, "MainForm.LoadStoredQueries()",
                               kContactSupport, false, [&] {
                                   std::vector<std::string> names;
                                   std::optional<StoredQuery> chosen;
                                   for (StoredQuery &query : StoredQueries(m_project).list()) {
                                       if (isListedQuery(query.name))
                                           names.push_back(query.name);
                                       if (!select.empty() && equalsNoCase(query.name, select))
                                           chosen = std::move(query);
                                   }
                                   if (chosen) {
                                       putInForce(chosen->sql, chosen->name);
                                       m_view.showStatement(chosen->sql);
                                   }
                                   m_view.showQueries(names, m_state.activeQueryName);
                                   return chosen.has_value();
                               });
    if (loads)
        m_view.loadURLs();
}

void QueryCommands::loadStoredQuery(std::string_view name) {
    const auto text =
        trapped(m_log, Severity::Warning, "MainForm.LoadStoredQuery()", kContactSupport,
                std::optional<std::string>(), [&] { return StoredQueries(m_project).text(name); });
    if (text)
        m_view.showStatement(*text);
}

bool QueryCommands::isReserved(std::string_view name, const Message &refusal) {
    if (!isReservedQuery(name))
        return false;
    m_examiner.tell(refusal);
    return true;
}

bool QueryCommands::mayReplace(std::string_view name) {
    return !StoredQueries(m_project).text(name) ||
           m_examiner.ask(messages::queryExists()) == Answer::Yes;
}

bool QueryCommands::btnSaveQuery(std::string name) {
    const QueryCheck query = checked(testTyped);
    if (query.errCode != 0) {
        m_examiner.tell(messages::badQueryDefinition());
        return false;
    }
    if (name.empty())
        name = trim(m_view.enterQueryName(messages::enterQueryName()));
    if (name.empty() || isReserved(name, messages::reservedQuery()))
        return false;
    bool saved = false;
    const auto failure = failureOf(m_log, "MainForm.btnSaveQuery_Click()", [&] {
        if (!mayReplace(name))
            return;
        StoredQueries(m_project).save({name, query.sql});
        saved = true;
    });
    if (failure)
        m_examiner.tell(messages::savingQueryFailed(*failure));
    if (saved)
        loadStoredQueries(name);
    return saved;
}

bool QueryCommands::deleteStoredQuery(std::string_view name, DeleteMode mode) {
    if (!mode.silent && isReserved(name, messages::reservedQueryNotDeleted()))
        return false;
    if (!mode.silent && !mode.force && m_examiner.ask(messages::deleteStoredQuery()) != Answer::Yes)
        return false;
    const bool deleted = trapped(m_log, Severity::Warning, "MainForm.DeleteStoredQuery()",
                                 kContactSupport, false, [&] {
                                     StoredQueries queries(m_project);
                                     const bool isThere = queries.text(name).has_value();
                                     queries.remove(name);
                                     return isThere;
                                 });
    const bool wasActive = deleted && equalsNoCase(name, m_state.activeQueryName);
    if (mode.reload && !wasActive)
        loadStoredQueries();
    if (wasActive) {
        takeActiveQuery({});
        m_view.loadURLs();
    }
    return deleted;
}

void QueryCommands::takeStatement(std::string_view sql) {
    const auto failure = failureOf(m_log, "MainForm.PopupMenuSortBy_Click()",
                                   [&] { keepAsDefault(std::string(sql)); });
    if (failure)
        return m_examiner.tell(messages::statementNotKept(*failure));
    putInForce(std::string(sql), std::string(kDefaultQueryName));
    m_view.showStatement(m_state.currentSQLDef);
    loadStoredQueries();
}

void QueryCommands::takeActiveQuery(std::string_view name) {
    const auto text =
        trapped(m_log, Severity::Warning, "MainForm.LoadStoredQuery()", kContactSupport,
                std::optional<std::string>(), [&] {
                    return StoredQueries(m_project).text(name.empty() ? kDefaultQueryName : name);
                });
    putInForce(text.value_or(m_state.defaultSQLDef), std::string(name));
    m_view.showStatement(m_state.currentSQLDef);
    loadStoredQueries();
}

void QueryCommands::takeCustomQuery() {
    m_view.showStatement(m_state.customQueryDef);
}

} // namespace nv
