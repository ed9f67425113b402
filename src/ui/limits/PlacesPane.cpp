#include "ui/limits/PlacesPane.h"

#include "platform/qt/QtText.h"
#include "ui/limits/PlaceHeadings.h"
#include "ui/widgets/GridCopy.h"
#include "views/rows/CellText.h"

#include <QApplication>
#include <QBoxLayout>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QToolButton>
#include <QTreeView>

#include <algorithm>
#include <functional>

namespace nv {

namespace {

QLabel *newLabel(const char *name) {
    auto *label = new QLabel;
    label->setObjectName(QLatin1String(name));
    label->setTextFormat(Qt::PlainText); // it quotes evidence
    label->setWordWrap(true);
    label->hide();
    return label;
}

/// By the names from the root on: what the tree is made of comes anew with each listing.
QString pathOf(QModelIndex index) {
    QStringList names;
    for (; index.isValid(); index = index.parent())
        names.prepend(index.data().toString());
    return names.join(u'\x1F');
}

void forEachRow(const QAbstractItemModel &model, const QModelIndex &parent,
                const std::function<bool(const QModelIndex &)> &visit) {
    for (int row = 0; row < model.rowCount(parent); ++row)
        if (const QModelIndex index = model.index(row, 0, parent); visit(index))
            forEachRow(model, index, visit);
}

bool takeAway(std::vector<PlaceLimit> &limits, const PlaceLimit &limit) {
    return std::erase(limits, limit) > 0;
}

} // namespace

PlacesPane::PlacesPane(QWidget *parent) : QWidget(parent) {
    setObjectName(QStringLiteral("PlacesPane"));
    m_found.setSourceModel(&m_model);
    m_found.setRecursiveFilteringEnabled(true);
    m_found.setAutoAcceptChildRows(true);
    m_found.setFilterCaseSensitivity(Qt::CaseInsensitive);
    m_tree = newTree();
    m_menu = new QMenu(this);
    m_menu->setObjectName(QStringLiteral("PopupMenuPlaces"));
    m_menu->setToolTipsVisible(true);
    m_note = newLabel("labPlacesNote");
    m_note->setContentsMargins(6, 4, 6, 4);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(newTop());
    column->addWidget(new PlaceHeadings(*m_tree, m_found));
    m_none = newLabel("labNoPlace");
    m_none->setContentsMargins(6, 4, 6, 4);
    column->addWidget(m_none);
    column->addWidget(m_tree, 1);
    column->addWidget(m_note);
    column->addWidget(newFoot());
    constexpr int kNarrowest = 26; // characters
    setMinimumWidth(kNarrowest * fontMetrics().averageCharWidth());
    setChoice({});
}

QWidget *PlacesPane::newTop() {
    m_filter = new QLineEdit;
    m_filter->setObjectName(QStringLiteral("txtPlaceFilter"));
    m_filter->setAccessibleName(tr("Only places with this text"));
    m_filter->setPlaceholderText(tr("Only places with this text"));
    m_filter->setClearButtonEnabled(true);
    auto *top = new QWidget;
    auto *column = new QVBoxLayout(top);
    column->setContentsMargins(4, 4, 4, 4);
    column->addWidget(m_filter);
    connect(m_filter, &QLineEdit::textChanged, this, [this](const QString &text) {
        m_found.setFilterFixedString(text.trimmed());
        showWhetherFound();
        if (!text.trimmed().isEmpty())
            m_tree->expandAll();
    });
    return top;
}

/// Below the tree: what a click brings up mustn't move the lines under the mouse.
QWidget *PlacesPane::newFoot() {
    m_chosen = newLabel("labPlaces");
    m_all = new QToolButton;
    m_all->setObjectName(QStringLiteral("btnAllPlaces"));
    m_all->setText(tr("Show all places"));
    connect(m_all, &QToolButton::clicked, this, [this] { choose({}); });
    m_foot = new QWidget;
    auto *column = new QVBoxLayout(m_foot);
    column->setContentsMargins(4, 4, 4, 4);
    column->setSpacing(3);
    column->addWidget(m_chosen);
    column->addWidget(m_all);
    return m_foot;
}

QTreeView *PlacesPane::newTree() {
    auto *tree = new QTreeView;
    tree->setObjectName(QStringLiteral("PlacesTree"));
    tree->setAccessibleName(tr("Places"));
    tree->setModel(&m_found);
    tree->setUniformRowHeights(true);
    tree->setAlternatingRowColors(true);
    tree->setExpandsOnDoubleClick(false);
    tree->setTextElideMode(Qt::ElideMiddle);
    tree->setContextMenuPolicy(Qt::CustomContextMenu);
    tree->setIndentation(fontMetrics().averageCharWidth() * 2);
    tree->header()->setObjectName(QStringLiteral("PlacesHeader"));
    tree->header()->setStretchLastSection(false);
    tree->header()->setSectionResizeMode(PlacesModel::kPlace, QHeaderView::Stretch);
    tree->header()->setSectionResizeMode(PlacesModel::kRecords, QHeaderView::ResizeToContents);
    letCopy(*tree);
    tree->installEventFilter(this);
    connect(tree, &QTreeView::clicked, this, [this](const QModelIndex &index) {
        activate(index, QApplication::keyboardModifiers().testFlag(Qt::ControlModifier));
    });
    connect(tree, &QWidget::customContextMenuRequested, this, &PlacesPane::showMenu);
    return tree;
}

bool PlacesPane::eventFilter(QObject *watched, QEvent *event) {
    if (watched != m_tree || event->type() != QEvent::KeyPress)
        return QWidget::eventFilter(watched, event);
    const auto *key = static_cast<QKeyEvent *>(event);
    const bool isPlain =
        key->modifiers() == Qt::NoModifier || key->modifiers() == Qt::KeypadModifier;
    if (isPlain && pressTagKey(key->key()))
        return true;
    if (key->key() != Qt::Key_Return && key->key() != Qt::Key_Enter)
        return QWidget::eventFilter(watched, event);
    activate(m_tree->currentIndex(), key->modifiers().testFlag(Qt::ControlModifier));
    return true;
}

std::optional<PlaceLimit> PlacesPane::limitAt(const QModelIndex &index) const {
    return m_model.limitAt(m_found.mapToSource(index));
}

void PlacesPane::activate(const QModelIndex &index, bool adds) {
    const auto limit = limitAt(index);
    if (!limit) // a heading
        m_tree->setExpanded(index.siblingAtColumn(0),
                            !m_tree->isExpanded(index.siblingAtColumn(0)));
    else if (adds)
        flip(*limit);
    else
        showOnly(*limit);
}

/// The n-th tag for the rows of the place that has the mark, as in the table.
bool PlacesPane::pressTagKey(int key) {
    const auto limit = limitAt(m_tree->currentIndex());
    const auto place = static_cast<std::size_t>(key - Qt::Key_1);
    if (key < Qt::Key_1 || key > Qt::Key_9 || !limit || place >= m_model.tags().size())
        return false;
    if (!m_readOnly)
        emit tagWanted(m_model.chosenWith(*limit), m_model.tags()[place].tagID, true);
    return true;
}

TagLimit PlacesPane::tagsOf(const PlaceLimit &limit) const {
    return tagLimitOf(m_model.tags(), limit.terms.back().value);
}

void PlacesPane::showOnly(const PlaceLimit &limit) {
    if (isOfTags(limit))
        return chooseTags(tagsOf(limit));
    if (isOfHashSets(limit)) {
        HashLimit only;
        flipTerm(only, limit.terms.back());
        only.withoutKnown = only.notable && m_hashLimit.withoutKnown;
        return chooseHashSets(only);
    }
    choose({{limit}, {}});
}

void PlacesPane::flip(const PlaceLimit &limit) {
    if (isOfTags(limit)) {
        TagLimit flipped = m_tagLimit;
        flipAll(flipped, tagsOf(limit));
        return chooseTags(flipped);
    }
    if (isOfHashSets(limit)) {
        HashLimit flipped = m_hashLimit;
        flipTerm(flipped, limit.terms.back());
        return chooseHashSets(flipped);
    }
    PlaceChoice choice = m_choice;
    if (!takeAway(choice.only, limit)) {
        takeAway(choice.without, limit);
        choice.only.push_back(limit);
    }
    choose(choice);
}

void PlacesPane::leaveOut(const PlaceLimit &limit) {
    if (isOfHashSets(limit)) {
        HashLimit flipped = m_hashLimit;
        flipped.withoutKnown = !flipped.withoutKnown;
        return chooseHashSets(flipped);
    }
    PlaceChoice choice = m_choice;
    takeAway(choice.only, limit);
    if (!takeAway(choice.without, limit))
        choice.without.push_back(limit);
    choose(choice);
}

void PlacesPane::choose(const PlaceChoice &choice) {
    if (choice == m_choice)
        return;
    setChoice(choice);
    emit choiceMade(m_choice);
}

void PlacesPane::chooseHashSets(const HashLimit &limit) {
    setHashLimit(limit);
    emit hashLimitMade(limit);
}

void PlacesPane::chooseTags(const TagLimit &limit) {
    setTagLimit(limit);
    emit tagLimitMade(limit);
}

void PlacesPane::setTagLimit(const TagLimit &limit) {
    m_tagLimit = limit;
    m_model.setTagLimit(limit);
    moveMark();
}

void PlacesPane::setTags(const std::vector<NamedTag> &tags, const std::vector<PlaceNode> &nodes) {
    m_model.setTags(tags, nodes);
    moveMark();
}

void PlacesPane::setHashLimit(const HashLimit &limit) {
    m_hashLimit = limit;
    m_model.setHashLimit(limit);
    moveMark();
}

void PlacesPane::setChoice(const PlaceChoice &choice) {
    m_choice = choice;
    m_model.setChoice(choice);
    const bool any = !choice.isEmpty();
    const QString text = toQt(displayText(placeText(choice)));
    m_chosen->setText(choice.only.empty() ? text : tr("Only %1").arg(text));
    m_foot->setVisible(any);
    moveMark();
}

/// A click marks the place and limits the rows. Where the limit goes by another way, such as undo
/// or the cross of its chip, the mark goes with it, and comes back with it. Nothing is scrolled.
void PlacesPane::moveMark() {
    QItemSelectionModel &marks = *m_tree->selectionModel();
    const QModelIndexList marked = marks.selectedRows();
    if (!marked.isEmpty())
        if (const auto limit = limitAt(marked.front()); limit && m_model.isInForce(*limit))
            return;
    QModelIndex chosen;
    if (!m_choice.isEmpty() || !m_hashLimit.isEmpty() || !m_tagLimit.isEmpty())
        forEachRow(m_found, {}, [&](const QModelIndex &index) {
            const auto limit = chosen.isValid() ? std::nullopt : limitAt(index);
            if (limit && m_model.isInForce(*limit))
                chosen = index;
            return !chosen.isValid();
        });
    if (chosen.isValid())
        marks.select(chosen, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    else
        marks.clearSelection();
}

void PlacesPane::showNote(const QString &note) {
    m_note->setText(note);
    m_note->setVisible(!note.isEmpty());
}

/// An empty tree would be taken for a project without places.
void PlacesPane::showWhetherFound() {
    const bool none = m_model.rowCount() > 0 && m_found.rowCount() == 0;
    m_none->setText(none ? tr("No place has this text. Clear the box to see all places.")
                         : QString());
    m_none->setVisible(none);
}

void PlacesPane::setPlaces(Places places) {
    const QStringList open = openPlaces();
    m_model.setPlaces(std::move(places));
    if (m_hasPlaces)
        openAgain(open);
    else if (m_model.rowCount() > 0)
        openAtFirst();
    m_hasPlaces = m_model.rowCount() > 0;
    moveMark();
    showWhetherFound();
    emit filled();
}

/// All headings can be seen: hosts, of which there are many, and kinds are opened when they are
/// wanted.
void PlacesPane::openAtFirst() {
    forEachRow(m_found, {}, [&](const QModelIndex &index) {
        const bool isHeading = !index.parent().isValid();
        const auto below = limitAt(m_found.index(0, 0, index));
        const PlaceField field = below ? below->terms.front().field : PlaceField::Evidence;
        const bool isFolded =
            isHeading && (field == PlaceField::Domain || field == PlaceField::Group);
        m_tree->setExpanded(index, !isFolded);
        return isHeading && !isFolded;
    });
}

QStringList PlacesPane::openPlaces() const {
    QStringList open;
    forEachRow(m_found, {}, [&](const QModelIndex &index) {
        const bool isOpen = m_tree->isExpanded(index);
        if (isOpen)
            open += pathOf(index);
        return isOpen;
    });
    return open;
}

void PlacesPane::openAgain(const QStringList &open) {
    const QSet<QString> wanted(open.begin(), open.end());
    forEachRow(m_found, {}, [&](const QModelIndex &index) {
        const bool isOpen = wanted.contains(pathOf(index));
        m_tree->setExpanded(index, isOpen);
        return isOpen;
    });
}

} // namespace nv
