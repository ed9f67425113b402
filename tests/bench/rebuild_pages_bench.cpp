#include "bench/CachedPages.h"
#include "platform/ChildProcess.h"
#include "platform/posix/DrawProgram.h"
#include "rebuild/FindTags.h"
#include "views/gallery/PageThumbnails.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <string_view>
#include <vector>

namespace nv {
namespace {

constexpr int kParts = 20'000;
constexpr int kPages = 200;
constexpr int kPartsAPage = 20;
constexpr int kTagsOfLargePage = 20'000;
constexpr int kWidth = 200; ///< of a thumbnail, in pixels

/// A cache of pages with twenty pictures each, among parts of other pages.
struct Cache : bench::CachedPages {
    RebuildContext ctx = context({.wideRecordIds = true});

    explicit Cache(int parts)
        : CachedPages("IE Cache",
                      std::string_view("GIF89a\2\0\1\0\x80\0\0\xFF\0\0\0\0\xFF,\0\0\0\0\2\0\1\0"
                                       "\0\2\2D\n\0;",
                                       35)) {
        SQLite::Transaction whole(project.connection());
        for (int i = 0; i < parts; ++i)
            add(fmt::format("http://host{}.example/images/picture{}.gif", i % 31, i), "part.gif",
                kHost);
        whole.commit();
    }

    void addNext(int references) {
        const int page = static_cast<int>(pages.size());
        std::vector<std::string> pictures;
        pictures.reserve(static_cast<std::size_t>(references));
        for (int i = 0; i < references; ++i)
            pictures.push_back(
                fmt::format("/images/picture{}.gif", (page * 97 + i * 991) % kParts));
        addPage("http://", pictures);
    }
    std::vector<PageDrawing> rebuildPages(benchmark::State &state) {
        std::vector<PageDrawing> drawings;
        drawings.reserve(pages.size());
        rebuildAll(state, ctx, [&drawings](const UrlRecord &page) {
            drawings.push_back({page.URLID, page.RunTimeRebuiltFilePath,
                                page.RunTimeRebuiltFilePath.parent_path() / "~thumbnail.jpg"});
        });
        return drawings;
    }
};

void reportPages(benchmark::State &state) {
    state.counters["pages/min"] = benchmark::Counter(
        60.0 * kPages * static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
}

/// Tags a second, with their rows in the project.
void discoverTags(benchmark::State &state) {
    Cache cache(0);
    cache.addNext(kTagsOfLargePage);
    std::size_t tags = 0;
    for (auto _ : state) {
        UrlRecord page = *cache.store.getURL(cache.pages.front());
        PageSource source(page, cache.ctx);
        tags += findTagsInFile(page, source, cache.ctx);
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(tags));
}
BENCHMARK(discoverTags)->Unit(benchmark::kMillisecond)->UseRealTime();

void rebuildPagesCold(benchmark::State &state) {
    Cache cache(kParts);
    for (int i = 0; i < kPages; ++i)
        cache.addNext(kPartsAPage);
    for (auto _ : state)
        cache.rebuildPages(state);
    reportPages(state);
}
BENCHMARK(rebuildPagesCold)->Iterations(1)->Unit(benchmark::kMillisecond)->UseRealTime();

void rebuildPagesWithThumbnails(benchmark::State &state) {
    Cache cache(kParts);
    for (int i = 0; i < kPages; ++i)
        cache.addNext(kPartsAPage);
    DrawProgram drawing(companionProgram("norvelane-draw"), cache.temp);
    const ThumbnailContext drawn{
        cache.project.connection(), cache.store,       cache.evidence,     cache.temp, drawing,
        cache.project.clock,        cache.project.log, ThumbnailSettings{}};
    for (auto _ : state) {
        const auto all = createHTMLThumbnails(cache.rebuildPages(state), kWidth, drawn, cache.task);
        if (std::ranges::count(all, true) != kPages)
            state.SkipWithError("not all were drawn: see NORVELANE_PROGRAMS");
    }
    reportPages(state);
}
BENCHMARK(rebuildPagesWithThumbnails)->Iterations(1)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace
} // namespace nv
