#include "search/SearchService.h"

#include "base/Trap.h"
#include "db/sql/Connection.h"

#include <SQLiteCpp/Database.h>

#include <algorithm>
#include <chrono>
#include <utility>

namespace nv {

namespace {

constexpr const char *kProcedure = "MainForm.SearchProject()";
constexpr std::size_t kFirst = 200; ///< rows that are told of before all are known

using Step = SearchNews::Step;

} // namespace

/// What is logged goes to the caller's thread with the next news.
class SearchService::Messages final : public FailureLog {
  public:
    void write(const Failure &failure) override { m_failures.push_back(failure); }
    std::vector<Failure> take() { return std::exchange(m_failures, {}); }

  private:
    std::vector<Failure> m_failures;
};

struct SearchService::Connections {
    explicit Connections(const IndexPlace &place)
        : project(connectToProject(place.project, Access::read)), index(*project, place, log) {}

    Messages log;
    std::unique_ptr<SQLite::Database> project;
    SearchIndex index;
};

/// Shows how far the index is, and ends work that nobody waits for any more.
class SearchService::Watch final : public TaskMonitor {
  public:
    enum class Ends { whenStopped, whenNotWanted };
    Watch(SearchService &service, std::uint64_t number, Ends ends)
        : m_service(service), m_number(number), m_ends(ends) {}

    void describe(const TaskHeading &) override {}
    bool advance(double fraction) override {
        if (m_ends == Ends::whenNotWanted)
            return m_service.isWanted(m_number);
        constexpr std::chrono::milliseconds kStep{100};
        const auto now = std::chrono::steady_clock::now();
        if (now - m_told >= kStep) {
            m_told = now;
            m_service.tell({.number = m_number, .step = Step::indexing, .fraction = fraction});
        }
        const std::scoped_lock lock(m_service.m_mutex);
        return !m_service.m_ends && !m_service.m_stopsIndexing;
    }
    bool wantsStep() const override { return false; }
    void show(const TaskStep &) override {}

  private:
    SearchService &m_service;
    std::uint64_t m_number;
    Ends m_ends;
    std::chrono::steady_clock::time_point m_told{};
};

SearchService::SearchService(IndexPlace place, Tell tell)
    : m_place(std::move(place)), m_tell(std::move(tell)), m_thread([this] { work(); }) {}

SearchService::~SearchService() {
    {
        const std::scoped_lock lock(m_mutex);
        m_ends = true;
        m_current = 0;
    }
    m_wake.notify_all();
    m_thread.join();
}

void SearchService::want(Order order) {
    {
        const std::scoped_lock lock(m_mutex);
        m_current = order.number;
        m_waiting.emplace(std::move(order));
    }
    m_wake.notify_all();
}

void SearchService::giveUp() {
    const std::scoped_lock lock(m_mutex);
    m_current = 0;
    m_waiting.reset();
}

void SearchService::cancelIndexing() {
    const std::scoped_lock lock(m_mutex);
    m_stopsIndexing = true;
}

bool SearchService::isWanted(std::uint64_t number) {
    const std::scoped_lock lock(m_mutex);
    return m_current == number;
}

void SearchService::tell(SearchNews news) {
    if (m_connections)
        news.log = m_connections->log.take();
    m_tell(news);
}

std::optional<SearchService::Order> SearchService::nextOrder() {
    std::unique_lock lock(m_mutex);
    m_wake.wait(lock, [this] { return m_ends || m_waiting; });
    m_stopsIndexing = false;
    return m_ends ? std::nullopt : std::exchange(m_waiting, std::nullopt);
}

void SearchService::work() {
    while (auto order = nextOrder()) {
        Messages log;
        const auto failure = failureOf(log, kProcedure, [&] {
            if (!m_connections)
                m_connections = std::make_unique<Connections>(m_place);
            serve(*order);
        });
        if (!failure)
            continue;
        tell({.number = order->number, .step = Step::failed, .failure = *failure});
        m_connections.reset(); // a connection that fails is made anew
    }
    m_connections.reset();
}

void SearchService::serve(Order &order) {
    if (prepareIndex(order) && find(order) && check(order))
        tell({.number = order.number, .step = Step::checked});
}

/// The first search makes the index, and shows how far it is.
bool SearchService::prepareIndex(Order &order) {
    SearchIndex &index = m_connections->index;
    const bool parts = needsParts(order.match);
    if (index.openAsItStands(parts))
        return true;
    Watch watch(*this, order.number, Watch::Ends::whenStopped);
    IndexNews news;
    const bool isReady = index.bringUpToDate(watch, news, parts) == IndexEnd::ready;
    tell({.number = order.number, .step = isReady ? Step::indexed : Step::cancelled});
    return isReady;
}

/// False when it was given up, or when the index made no sense.
bool SearchService::find(Order &order) {
    SQLite::Database &project = *m_connections->project;
    SearchIndex &index = m_connections->index;
    Watch watch(*this, order.number, Watch::Ends::whenNotWanted);
    const auto found = [&](std::size_t most) {
        auto rows = index.unlessItIsDamaged(
            [&] { return findIndexed(project, index, order.match, watch, most); });
        return rows ? *rows : findRows(project, index, order.match, watch, most);
    };
    const auto tellRows = [&](Step step, SearchFound rows) {
        auto ids = std::make_shared<const FoundIds>(std::move(rows.ids));
        tell({.number = order.number, .step = step, .ids = ids, .unread = rows.unread.size()});
        return ids;
    };
    if (order.match.query().clauses.size() == 1) {
        SearchFound first = found(kFirst);
        if (!isWanted(order.number))
            return false;
        if (first.ids.size() == kFirst)
            tellRows(Step::first, std::move(first));
    } else {
        StillWanted wanted(watch);
        auto some = index.unlessItIsDamaged([&] {
            return index.someWithAll(order.match.query().clauses, order.match.scope(), wanted,
                                     kFirst);
        });
        if (!isWanted(order.number))
            return false;
        if (some && some->size() == kFirst) {
            SearchFound first;
            first.ids = std::move(*some);
            tellRows(Step::first, std::move(first));
        }
    }
    SearchFound rows = found(0);
    if (rows.isCancelled || !isWanted(order.number))
        return false;
    const auto ids = tellRows(Step::rows, std::move(rows));
    StillWanted wanted(watch);
    auto counts = index.unlessItIsDamaged([&] { return countFound(index, *ids, wanted); });
    if (counts && !wanted.isOver())
        tell({.number = order.number, .step = Step::counts, .counts = std::move(*counts)});
    return isWanted(order.number);
}

/// Finds anew when rows of the project were others than those that are indexed.
bool SearchService::check(Order &order) {
    SearchIndex &index = m_connections->index;
    if (index.isUpToDate())
        return true;
    Watch watch(*this, order.number, Watch::Ends::whenNotWanted);
    IndexNews news;
    if (index.bringUpToDate(watch, news, needsParts(order.match)) == IndexEnd::cancelled)
        return false;
    return !news.hasAny() || find(order);
}

} // namespace nv
