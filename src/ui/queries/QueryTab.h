#pragma once

#include "ui/queries/QueryActions.h"
#include "views/queries/QueryGrid.h"

#include <QWidget>

#include <string>
#include <vector>

class QComboBox;

namespace nv {

class GrowingGrid;
class StatementBox;

/// The Query tab: stored queries, the grids that a statement is built in, and the statement. It
/// decides nothing: buttons are actions, and what they do is shown through the setters.
class QueryTab final : public QWidget {
    Q_OBJECT

  public:
    explicit QueryTab(const QueryActions &actions, QWidget *parent = nullptr);

    /// What the cells offer; empties the grids.
    void setFields(std::vector<QueryField> fields);
    void setQueries(const QStringList &names, const QString &selected);
    QString chosenQuery() const;
    QString statement() const;
    void setStatement(const QString &sql);
    std::vector<QueryRow> rows() const;
    std::vector<QuerySortRow> sorts() const;
    void focusStatement();

  signals:
    void gridChanged();
    void queryChosen(const QString &name);

  private:
    QWidget *newChoiceBar(const QueryActions &actions);
    QWidget *newGrids();
    QWidget *newStatement(const QueryActions &actions);
    QStringList fieldNames() const;
    QStringList cellChoices(int row, int column) const;

    QComboBox *m_queries = nullptr;
    GrowingGrid *m_grid = nullptr;
    GrowingGrid *m_sorts = nullptr;
    StatementBox *m_statement = nullptr;
    std::vector<QueryField> m_fields;
};

} // namespace nv
