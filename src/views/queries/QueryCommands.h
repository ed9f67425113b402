#pragma once

#include "base/Examiner.h"
#include "base/FailureLog.h"
#include "views/queries/QueryDefinitions.h"
#include "views/queries/QueryGrid.h"
#include "views/queries/TestQuery.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace nv {

/// What the query commands see and change of a window.
class QueryView {
  public:
    virtual ~QueryView() = default;
    /// The statement box `txtSQLDef`.
    virtual std::string statement() const = 0;
    virtual void showStatement(const std::string &sql) = 0;
    /// Fills the selector `cbQueries`; `selected` may be a name that isn't listed.
    virtual void showQueries(const std::vector<std::string> &names,
                             const std::string &selected) = 0;
    /// Empty when the examiner gives none.
    virtual std::string enterQueryName(const Message &prompt) = 0;
    /// The statement in force is another one: what shows its pages is out of date.
    virtual void statementChanged() = 0;
    virtual void loadURLs() = 0;
};

struct DeleteMode {
    bool silent = false; ///< neither refuses reserved names nor asks
    bool reload = true;  ///< the selector
    bool force = false;  ///< doesn't ask
};

/// The buttons of the Query tab. What an examiner typed is tested on a connection that can only
/// read before anything changes: a statement that fails leaves all as it was.
class QueryCommands {
  public:
    /// All must outlive this, and `project` must be open.
    QueryCommands(SQLite::Database &project, QueryDefinitions &state, FailureLog &log,
                  Examiner &examiner, QueryView &view)
        : m_project(project), m_state(state), m_log(log), m_examiner(examiner), m_view(view) {}

    /// After a project was opened: its "_DEFAULT" is in force, and nothing can be undone.
    void start();
    /// Puts the grids' statement into the box. False, and nothing is changed, for empty grids.
    bool formatQuerySQL(std::span<const QueryRow> rows, std::span<const QuerySortRow> sorts);
    void btnValidateSQL();
    /// Keeps the box's statement as "_DEFAULT" and loads its rows.
    bool btnApplyQuery();
    /// Goes back to the statement before; once more, and it comes again.
    void btnUndoQuery();
    void btnDefaultQuery();

    /// Fills the selector with the examiner's queries. A name that is given, and known, is put in
    /// force and loaded.
    void loadStoredQueries(std::string_view select = {});
    /// Puts the query's text into the box, and no more.
    void loadStoredQuery(std::string_view name);
    /// Keeps the box's statement under a name that is asked for, unless one is given.
    bool btnSaveQuery(std::string name = {});
    bool deleteStoredQuery(std::string_view name, DeleteMode mode = {});

    /// The rows of `sql` have been loaded already, by a quick sort: it is in force from now on.
    void takeStatement(std::string_view sql);
    /// The table has loaded this query by itself; empty for "_DEFAULT".
    void takeActiveQuery(std::string_view name);
    /// The query dialog's statement goes into the box.
    void takeCustomQuery();

  private:
    using Test = QueryCheck (*)(std::string_view, SQLite::Database &, FailureLog &);
    QueryCheck checked(Test test) const;
    void putInForce(std::string sql, std::string name);
    void keepAsDefault(const std::string &sql);
    bool isReserved(std::string_view name, const Message &refusal);
    bool mayReplace(std::string_view name);

    SQLite::Database &m_project;
    QueryDefinitions &m_state;
    FailureLog &m_log;
    Examiner &m_examiner;
    QueryView &m_view;
};

/// Queries whose name begins with "_" are the program's own.
bool isReservedQuery(std::string_view name);
/// Names with "~" are kept but never listed: older projects hold system objects under them.
bool isListedQuery(std::string_view name);

} // namespace nv
