#include "ui/views/PropertiesPane.h"

#include "platform/qt/QtText.h"
#include "ui/views/GridCopy.h"
#include "ui/views/ShownLines.h"
#include "ui/views/ShownSigns.h"
#include "views/CellText.h"

#include <QBoxLayout>
#include <QHeaderView>
#include <QPlainTextEdit>
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
    m_whole = newWholeText();
    auto *splitter = new QSplitter(Qt::Horizontal);
    splitter->setObjectName(QStringLiteral("propertiesSplitter"));
    splitter->addWidget(m_list);
    splitter->addWidget(m_whole);
    splitter->setStretchFactor(0, 3);
    splitter->setStretchFactor(1, 2);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(splitter);
    connect(m_list, &QTreeWidget::currentItemChanged, this, &PropertiesPane::showChosen);
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
}

void PropertiesPane::showChosen() {
    QTreeWidgetItem *item = m_list->currentItem();
    const auto place = static_cast<std::size_t>(m_list->indexOfTopLevelItem(item));
    if (!item || place >= m_properties.size())
        return m_whole->clear();
    m_chosen = item->text(0);
    m_whole->setPlainText(shownLines(m_properties[place].value));
}

} // namespace nv
