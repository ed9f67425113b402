#include "ui/parts/TagsPart.h"

#include "app/messages/TagMessages.h"
#include "app/settings/Settings.h"
#include "base/DisplayText.h"
#include "base/Trap.h"
#include "platform/qt/Icons.h"
#include "platform/qt/QtText.h"
#include "ui/limits/PlacesPane.h"
#include "ui/table/TagPills.h"
#include "ui/tags/TagForm.h"
#include "ui/tags/TagsPane.h"

#include <QAction>
#include <QMenu>
#include <QSplitter>
#include <QUndoCommand>

#include <algorithm>
#include <utility>

namespace nv {

namespace {

constexpr std::string_view kProcedure = "MainForm.ShowTags()";
constexpr std::size_t kAtOnce = 2000; // rows whose tags are written or asked without a task
constexpr std::size_t kKeys = 9;

QAction *newAction(const char *name, const QString &text, QObject *owner,
                   const QKeySequence &keys = {}) {
    auto *action = new QAction(text, owner);
    action->setObjectName(QLatin1String(name));
    action->setShortcut(keys);
    return action;
}

QVariant variantOf(const TagLimit &limit) {
    return limit.isEmpty() ? QVariant() : QVariant::fromValue(limit);
}

} // namespace

/// A step of the window's undo: what was done to the tags of rows last.
class TagStep final : public QUndoCommand {
  public:
    explicit TagStep(TagsPart &part) : QUndoCommand(TagsPart::tr("Tags")), m_part(part) {}
    void undo() override { m_part.undo(); }
    void redo() override {
        // The first time, as it comes onto the stack, it has been done already.
        if (std::exchange(m_isDone, true))
            m_part.redo();
    }

  private:
    TagsPart &m_part;
    bool m_isDone = false;
};

TagsPart::TagsPart(Workbench &bench)
    : m_bench(bench), m_pane(new TagsPane), m_places(bench.dataArea->findChild<PlacesPane *>()) {
    bench.dataArea->addWidget(m_pane);
    bench.dataArea->setStretchFactor(bench.dataArea->count() - 1, 0);
    addMenu();
    m_show->setChecked(readFlag(bench.program.settings, "ShowTags"));
    m_pane->setVisible(m_show->isChecked());
    connect(m_show, &QAction::toggled, this, &TagsPart::showPane);
    connectPane();
    connectPlaces();
    connect(&bench.table->grid(), &UrlGrid::tagKeyPressed, this, &TagsPart::pressKey);
    connect(&bench, &Workbench::projectOpened, this, &TagsPart::takeProject);
    connect(&bench, &Workbench::tagLimitChosen, this, &TagsPart::setLimit);
    connect(bench.table, &TableTab::rowsLoaded, this, &TagsPart::fill);
    bench.limits.add(*this);
    connect(&bench, &Workbench::projectClosing, this, [this] {
        m_history.clear();
        m_tags.clear();
        m_pane->setTags({}, {});
        m_pane->setLimit({});
        m_places->setTags({}, {});
        m_places->setTagLimit({});
        m_bench.tags->setEnabled(false);
    });
}

/// In the menu of the window and in that of the table's rows.
void TagsPart::addMenu() {
    m_bench.tags = new QMenu(tr("&Tags"), &m_bench.window);
    m_bench.tags->setObjectName(QStringLiteral("menuTags"));
    m_bench.tags->setIcon(icon("tag"));
    m_bench.tags->setEnabled(false);
    m_show = newAction("actTags", tr("&List of Tags"), m_pane, Qt::CTRL | Qt::SHIFT | Qt::Key_G);
    m_show->setCheckable(true);
    m_bench.window.addAction(m_show);
    connect(m_bench.tags, &QMenu::aboutToShow, this, &TagsPart::fillMenu);
    if (auto *edit = m_bench.window.findChild<QMenu *>(QStringLiteral("menuEdit")))
        edit->addMenu(m_bench.tags);
    fillMenu();
}

void TagsPart::connectPane() {
    connect(m_pane, &TagsPane::newRequested, this, &TagsPart::makeNew);
    connect(m_pane, &TagsPane::editRequested, this, &TagsPart::edit);
    connect(m_pane, &TagsPane::deleteRequested, this, &TagsPart::remove);
    connect(m_pane, &TagsPane::moveRequested, this, &TagsPart::move);
    connect(m_pane, &TagsPane::rowsRequested, this, [this](qint64 tagID) {
        limitTo({{tagID}, false});
    });
    connect(m_pane, &TagsPane::allRowsRequested, this, [this] { limitTo({}); });
}

void TagsPart::takeProject() {
    m_history.clear();
    m_bench.tags->setEnabled(true);
    fill();
}

void TagsPart::showPane(bool shown) {
    m_pane->setVisible(shown);
    rememberFlag(m_bench.program.settings, "ShowTags", shown);
}

QVariant TagsPart::limit() const {
    const UrlTable *table = m_bench.table->table();
    return table && table->tags ? QVariant::fromValue(*table->tags) : QVariant();
}

void TagsPart::setLimit(const QVariant &limit) {
    UrlTable *table = m_bench.table->table();
    if (!table)
        return;
    const auto tags = limit.value<TagLimit>();
    table->tags = tags.isEmpty() ? std::nullopt : std::optional(tags);
    m_pane->setLimit(tags);
    m_places->setTagLimit(tags);
}

std::vector<LimitChip> TagsPart::chips() const {
    const QVariant chosen = limit();
    if (!chosen.isValid())
        return {};
    return {{tr("Tag: %1").arg(toQt(tagLimitText(m_tags, chosen.value<TagLimit>()))), {}}};
}

void TagsPart::fill() {
    if (!m_bench.isProjectOpen())
        return;
    // Rows are loaded within other commands too, while the window is locked.
    logFailureOf(m_bench.program.log, kProcedure, [this] {
        NamedTags tags(m_bench.project());
        m_tags = tags.list();
        m_pane->setTags(m_tags, tags.counts());
        fillPlaces();
    });
}

const NamedTag *TagsPart::find(std::int64_t tagID) const {
    const auto found = std::ranges::find(m_tags, tagID, &NamedTag::tagID);
    return found == m_tags.end() ? nullptr : &*found;
}

/// The rows are asked only when they are few: a menu comes up at once.
void TagsPart::addTagActions(const RowIds &rows) {
    Unwatched task;
    for (std::size_t at = 0; at < m_tags.size(); ++at) {
        const NamedTag tag = m_tags[at];
        QString text = menuText(tag);
        if (at < kKeys)
            text += u'\t' + QString::number(at + 1);
        QAction *action =
            m_bench.tags->addAction(tagIcon(tag), text, this, [this, tag] { flip(tag); });
        action->setCheckable(true);
        action->setEnabled(!rows.empty());
        if (rows.empty() || rows.size() > kAtOnce)
            continue;
        logFailureOf(m_bench.program.log, kProcedure, [&] {
            action->setChecked(RecordTags(m_bench.project()).countOf(tag.tagID, rows, task) ==
                               rows.size());
        });
    }
}

void TagsPart::fillMenu() {
    const RowIds rows = m_bench.table->grid().selectedUrls();
    m_bench.tags->clear();
    addTagActions(rows);
    m_bench.tags->addSeparator();
    QAction *make = m_bench.tags->addAction(tr("&New Tag..."), this, [this] {
        if (const auto made = makeNew())
            flip(*made);
    });
    make->setObjectName(QStringLiteral("actNewTag"));
    m_bench.tags->addSeparator();
    m_bench.tags->addAction(m_show);
}

void TagsPart::pressKey(int digit) {
    const auto place = static_cast<std::size_t>(digit - 1);
    if (place < m_tags.size())
        flip(NamedTag(m_tags[place]));
    else
        m_bench.showNotice(tr("There is no tag %1: Edit, Tags, New Tag makes one.").arg(digit));
}

void TagsPart::work(std::size_t rows, const std::function<void(TaskMonitor &)> &change) const {
    if (rows > kAtOnce)
        return m_bench.runTask({"TAGGING ROWS", "", "", ""}, change);
    Unwatched task;
    change(task);
}

void TagsPart::flip(const NamedTag &tag) {
    const RowIds rows = m_bench.table->grid().selectedUrls();
    if (rows.empty())
        return;
    m_bench.run("MainForm.TagRows()", [&] {
        if (!m_bench.mayWrite())
            return;
        std::optional<TagChange> change;
        TagOrder order{tag, true, {}};
        work(rows.size(), [&](TaskMonitor &task) {
            const auto have = RecordTags(m_bench.project()).countOf(tag.tagID, rows, task);
            order.isSet = have != rows.size();
            if (have)
                change = tagRows(m_bench.program, order, rows, task);
        });
        take(order, std::move(change));
    });
}

void TagsPart::take(const TagOrder &order, std::optional<TagChange> change) {
    if (!change)
        return m_bench.showNotice(tr("No row was tagged."));
    const QString notice = toQt(taggedText(order, *change));
    if (!change->isNothing()) {
        m_history.add(std::move(*change));
        m_bench.limits.history().push(new TagStep(*this));
    }
    showChanged(notice);
}

QString TagsPart::textOf(const TagChange &change, bool isBack) const {
    const NamedTag *tag = find(change.tagID);
    const QString name = tag ? toQt(displayText(tag->name)) : QString();
    const auto rows = static_cast<qlonglong>(change.ids.size());
    const QString ofRows = rows == 1 ? tr("1 row") : tr("%L1 rows").arg(rows);
    return (isBack ? tr("Taken back: \"%1\" of %2.") : tr("Done again: \"%1\" of %2."))
        .arg(name, ofRows);
}

void TagsPart::undo() {
    if (!m_history.canUndo() || !m_bench.mayWrite())
        return;
    const QString notice = textOf(*m_history.next(), true);
    bool done = false;
    work(m_history.next()->ids.size(),
         [&](TaskMonitor &task) { done = undoTagging(m_bench.program, m_history, task); });
    if (done)
        showChanged(notice);
}

void TagsPart::redo() {
    if (!m_history.canRedo() || !m_bench.mayWrite())
        return;
    const QString notice = textOf(*m_history.nextAgain(), false);
    bool done = false;
    work(m_history.nextAgain()->ids.size(),
         [&](TaskMonitor &task) { done = redoTagging(m_bench.program, m_history, task); });
    if (done)
        showChanged(notice);
}

void TagsPart::showChanged(const QString &notice) {
    m_bench.refreshMarks();
    fill();
    m_bench.showNotice(notice);
}

std::optional<NamedTag> TagsPart::makeNew() {
    if (!m_bench.isProjectOpen() || !m_bench.mayWrite())
        return std::nullopt;
    const auto place = static_cast<std::int64_t>(m_tags.size()) + 1;
    TagForm form(
        {.tagID = 0, .name = {}, .color = firstTagColor(place), .position = place, .note = {}},
        m_tags, &m_bench.window);
    form.exec();
    if (form.result() != QDialog::Accepted)
        return std::nullopt;
    std::optional<NamedTag> made;
    m_bench.run("MainForm.MakeTag()", [&] { made = makeTag(m_bench.program, form.tag()); });
    fill();
    return made;
}

void TagsPart::edit(std::int64_t tagID) {
    const NamedTag *tag = find(tagID);
    if (!tag || !m_bench.mayWrite())
        return;
    std::vector<NamedTag> others = m_tags;
    std::erase_if(others, [tagID](const NamedTag &other) { return other.tagID == tagID; });
    TagForm form(*tag, std::move(others), &m_bench.window);
    form.exec();
    if (form.result() != QDialog::Accepted)
        return;
    m_bench.run("MainForm.ChangeTag()", [&] {
        changeTag(m_bench.program, form.tag());
        showChanged({});
    });
}

void TagsPart::remove(std::int64_t tagID) {
    const NamedTag *found = find(tagID);
    if (!found || !m_bench.mayWrite())
        return;
    const NamedTag tag = *found;
    m_bench.run("MainForm.DeleteTag()", [&] {
        const std::int64_t rows = NamedTags(m_bench.project()).counts()[tag.tagID];
        if (m_bench.examiner().ask(messages::deleteTag(tag.name, rows)) != Answer::Yes)
            return;
        deleteTag(m_bench.program, tag);
        showChanged(tr("\"%1\" was deleted.").arg(toQt(displayText(tag.name))));
    });
    if (const UrlTable *table = m_bench.table->table(); table && table->tags && !find(tag.tagID)) {
        TagLimit rest = *table->tags;
        std::erase(rest.tagIDs, tag.tagID);
        limitTo(rest);
    }
    // Which rows had it is lost with the tag: no step before it can be taken back.
    if (!find(tag.tagID)) {
        m_history.clear();
        m_bench.limits.history().clear();
    }
}

void TagsPart::move(std::int64_t tagID, int steps) {
    if (!m_bench.mayWrite())
        return;
    std::vector<std::int64_t> order;
    order.reserve(m_tags.size());
    for (const NamedTag &tag : m_tags)
        order.push_back(tag.tagID);
    const auto from = std::ranges::find(order, tagID) - order.begin();
    const auto to = from + steps;
    if (to < 0 || to >= static_cast<std::ptrdiff_t>(order.size()))
        return;
    std::swap(order.at(static_cast<std::size_t>(from)), order.at(static_cast<std::size_t>(to)));
    m_bench.run("MainForm.MoveTag()", [&] {
        orderTags(m_bench.program, order);
        showChanged({});
    });
}

void TagsPart::limitTo(const TagLimit &limit) {
    const UrlTable *table = m_bench.table->table();
    if (!table)
        return;
    const auto before = table->tags;
    setLimit(variantOf(limit));
    if (table->tags != before)
        m_bench.run("MainForm.LimitTags()", [this] { m_bench.table->narrow(); });
}

} // namespace nv
