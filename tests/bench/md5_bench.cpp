#include "base/Files.h"
#include "base/Md5.h"
#include "support/TempFolder.h"

#include <benchmark/benchmark.h>

namespace nv {
namespace {

constexpr std::size_t kSize = std::size_t{256} << 20;

/// The limit: the library over memory that lies ready.
void libraryOverMemory(benchmark::State &state) {
    const std::string bytes(kSize, 'x');
    for (auto _ : state)
        benchmark::DoNotOptimize(md5Hex(bytes));
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(kSize));
}
BENCHMARK(libraryOverMemory)->Unit(benchmark::kMillisecond);

/// A file as an import hashes it, from the system's cache.
void fileInBlocks(benchmark::State &state) {
    const test::TempFolder folder;
    const auto file = folder.write("big.bin", std::string(kSize, 'x'));
    for (auto _ : state)
        benchmark::DoNotOptimize(fileMD5(file));
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(kSize));
}
BENCHMARK(fileInBlocks)->Unit(benchmark::kMillisecond);

void hashOfOneUrl(benchmark::State &state) {
    const std::string url = "http://www.host.example/folder/page.php?id=1234567&view=full";
    for (auto _ : state)
        benchmark::DoNotOptimize(hashOfUrl(url));
}
BENCHMARK(hashOfOneUrl);

} // namespace
} // namespace nv
