#pragma once

#include "views/table/TableLayout.h"

#include <QDialog>

class QLineEdit;
class QListWidget;
class QListWidgetItem;

namespace nv {

/// A column's name in one line; columns without a heading have one here too.
QString columnTitle(UrlColumn column);

/// Which columns the table shows, and in which order.
class ColumnsForm final : public QDialog {
    Q_OBJECT

  public:
    /// `defaults` is what the button "Defaults" goes back to.
    ColumnsForm(const TableLayout &layout, const TableLayout &defaults, QWidget *parent = nullptr);

    /// What the examiner made of the layout.
    TableLayout tableLayout() const;

  private:
    void fill(const TableLayout &layout);
    void search(const QString &text);
    void moveCurrent(int by);
    void tickAll(Qt::CheckState state);
    QWidget *newSideButtons();

    TableLayout m_layout;
    TableLayout m_defaults;
    QLineEdit *m_search = nullptr;
    QListWidget *m_columns = nullptr;
};

} // namespace nv
