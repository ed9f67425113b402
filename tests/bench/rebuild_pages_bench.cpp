#include "base/Files.h"
#include "platform/ChildProcess.h"
#include "platform/posix/DrawProgram.h"
#include "rebuild/FindTags.h"
#include "rebuild/RebuildWebPage.h"
#include "support/TestProject.h"
#include "views/PageThumbnails.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include <algorithm>
#include <vector>

namespace nv {
namespace {

namespace fs = std::filesystem;

constexpr int kParts = 20'000;
constexpr int kPages = 200;
constexpr int kPartsAPage = 20;
constexpr int kTagsOfLargePage = 20'000;
constexpr int kWidth = 200; ///< of a thumbnail, in pixels

/// A cache of pages with twenty pictures each, among parts of other pages.
struct Cache {
    test::TestProject project;
    RecordStore store = project.store();
    fs::path folder = project.folder.path() / "evidence";
    fs::path temp = project.folder.path() / "temp";
    Evidence evidence{folder};
    Unwatched task;
    RebuildContext ctx{project.connection(),   store, evidence, temp, project.log, task,
                       {.WideRecordIds = true}};
    std::vector<UrlId> pages;

    explicit Cache(int parts) {
        fs::create_directories(folder);
        fs::create_directories(temp);
        writeWhole(folder / "part.gif",
                   std::string_view("GIF89a\2\0\1\0\x80\0\0\xFF\0\0\0\0\xFF,\0\0\0\0\2\0\1\0\0\2\2D"
                                    "\n\0;",
                                    35));
        SQLite::Transaction whole(project.connection());
        for (int i = 0; i < parts; ++i)
            add(fmt::format("http://host{}.example/images/picture{}.gif", i % 31, i), "part.gif");
        whole.commit();
    }

    UrlId add(const std::string &url, const std::string &name) {
        URLClass record;
        record.cacheType = "IE Cache";
        record.URL = record.URLRawValue = url;
        record.host = "host1.example";
        record.URLFileExt = name.substr(name.rfind('.') + 1);
        record.CacheFileName = name;
        record.RootPath = evidence.rootOf(folder / name);
        record.CacheFileRelativePath = evidence.relativeOf(folder / name);
        record.CacheFileExists = true;
        store.SaveRecord(record, project.file);
        return record.URLID;
    }
    void addPage(int page, int references) {
        std::string html = "<html><h1>A page</h1>";
        for (int i = 0; i < references; ++i)
            html += fmt::format("<p>Text <img src=\"/images/picture{}.gif\" ></p>\r\n",
                                (page * 97 + i * 991) % kParts);
        const std::string name = fmt::format("page{}.htm", page);
        writeWhole(folder / name, html + "</html> ");
        pages.push_back(add("http://host1.example/" + name, name));
    }
    std::vector<PageDrawing> rebuildAll(benchmark::State &state) {
        std::vector<PageDrawing> drawings;
        for (const UrlId id : pages) {
            URLClass page = *store.GetURL(id);
            if (!RebuildWebPage(page, Batch::yes, ctx, project.clock))
                state.SkipWithError("a page was not rebuilt");
            drawings.push_back({id, page.RunTimeRebuiltFilePath,
                                page.RunTimeRebuiltFilePath.parent_path() / "~thumbnail.jpg"});
        }
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
    cache.addPage(0, kTagsOfLargePage);
    std::size_t tags = 0;
    for (auto _ : state) {
        URLClass page = *cache.store.GetURL(cache.pages.front());
        PageSource source(page, cache.ctx);
        tags += FindTagsInFile(page, source, cache.ctx);
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(tags));
}
BENCHMARK(discoverTags)->Unit(benchmark::kMillisecond)->UseRealTime();

void rebuildPagesCold(benchmark::State &state) {
    Cache cache(kParts);
    for (int i = 0; i < kPages; ++i)
        cache.addPage(i, kPartsAPage);
    for (auto _ : state)
        cache.rebuildAll(state);
    reportPages(state);
}
BENCHMARK(rebuildPagesCold)->Iterations(1)->Unit(benchmark::kMillisecond)->UseRealTime();

void rebuildPagesWithThumbnails(benchmark::State &state) {
    Cache cache(kParts);
    for (int i = 0; i < kPages; ++i)
        cache.addPage(i, kPartsAPage);
    DrawProgram drawing(companionProgram("norvelane-draw"), cache.temp);
    const ThumbnailContext drawn{
        cache.project.connection(), cache.store,       cache.evidence,     cache.temp, drawing,
        cache.project.clock,        cache.project.log, ThumbnailSettings{}};
    for (auto _ : state) {
        const auto all = CreateHTMLThumbnails(cache.rebuildAll(state), kWidth, drawn, cache.task);
        if (std::ranges::count(all, true) != kPages)
            state.SkipWithError("not all were drawn: see NORVELANE_PROGRAMS");
    }
    reportPages(state);
}
BENCHMARK(rebuildPagesWithThumbnails)->Iterations(1)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace
} // namespace nv
