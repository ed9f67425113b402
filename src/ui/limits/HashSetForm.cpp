#include "ui/limits/HashSetForm.h"

#include "app/messages/HashSetMessages.h"
#include "base/Files.h"
#include "platform/qt/QtText.h"
#include "platform/qt/WithinScreen.h"

#include <QBoxLayout>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>

#include <utility>

namespace nv {

HashSetForm::HashSetForm(QWidget *parent) : QDialog(parent) {
    setObjectName(QStringLiteral("HashSetForm"));
    setWindowTitle(tr("New Hash Set"));
    m_list = new QListWidget;
    m_list->setObjectName(QStringLiteral("lstHashLists"));
    m_list->setAccessibleName(tr("Lists of hashes"));
    m_list->setTextElideMode(Qt::ElideMiddle);
    auto *choose = new QPushButton(tr("&Choose Lists..."));
    choose->setObjectName(QStringLiteral("btnChooseHashLists"));
    choose->setToolTip(tr("Texts: hashes one a line, output of md5sum and its kin, or tables with "
                          "a column MD5, SHA-1 or SHA-256"));
    choose->setAutoDefault(false);
    m_name = new QLineEdit;
    m_name->setObjectName(QStringLiteral("txtHashSetName"));
    m_name->setAccessibleName(tr("Name of the hash set"));
    m_fault = new QLabel;
    m_fault->setObjectName(QStringLiteral("labHashSetFault"));
    m_fault->setTextFormat(Qt::PlainText);
    m_fault->setWordWrap(true);
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    m_okay = buttons->button(QDialogButtonBox::Ok);
    m_okay->setText(tr("&Make"));
    auto *lists = new QVBoxLayout;
    lists->addWidget(m_list);
    lists->addWidget(choose, 0, Qt::AlignLeft);
    auto *rows = new QFormLayout;
    rows->addRow(tr("Lists:"), lists);
    rows->addRow(tr("&Name:"), m_name);
    rows->addRow(tr("Kind:"), newKinds());
    auto *column = new QVBoxLayout(this);
    column->addLayout(rows, 1);
    column->addWidget(m_fault);
    column->addWidget(buttons);
    connect(choose, &QPushButton::clicked, this, &HashSetForm::listsWanted);
    connect(m_name, &QLineEdit::textChanged, this, &HashSetForm::showFault);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    resizeWithinScreen(*this, {560, 340});
    choose->setFocus();
    showFault();
}

QWidget *HashSetForm::newKinds() {
    m_known = new QRadioButton(tr("&Known: nobody needs to look at these files"));
    m_known->setObjectName(QStringLiteral("optHashSetKnown"));
    m_known->setChecked(true);
    m_notable = new QRadioButton(tr("N&otable: these files are looked for"));
    m_notable->setObjectName(QStringLiteral("optHashSetNotable"));
    auto *box = new QWidget;
    auto *column = new QVBoxLayout(box);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(m_known);
    column->addWidget(m_notable);
    return box;
}

void HashSetForm::setLists(std::vector<std::filesystem::path> lists) {
    if (lists.empty())
        return;
    const bool isOwnName =
        !m_name->text().isEmpty() && (m_lists.empty() || name() != textOf(m_lists.front().stem()));
    m_lists = std::move(lists);
    m_list->clear();
    for (const std::filesystem::path &list : m_lists)
        m_list->addItem(toQt(textOf(list)));
    if (!isOwnName)
        m_name->setText(toQt(textOf(m_lists.front().stem())));
    showFault();
}

std::string HashSetForm::name() const {
    return fromQt(m_name->text().trimmed());
}

HashMeaning HashSetForm::meaning() const {
    return m_notable->isChecked() ? HashMeaning::notable : HashMeaning::known;
}

void HashSetForm::showFault() {
    QString fault;
    if (m_lists.empty())
        fault = tr("Choose one or more lists of hashes.");
    else if (name().empty())
        fault = tr("A hash set needs a name.");
    else if (!isHashSetName(name()))
        fault = toQt(noSetNameText(name()));
    m_fault->setText(fault);
    m_okay->setEnabled(fault.isEmpty());
}

} // namespace nv
