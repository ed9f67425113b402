#include "bench/CachedPages.h"

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

namespace nv {
namespace {

constexpr int kRows = 500'000;
constexpr int kPages = 20;
constexpr int kReferences = 50; ///< of a page, each to a part of its own

std::string partUrl(int part) {
    return fmt::format("https://host{}.example/images/folder{}/picture{}.gif", part % 31, part % 97,
                       part);
}

/// Half a million cached parts of one browser, and pages whose parts lie among them.
struct LargeProject : bench::CachedPages {
    LargeProject() : CachedPages("Opera Cache", "GIF89a and what makes a small picture") {
        SQLite::Transaction whole(project.connection());
        for (int i = 0; i < kRows; ++i) {
            const std::string url = partUrl(i);
            add(url, "part.gif", url.substr(8, url.find('/', 8) - 8));
        }
        for (int page = 0; page < kPages; ++page) {
            std::vector<std::string> pictures;
            pictures.reserve(kReferences);
            for (int i = 0; i < kReferences; ++i)
                pictures.push_back(partUrl((page * 9973 + i * 7919) % kRows));
            addPage("https://", pictures);
        }
        whole.commit();
    }
};

void rebuild(benchmark::State &state, MethodChoice method) {
    static LargeProject large;
    RebuildSettings settings;
    settings.wideRecordIds = true;
    settings.method = method;
    for (auto _ : state)
        large.rebuildAll(state, large.context(settings), [](const UrlRecord &) {});
    const double pages = kPages * static_cast<double>(state.iterations());
    state.counters["pages/min"] = benchmark::Counter(60 * pages, benchmark::Counter::kIsRate);
    state.counters["references/s"] =
        benchmark::Counter(kReferences * pages, benchmark::Counter::kIsRate);
}

void exactAmongHalfAMillionRows(benchmark::State &state) {
    rebuild(state, MethodChoice::exact);
}
BENCHMARK(exactAmongHalfAMillionRows)->Iterations(1)->Unit(benchmark::kMillisecond)->UseRealTime();

void classicAmongHalfAMillionRows(benchmark::State &state) {
    rebuild(state, MethodChoice::classic);
}
BENCHMARK(classicAmongHalfAMillionRows)
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

} // namespace
} // namespace nv
