#pragma once

#include "ui/parts/Workbench.h"
#include "ui/queries/QueryActions.h"
#include "views/queries/QueryCommands.h"

#include <memory>

class QMainWindow;

namespace nv {

class QueryTab;

/// Queries in the main window: their tab and menu, and their keeping in step with the table, which
/// has a selector of its own.
class QueryPart final : public QObject, public QueryView, public Limiter {
    Q_OBJECT

  public:
    explicit QueryPart(Workbench &bench);
    ~QueryPart() override;
    QueryPart(const QueryPart &) = delete;
    QueryPart &operator=(const QueryPart &) = delete;

    // Limiter
    QVariant limit() const override;
    void setLimit(const QVariant &limit) override;
    std::vector<LimitChip> chips() const override;

  private:
    void addMenu(QMainWindow &window);
    void connectActions();
    void open();
    void close();
    void followTable();
    void takeGrid();
    void showBuilder();
    QStringList deadQueries() const;
    QString ownStatement() const;

    // QueryView
    std::string statement() const override;
    void showStatement(const std::string &sql) override;
    void showQueries(const std::vector<std::string> &names, const std::string &selected) override;
    std::string enterQueryName(const Message &prompt) override;
    void statementChanged() override;
    void loadURLs() override;

    Workbench &m_bench;
    QueryActions m_actions;
    QueryTab *m_tab;
    std::unique_ptr<QueryCommands> m_commands; ///< while a project is open
};

} // namespace nv
