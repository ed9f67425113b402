#include "ui/limits/HashSetsForm.h"

#include "base/DisplayText.h"
#include "platform/qt/QtText.h"
#include "platform/qt/WithinScreen.h"
#include "ui/widgets/GridCopy.h"

#include <QBoxLayout>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTextDocument>
#include <QTreeWidget>

#include <algorithm>
#include <utility>

namespace nv {

namespace {

enum Column { kName, kMeaning, kHashes, kRows, kMadeOf };

QString shown(const std::string &text) {
    return toQt(displayText(text));
}

QString numberText(const std::optional<std::uint64_t> &number) {
    return number ? QStringLiteral("%L1").arg(*number) : QString();
}

QLabel *newLabel(const char *name) {
    auto *label = new QLabel;
    label->setObjectName(QLatin1String(name));
    label->setTextFormat(Qt::PlainText); // it quotes names of files
    label->setWordWrap(true);
    label->hide();
    return label;
}

QTreeWidget *newList() {
    auto *list = new QTreeWidget;
    list->setObjectName(QStringLiteral("lstHashSets"));
    list->setAccessibleName(HashSetsForm::tr("Hash sets"));
    list->setHeaderLabels({HashSetsForm::tr("Name"), HashSetsForm::tr("Kind"),
                           HashSetsForm::tr("Hashes"), HashSetsForm::tr("Rows Found"),
                           HashSetsForm::tr("Made Of")});
    list->header()->setAccessibleName(HashSetsForm::tr("Headings of the hash sets"));
    list->headerItem()->setTextAlignment(kHashes, Qt::AlignRight | Qt::AlignVCenter);
    list->headerItem()->setTextAlignment(kRows, Qt::AlignRight | Qt::AlignVCenter);
    list->setRootIsDecorated(false);
    list->setUniformRowHeights(true);
    list->setAlternatingRowColors(true);
    list->setTextElideMode(Qt::ElideMiddle);
    letCopy(*list);
    return list;
}

} // namespace

HashSetsForm::HashSetsForm(QWidget *parent) : QDialog(parent), m_list(newList()) {
    setObjectName(QStringLiteral("HashSetsForm"));
    setWindowTitle(tr("Hash Sets"));
    resizeWithinScreen(*this, {760, 420});
    m_empty = newLabel("labNoHashSets");
    m_empty->setText(tr("There are no hash sets yet. Add one of lists of MD5, SHA-1 or SHA-256: of "
                        "known files, which nobody needs to look at, or of notable ones, which are "
                        "looked for."));
    m_note = newLabel("labHashSetsNote");
    m_why = newLabel("labHashSetsWhy");
    m_add = newButton("btnAddHashSet", tr("&Add..."), tr("Make a set of lists of hashes"));
    m_remove = newButton("btnRemoveHashSet", tr("&Remove..."), tr("Remove the chosen set"));
    m_match = newButton("btnMatchHashSets", tr("&Match Now"),
                        tr("Find the rows of the project whose file is in a set"));
    m_rows = newButton("btnHashSetRows", tr("&Show Its Rows"),
                       tr("Show only the rows that were found in the chosen set"));
    auto *buttons = new QDialogButtonBox;
    for (QPushButton *button : {m_add, m_remove, m_match, m_rows})
        buttons->addButton(button, QDialogButtonBox::ActionRole);
    // Last: Tab passes over one that others come after. Enter in the list shows the rows of a set:
    // it mustn't close the window besides.
    buttons->addButton(QDialogButtonBox::Close)->setAutoDefault(false);
    auto *column = new QVBoxLayout(this);
    column->addWidget(m_empty);
    column->addWidget(m_list, 1);
    column->addWidget(m_note);
    column->addWidget(m_why);
    column->addWidget(buttons);
    connect(m_add, &QPushButton::clicked, this, &HashSetsForm::addWanted);
    connect(m_remove, &QPushButton::clicked, this,
            [this] { emit removeWanted(toQt(current()->name)); });
    connect(m_match, &QPushButton::clicked, this, &HashSetsForm::matchWanted);
    connect(m_rows, &QPushButton::clicked, this,
            [this] { emit rowsWanted(toQt(current()->name)); });
    connect(m_list, &QTreeWidget::itemSelectionChanged, this, &HashSetsForm::enableButtons);
    connect(m_list, &QTreeWidget::itemActivated, m_rows, &QPushButton::click);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

QPushButton *HashSetsForm::newButton(const char *name, const QString &text, const QString &hint) {
    auto *button = new QPushButton(text, this);
    button->setObjectName(QLatin1String(name));
    button->setToolTip(hint);
    button->setAutoDefault(false);
    return button;
}

void HashSetsForm::addItem(const ListedHashSet &set) {
    auto *item = new QTreeWidgetItem(m_list, {shown(set.name), toQt(wordOf(set.meaning)),
                                              numberText(set.hashes), numberText(set.rows),
                                              shown(set.fault.empty() ? set.madeOf : set.fault)});
    item->setToolTip(kMadeOf, Qt::convertFromPlainText(item->text(kMadeOf)));
    item->setToolTip(kName, Qt::convertFromPlainText(item->text(kName)));
    for (const int column : {kHashes, kRows})
        item->setTextAlignment(column, Qt::AlignRight | Qt::AlignVCenter);
}

void HashSetsForm::setSets(std::vector<ListedHashSet> sets) {
    const ListedHashSet *before = current();
    const std::string name = before ? before->name : std::string();
    m_list->clear();
    m_sets = std::move(sets);
    for (const ListedHashSet &set : m_sets)
        addItem(set);
    for (const int column : {kName, kMeaning, kHashes, kRows})
        m_list->resizeColumnToContents(column);
    constexpr int kWidestName = 30; // characters
    m_list->setColumnWidth(kName, std::min(m_list->columnWidth(kName),
                                           kWidestName * fontMetrics().averageCharWidth()));
    const auto again = std::ranges::find(m_sets, name, &ListedHashSet::name);
    const auto place = again == m_sets.end() ? 0 : again - m_sets.begin();
    if (!m_sets.empty())
        m_list->setCurrentItem(m_list->topLevelItem(static_cast<int>(place)));
    m_empty->setVisible(m_sets.empty());
    enableButtons();
}

const ListedHashSet *HashSetsForm::current() const {
    const QList<QTreeWidgetItem *> chosen = m_list->selectedItems();
    if (chosen.isEmpty())
        return nullptr;
    return &m_sets.at(static_cast<std::size_t>(m_list->indexOfTopLevelItem(chosen.front())));
}

void HashSetsForm::enableButtons() {
    const ListedHashSet *set = current();
    const bool anyThere =
        std::ranges::any_of(m_sets, [](const ListedHashSet &each) { return each.isThere; });
    m_remove->setEnabled(set && set->isThere);
    m_match->setEnabled(m_mayMatch && anyThere);
    m_rows->setEnabled(set && set->rows.value_or(0) > 0);
}

void HashSetsForm::setHindrance(const QString &why) {
    m_mayMatch = why.isEmpty();
    m_why->setText(why);
    m_why->setVisible(!why.isEmpty());
    enableButtons();
}

void HashSetsForm::showNote(const QString &note) {
    m_note->setText(note);
    m_note->setVisible(!note.isEmpty());
}

} // namespace nv
