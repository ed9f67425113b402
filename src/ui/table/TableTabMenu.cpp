#include "ui/table/ColumnsForm.h"
#include "ui/table/LayoutBar.h"
#include "ui/table/TableTab.h"

#include <QMenu>

// What the heading of a column offers.
namespace nv {

void TableTab::showColumnsForm() {
    ColumnsForm form(m_grid->tableLayout(), m_layouts->book().defaults(), window());
    if (form.exec() == QDialog::Accepted)
        m_grid->setTableLayout(form.tableLayout());
}

void TableTab::showHeaderMenu(UrlColumn column, const QPoint &place) {
    QMenu menu(this);
    menu.setObjectName(QStringLiteral("headerMenu"));
    QAction *ascending = menu.addAction(
        tr("Sort &Ascending"), this, [=, this] { sortByColumn(column, SortDirection::Ascending); });
    QAction *descending = menu.addAction(tr("Sort &Descending"), this, [=, this] {
        sortByColumn(column, SortDirection::Descending);
    });
    QAction *asQueried = menu.addAction(tr("In the &Query's Order"), this, &TableTab::forgetSort);
    asQueried->setObjectName(QStringLiteral("actForgetSort"));
    ascending->setEnabled(m_table && isSortable(column));
    descending->setEnabled(ascending->isEnabled());
    asQueried->setEnabled(m_sort.has_value());
    menu.addSeparator();
    menu.addAction(tr("&Fit to What It Holds"), this, [=, this] { m_grid->fitColumn(column); });
    menu.addAction(tr("&Hide \"%1\"").arg(columnTitle(column)), this,
                   [=, this] { m_grid->hideColumn(column); });
    menu.addAction(tr("&Columns..."), this, &TableTab::showColumnsForm);
    emit headerMenuComesUp(menu, column);
    menu.exec(place);
}

} // namespace nv
