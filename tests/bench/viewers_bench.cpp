#include "support/TestProject.h"
#include "views/hex/HexSource.h"
#include "views/record/Properties.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <benchmark/benchmark.h>

#include <filesystem>

namespace nv {
namespace {

constexpr std::uintmax_t kLarge = std::uintmax_t{4} * 1024 * 1024 * 1024;
constexpr std::int64_t kRows = 100'000;

/// A file of 4 GB, as a hole in a file system: opened, with a screen of rows somewhere in it.
void openALargeFileInHex(benchmark::State &state) {
    const test::TempFolder folder;
    folder.write("large", "");
    const std::filesystem::path file = folder.path() / "large";
    std::filesystem::resize_file(file, kLarge);
    for (auto _ : state) {
        HexSource source(file);
        for (std::uint64_t row = source.rowCount() / 2; row < source.rowCount() / 2 + 50; ++row)
            benchmark::DoNotOptimize(hexLine(ByteView(source.row(row)), source.offsetDigits()));
    }
}
BENCHMARK(openALargeFileInHex)->Unit(benchmark::kMicrosecond);

/// What the properties of a chosen row cost.
void selectARow(benchmark::State &state) {
    test::TestProject project;
    project.connection().exec(
        "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 100000) "
        "INSERT INTO URLs(URL, Host, CacheType, ActionDateUTC, MetaData, HTMLBody) "
        "SELECT 'http://host/page' || i, 'host', 'IE Cache', 40000 + i / 1000.0, "
        "hex(randomblob(150)), hex(randomblob(2000)) FROM n");
    const PropertySource source{
        project.connection(), project.zone, {}, project.log, [] { return std::nullopt; }};
    std::int64_t id = 0;
    for (auto _ : state) {
        id = (id + 7919) % kRows;
        benchmark::DoNotOptimize(loadProperties(UrlId{id + 1}, source));
    }
}
BENCHMARK(selectARow)->Unit(benchmark::kMicrosecond);

} // namespace
} // namespace nv
