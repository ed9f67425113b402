#include "ui/views/PropertiesPane.h"

#include "platform/qt/QtText.h"
#include "ui/views/GridCopy.h"
#include "ui/views/ShownLines.h"
#include "ui/views/ShownSigns.h"
#include "views/CellText.h"

#include <QBoxLayout>
#include <QHeaderView>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSplitter>
#include <QTreeWidget>

namespace nv {

namespace {

constexpr int kNameWidth = 190; ///< pixels

QTreeWidget *newList() {
    auto *list = new QTreeWidget;
    list->setObjectName(QStringLiteral("PropertiesGrid"));
    list->setAccessibleName(PropertiesPane::tr("Properties of the record"));
    list->setColumnCount(2);
    list->setHeaderLabels({PropertiesPane::tr("Property"), PropertiesPane::tr("Value")});
    list->header()->resizeSection(0, kNameWidth);
    list->header()->setObjectName(QStringLiteral("PropertiesGridHeader"));
    list->setRootIsDecorated(false);
    list->setUniformRowHeights(true);
    list->setAlternatingRowColors(true);
    list->setTextElideMode(Qt::ElideRight);
    list->setSelectionMode(QAbstractItemView::ExtendedSelection);
    letCopy(*list);
    return list;
}

QPlainTextEdit *newWholeText() {
    auto *whole = new QPlainTextEdit;
    whole->setObjectName(QStringLiteral("txtPropertyValue"));
    whole->setAccessibleName(PropertiesPane::tr("Whole text of the property"));
    whole->setReadOnly(true);
    whole->setTabChangesFocus(true);
    whole->setPlaceholderText(PropertiesPane::tr("Choose a property to see its whole text."));
    return whole;
}

} // namespace

PropertiesPane::PropertiesPane(std::function<std::vector<Property>(UrlId)> load, QWidget *parent)
    // The one that is read first, and is hardly ever whole in its cell.
    : QWidget(parent), m_load(std::move(load)), m_chosen(QStringLiteral("URL")) {
    setObjectName(QStringLiteral("PropertiesPane"));
    m_list = newList();
    auto *splitter = new QSplitter(Qt::Horizontal);
    splitter->setObjectName(QStringLiteral("propertiesSplitter"));
    splitter->addWidget(m_list);
    splitter->addWidget(newWhole());
    splitter->setStretchFactor(0, 3);
    splitter->setStretchFactor(1, 2);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(splitter);
    connect(m_list, &QTreeWidget::currentItemChanged, this, &PropertiesPane::showChosen);
}

/// The whole text with the two questions that it raises.
QWidget *PropertiesPane::newWhole() {
    m_whole = newWholeText();
    m_why = new QPushButton(tr("W&hy?"));
    m_why->setObjectName(QStringLiteral("btnWhy"));
    m_why->setAccessibleName(tr("Why has the property this value?"));
    m_why->setToolTip(tr("Where the value comes from: file, place, the number as it lies, the rule "
                         "that made it. The evidence is read again"));
    m_bytes = new QPushButton(tr("&Bytes"));
    m_bytes->setObjectName(QStringLiteral("btnBytes"));
    m_bytes->setAccessibleName(tr("Show the bytes of the value"));
    m_bytes->setToolTip(tr("Leads to the place in the source file, in the pane Hex"));
    auto *box = new QWidget;
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(m_why);
    buttons->addWidget(m_bytes);
    buttons->addStretch();
    auto *column = new QVBoxLayout(box);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(m_whole);
    column->addLayout(buttons);
    m_why->setEnabled(false);
    m_bytes->setEnabled(false);
    connect(m_why, &QPushButton::clicked, this, [this] { emit whyWanted(m_chosen); });
    connect(m_bytes, &QPushButton::clicked, this, &PropertiesPane::bytesWanted);
    return box;
}

void PropertiesPane::showWhy(const QString &why, bool hasBytes) {
    showChosen();
    m_whole->appendPlainText(u'\n' + why);
    m_whole->moveCursor(QTextCursor::Start);
    m_bytes->setEnabled(hasBytes);
}

void PropertiesPane::showRecord(UrlId id) {
    m_properties = m_load(id);
    const QSignalBlocker quiet(m_list);
    m_list->clear();
    for (const Property &property : m_properties) {
        auto *item = new QTreeWidgetItem(
            m_list, {toQt(property.name), shownSigns(toQt(displayText(property.value)))});
        if (item->text(0) == m_chosen)
            m_list->setCurrentItem(item, 0);
    }
    showChosen();
}

void PropertiesPane::clear() {
    m_properties.clear();
    const QSignalBlocker quiet(m_list);
    m_list->clear();
    m_whole->clear();
    m_why->setEnabled(false);
    m_bytes->setEnabled(false);
}

void PropertiesPane::showChosen() {
    QTreeWidgetItem *item = m_list->currentItem();
    const auto place = static_cast<std::size_t>(m_list->indexOfTopLevelItem(item));
    const bool isChosen = item && place < m_properties.size();
    m_why->setEnabled(isChosen);
    m_bytes->setEnabled(false);
    if (!isChosen)
        return m_whole->clear();
    m_chosen = item->text(0);
    m_whole->setPlainText(shownLines(m_properties[place].value));
}

} // namespace nv
