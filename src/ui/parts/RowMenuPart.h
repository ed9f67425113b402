#pragma once

#include "ui/parts/Workbench.h"

class QMenu;

namespace nv {

/// The pop-up menu of the table's rows, and what Enter and a double click on some cells do.
class RowMenuPart final : public QObject {
    Q_OBJECT

  public:
    explicit RowMenuPart(Workbench &bench);

  private:
    void open(const QPoint &place);
    /// What concerns the cell that was clicked, and no other.
    void addOfCell(QMenu &menu, UrlColumn column);
    void addOfHost(QMenu &menu);
    void addViewers(QMenu &menu);
    void openCell(UrlColumn column);
    void enterPage();
    void showPane(const char *name) const;
    UrlTable &table() const { return *m_bench.table->table(); }
    std::size_t row() const;
    UrlColumn column() const;

    Workbench &m_bench;
    QMenu *m_menu; ///< filled anew each time; a command may run while it is up
};

} // namespace nv
