#include "reports/report/ReportWriter.h"
#include "reports/report/SortTable.h"
#include "support/TestProject.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include <fstream>

namespace nv {
namespace {

constexpr int kRows = 10'000;

/// A project of history rows, so that the writing counts and not the copying of evidence.
struct ManyRows {
    test::TestProject project;
    RecordStore store = project.store();
    std::filesystem::path folder = project.folder.path() / "temp";
    Evidence evidence{folder};
    RowIds ids;

    ManyRows() {
        std::filesystem::create_directories(folder);
        SQLite::Transaction whole(project.connection());
        for (int i = 0; i < kRows; ++i) {
            UrlRecord record;
            record.cacheType = "IE Daily";
            record.URL = record.URLRawValue = fmt::format("http://host{}.example/{}", i % 31, i);
            record.IsHistory = true;
            record.ActionDateUTC = Date::fromDays(40000 + i);
            store.saveRecord(record, project.file);
            ids.push_back(static_cast<std::int32_t>(number(record.URLID)));
        }
        whole.commit();
        Unwatched task;
        fillSortTable(project.connection(), ids, ReportRows::all, task);
    }
};

void report(benchmark::State &state, void (ReportWriter::*make)(const std::filesystem::path &)) {
    static ManyRows many;
    Unwatched task;
    const ReportContext ctx{{many.project.connection(),
                             many.store,
                             many.evidence,
                             many.folder,
                             many.project.log,
                             task,
                             {}},
                            many.project.zone,
                            many.project.clock,
                            nullptr,
                            {}};
    std::uintmax_t bytes = 0;
    for (auto _ : state) {
        ReportWriter each(ctx);
        (each.*make)(many.folder);
        bytes = std::filesystem::file_size(each.reportFilePath);
    }
    state.SetItemsProcessed(state.iterations() * kRows);
    state.counters["bytes"] = static_cast<double>(bytes);
}
void graphicalReport(benchmark::State &state) {
    report(state, &ReportWriter::createGraphicalReport);
}
void tabularReport(benchmark::State &state) {
    report(state, &ReportWriter::createTabularReport);
}
BENCHMARK(graphicalReport)->Unit(benchmark::kMillisecond);
BENCHMARK(tabularReport)->Unit(benchmark::kMillisecond);

/// What the disk alone would take for the bytes of a graphical report.
void plainBytes(benchmark::State &state) {
    const test::TempFolder folder;
    const std::string entry(2400, 'x');
    for (auto _ : state) {
        std::ofstream file(folder.path() / "plain", std::ios::binary);
        for (int i = 0; i < kRows; ++i)
            file << entry;
    }
    state.SetItemsProcessed(state.iterations() * kRows);
}
BENCHMARK(plainBytes)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace nv
