#include "base/Files.h"
#include "base/NoLog.h"
#include "db/sql/Connection.h"
#include "search/IndexFile.h"
#include "search/SearchService.h"
#include "support/TempFolder.h"
#include "support/TestDoubles.h"
#include "views/limits/ColumnLimit.h"
#include "views/limits/PlaceLimit.h"
#include "views/limits/Places.h"
#include "views/table/UrlTable.h"
#include "views/timeline/TimeLimit.h"
#include "views/timeline/Timeline.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <benchmark/benchmark.h>

#include <condition_variable>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <mutex>

// What an examiner waits for at the desk, in the project that NV_BENCH_PROJECT names: its rows,
// searches by letters and of texts, times, places, values of headings. Without one nothing is
// measured.
namespace nv {
namespace {

namespace fs = std::filesystem;

/// The project as a window has it: its table, and the service that it searches by.
class BenchDesk {
  public:
    explicit BenchDesk(const fs::path &file)
        : project(connectToProject(file, Access::read)), table(*project, log, zone) {
        table.loadURLs(task);
        service =
            std::make_unique<SearchService>(IndexPlace{file, indexBeside(file), folder.path()},
                                            [this](const SearchNews &news) { hear(news); });
    }
    /// Until the news have come.
    std::shared_ptr<const FoundIds> look(const std::string &text, SearchScope scope,
                                         SearchNews::Step until) {
        std::unique_lock lock(mutex);
        isDone = false;
        wanted = until;
        service->want({++number, RowMatch(parseSearch(text), scope)});
        wake.wait(lock, [this] { return isDone; });
        return found;
    }
    void hear(const SearchNews &news) {
        const std::scoped_lock lock(mutex);
        if (news.number != number)
            return;
        if (news.ids)
            found = news.ids;
        isDone |= news.step == wanted || news.step == SearchNews::Step::checked ||
                  news.step == SearchNews::Step::failed;
        wake.notify_all();
    }

    test::TempFolder folder;
    NoLog log;
    Unwatched task;
    std::unique_ptr<SQLite::Database> project;
    TimeZone zone{Date::fromDays(40000)};
    UrlTable table;
    std::mutex mutex;
    std::condition_variable wake;
    std::uint64_t number = 0;
    SearchNews::Step wanted = SearchNews::Step::checked;
    bool isDone = false;
    std::shared_ptr<const FoundIds> found;
    std::unique_ptr<SearchService> service;
};

BenchDesk *desk() {
    static const char *file = std::getenv("NV_BENCH_PROJECT");
    static std::unique_ptr<BenchDesk> one = file ? std::make_unique<BenchDesk>(file) : nullptr;
    return one.get();
}

/// In megabytes, since the program began.
double peakMemory() {
    std::ifstream status("/proc/self/status");
    std::string line;
    while (std::getline(status, line))
        if (line.starts_with("VmHWM:"))
            return std::strtod(line.c_str() + 6, nullptr) / 1024;
    return 0;
}

template <class Body>
void measure(benchmark::State &state, Body &&body) {
    BenchDesk *on = desk();
    if (!on)
        return state.SkipWithError("NV_BENCH_PROJECT names no project");
    std::size_t found = 0;
    for (auto _ : state)
        found = body(*on);
    state.counters["found"] = static_cast<double>(found);
    state.counters["peak_MB"] = peakMemory();
}

void loadTheTable(benchmark::State &state) {
    measure(state, [](BenchDesk &on) {
        on.table.ofSearch = nullptr;
        on.table.loadURLs(on.task);
        return on.table.rowCount();
    });
}
BENCHMARK(loadTheTable)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime();

void search(benchmark::State &state, const char *text, SearchScope scope, SearchNews::Step until) {
    measure(state, [&](BenchDesk &on) {
        on.table.ofSearch = on.look(text, scope, until);
        on.table.narrow(on.task);
        return on.table.rowCount();
    });
}
constexpr auto kValues = SearchScope::values;
constexpr auto kAll = SearchScope::all;
using Step = SearchNews::Step;
BENCHMARK_CAPTURE(search, lettersFirstOfAll, "htt", kValues, Step::first)
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime();
BENCHMARK_CAPTURE(search, lettersFirstOfFew, "host277", kValues, Step::first)
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime();
BENCHMARK_CAPTURE(search, lettersAll, "htt", kValues, Step::rows)
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime();
BENCHMARK_CAPTURE(search, lettersOneInFiveHundred, "host277", kValues, Step::rows)
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime();
BENCHMARK_CAPTURE(search, fullTextFew, "477777", kAll, Step::rows)
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime();
BENCHMARK_CAPTURE(search, fullTextPhrase, "\"page 4777\"", kAll, Step::rows)
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime();
BENCHMARK_CAPTURE(search, fullTextTwoOfAllFirst, "page title", kAll, Step::first)
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime();
BENCHMARK_CAPTURE(search, fullTextTwoOfAll, "page title", kAll, Step::rows)
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime();

void valuesOfAHeading(benchmark::State &state, UrlColumn column) {
    measure(state, [column](BenchDesk &on) {
        CountedValues counted;
        countValues(*on.project, on.table.idsOfQuery(), column, 2000, on.task, counted);
        return counted.values.size();
    });
}
BENCHMARK_CAPTURE(valuesOfAHeading, host, UrlColumn::Host)
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime();
BENCHMARK_CAPTURE(valuesOfAHeading, kind, UrlColumn::CacheType)
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime();

BENCHMARK_CAPTURE(valuesOfAHeading, browser, UrlColumn::Browser)
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime();
BENCHMARK_CAPTURE(valuesOfAHeading, profile, UrlColumn::Profile)
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime();

BENCHMARK_CAPTURE(valuesOfAHeading, title, UrlColumn::WebpageTitle)
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime();

/// Until the first values are told.
class UntilTold final : public TaskMonitor {
  public:
    bool isTold = false;

    void describe(const TaskHeading &) override {}
    bool advance(double) override { return !isTold; }
    bool wantsStep() const override { return false; }
    void show(const TaskStep &) override {}
};

void firstValuesOfAHeading(benchmark::State &state) {
    measure(state, [](BenchDesk &on) {
        UntilTold until;
        CountedValues all;
        std::size_t values = 0;
        countValues(*on.project, on.table.idsOfQuery(), UrlColumn::WebpageTitle, 2000, until, all,
                    [&](const CountedValues &counted, std::size_t) {
                        values = counted.values.size();
                        until.isTold = true;
                    });
        return values;
    });
}
BENCHMARK(firstValuesOfAHeading)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime();

void limitByAHeading(benchmark::State &state) {
    measure(state, [](BenchDesk &on) {
        RowIds ids = on.table.idsOfQuery();
        keepByColumn(
            *on.project,
            {.column = UrlColumn::Host, .oneOf = std::vector<std::string>{"www.host77.example"}},
            on.task, ids);
        return ids.size();
    });
}
BENCHMARK(limitByAHeading)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime();

void times(benchmark::State &state, TimeStack stack) {
    measure(state, [stack](BenchDesk &on) {
        TimedEvents events;
        loadEvents(*on.project, on.table.idsOfQuery(), stack, on.zone, false, on.task, events);
        const TimeSpan span = wholeSpan(events);
        return barsOf(events, unitFor(span, 30), span, 400).count;
    });
}
BENCHMARK_CAPTURE(times, plain, TimeStack::none)
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime();
BENCHMARK_CAPTURE(times, byKind, TimeStack::kind)
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime();

BENCHMARK_CAPTURE(times, byBrowser, TimeStack::browser)
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime();

/// What a drag over the bar chooses: a third of the time.
TimeLimit thirdOf(BenchDesk &on) {
    TimedEvents events;
    loadEvents(*on.project, on.table.idsOfQuery(), TimeStack::none, on.zone, false, on.task,
               events);
    const TimeSpan whole = wholeSpan(events);
    return limitOf({whole.begin, whole.begin + (whole.end - whole.begin) / 3}, on.zone, false);
}

void limitByTime(benchmark::State &state) {
    const TimeLimit third = desk() ? thirdOf(*desk()) : TimeLimit();
    measure(state, [&third](BenchDesk &on) {
        RowIds ids = on.table.idsOfQuery();
        keepWithin(*on.project, third, on.task, ids);
        return ids.size();
    });
}
BENCHMARK(limitByTime)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime();

void limitByPlace(benchmark::State &state) {
    measure(state, [](BenchDesk &on) {
        RowIds ids = on.table.idsOfQuery();
        keepIn(*on.project, {{{{{PlaceField::Host, "www.host77.example"}}}}, {}}, on.task, ids);
        return ids.size();
    });
}
BENCHMARK(limitByPlace)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime();

void places(benchmark::State &state) {
    measure(state, [](BenchDesk &on) {
        Places found;
        loadPlaces(*on.project, on.task, found);
        return found.hosts.size();
    });
}
BENCHMARK(places)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime();

} // namespace
} // namespace nv
