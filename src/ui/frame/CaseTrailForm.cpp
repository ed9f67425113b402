#include "ui/frame/CaseTrailForm.h"

#include "db/trail/CaseTrail.h"
#include "platform/qt/QtText.h"
#include "platform/qt/WithinScreen.h"
#include "time/DateFormat.h"
#include "ui/widgets/GridCopy.h"
#include "views/rows/CellText.h"

#include <QApplication>
#include <QClipboard>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QPushButton>
#include <QTextDocument>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace nv {

namespace {

QStringList cellsOf(const TrailEntry &entry) {
    const auto text = [](const std::string &value) { return toQt(displayText(value)); };
    return {toQt(isoUtc(entry.actionDateUTC)),
            text(entry.action),
            QStringLiteral("%L1").arg(entry.rowCount),
            text(entry.detail),
            text(entry.filePath),
            entry.filePath.empty() ? QString() : QStringLiteral("%L1").arg(entry.fileSize),
            text(entry.md5Hash),
            text(entry.sha256Hash),
            text(entry.appVersion)};
}

QTreeWidget *newList() {
    auto *list = new QTreeWidget;
    list->setObjectName(QStringLiteral("lstTrail"));
    list->setAccessibleName(CaseTrailForm::tr("What was done with the case"));
    list->setHeaderLabels(
        {CaseTrailForm::tr("Date [UTC]"), CaseTrailForm::tr("Action"), CaseTrailForm::tr("Rows"),
         CaseTrailForm::tr("Detail"), CaseTrailForm::tr("File"), CaseTrailForm::tr("Bytes"),
         CaseTrailForm::tr("MD5"), CaseTrailForm::tr("SHA-256"), CaseTrailForm::tr("Version")});
    list->setRootIsDecorated(false);
    list->setUniformRowHeights(true);
    list->setAlternatingRowColors(true);
    list->setSelectionMode(QAbstractItemView::ExtendedSelection);
    letCopy(*list);
    return list;
}

} // namespace

CaseTrailForm::CaseTrailForm(QWidget *parent) : QDialog(parent), m_list(newList()) {
    setObjectName(QStringLiteral("CaseTrailForm"));
    setWindowTitle(tr("Case Trail"));
    resizeWithinScreen(*this, {1100, 480});
    auto *buttons = new QDialogButtonBox;
    QPushButton *verify =
        buttons->addButton(tr("&Verify Source Files"), QDialogButtonBox::ActionRole);
    verify->setObjectName(QStringLiteral("btnVerify"));
    verify->setToolTip(tr("Hash the imported files again and tell which have changed or are gone"));
    QPushButton *copy = buttons->addButton(tr("&Copy All"), QDialogButtonBox::ActionRole);
    copy->setObjectName(QStringLiteral("btnCopyAll"));
    buttons->addButton(QDialogButtonBox::Close); // last: Tab passes over one that others come after
    auto *column = new QVBoxLayout(this);
    column->addWidget(m_list);
    column->addWidget(buttons);
    connect(verify, &QPushButton::clicked, this, &CaseTrailForm::verifyWanted);
    connect(copy, &QPushButton::clicked, this, &CaseTrailForm::copyAll);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

void CaseTrailForm::showEntries(const std::vector<TrailEntry> &entries) {
    m_list->clear();
    for (const TrailEntry &entry : entries) {
        auto *item = new QTreeWidgetItem(m_list, cellsOf(entry));
        item->setToolTip(3, Qt::convertFromPlainText(item->text(3)));
        item->setToolTip(4, Qt::convertFromPlainText(item->text(4)));
        item->setTextAlignment(2, Qt::AlignRight | Qt::AlignVCenter);
        item->setTextAlignment(5, Qt::AlignRight | Qt::AlignVCenter);
    }
    for (int column = 0; column < m_list->columnCount(); ++column)
        m_list->resizeColumnToContents(column);
    m_list->scrollToBottom();
}

void CaseTrailForm::copyAll() {
    QStringList lines;
    for (int row = 0; row < m_list->topLevelItemCount(); ++row) {
        QStringList cells;
        for (int column = 0; column < m_list->columnCount(); ++column)
            cells += m_list->topLevelItem(row)->text(column);
        lines += cells.join(u'\t');
    }
    QApplication::clipboard()->setText(lines.join(u'\n'));
}

} // namespace nv
