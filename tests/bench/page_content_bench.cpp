#include "import/PageContent.h"
#include "markup/HtmlCost.h"
#include "readers/Scratch.h"
#include "support/TempFolder.h"

#include <benchmark/benchmark.h>

namespace nv {
namespace {

/// A page of 20 KB, as a news site wrote it: tables, links, some script.
std::string newsPage() {
    std::string page = "<html><head><title>Harbour News</title><meta charset=utf-8>"
                       "<script>var a = '<b>' + 1;</script></head><body><table>";
    for (int i = 0; page.size() < 20'000; ++i)
        page +=
            "<tr><td class=\"date\"><font size=1>March " + std::to_string(i % 28 + 1) +
            "</font></td><td><a href=\"/story" + std::to_string(i) +
            ".html\">Tide tables &amp; more</a><br>Stories of the day, told in a line.</td></tr>";
    return page + "</table></body></html>";
}

/// What an import does with a cached page that lies in the system's cache.
void pageFromFile(benchmark::State &state) {
    const test::TempFolder folder;
    const auto file = folder.write("page.htm", newsPage());
    for (auto _ : state)
        benchmark::DoNotOptimize(ReadPageContent(ReadPageText(ScratchFile(file), ""), file));
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(pageFromFile)->Unit(benchmark::kMicrosecond);

/// The part of it that keeps hostile pages from the parser.
void costOfPage(benchmark::State &state) {
    const std::string page = newsPage();
    for (auto _ : state)
        benchmark::DoNotOptimize(costOf(page, {}));
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(costOfPage)->Unit(benchmark::kMicrosecond);

} // namespace
} // namespace nv
