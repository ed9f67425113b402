#include "base/Files.h"
#include "rebuild/RebuildWebPage.h"
#include "support/TestProject.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include <memory>

namespace nv {
namespace {

constexpr int kRows = 500'000;
constexpr int kTags = 1'000;

/// A project of half a million cached parts of one browser, and a page that names a thousand.
struct LargeProject {
    test::TestProject project;
    RecordStore store = project.store();
    std::filesystem::path folder = project.folder.path() / "evidence";
    Evidence evidence{folder};
    UrlId page = UrlId::none;

    LargeProject() {
        std::filesystem::create_directories(folder);
        std::string html = "<html>";
        for (int i = 0; i < kTags; ++i)
            html +=
                fmt::format("<img src=\"/images/folder{}/picture{}.gif\" >\r\n", i % 97, i * 450);
        writeWhole(folder / "page.htm", html + "</html> ");
        SQLite::Transaction whole(project.connection());
        for (int i = 0; i < kRows; ++i)
            add(fmt::format("http://host{}.example/images/folder{}/picture{}.gif", i % 31,
                            i / 450 % 97, i));
        page = add("http://host1.example/page.htm");
        whole.commit();
    }

    UrlId add(const std::string &url) {
        UrlRecord record;
        record.cacheType = "IE Cache";
        record.URL = record.URLRawValue = url;
        record.host = "host1.example";
        record.RootPath = evidence.rootOf(folder / "page.htm");
        record.CacheFolderName = "ABCDEFGH";
        record.CacheFileName = "page.htm";
        record.CacheFileRelativePath = evidence.relativeOf(folder / "page.htm");
        store.saveRecord(record, project.file);
        return record.URLID;
    }
};

void rebuildPageOfThousandTags(benchmark::State &state) {
    static LargeProject large;
    Unwatched task;
    const RebuildContext ctx{large.project.connection(),  large.store,       large.evidence,
                             large.project.folder.path(), large.project.log, task,
                             {.wideRecordIds = true}};
    for (auto _ : state) {
        UrlRecord page = *large.store.getURL(large.page);
        if (!rebuildWebPage(page, Batch::no, ctx, large.project.clock))
            state.SkipWithError("the page was not rebuilt");
    }
}
BENCHMARK(rebuildPageOfThousandTags)->Iterations(1)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace nv
