#include "address/WebAddress.h"

#include <benchmark/benchmark.h>

#include <array>
#include <string_view>

namespace nv {
namespace {

/// As pages have them.
constexpr std::array<std::string_view, 8> kReferences = {
    "/static/css/site.min.css?v=20240117",
    "../images/2024/01/harbour at dawn.jpg",
    "https://cdn.example.net/fonts/sans-400.woff2",
    "//static.example.com/js/app.js",
    "#comments",
    "story.html?id=1&amp=2#top",
    "pictures/caf\xC3\xA9.png",
    "data:image/gif;base64,R0lGODlhAQABAIAAAAAAAP///yH5BAEAAAAALAAAAAABAAEAAAIBRAA7",
};

void resolvedReferences(benchmark::State &state) {
    const auto page = WebAddress::parsed("https://www.example.org/news/today/page.html?edition=2");
    for (auto _ : state)
        for (const std::string_view reference : kReferences)
            benchmark::DoNotOptimize(WebAddress::parsed(reference, &*page));
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kReferences.size()));
}
BENCHMARK(resolvedReferences);

void namesOutsideAscii(benchmark::State &state) {
    for (auto _ : state)
        benchmark::DoNotOptimize(WebAddress::parsed("https://www.b\xC3\xBC"
                                                    "cher.example/"));
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(namesOutsideAscii);

void queryInShiftJis(benchmark::State &state) {
    const auto page = WebAddress::parsed("https://www.example.org/");
    for (auto _ : state)
        benchmark::DoNotOptimize(
            WebAddress::parsed("?q=\xE6\x97\xA5\xE6\x9C\xAC", &*page, "shift_jis"));
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(queryInShiftJis);

} // namespace
} // namespace nv
