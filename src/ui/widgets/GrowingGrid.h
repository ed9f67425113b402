#pragma once

#include <QTableWidget>

#include <functional>

namespace nv {

/// A small table that is filled cell by cell: a blank row waits at its end, the Delete key removes
/// the selected rows, and a cell is free text or one of a list of choices.
class GrowingGrid final : public QTableWidget {
    Q_OBJECT

  public:
    /// The choices of a cell, asked for when it is edited; none for free text.
    using Choices = std::function<QStringList(int row, int column)>;
    GrowingGrid(const char *name, const QStringList &headings, Choices choices,
                QWidget *parent = nullptr);

    /// All rows but the waiting one.
    QList<QStringList> filledRows() const;
    void clearRows();
    /// Those with a selected cell.
    void removeSelected();
    /// The cell takes what its editor shows; the editor stays, as arrow keys walk the choices.
    void takeChoice(QWidget *editor);

  signals:
    void changed();

  protected:
    void keyPressEvent(QKeyEvent *event) override;

  private:
    bool isBlank(int row) const;
    void addBlankRow();
    void takeChange(QTableWidgetItem *item);
};

} // namespace nv
