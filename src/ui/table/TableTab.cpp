#include "ui/table/TableTab.h"

#include "base/Text.h"
#include "base/Trap.h"
#include "db/sql/ReadOnlyConnection.h"
#include "platform/qt/QtText.h"
#include "ui/table/EmptyPage.h"
#include "ui/table/GridText.h"
#include "ui/table/LayoutBar.h"
#include "ui/table/QueryBox.h"
#include "ui/widgets/FindBar.h"

#include <QApplication>
#include <QBoxLayout>
#include <QClipboard>
#include <QLabel>
#include <QLineEdit>
#include <QStackedWidget>

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace nv {

namespace {

constexpr std::string_view kSortSetting = "TableSort";

} // namespace

TableTab::TableTab(RunTask runTask, Examiner &examiner, QWidget *parent)
    : QWidget(parent), m_runTask(std::move(runTask)), m_examiner(examiner) {
    setObjectName(QStringLiteral("TableTab"));
    m_grid = new UrlGrid(m_model);
    m_empty = new EmptyPage;
    m_find = new FindBar;
    m_pages = new QStackedWidget;
    m_pages->setObjectName(QStringLiteral("tablePages"));
    m_pages->addWidget(m_empty);
    m_pages->addWidget(m_grid);

    m_limitRow = new QHBoxLayout;
    m_limitRow->setContentsMargins(6, 6, 6, 0);
    m_column = new QVBoxLayout(this);
    m_column->setContentsMargins(0, 0, 0, 0);
    m_column->setSpacing(0);
    m_column->addLayout(m_limitRow);
    m_column->addWidget(newChoiceBar());
    m_column->addWidget(m_pages, 1);
    m_column->addWidget(m_find);
    connectParts();
}

TableTab::~TableTab() = default;

QWidget *TableTab::newChoiceBar() {
    m_queries = new QueryBox;
    m_host = new QLineEdit;
    m_host->setObjectName(QStringLiteral("txtHostFilter"));
    m_host->setAccessibleName(tr("Host"));
    m_host->setPlaceholderText(tr("Part of a host's name, then Enter"));
    m_host->setClearButtonEnabled(true);
    m_host->setMaximumWidth(320);
    auto *queryLabel = new QLabel(tr("Q&uery:"));
    queryLabel->setBuddy(m_queries);
    auto *hostLabel = new QLabel(tr("H&ost:"));
    hostLabel->setBuddy(m_host);

    auto *bar = new QWidget;
    bar->setObjectName(QStringLiteral("choiceBar"));
    auto *row = new QHBoxLayout(bar);
    row->setContentsMargins(6, 6, 6, 6);
    m_layouts = new LayoutBar(*m_grid);
    row->addWidget(m_layouts);
    row->addSpacing(12);
    row->addWidget(queryLabel);
    row->addWidget(m_queries);
    row->addSpacing(12);
    row->addWidget(hostLabel);
    row->addWidget(m_host, 1);
    row->addStretch();
    return bar;
}

void TableTab::connectParts() {
    connect(m_queries, &QComboBox::activated, this, &TableTab::loadURLs);
    connect(m_host, &QLineEdit::returnPressed, this, &TableTab::takeHost);
    connect(m_host, &QLineEdit::textChanged, this, [this](const QString &text) {
        if (text.isEmpty() && m_knownHost != text)
            takeHost();
    });
    connect(m_layouts, &LayoutBar::chosen, this, &TableTab::takeLayout);
    connect(m_layouts, &LayoutBar::edited, this, &TableTab::layoutEdited);
    connect(m_grid, &UrlGrid::sortRequested, this, &TableTab::sortByColumn);
    connect(m_grid, &UrlGrid::tagFlipRequested, this, &TableTab::flipTags);
    connect(m_grid, &UrlGrid::headerMenuRequested, this, &TableTab::showHeaderMenu);
    connect(m_grid, &UrlGrid::currentUrlChanged, this, &TableTab::currentUrlChanged);
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget *, const QWidget *now) {
        if (now == m_grid)
            m_standIn.reset(); // who goes to the rows takes the one that stands there
    });
    connect(m_empty, &EmptyPage::showAllRequested, this, &TableTab::showAllRequested);
    connect(m_empty, &EmptyPage::filtersRequested, this, &TableTab::filtersRequested);
    connect(m_find, &FindBar::nextRequested, this, &TableTab::findNext);
    connect(m_find, &FindBar::closed, this, [this] { m_grid->setFocus(); });
}

void TableTab::openProject(SQLite::Database &project, FailureLog &log, const TimeZone &gmtZone) {
    m_project = &project;
    m_log = &log;
    m_table = std::make_unique<UrlTable>(project, log, gmtZone);
    m_table->sort = m_sort;
    m_table->undated = m_layouts->isClassic() ? Undated::AsTheQueryHasThem : Undated::Last;
    m_model.setTable(m_table.get());
    m_table->showColumns(m_grid->tableLayout().shownColumns());
}

void TableTab::restoreLayout(const TableLayout::Read &read) {
    m_layouts->restore(read);
    m_queries->listDead(m_layouts->isClassic());
    m_sort = sortIn(read(kSortSetting));
}

void TableTab::saveLayout(const TableLayout::Write &write) {
    m_layouts->save(write);
    write(kSortSetting, m_sort ? sortText(*m_sort) : std::string());
}

/// Classic has rows without a date where the query has them, the other layouts at the end.
void TableTab::takeLayout() {
    m_queries->listDead(m_layouts->isClassic());
    const Undated undated = m_layouts->isClassic() ? Undated::AsTheQueryHasThem : Undated::Last;
    if (!m_table || m_table->undated == undated)
        return;
    m_table->undated = undated;
    loadURLs();
}

void TableTab::forgetSort() {
    if (!m_table)
        return;
    m_table->sort.reset();
    loadURLs();
}

void TableTab::closeProject() {
    m_model.setTable(nullptr);
    m_table.reset();
    m_project = nullptr;
    m_log = nullptr;
    m_own.reset();
    m_ticks = {};
    m_empty->showState(EmptyState::NotLoaded);
    m_pages->setCurrentWidget(m_empty);
    m_grid->showSort(std::nullopt);
    emit currentUrlChanged();
}

void TableTab::setQueries(const QStringList &names, const QStringList &dead) {
    m_queries->setQueries(names, dead);
}

QString TableTab::queryName() const {
    return m_queries->query();
}

void TableTab::chooseQuery(const QString &name) {
    if (m_queries->choose(name))
        loadURLs();
}

void TableTab::showQuery(const QString &name) {
    if (!m_queries->choose(name))
        m_queries->setCurrentIndex(0);
    if (m_table)
        m_table->choice.activeQueryName = fromQt(queryName());
    emit statusChanged();
}

void TableTab::takeHost() {
    const QString host = m_host->text().trimmed();
    if (m_table && (host != m_knownHost || fromQt(host) != m_table->choice.filterByHostValue))
        loadURLs();
}

void TableTab::setHost(const QString &host) {
    m_knownHost = host; // first: an emptied box isn't the examiner's then
    m_host->setText(host);
}

/// What was typed counts with any load, also without Enter: the others must know of it.
void TableTab::announceHost() {
    const QString host = m_host->text().trimmed();
    if (host == m_knownHost)
        return;
    m_knownHost = host;
    emit hostEntered(host);
}

void TableTab::filterByHost(const QString &host) {
    setHost(host);
    takeHost();
}

void TableTab::loadURLs() {
    if (!m_table)
        return;
    announceHost();
    const std::string host = fromQt(m_host->text().trimmed());
    m_table->choice = {fromQt(queryName()), !host.empty(), host};
    reload([this](TaskMonitor &task) { return m_table->loadURLs(task); });
    emit rowsLoaded();
}

/// Half a word finds other rows than the whole, and one of them becomes the current one for a
/// moment: the examiner's own is gone back to.
std::optional<UrlGrid::Spot> TableTab::ownSpot(Narrowed which) const {
    const auto current = m_grid->currentSpot();
    const bool isStandIn = !current || current->id == m_standIn;
    return isStandIn && m_own && which != Narrowed::last ? m_own : current;
}

void TableTab::narrow(Narrowed which) {
    if (!m_table)
        return;
    const auto current = m_grid->currentSpot();
    const auto own = ownSpot(which);
    LoadResult result = LoadResult::Failed;
    const auto work = [&](TaskMonitor &task) { result = m_table->narrow(task); };
    Unwatched nobody;
    if (which == Narrowed::last)
        m_runTask({}, work);
    else
        work(nobody);
    if (result == LoadResult::Failed)
        return m_examiner.tell(loadFailure(m_table->failure()));
    showRows(own);
    m_own = which == Narrowed::last ? std::nullopt : own;
    m_standIn = own && m_grid->currentUrl() == own->id ? std::nullopt : m_grid->currentUrl();
    if (which == Narrowed::interim)
        return emit statusChanged();
    countTagged();
    if (m_grid->currentUrl() != (current ? std::optional(current->id) : std::nullopt))
        emit currentUrlChanged();
    emit rowsLoaded();
}

void TableTab::refreshRows() {
    if (!m_table)
        return;
    m_table->refreshRows();
    m_model.cellsChanged();
}

void TableTab::sortBy(SortChoice choice) {
    if (!m_table)
        return;
    const LoadResult result =
        reload([this, choice](TaskMonitor &task) { return m_table->sortBy(choice, task); });
    if (result == LoadResult::Loaded)
        emit sortedBy(choice);
}

void TableTab::sortByColumn(UrlColumn column, SortDirection direction) {
    reload([=, this](TaskMonitor &task) { return m_table->sortBy(column, direction, task); });
}

LoadResult TableTab::reload(const std::function<LoadResult(TaskMonitor &)> &work) {
    const auto current = m_grid->currentSpot();
    LoadResult result = LoadResult::Failed;
    m_runTask({}, [&](TaskMonitor &task) { result = work(task); });
    m_sort = m_table->sort;
    showRows(current);
    m_own.reset();
    m_ticks.forget();
    countTagged();
    emit currentUrlChanged();
    if (result == LoadResult::Failed)
        m_examiner.tell(loadFailure(m_table->failure()));
    return result;
}

/// Rows without a current one would leave every pane empty.
void TableTab::showRows(const std::optional<UrlGrid::Spot> &current) {
    m_model.rowsChanged();
    m_grid->fitToRows();
    m_grid->showSort(m_table->columnSort());
    m_empty->showState(m_table->emptyState(), m_table->hiddenCount(),
                       m_table->isLimited() ? EmptyPage::HiddenBy::others
                                            : EmptyPage::HiddenBy::filters);
    m_pages->setCurrentWidget(m_table->rowCount() > 0 ? static_cast<QWidget *>(m_grid) : m_empty);
    if ((!current || !m_grid->goTo(*current)) && m_table->rowCount() > 0)
        m_grid->setCurrentUrl(m_table->idAt(0));
}

void TableTab::countTagged() {
    logFailureOf(*m_log, "MainForm.countTagged()",
                 [this] { m_ticks.count(*m_project, m_table->ids()); });
    emit statusChanged();
}

void TableTab::noteTick(qint64 urlID, bool tagged) {
    if (!m_table)
        return;
    refreshRows();
    m_ticks.note(tagged, m_table->placeOf(UrlId{urlID}).has_value());
    emit statusChanged();
    emit ticked(urlID, 1, tagged);
}

void TableTab::noteFlipped(qint64 rows) {
    const int current = m_grid->currentIndex().row();
    if (!m_table || current < 0 || rows == 0)
        return;
    const auto place = static_cast<std::size_t>(current);
    emit ticked(static_cast<qint64>(m_table->idAt(place)), rows, m_table->isTagged(place));
}

void TableTab::flipTags() {
    if (m_project && isReadOnly(*m_project))
        return emit tickingRefused();
    if (m_grid->selectedRowCount() > 1) {
        m_runTask({"TICKING ROWS", "", "", ""},
                  [this](TaskMonitor &task) { m_grid->flipSelectedTags(task); });
        const qint64 before = m_ticks.all();
        m_ticks.forget();
        countTagged();
        noteFlipped(std::abs(m_ticks.all() - before));
    } else if (m_model.flipTag(m_grid->currentIndex().row())) {
        m_ticks.note(m_table->isTagged(static_cast<std::size_t>(m_grid->currentIndex().row())),
                     true);
        noteFlipped(1);
        emit statusChanged();
    }
    emit currentUrlChanged();
}

void TableTab::copyCell() {
    if (m_table)
        QApplication::clipboard()->setText(GridText(*m_grid, *m_table).currentCell());
}

void TableTab::copyRows() {
    m_runTask({"COPYING URLS", "", "", ""}, [this](TaskMonitor &task) {
        const auto text = m_table ? GridText(*m_grid, *m_table).selectedRows(task) : QString();
        if (text)
            QApplication::clipboard()->setText(*text);
    });
}

/// Nothing where the text was found: the row shows it.
static QString findText(const FindResult &result) {
    if (result.end == FindEnd::found)
        return {};
    if (result.end == FindEnd::cancelled)
        return TableTab::tr("Stopped");
    if (result.unread.empty())
        return TableTab::tr("Not found");
    return TableTab::tr("Not found, but %1 could not be read")
        .arg(toQt(counted(result.unread.size(), "row")));
}

void TableTab::openFind() {
    m_find->reveal();
}

void TableTab::findNext() {
    if (!m_table || m_find->text().isEmpty())
        return m_find->reveal();
    FindResult result;
    std::optional<std::string> failure;
    m_runTask({"SEARCHING URLS", "", "", ""}, [&](TaskMonitor &task) {
        failure = failureOf(*m_log, "MainForm.findNext()", [&] {
            result = m_grid->find(m_find->text(), m_grid->currentIndex().row() + 1, task);
        });
    });
    m_find->showResult(failure ? toQt(*failure) : findText(result));
    if (!failure && result.end == FindEnd::found)
        m_grid->setCurrentIndex(m_grid->cellOf(result));
}

} // namespace nv
