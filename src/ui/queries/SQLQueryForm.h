#pragma once

#include "base/Examiner.h"
#include "base/FailureLog.h"
#include "views/queries/QueryBuilder.h"

#include <QDialog>

class QComboBox;
class QLineEdit;
class QListWidget;

namespace SQLite {
class Database;
}

namespace nv {

class StatementBox;

/// The query dialog, a small builder of statements. Accepted by Okay only, when the statement has
/// been kept as the project's setting "QueryName".
class SQLQueryForm final : public QDialog {
    Q_OBJECT

  public:
    SQLQueryForm(SQLite::Database &project, FailureLog &log, Examiner &examiner,
                 QWidget *parent = nullptr);

    /// Trimmed and on one line; what Okay took.
    const std::string &customQueryDef() const { return m_customQueryDef; }
    /// The name that the query is to be stored under; may be empty.
    std::string favoriteName() const;

  private:
    QWidget *newFields();
    QWidget *newCondition();
    QWidget *newButtons();
    void showFields();
    void addCondition();
    void clearStatement();
    void copyStatement();
    void accept() override;

    SQLite::Database &m_project;
    FailureLog &m_log;
    Examiner &m_examiner;
    QueryBuilder m_builder;
    std::string m_customQueryDef;
    QComboBox *m_tables = nullptr;
    QListWidget *m_fields = nullptr;
    QComboBox *m_condition = nullptr;
    QLineEdit *m_value = nullptr;
    QLineEdit *m_name = nullptr;
    StatementBox *m_statement = nullptr;
};

} // namespace nv
