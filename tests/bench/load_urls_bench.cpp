#include "support/TestProject.h"
#include "views/limits/Hosts.h"
#include "views/rows/DateIndex.h"
#include "views/table/UrlTable.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <benchmark/benchmark.h>

#include <vector>

namespace nv {
namespace {

constexpr int kRows = 1'000'000;
constexpr std::size_t kScreen = 50;

/// One project of a million rows for all measurements.
struct BigProject {
    BigProject() {
        project.connection().exec(
            "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 1000000) "
            "INSERT INTO URLs(URL, URLRawValue, Host, CacheType, ActionDateUTC, ActionDateLocal, "
            "MetaData, User, IsHistory) SELECT 'http://host' || (i % 997) || "
            "'.example/folder/page' || i || '.html', 'Visited: mara@http://host', 'host' || "
            "(i % 997) || '.example', 'IE History', 40000 + (i * 7919 % 1000003) / 1000.0, "
            "40000 + (i * 7919 % 1000003) / 1000.0, hex(randomblob(150)), 'mara', 1 FROM n");
        ensureDateIndex(project.connection(), task);
    }
    test::TestProject project;
    Unwatched task;
};

BigProject &bigProject() {
    static BigProject big;
    return big;
}

void lookAtScreen(UrlTable &table, std::size_t first) {
    for (std::size_t place = first; place < first + kScreen; ++place)
        for (const UrlColumnFacts &facts : kUrlColumns)
            if (facts.shown == Shown::Yes)
                benchmark::DoNotOptimize(table.cell(place, facts.column));
}

/// From the command to the first rows on the screen.
void loadAndShowFirstRows(benchmark::State &state) {
    BigProject &big = bigProject();
    const TimeZone zone{Date::fromDays(40000)};
    for (auto _ : state) {
        UrlTable table(big.project.connection(), big.project.log, zone);
        table.loadURLs(big.task);
        lookAtScreen(table, 0);
    }
}
BENCHMARK(loadAndShowFirstRows)->Unit(benchmark::kMillisecond);

/// The same in a layout that has rows without a date at the end: two statements over the index.
void loadWithRowsWithoutADateLast(benchmark::State &state) {
    BigProject &big = bigProject();
    const TimeZone zone{Date::fromDays(40000)};
    for (auto _ : state) {
        UrlTable table(big.project.connection(), big.project.log, zone);
        table.undated = Undated::Last;
        table.loadURLs(big.task);
        lookAtScreen(table, 0);
    }
}
BENCHMARK(loadWithRowsWithoutADateLast)->Unit(benchmark::kMillisecond);

/// With the order of a heading, which now holds over every load.
void loadSorted(benchmark::State &state, UrlColumn column) {
    BigProject &big = bigProject();
    const TimeZone zone{Date::fromDays(40000)};
    UrlTable table(big.project.connection(), big.project.log, zone);
    table.undated = Undated::Last;
    table.sort = ColumnSort{column, SortDirection::Descending};
    for (auto _ : state)
        table.loadURLs(big.task);
}
BENCHMARK_CAPTURE(loadSorted, byDate, UrlColumn::LocalDate)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(loadSorted, byHost, UrlColumn::Host)->Unit(benchmark::kMillisecond);

/// A screen of rows anywhere in the list, as dragging the scroll bar shows it.
void showAScreenAnywhere(benchmark::State &state) {
    BigProject &big = bigProject();
    const TimeZone zone{Date::fromDays(40000)};
    UrlTable table(big.project.connection(), big.project.log, zone);
    table.loadURLs(big.task);
    std::size_t place = 0;
    for (auto _ : state) {
        place = (place + 377'777) % (kRows - kScreen);
        lookAtScreen(table, place);
    }
}
BENCHMARK(showAScreenAnywhere)->Unit(benchmark::kMillisecond);

/// A hundred pages one after another, none of them at hand.
void scrollAHundredPages(benchmark::State &state) {
    BigProject &big = bigProject();
    const TimeZone zone{Date::fromDays(40000)};
    UrlTable table(big.project.connection(), big.project.log, zone);
    table.loadURLs(big.task);
    std::size_t place = 0;
    for (auto _ : state)
        for (int page = 0; page < 100; ++page) {
            place = (place + 377'777) % (kRows - kScreen);
            lookAtScreen(table, place);
        }
}
BENCHMARK(scrollAHundredPages)->Unit(benchmark::kMillisecond);

/// The first load after an import: every row is looked at once for its base folder.
void loadWithRowsNotSeenYet(benchmark::State &state) {
    BigProject &big = bigProject();
    const TimeZone zone{Date::fromDays(40000)};
    big.project.connection().exec("UPDATE URLs SET RootPath = '/evidence/'");
    UrlTable table(big.project.connection(), big.project.log, zone);
    table.rootPath = "/evidence/";
    for (auto _ : state) {
        big.project.connection().exec(
            "DELETE FROM DefaultSettings WHERE DefaultName = 'RootPathSeen'");
        table.loadURLs(big.task);
    }
}
BENCHMARK(loadWithRowsNotSeenYet)->Unit(benchmark::kMillisecond);

void loadThrough(benchmark::State &state, const RecordFilters &filters) {
    BigProject &big = bigProject();
    const TimeZone zone{Date::fromDays(40000)};
    UrlTable table(big.project.connection(), big.project.log, zone);
    table.filters = filters;
    table.filters.enableFilters = true;
    table.filters.showHistoryURLs = true;
    for (auto _ : state)
        table.loadURLs(big.task);
    state.counters["rows"] = static_cast<double>(table.rowCount());
}

/// The record filters look at every row, by its extension alone.
void loadThroughAKindFilter(benchmark::State &state) {
    RecordFilters filters;
    filters.showGIF = true;
    loadThrough(state, filters);
}
BENCHMARK(loadThroughAKindFilter)->Unit(benchmark::kMillisecond);

/// Every flag but the one that makes looking needless, on rows that hardly any of them admits.
void loadThroughAllFilters(benchmark::State &state) {
    RecordFilters filters;
    for (const FilterFlag &each : filterFlags())
        filters.*each.flag = true;
    filters.showMissingFileExt = false; // admits all rows of this project
    filters.showAll = false;
    loadThrough(state, filters);
}
BENCHMARK(loadThroughAllFilters)->Unit(benchmark::kMillisecond);

/// Through all rows and back to the first: nothing holds the text.
void findWithoutAMatch(benchmark::State &state, const char *text) {
    BigProject &big = bigProject();
    const TimeZone zone{Date::fromDays(40000)};
    UrlTable table(big.project.connection(), big.project.log, zone);
    table.loadURLs(big.task);
    FindText what{text, {}};
    for (const UrlColumnFacts &facts : kUrlColumns)
        if (facts.shown == Shown::Yes)
            what.columns.push_back(facts.column);
    for (auto _ : state) {
        table.refreshRows(); // or the second search would know
        benchmark::DoNotOptimize(table.find(what, 0, big.task));
    }
}
BENCHMARK_CAPTURE(findWithoutAMatch, aWord, "no such text")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(findWithoutAMatch, ofOtherLetters, "M\u00DCLLER")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(findWithoutAMatch, aDate, "1999-12-31")->Unit(benchmark::kMillisecond);

/// The list of hosts, of which this project has 997.
void listTheHosts(benchmark::State &state) {
    BigProject &big = bigProject();
    std::vector<HostRow> hosts;
    UnreadRows unread;
    for (auto _ : state)
        listHosts(big.project.connection(), HostSort::ByVisits, big.task, hosts, unread);
}
BENCHMARK(listTheHosts)->Unit(benchmark::kMillisecond);

void sortByUrl(benchmark::State &state) {
    BigProject &big = bigProject();
    const TimeZone zone{Date::fromDays(40000)};
    UrlTable table(big.project.connection(), big.project.log, zone);
    table.loadURLs(big.task);
    for (auto _ : state)
        table.sortBy(UrlColumn::Value, SortDirection::Ascending, big.task);
}
BENCHMARK(sortByUrl)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace nv
