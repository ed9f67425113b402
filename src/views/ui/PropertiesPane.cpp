#include "views/ui/PropertiesPane.h"

#include "base/Text.h"
#include "platform/qt/QtText.h"
#include "views/CellText.h"
#include "views/ui/ColumnsForm.h"

#include <QBoxLayout>
#include <QHeaderView>
#include <QPlainTextEdit>
#include <QSplitter>
#include <QTreeWidget>

namespace nv {

namespace {

constexpr int kNameWidth = 190;               ///< pixels
constexpr std::size_t kMostChars = 1'000'000; ///< a header or body that is longer is cut

QTreeWidget *newList() {
    auto *list = new QTreeWidget;
    list->setObjectName(QStringLiteral("PropertiesGrid"));
    list->setColumnCount(2);
    list->setHeaderLabels({PropertiesPane::tr("Property"), PropertiesPane::tr("Value")});
    list->header()->resizeSection(0, kNameWidth);
    list->setRootIsDecorated(false);
    list->setUniformRowHeights(true);
    list->setAlternatingRowColors(true);
    list->setTextElideMode(Qt::ElideRight);
    for (const UrlColumnFacts &facts : kUrlColumns) {
        if (facts.column == UrlColumn::Icon)
            continue;
        auto *item =
            new QTreeWidgetItem(list, {columnTitle(facts.column)}, static_cast<int>(facts.column));
        // The one that is read first, and is hardly ever whole in its cell.
        if (facts.column == UrlColumn::Value)
            list->setCurrentItem(item, 0);
    }
    return list;
}

QPlainTextEdit *newWholeText() {
    auto *whole = new QPlainTextEdit;
    whole->setObjectName(QStringLiteral("txtPropertyValue"));
    whole->setReadOnly(true);
    whole->setTabChangesFocus(true);
    whole->setPlaceholderText(PropertiesPane::tr("Choose a property to see its whole text."));
    return whole;
}

std::string valueOf(UrlTable &table, std::size_t place, UrlColumn column) {
    if (column == UrlColumn::Tag)
        return table.isTagged(place) ? "Yes" : "No";
    return table.cell(place, column);
}

/// Text of several lines, each with the stand-ins that cells have.
QString shownLines(const std::string &text) {
    const std::string unified = replaceAll(text, "\r\n", "\n");
    QStringList lines;
    for (const std::string_view line : split(unified, '\n'))
        lines += toQt(displayText(line, kMostChars));
    return lines.join(u'\n');
}

} // namespace

PropertiesPane::PropertiesPane(std::function<UrlTable *()> table, QWidget *parent)
    : QWidget(parent), m_openTable(std::move(table)) {
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
    m_table = m_openTable();
    const auto place = m_table ? m_table->placeOf(id) : std::nullopt;
    if (!place)
        return clear();
    m_place = *place;
    for (int row = 0; row < m_list->topLevelItemCount(); ++row) {
        QTreeWidgetItem *item = m_list->topLevelItem(row);
        item->setText(1, toQt(valueOf(*m_table, m_place, static_cast<UrlColumn>(item->type()))));
    }
    showChosen();
}

void PropertiesPane::clear() {
    m_table = nullptr;
    for (int row = 0; row < m_list->topLevelItemCount(); ++row)
        m_list->topLevelItem(row)->setText(1, {});
    m_whole->clear();
}

void PropertiesPane::showChosen() {
    const QTreeWidgetItem *item = m_list->currentItem();
    if (!m_table || !item)
        return;
    const auto column = static_cast<UrlColumn>(item->type());
    const bool isText = factsOf(column).rule == CellRule::Text;
    m_whole->setPlainText(isText ? shownLines(m_table->fullText(m_place, column))
                                 : toQt(valueOf(*m_table, m_place, column)));
}

} // namespace nv
