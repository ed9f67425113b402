#include "ui/table/LayoutBar.h"

#include "platform/qt/QtText.h"
#include "ui/table/UrlGrid.h"

#include <QBoxLayout>
#include <QComboBox>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QToolButton>

namespace nv {

namespace {

QString whyRefused(LayoutNameFault fault) {
    switch (fault) {
    case LayoutNameFault::TooLong:
        return LayoutBar::tr("A name has at most %1 characters.").arg(LayoutBook::kLongestName);
    case LayoutNameFault::Taken:
        return LayoutBar::tr("There is a layout of this name. Choose another name.");
    default:
        return LayoutBar::tr("The layout needs a name.");
    }
}

} // namespace

LayoutBar::LayoutBar(UrlGrid &grid, QWidget *parent) : QWidget(parent), m_grid(grid) {
    setObjectName(QStringLiteral("layoutBar"));
    m_names = new QComboBox;
    m_names->setObjectName(QStringLiteral("cbLayout"));
    m_names->setAccessibleName(tr("Layout"));
    m_names->setToolTip(tr("Which columns the table shows; kept with the project"));
    m_names->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_names->setMinimumContentsLength(10);
    auto *label = new QLabel(tr("&Layout:"));
    label->setBuddy(m_names);
    buildMenu();
    auto *more = new QToolButton;
    more->setObjectName(QStringLiteral("btnLayout"));
    more->setText(QStringLiteral("..."));
    more->setAccessibleName(tr("Layouts"));
    more->setToolTip(tr("Save, rename and delete layouts"));
    more->setFocusPolicy(Qt::TabFocus);
    // A menu of the button's own would have an arrow drawn over its text.
    connect(more, &QToolButton::clicked, this,
            [this, more] { m_menu->popup(more->mapToGlobal(QPoint(0, more->height()))); });
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(label);
    row->addWidget(m_names);
    row->addWidget(more);
    connect(m_names, &QComboBox::activated, this, [this] { choose(m_names->currentText()); });
    showNames();
    m_grid.setTableLayout(m_book.layout());
}

void LayoutBar::buildMenu() {
    m_menu = new QMenu(this);
    m_menu->setObjectName(QStringLiteral("menuLayout"));
    const auto add = [this](const char *name, const QString &text, auto act) {
        QAction *action = m_menu->addAction(text, this, act);
        action->setObjectName(QLatin1String(name));
        return action;
    };
    add("actLayoutSaveAs", tr("&Save Layout As..."), &LayoutBar::saveAs);
    m_rename = add("actLayoutRename", tr("&Rename Layout..."), &LayoutBar::rename);
    m_remove = add("actLayoutDelete", tr("&Delete Layout"), &LayoutBar::remove);
    m_menu->addSeparator();
    m_reset = add("actLayoutReset", tr("Reset &Columns"), &LayoutBar::reset);
    add("actLayoutFit", tr("&Fit All Columns to What They Hold"),
        [this] { m_grid.fitAllColumns(); });
}

const LayoutBook &LayoutBar::book() {
    m_book.layout() = m_grid.tableLayout();
    return m_book;
}

void LayoutBar::restore(const TableLayout::Read &read) {
    m_book.restore(read);
    showNames();
    m_grid.setTableLayout(m_book.layout());
}

void LayoutBar::save(const TableLayout::Write &write) {
    book().save(write);
}

void LayoutBar::choose(const QString &name) {
    book();
    if (!m_book.choose(fromQt(name)))
        return;
    showActive();
    emit edited();
}

void LayoutBar::showActive() {
    showNames();
    m_grid.setTableLayout(m_book.layout());
    emit chosen();
}

void LayoutBar::showNames() {
    m_names->clear();
    for (const std::string &name : m_book.names())
        m_names->addItem(toQt(name));
    m_names->setCurrentText(toQt(m_book.active()));
    m_rename->setEnabled(!m_book.isBuiltIn());
    m_remove->setEnabled(!m_book.isBuiltIn());
}

std::optional<QString> LayoutBar::askName(const QString &title, const QString &first,
                                          bool renamesActive) {
    QString name = first;
    QString text = tr("The layout's name:");
    while (true) {
        QInputDialog dialog(window());
        dialog.setObjectName(QStringLiteral("LayoutNameForm"));
        dialog.setWindowTitle(title);
        dialog.setLabelText(text);
        dialog.setTextValue(name);
        if (dialog.exec() != QDialog::Accepted)
            return std::nullopt;
        name = dialog.textValue();
        const LayoutNameFault fault = m_book.check(fromQt(name), renamesActive);
        if (fault == LayoutNameFault::None)
            return name;
        text = whyRefused(fault);
    }
}

void LayoutBar::saveAs() {
    book();
    const auto name = askName(tr("Save Layout As"), {}, false);
    if (!name)
        return;
    const bool wasClassic = isClassic();
    m_book.saveAs(fromQt(*name));
    showNames();
    if (wasClassic)
        emit chosen();
    emit edited();
}

void LayoutBar::rename() {
    if (const auto name = askName(tr("Rename Layout"), toQt(m_book.active()), true)) {
        m_book.rename(fromQt(*name));
        showNames();
        emit edited();
    }
}

void LayoutBar::remove() {
    m_book.remove();
    showActive();
    emit edited();
}

void LayoutBar::reset() {
    m_book.reset();
    showActive();
    emit edited();
}

} // namespace nv
