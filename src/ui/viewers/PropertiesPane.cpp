#include "ui/viewers/PropertiesPane.h"

#include "platform/qt/QtText.h"
#include "ui/viewers/HitViewer.h"
#include "ui/widgets/GridCopy.h"
#include "ui/widgets/ShownLines.h"
#include "ui/widgets/ShownSigns.h"
#include "views/rows/CellText.h"

#include <QBoxLayout>
#include <QCheckBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QSplitter>
#include <QTreeWidget>

#include <utility>

namespace nv {

namespace {

constexpr int kNameWidth = 170; ///< pixels

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
    list->setMinimumHeight(3 * list->fontMetrics().height()); // a low window has room for it
    letCopy(*list);
    return list;
}

QPlainTextEdit *newWholeText() {
    auto *whole = new QPlainTextEdit;
    whole->setObjectName(QStringLiteral("txtPropertyValue"));
    whole->setAccessibleName(PropertiesPane::tr("Whole text of the property"));
    whole->setReadOnly(true);
    whole->setTabChangesFocus(true);
    whole->setMinimumHeight(2 * whole->fontMetrics().height());
    whole->setPlaceholderText(PropertiesPane::tr("Choose a property to see its whole text."));
    return whole;
}

} // namespace

PropertiesPane::PropertiesPane(std::function<std::vector<Property>(UrlId)> load, QWidget *parent)
    // The one that is read first, and is hardly ever whole in its cell.
    : QWidget(parent), m_load(std::move(load)), m_chosen(QStringLiteral("URL")) {
    setObjectName(QStringLiteral("PropertiesPane"));
    m_bar = newBar(); // first: the keys go through it before they go through the list
    m_list = newList();
    m_whole = newWholeText();
    auto *splitter = new QSplitter(Qt::Vertical);
    splitter->setObjectName(QStringLiteral("propertiesSplitter"));
    splitter->addWidget(m_list);
    splitter->addWidget(m_whole);
    splitter->setStretchFactor(0, 4);
    splitter->setStretchFactor(1, 1);
    splitter->setSizes({400, 60});
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(m_bar);
    column->addWidget(splitter, 1);
    connect(m_list, &QTreeWidget::currentItemChanged, this, &PropertiesPane::showChosen);
}

void PropertiesPane::addQuestions(QHBoxLayout &row) {
    m_why = new QPushButton(tr("&Why?"));
    m_why->setObjectName(QStringLiteral("btnWhy"));
    m_why->setAccessibleName(tr("Why has the property this value?"));
    m_why->setToolTip(tr("Where the value comes from: file, place, the number as it lies, the rule "
                         "that made it. The evidence is read again. The answer stands in place of "
                         "the card, until the button is pressed again or another value is chosen"));
    m_why->setCheckable(true);
    m_bytes = new QPushButton(tr("&Bytes"));
    m_bytes->setObjectName(QStringLiteral("btnBytes"));
    m_bytes->setAccessibleName(tr("Show the bytes of the value"));
    for (QPushButton *button : {m_why, m_bytes}) {
        button->setEnabled(false);
        row.addWidget(button);
    }
    connect(m_why, &QPushButton::clicked, this, &PropertiesPane::askWhy);
    connect(m_bytes, &QPushButton::clicked, this, [this] { emit bytesWanted(m_chosen); });
}

void PropertiesPane::setWhyNoBytes(WhyNoBytes whyNoBytes) {
    m_whyNoBytes = std::move(whyNoBytes);
}

void PropertiesPane::takeBar() {
    static_cast<QVBoxLayout *>(layout())->insertWidget(0, m_bar);
}

void PropertiesPane::showWhy(const QString &why) {
    const auto place = chosenPlace();
    if (!place || *place >= m_shown.size())
        return;
    constexpr std::size_t kMostValue = 200; // characters; all of it stands below
    m_answer = Answer{m_chosen, listedValue(*place)};
    m_why->setChecked(true);
    const QString value = shownSigns(toQt(displayText(m_answer->value, kMostValue)));
    emit answered(QStringLiteral("%1: %2\n%3").arg(m_chosen, value, why));
}

void PropertiesPane::askWhy() {
    const bool isAsked = !m_answer;
    dropAnswer();
    m_why->setChecked(false); // until the answer is there
    if (isAsked)
        emit whyWanted(m_chosen);
}

void PropertiesPane::dropAnswer() {
    if (!std::exchange(m_answer, std::nullopt))
        return;
    m_why->setChecked(false);
    emit answered({});
}

void PropertiesPane::checkBytes() {
    const bool isChosen = m_why->isEnabled();
    const QString none = isChosen && m_whyNoBytes ? m_whyNoBytes(m_chosen) : QString();
    m_bytes->setEnabled(isChosen && none.isEmpty());
    const QString tip = !isChosen ? tr("Choose a property: its bytes are shown in the pane Hex")
                        : none.isEmpty()
                            ? tr("Leads to the place in the source file, in the pane Hex")
                            : tr("No bytes to show: %1").arg(none);
    m_bytes->setToolTip(tip);
    m_bytes->setAccessibleDescription(tip);
}

QWidget *PropertiesPane::newBar() {
    m_filter = new QLineEdit;
    m_filter->setObjectName(QStringLiteral("txtPropertyFilter"));
    m_filter->setAccessibleName(tr("Only values with this text"));
    m_filter->setPlaceholderText(tr("Filter"));
    m_filter->setToolTip(m_filter->accessibleName());
    m_filter->setClearButtonEnabled(true);
    m_empty = new QCheckBox(tr("Empt&y fields"));
    m_empty->setObjectName(QStringLiteral("chkEmptyFields"));
    m_empty->setToolTip(tr("Show fields too in which nothing stands"));
    m_count = new QLabel;
    m_count->setObjectName(QStringLiteral("labProperties"));
    auto *bar = new QWidget;
    auto *row = new QHBoxLayout(bar);
    row->setContentsMargins(4, 3, 6, 3);
    row->addWidget(m_count);
    row->addWidget(m_filter, 1);
    row->addWidget(m_empty);
    addQuestions(*row);
    connect(m_filter, &QLineEdit::textChanged, this, &PropertiesPane::fill);
    connect(m_empty, &QCheckBox::toggled, this, &PropertiesPane::fill);
    return bar;
}

void PropertiesPane::showRecord(UrlId id) {
    std::vector<Property> properties = m_load(id);
    const bool isSame = m_id == id;
    m_id = id;
    if (isSame && properties == m_properties)
        return checkBytes();
    if (!isSame)
        dropAnswer();
    m_properties = std::move(properties);
    const int top = m_list->verticalScrollBar()->value();
    fill();
    if (!isSame)
        return;
    m_list->doItemsLayout(); // before it there is nothing to scroll
    m_list->verticalScrollBar()->setValue(top);
}

bool PropertiesPane::isWanted(const Property &property) const {
    if (property.value.empty() && !m_empty->isChecked())
        return false;
    const QString text = m_filter->text().trimmed();
    return text.isEmpty() || toQt(property.name).contains(text, Qt::CaseInsensitive) ||
           toQt(property.value).contains(text, Qt::CaseInsensitive);
}

void PropertiesPane::fill() {
    const QSignalBlocker quiet(m_list);
    m_list->clear();
    m_shown.clear();
    for (std::size_t place = 0; place < m_properties.size(); ++place) {
        const Property &property = m_properties[place];
        if (!isWanted(property))
            continue;
        m_shown.push_back(place);
        auto *item = new QTreeWidgetItem(
            m_list, {toQt(property.name), shownSigns(toQt(displayText(property.value)))});
        if (item->text(0) == m_chosen)
            m_list->setCurrentItem(item, 0);
    }
    m_count->setText(m_properties.empty()
                         ? tr("All values")
                         : tr("%1 of %2 values").arg(m_shown.size()).arg(m_properties.size()));
    showChosen();
    emit listed();
}

std::optional<std::size_t> PropertiesPane::chosenPlace() const {
    const int place = m_list->indexOfTopLevelItem(m_list->currentItem());
    return place < 0 ? std::nullopt : std::optional(static_cast<std::size_t>(place));
}

void PropertiesPane::choose(std::size_t place) {
    m_list->setCurrentItem(m_list->topLevelItem(static_cast<int>(place)), 1);
}

void PropertiesPane::markListed(const std::vector<std::size_t> &hits) {
    for (std::size_t place = 0; place < hits.size(); ++place) {
        QTreeWidgetItem *item = m_list->topLevelItem(static_cast<int>(place));
        const bool isHit = hits[place] > 0;
        item->setBackground(1, isHit ? QBrush(kHitGround) : QBrush());
        item->setForeground(1, isHit ? QBrush(Qt::black) : QBrush());
        item->setToolTip(1, isHit ? tr("The search has found something here") : QString());
    }
}

void PropertiesPane::clear() {
    m_id = UrlId::none;
    dropAnswer();
    m_properties.clear();
    fill();
}

void PropertiesPane::showChosen() {
    QTreeWidgetItem *item = m_list->currentItem();
    const auto place = static_cast<std::size_t>(m_list->indexOfTopLevelItem(item));
    const bool isChosen = item && place < m_shown.size();
    m_why->setEnabled(isChosen);
    if (isChosen)
        m_chosen = item->text(0);
    const bool isAnswered =
        isChosen && m_answer && m_answer->name == m_chosen && m_answer->value == listedValue(place);
    if (!isAnswered)
        dropAnswer();
    checkBytes();
    const QString text = isChosen ? shownLines(listedValue(place)) : QString();
    if (text != m_whole->toPlainText()) // what is read stays where it is
        m_whole->setPlainText(text);
}

} // namespace nv
