#include "ui/parts/SearchPart.h"

#include "app/jobs/SearchJob.h"
#include "app/project/EvidenceFolders.h"
#include "base/NoLog.h"
#include "base/Trap.h"
#include "platform/qt/QtText.h"
#include "search/IndexFile.h"
#include "ui/frame/WorkProgress.h"
#include "ui/parts/SearchHelp.h"
#include "ui/parts/SearchHits.h"
#include "ui/search/SearchBar.h"

#include <QAction>
#include <QBoxLayout>
#include <QInputDialog>
#include <QMainWindow>
#include <QMenu>
#include <QStatusBar>
#include <SQLiteCpp/Database.h>

#include <utility>

namespace nv {

namespace {

constexpr const char *kProcedure = "MainForm.SearchProject()";
constexpr std::chrono::milliseconds kPause{20};  ///< after a letter
constexpr std::chrono::milliseconds kSettle{40}; ///< the first rows wait for all of them
constexpr std::chrono::milliseconds kWhileBusy{50};

std::int64_t lastRow(SQLite::Database &project) {
    return project.execAndGet("SELECT ifnull(max(URL_ID), 0) FROM URLs").getInt64();
}

/// The actions of the window, with the keys in their hints.
QAction *newAction(QMainWindow &window, const char *name, const QString &text, const QString &hint,
                   const QKeySequence &keys) {
    auto *action = new QAction(text, &window);
    action->setObjectName(QLatin1String(name));
    action->setShortcut(keys);
    action->setToolTip(
        QStringLiteral("%1 (%2)").arg(hint, keys.toString(QKeySequence::NativeText)));
    action->setEnabled(false);
    return action;
}

} // namespace

SearchPart::SearchPart(Workbench &bench)
    : m_bench(bench), m_bar(new SearchBar), m_help(new SearchHelp(bench, *m_bar)),
      m_hits(new SearchHits(bench)), m_progress(newIndexProgress()) {
    m_help->setParent(this);
    m_hits->setParent(this);
    bench.table->limitRow().insertWidget(0, m_bar, 1);
    if (auto *window = qobject_cast<QMainWindow *>(&bench.window)) {
        window->statusBar()->addPermanentWidget(m_progress);
        m_progress->hide();
        addActions(*window);
    }
    connectBar();
    connect(bench.table, &TableTab::rowsLoaded, this, &SearchPart::again);
    connect(bench.actions.refresh, &QAction::triggered, this, [this] { m_searchedTo = 0; });
    connect(&bench, &Workbench::projectOpened, this, &SearchPart::open);
    connect(&bench, &Workbench::projectClosing, this, &SearchPart::close);
    connect(&bench, &Workbench::searchIndexWanted, this, &SearchPart::makeIndex);
    m_bar->setEnabled(false);
    bench.limits.add(*this);
}

SearchPart::~SearchPart() = default;

void SearchPart::connectBar() {
    m_pause.setSingleShot(true);
    m_pause.setInterval(kPause);
    m_settle.setSingleShot(true);
    connect(m_bar, &SearchBar::typed, this, [this] { m_pause.start(); });
    connect(&m_pause, &QTimer::timeout, this, [this] { type(m_bar->text().trimmed()); });
    connect(&m_settle, &QTimer::timeout, this, &SearchPart::takeRows);
    connect(m_bar, &SearchBar::entered, this, &SearchPart::enter);
    connect(m_bar, &SearchBar::left, this, [this] { m_bench.table->grid().setFocus(); });
    connect(m_bar, &SearchBar::menuWanted, this, &SearchPart::fillMenu);
    connect(m_progress, &WorkProgress::cancelled, this, [this] {
        if (m_service)
            m_service->cancelIndexing();
    });
}

void SearchPart::addActions(QMainWindow &window) {
    QAction *next = newAction(window, "actNextHit", tr("Next &Hit"),
                              tr("The next place that the search has found"), Qt::Key_F8);
    QAction *previous =
        newAction(window, "actPreviousHit", tr("&Previous Hit"),
                  tr("The place before that the search has found"), Qt::SHIFT | Qt::Key_F8);
    connect(next, &QAction::triggered, m_hits, [this] { m_hits->goOn(true); });
    connect(previous, &QAction::triggered, m_hits, [this] { m_hits->goOn(false); });
    connect(m_bench.actions.search, &QAction::triggered, m_bar, &SearchBar::focusBox);
    connect(&m_bench.limits, &Limits::changed, this, [this, next, previous] {
        next->setEnabled(m_search.has_value());
        previous->setEnabled(m_search.has_value());
    });
    if (auto *menu = window.findChild<QMenu *>(QStringLiteral("menuEdit")))
        menu->insertActions(m_bench.actions.find, {next, previous});
}

void SearchPart::open() {
    m_bar->setEnabled(true);
}

/// The thread lets go of the project before its connection goes.
void SearchPart::close() {
    m_service.reset();
    m_pause.stop();
    m_settle.stop();
    m_closedAt = m_number++;
    m_found.reset();
    m_search.reset();
    m_wanted = {};
    m_bar->setText({});
    m_bar->showMessage({});
    m_bar->clearCounts();
    m_bar->setEnabled(false);
    m_progress->hide();
    m_hits->take(std::nullopt);
}

void SearchPart::startService() {
    if (m_service)
        return;
    const std::filesystem::path file = m_bench.project().getFilename();
    ProgramState &state = m_bench.program.state;
    const bool isEvidence = evidenceAround(file, state).has_value();
    m_service = std::make_unique<SearchService>(
        IndexPlace{file, indexBeside(file), state.tempFolderPath, isEvidence},
        [this](const SearchNews &news) {
            // In the service's thread.
            QMetaObject::invokeMethod(
                this, [this, news] { hear(news); }, Qt::QueuedConnection);
        });
}

/// Letter by letter only what is found at once.
void SearchPart::type(const QString &text) {
    if (text.isEmpty())
        return drop();
    if (m_search && m_search->text == text)
        return;
    start(text, SearchScope::values);
}

void SearchPart::enter(const QString &text) {
    m_pause.stop();
    if (text.trimmed().isEmpty()) {
        drop();
        return m_bar->showHint();
    }
    start(text.trimmed(), SearchScope::all);
}

/// What is wrong stands beside the box, and the rows stay as they are.
void SearchPart::start(const QString &text, SearchScope scope) {
    NoLog unheard; // half a word of an operator is no failure
    bool goesOn = true;
    const auto fault = failureOf(unheard, kProcedure, [&] {
        goesOn = isFoundAtOnce(parseSearch(fromQt(text))) || scope == SearchScope::all;
    });
    if (fault)
        return m_help->showFault(text, toQt(*fault));
    if (!goesOn)
        return m_bar->showMessage(tr("Three letters at least, or Enter"));
    m_bar->showMessage(scope == SearchScope::all ? tr("Searching...") : QString());
    look(text, scope);
}

void SearchPart::look(const QString &text, SearchScope scope) {
    if (!m_bench.isProjectOpen())
        return;
    m_wanted = {text, scope, nullptr, zoneOf(text)};
    m_bar->clearCounts();
    m_help->forget();
    m_settle.stop();
    m_found.reset();
    const auto failure = failureOf(m_bench.program.log, kProcedure, [&] {
        startService();
        m_service->want(
            {++m_number, RowMatch(projectSearch(m_bench.program, fromQt(text)), scope)});
        m_searchedTo = lastRow(m_bench.project());
    });
    if (failure)
        m_bar->showMessage(toQt(*failure), SearchBar::Tone::fault);
}

QString SearchPart::zoneOf(const QString &text) const {
    return toQt(zoneOfSearch(m_bench.program, fromQt(text)));
}

/// Nothing is looked for any more.
void SearchPart::drop() {
    if (m_service)
        m_service->giveUp();
    ++m_number;
    m_settle.stop();
    m_found.reset();
    m_wanted = {};
    m_bar->showMessage({});
    m_bar->clearCounts();
    m_help->forget();
    if (!m_search)
        return;
    m_bench.run(kProcedure, [this] {
        setLimit({});
        m_bench.table->narrow();
    });
}

/// Rows have come that the search doesn't know of, or the zone is another one.
void SearchPart::again() {
    if (!m_search)
        return;
    const std::int64_t last = trapped(m_bench.program.log, Severity::Low, kProcedure, kNotSerious,
                                      m_searchedTo, [this] { return lastRow(m_bench.project()); });
    if (last != m_searchedTo || m_search->zone != zoneOf(m_search->text))
        look(m_search->text, m_search->scope);
}

void SearchPart::hear(const SearchNews &news) {
    if (news.number <= m_closedAt)
        return; // of a project that was closed
    for (const Failure &failure : news.log)
        m_bench.program.log.write(failure);
    tellIndexing(news);
    if (news.number != m_number || news.number == m_indexOrder)
        return;
    switch (news.step) {
    case SearchNews::Step::first:
    case SearchNews::Step::rows:
        m_found = news.ids;
        m_unread = news.unread;
        m_isWhole = news.step == SearchNews::Step::rows;
        if (m_isWhole)
            takeRows();
        else
            m_settle.start(kSettle);
        break;
    case SearchNews::Step::counts:
        m_bar->showCounts(news.counts);
        break;
    case SearchNews::Step::cancelled:
        m_bar->showMessage(tr("The index isn't whole: Enter goes on with it"));
        break;
    case SearchNews::Step::failed:
        m_bar->showMessage(toQt(news.failure), SearchBar::Tone::fault);
        break;
    case SearchNews::Step::indexing:
    case SearchNews::Step::indexed:
    case SearchNews::Step::checked:
        break;
    }
}

void SearchPart::tellIndexing(const SearchNews &news) {
    const QString work = tr("Search index");
    if (news.step == SearchNews::Step::indexing) {
        m_progress->showFraction(news.fraction);
        emit m_bench.workProgressed(work, news.fraction);
        return;
    }
    m_progress->hide();
    emit m_bench.workEnded(work);
    if (news.number != m_indexOrder)
        return;
    if (news.step == SearchNews::Step::checked)
        m_bench.showNotice(tr("The search index is ready"));
    else if (news.step == SearchNews::Step::failed)
        m_bar->showMessage(toQt(news.failure), SearchBar::Tone::fault);
}

/// The service makes the index for a search: it gets one whose rows nobody takes up. A search that
/// is in force has seen to it already.
void SearchPart::makeIndex() {
    if (!m_bench.isProjectOpen() || !m_wanted.text.isEmpty())
        return;
    const auto failure = failureOf(m_bench.program.log, kProcedure, [this] {
        startService();
        m_indexOrder = ++m_number;
        m_service->want({m_indexOrder, RowMatch(parseSearch("index"), SearchScope::all)});
    });
    if (failure)
        m_bar->showMessage(toQt(*failure), SearchBar::Tone::fault);
}

void SearchPart::takeRows() {
    if (!m_found)
        return;
    m_settle.start(kWhileBusy); // the command doesn't run while a task has the project
    m_bench.run(kProcedure, [this] {
        m_settle.stop();
        Search search = m_wanted;
        search.ids = std::exchange(m_found, nullptr);
        const bool same =
            m_search && *m_search == search && m_search->ids && *m_search->ids == *search.ids;
        if (m_isWhole) {
            tellRows(m_unread);
            m_help->explain(m_wanted.text, search.ids->empty());
        }
        if (same && m_isWhole && m_bench.table->table()->ofSearch == m_search->ids)
            return;
        setLimit(QVariant::fromValue(search));
        using Narrowed = TableTab::Narrowed;
        m_bench.table->narrow(!m_isWhole             ? Narrowed::interim
                              : m_bar->hasBoxFocus() ? Narrowed::typed
                                                     : Narrowed::last);
    });
}

void SearchPart::tellRows(std::size_t unread) {
    m_bar->showMessage(
        unread == 0 ? QString()
                    : tr("%L1 rows can't be read: nobody can tell what stands in them").arg(unread),
        SearchBar::Tone::fault);
}

QVariant SearchPart::limit() const {
    return m_search ? QVariant::fromValue(*m_search) : QVariant();
}

void SearchPart::setLimit(const QVariant &limit) {
    m_search.reset();
    if (limit.isValid())
        m_search = limit.value<Search>();
    UrlTable *table = m_bench.table->table();
    if (table)
        table->ofSearch = m_search ? m_search->ids : nullptr;
    std::optional<RowMatch> match;
    if (m_search)
        match.emplace(projectSearch(m_bench.program, fromQt(m_search->text)), m_search->scope);
    m_hits->take(std::move(match));
    // Undo and chips change what stands in the box; the examiner's own letters stay.
    if (m_wanted != m_search.value_or(Search())) {
        m_wanted = m_search.value_or(Search());
        ++m_number;
        m_bar->setText(m_wanted.text);
        m_bar->showMessage({});
        m_bar->clearCounts();
        m_help->forget();
    }
}

std::vector<LimitChip> SearchPart::chips() const {
    if (!m_search)
        return {};
    const bool isAll = m_search->scope == SearchScope::all;
    const QString text =
        (isAll ? tr("Search: %1") : tr("Search in values: %1")).arg(m_search->text);
    return {
        {m_search->zone.isEmpty() ? text : tr("%1 (dates by %2)").arg(text, m_search->zone), {}}};
}

bool SearchPart::isBeingTyped() const {
    return m_search && m_search->scope == SearchScope::values && m_bar->hasBoxFocus();
}

void SearchPart::fillMenu() {
    if (!m_search)
        return;
    m_bar->menu().addSeparator();
    QAction *keepEntry =
        m_bar->menu().addAction(tr("&Keep These Rows as a Result..."), this,
                                [this] { m_bench.run(kProcedure, [this] { keep(); }); });
    keepEntry->setObjectName(QStringLiteral("actKeepResult"));
}

/// A result is a stored query of its name too.
void SearchPart::keep() {
    if (!m_search || !m_bench.mayWrite())
        return;
    QInputDialog dialog(&m_bench.window);
    dialog.setObjectName(QStringLiteral("KeepResultForm"));
    dialog.setWindowTitle(tr("Keep Result"));
    dialog.setLabelText(tr("Name of the result:"));
    if (dialog.exec() != QDialog::Accepted)
        return;
    const std::string name = fromQt(dialog.textValue().trimmed());
    Program &program = m_bench.program;
    if (const std::string fault = faultOfResultName(program, name); !fault.empty()) {
        m_bar->showMessage(toQt(fault), SearchBar::Tone::fault);
        return;
    }
    keepSearch(program, name, toldSearch(program, fromQt(m_search->text)), *m_search->ids);
    emit m_bench.queriesChanged();
    m_bench.showNotice(tr("Kept as \"%1\": a query of this name has its rows").arg(toQt(name)));
}

} // namespace nv
