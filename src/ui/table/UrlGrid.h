#pragma once

#include "base/TaskMonitor.h"
#include "ui/table/ColumnFit.h"
#include "ui/table/UrlModel.h"
#include "ui/widgets/PinnedGrid.h"
#include "views/table/TableLayout.h"

#include <QTimer>

#include <optional>

namespace nv {

/// The grid of the Table tab. Columns are moved, sized and hidden through its TableLayout; the
/// sorting itself is the owner's, since it is a long task. Tick and date stay in sight while it
/// scrolls sideways.
class UrlGrid final : public PinnedGrid {
    Q_OBJECT

  public:
    explicit UrlGrid(UrlModel &model, QWidget *parent = nullptr);

    const TableLayout &tableLayout() const { return m_layout; }
    void setTableLayout(TableLayout layout);
    void hideColumn(UrlColumn column);
    /// Makes the column as wide as what it holds, and keeps it so.
    void fitColumn(UrlColumn column);
    void fitAllColumns();
    /// Gives fitted columns their widths when there are rows for the first time in this layout, and
    /// more where the dates are those of another zone.
    void fitToRows();
    /// Shows by which column the rows are sorted, if by one.
    void showSort(const std::optional<ColumnSort> &sort);

    std::optional<UrlId> currentUrl() const;
    /// The records of the chosen rows, or that of the current one when none is chosen.
    RowIds selectedUrls() const;
    /// Makes the row of this record the current one and shows it, when it is in the list.
    bool setCurrentUrl(UrlId id);
    /// The current record, and how many rows stand above it in sight; less than 0 when it isn't in
    /// sight itself.
    struct Spot {
        UrlId id = UrlId::none;
        int rowsAbove = 0;
    };
    std::optional<Spot> currentSpot() const;
    /// Makes its record the current one where it stood, or in the middle, when it is in the list.
    bool goTo(const Spot &spot);

    /// Flips the tick of the current row, and gives all selected rows the same.
    void flipSelectedTags(TaskMonitor &task);
    int selectedRowCount() const;
    /// The next row at or after `fromRow` with the text in a shown column, in either case of
    /// letters. Throws what the database says.
    FindResult find(const QString &text, int fromRow, TaskMonitor &task) const;
    QModelIndex cellOf(const FindResult &found) const;

  signals:
    void sortRequested(nv::UrlColumn column, nv::SortDirection direction);
    void currentUrlChanged();
    /// A click or the space key asks for another tick.
    void tagFlipRequested();
    /// Enter was pressed on a row.
    void pageWanted();
    /// A digit from 1 on was pressed.
    void tagKeyPressed(int digit);
    void headerMenuRequested(nv::UrlColumn column, const QPoint &globalPlace);
    void tableLayoutChanged();

  protected:
    void keyPressEvent(QKeyEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void currentChanged(const QModelIndex &current, const QModelIndex &previous) override;
    QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex &index,
                                                         const QEvent *event) const override;
    void resizeEvent(QResizeEvent *event) override;

  private:
    void setUpHeader();
    void connectHeader();
    void applyLayout();
    void applyWidths();
    void watchSight();
    void widenToSight();
    int rowsInSight() const;
    bool staysInSight(UrlColumn column) const;
    void requestSort(int section);
    void takeMove(int section, int to);
    void takeWidth(int section, int pixels);
    void clickCell(const QModelIndex &cell);
    void askForHeaderMenu();

    UrlModel &m_model;
    TableLayout m_layout;
    ColumnFit m_fit;
    bool m_fitIsDue = true;
    QString m_zone;          ///< heading of the dates when they were measured
    QTimer m_sight;          ///< other rows have come into sight, or other texts
    bool m_applying = false; ///< the header changes because the layout did
};

} // namespace nv
