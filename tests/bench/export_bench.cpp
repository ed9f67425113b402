#include "base/Files.h"
#include "reports/exports/ExportRows.h"
#include "support/TestProject.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <benchmark/benchmark.h>

namespace nv {
namespace {

constexpr int kRows = 100'000;

struct Loaded {
    Loaded() {
        project.connection().exec(
            "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 100000) "
            "INSERT INTO URLs(URL, URLRawValue, Host, CacheType, ActionDateUTC, ActionDateLocal, "
            "MetaData, User, IsHistory) SELECT 'http://host' || (i % 997) || "
            "'.example/folder/page' || i || '.html', 'Visited: mara@http://host', 'host' || "
            "(i % 997) || '.example', 'IE History', 40000 + i / 1000.0, 40000 + i / 1000.0, "
            "hex(randomblob(150)), 'mara', 1 FROM n");
        table.loadURLs(task);
    }
    test::TestProject project;
    Unwatched task;
    UrlTable table{project.connection(), project.log, project.zone};
};

Loaded &loaded() {
    static Loaded one;
    return one;
}

void exportAllColumns(benchmark::State &state) {
    Loaded &all = loaded();
    Export job;
    job.format = static_cast<ExportFormat>(state.range(0));
    job.outputFilePath = all.project.folder.path() / "out";
    for (auto _ : state)
        exportRows(job, all.table, all.project.folder.path(), all.task);
    state.SetItemsProcessed(state.iterations() * kRows);
    state.SetBytesProcessed(
        state.iterations() *
        static_cast<std::int64_t>(std::filesystem::file_size(job.outputFilePath)));
}
BENCHMARK(exportAllColumns)->DenseRange(0, 3)->Unit(benchmark::kMillisecond);

/// The same bytes, at hand already, through the same file.
void writeTheSameBytes(benchmark::State &state) {
    Loaded &all = loaded();
    Export job;
    job.format = static_cast<ExportFormat>(state.range(0));
    job.outputFilePath = all.project.folder.path() / "out";
    exportRows(job, all.table, all.project.folder.path(), all.task);
    const Bytes bytes = readWhole(job.outputFilePath);
    for (auto _ : state) {
        ExportFile file(job.outputFilePath);
        file.write(ByteView(bytes).raw());
        file.finish();
    }
    state.SetItemsProcessed(state.iterations() * kRows);
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes.size()));
}
BENCHMARK(writeTheSameBytes)->DenseRange(0, 3)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace nv
