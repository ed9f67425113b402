#include "ui/search/HitCountsForm.h"

#include "base/DisplayText.h"
#include "platform/qt/QtText.h"
#include "platform/qt/WithinScreen.h"

#include <QBoxLayout>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLineEdit>
#include <QLocale>
#include <QPushButton>
#include <QTreeWidget>

namespace nv {

namespace {

constexpr int kName = 0;
constexpr int kRows = 1;
constexpr int kValueRole = Qt::UserRole;

} // namespace

HitCountsForm::HitCountsForm(const QString &title, const NamedCounts &counts, QWidget *parent)
    : QDialog(parent) {
    setObjectName(QStringLiteral("HitCountsForm"));
    setWindowTitle(title);
    m_part = new QLineEdit;
    m_part->setObjectName(QStringLiteral("txtHitName"));
    m_part->setAccessibleName(tr("Only names with this text"));
    m_part->setPlaceholderText(tr("Only names with this text"));
    m_part->setClearButtonEnabled(true);
    m_list = new QTreeWidget;
    m_list->setObjectName(QStringLiteral("lstHitNames"));
    m_list->setAccessibleName(title);
    m_list->setHeaderLabels({tr("Name"), tr("Rows")});
    m_list->header()->setAccessibleName(tr("Headings of the names"));
    m_list->header()->setStretchLastSection(false);
    m_list->header()->setSectionResizeMode(kName, QHeaderView::Stretch);
    m_list->header()->setSectionResizeMode(kRows, QHeaderView::ResizeToContents);
    m_list->setRootIsDecorated(false);
    m_list->setUniformRowHeights(true);
    for (const auto &[name, rows] : counts) {
        if (name.empty())
            continue; // no operator asks for them
        auto *item = new QTreeWidgetItem(m_list);
        item->setText(kName, toQt(displayText(name)));
        item->setText(kRows, QLocale().toString(qint64{rows}));
        item->setTextAlignment(kRows, Qt::AlignRight | Qt::AlignVCenter);
        item->setData(kName, kValueRole, QByteArray::fromStdString(name));
    }
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    QPushButton *look = buttons->button(QDialogButtonBox::Ok);
    look->setText(tr("&Look There Only"));
    look->setEnabled(false);
    auto *column = new QVBoxLayout(this);
    column->addWidget(m_part);
    column->addWidget(m_list, 1);
    column->addWidget(buttons);
    connect(m_part, &QLineEdit::textChanged, this, &HitCountsForm::showWith);
    connect(m_list, &QTreeWidget::itemSelectionChanged, this,
            [this, look] { look->setEnabled(chosen().has_value()); });
    connect(m_list, &QTreeWidget::itemActivated, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    resizeWithinScreen(*this, {420, 480});
}

std::optional<std::string> HitCountsForm::chosen() const {
    const QList<QTreeWidgetItem *> items = m_list->selectedItems();
    if (items.isEmpty() || items.front()->isHidden())
        return std::nullopt;
    return items.front()->data(kName, kValueRole).toByteArray().toStdString();
}

void HitCountsForm::showWith(const QString &part) {
    for (int row = 0; row < m_list->topLevelItemCount(); ++row) {
        QTreeWidgetItem *item = m_list->topLevelItem(row);
        item->setHidden(!item->text(kName).contains(part.trimmed(), Qt::CaseInsensitive));
        if (item->isHidden())
            item->setSelected(false);
    }
}

} // namespace nv
