#include "ui/tags/TagsPane.h"

#include "base/DisplayText.h"
#include "platform/qt/QtText.h"
#include "ui/table/TagPills.h"
#include "ui/widgets/FlowLayout.h"

#include <QBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLocale>
#include <QPushButton>
#include <QTreeWidget>

namespace nv {

namespace {

constexpr int kName = 0;
constexpr int kRows = 1;
constexpr int kKey = 2;
constexpr int kNote = 3;
constexpr int kKeys = 9;

QString shown(const std::string &text) {
    return toQt(displayText(text));
}

} // namespace

TagsPane::TagsPane(QWidget *parent) : QWidget(parent) {
    setObjectName(QStringLiteral("TagsPane"));
    m_list = new QTreeWidget;
    m_list->setObjectName(QStringLiteral("lstTags"));
    m_list->setAccessibleName(tr("Tags"));
    m_list->setHeaderLabels({tr("Tag"), tr("Rows"), tr("Key"), tr("Note")});
    m_list->header()->setAccessibleName(tr("Headings of the tags"));
    m_list->setRootIsDecorated(false);
    m_list->setUniformRowHeights(true);
    m_list->setAlternatingRowColors(true);
    // The tooltip holds a note that is longer.
    m_list->header()->setSectionResizeMode(kNote, QHeaderView::Stretch);
    m_list->header()->setSectionResizeMode(kName, QHeaderView::ResizeToContents);
    m_list->header()->setSectionResizeMode(kRows, QHeaderView::ResizeToContents);
    m_list->header()->setSectionResizeMode(kKey, QHeaderView::ResizeToContents);
    m_empty = new QLabel(tr("There are no tags yet. Make one: then the keys 1 to 9 give it to the "
                            "chosen rows, and the same key takes it away."));
    m_empty->setObjectName(QStringLiteral("labNoTags"));
    m_limit = new QLabel;
    m_limit->setObjectName(QStringLiteral("labTagLimit"));
    for (QLabel *label : {m_empty, m_limit}) {
        label->setTextFormat(Qt::PlainText);
        label->setWordWrap(true);
        label->setMargin(4);
    }
    constexpr int kNarrowest = 20; // characters
    setMinimumWidth(kNarrowest * fontMetrics().averageCharWidth());
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(m_empty);
    column->addWidget(m_list, 1);
    column->addWidget(m_limit);
    column->addWidget(newButtons());
    connect(m_list, &QTreeWidget::itemSelectionChanged, this, &TagsPane::enableButtons);
    connect(m_list, &QTreeWidget::itemActivated, this, &TagsPane::showRows);
    setTags({}, {});
    setLimit({});
}

QPushButton *TagsPane::newButton(const char *name, const QString &text) {
    auto *button = new QPushButton(text);
    button->setObjectName(QLatin1String(name));
    button->setAutoDefault(false);
    return button;
}

QWidget *TagsPane::newButtons() {
    auto *box = new QWidget;
    auto *row = new FlowLayout(box); // beside the table each pixel of width counts
    row->setContentsMargins(4, 0, 4, 4);
    auto *make = newButton("btnNewTag", tr("New..."));
    auto *edit = newButton("btnEditTag", tr("Edit..."));
    auto *remove = newButton("btnDeleteTag", tr("Delete..."));
    auto *up = newButton("btnTagUp", tr("Up"));
    auto *down = newButton("btnTagDown", tr("Down"));
    m_show = newButton("btnTagRows", tr("Show Its Rows"));
    m_all = newButton("btnAllTagRows", tr("Show All Rows"));
    for (QPushButton *button : {make, edit, remove, up, down, m_show, m_all})
        row->addWidget(button);
    m_ofTag = {edit, remove, up, down, m_show};
    connect(make, &QPushButton::clicked, this, &TagsPane::newRequested);
    connect(edit, &QPushButton::clicked, this, [this] { emit editRequested(*currentTag()); });
    connect(remove, &QPushButton::clicked, this, [this] { emit deleteRequested(*currentTag()); });
    connect(up, &QPushButton::clicked, this, [this] { emit moveRequested(*currentTag(), -1); });
    connect(down, &QPushButton::clicked, this, [this] { emit moveRequested(*currentTag(), 1); });
    connect(m_show, &QPushButton::clicked, this, &TagsPane::showRows);
    connect(m_all, &QPushButton::clicked, this, &TagsPane::allRowsRequested);
    return box;
}

void TagsPane::setTags(const std::vector<NamedTag> &tags, const TagCounts &counts) {
    const auto current = currentTag();
    m_tags = tags;
    m_list->clear();
    int place = 0;
    for (const NamedTag &tag : tags) {
        const auto count = counts.find(tag.tagID);
        auto *item = new QTreeWidgetItem(m_list);
        item->setText(kName, shown(tag.name));
        item->setIcon(kName, tagIcon(tag));
        item->setText(kRows, QLocale().toString(qint64{count == counts.end() ? 0 : count->second}));
        item->setTextAlignment(kRows, Qt::AlignRight | Qt::AlignVCenter);
        item->setText(kKey, ++place <= kKeys ? QString::number(place) : QString());
        item->setText(kNote, shown(tag.note));
        for (const int column : {kName, kNote})
            item->setToolTip(column, Qt::convertFromPlainText(item->text(column)));
        item->setData(kName, Qt::UserRole, qint64{tag.tagID});
        if (tag.tagID == current)
            m_list->setCurrentItem(item);
    }
    if (!m_list->currentItem() && m_list->topLevelItemCount() > 0)
        m_list->setCurrentItem(m_list->topLevelItem(0));
    m_empty->setVisible(tags.empty());
    m_list->setVisible(!tags.empty());
    enableButtons();
}

std::optional<std::int64_t> TagsPane::currentTag() const {
    const QTreeWidgetItem *item = m_list->currentItem();
    return item ? std::optional<std::int64_t>(item->data(kName, Qt::UserRole).toLongLong())
                : std::nullopt;
}

void TagsPane::setLimit(const TagLimit &limit) {
    const bool isLimited = !limit.isEmpty();
    m_limit->setVisible(isLimited);
    m_limit->setText(
        isLimited
            ? tr("The table shows rows tagged \"%1\" only.").arg(toQt(tagLimitText(m_tags, limit)))
            : QString());
    m_all->setVisible(isLimited);
    m_show->setVisible(!isLimited);
}

void TagsPane::enableButtons() {
    for (QPushButton *button : m_ofTag)
        button->setEnabled(m_list->currentItem() != nullptr);
}

void TagsPane::showRows() {
    if (const auto tagID = currentTag())
        emit rowsRequested(*tagID);
}

} // namespace nv
