#pragma once

#include "ui/parts/Workbench.h"

class QMainWindow;
class QMenu;

namespace nv {

class ColumnLimitForm;
class ValueCounter;

/// Limits by what stands in a column, which the menus of the table's headings offer.
class ColumnLimitsPart final : public QObject, public Limiter {
    Q_OBJECT

  public:
    explicit ColumnLimitsPart(Workbench &bench);

    // Limiter
    QVariant limit() const override;
    void setLimit(const QVariant &limit) override;
    std::vector<LimitChip> chips() const override;
    bool asksAgain() const override { return false; }

  private:
    void addAction(QMainWindow &window);
    void chooseOfCurrent();
    void addToMenu(QMenu &menu, UrlColumn column);
    void choose(UrlColumn column);
    void countInto(ColumnLimitForm &form, ValueCounter &counter, const RowIds &ids,
                   UrlColumn column);
    void put(UrlColumn column, const std::optional<ColumnLimit> &limit);

    Workbench &m_bench;
};

} // namespace nv
