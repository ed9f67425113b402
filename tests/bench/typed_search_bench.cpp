#include "search/IndexFile.h"
#include "search/SearchService.h"
#include "support/TestProject.h"
#include "views/rows/DateIndex.h"
#include "views/table/UrlTable.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <benchmark/benchmark.h>

#include <condition_variable>
#include <mutex>

namespace nv {
namespace {

/// A project of a million rows, its index made, and the service that a window searches by.
class TypedSearch {
  public:
    TypedSearch() {
        project.connection().exec(
            "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 1000000) "
            "INSERT INTO URLs(URL, Host, WebPageTitle, CacheType, ActionDateUTC, ActionDateLocal, "
            "IsHistory) SELECT 'http://host' || (i % 997) || '.example/folder/page' || i || "
            "'.html', 'host' || (i % 997) || '.example', 'Tide tables of ' || (i * 7919 % 10007), "
            "'IE History', 40000 + (i * 7919 % 1000003) / 1000.0, "
            "40000 + (i * 7919 % 1000003) / 1000.0, 1 FROM n");
        ensureDateIndex(project.connection(), task);
        table.loadURLs(task);
        service = std::make_unique<SearchService>(IndexPlace{project.database.filePath,
                                                             indexBeside(project.database.filePath),
                                                             project.folder.path()},
                                                  [this](const SearchNews &news) { hear(news); });
        look("tide", SearchNews::Step::checked);
    }
    /// Until the news have come.
    std::shared_ptr<const FoundIds> look(const std::string &text, SearchNews::Step until) {
        std::unique_lock lock(mutex);
        isDone = false;
        wanted = until;
        service->want({++number, RowMatch(parseSearch(text), SearchScope::values)});
        wake.wait(lock, [this] { return isDone; });
        return found;
    }
    void hear(const SearchNews &news) {
        const std::scoped_lock lock(mutex);
        if (news.number != number)
            return;
        if (news.ids)
            found = news.ids;
        isDone |= news.step == wanted || news.step == SearchNews::Step::checked;
        wake.notify_all();
    }

    test::TestProject project;
    Unwatched task;
    TimeZone zone{Date::fromDays(40000)};
    UrlTable table{project.connection(), project.log, zone};
    std::mutex mutex;
    std::condition_variable wake;
    std::uint64_t number = 0;
    SearchNews::Step wanted = SearchNews::Step::checked;
    bool isDone = false;
    std::shared_ptr<const FoundIds> found;
    std::unique_ptr<SearchService> service;
};

TypedSearch &typedSearch() {
    static TypedSearch search;
    return search;
}

/// From the letter to the rows of the table, without the window's drawing.
void narrowTo(benchmark::State &state, const char *text, SearchNews::Step until) {
    TypedSearch &search = typedSearch();
    for (auto _ : state) {
        search.table.ofSearch = search.look(text, until);
        search.table.narrow(search.task);
    }
    state.counters["rows"] = static_cast<double>(search.table.rowCount());
}
BENCHMARK_CAPTURE(narrowTo, firstOfAMillion, "tid", SearchNews::Step::first)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(narrowTo, allOfAMillion, "tid", SearchNews::Step::rows)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(narrowTo, aHundred, "of 7777", SearchNews::Step::rows)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(narrowTo, countedByHost, "host500", SearchNews::Step::counts)
    ->Unit(benchmark::kMillisecond);

void valuesOfAHeading(benchmark::State &state) {
    TypedSearch &search = typedSearch();
    for (auto _ : state) {
        CountedValues counted;
        countValues(search.project.connection(), search.table.idsOfQuery(), UrlColumn::Host, 2000,
                    search.task, counted);
        benchmark::DoNotOptimize(counted);
    }
}
BENCHMARK(valuesOfAHeading)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace nv
