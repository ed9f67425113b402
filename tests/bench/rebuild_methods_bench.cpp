#include "base/Files.h"
#include "rebuild/RebuildWebPage.h"
#include "support/TestProject.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include <string>
#include <vector>

namespace nv {
namespace {

namespace fs = std::filesystem;

constexpr int kRows = 500'000;
constexpr int kPages = 20;
constexpr int kReferences = 50; ///< of a page, each to a part of its own

std::string partUrl(int part) {
    return fmt::format("https://host{}.example/images/folder{}/picture{}.gif", part % 31, part % 97,
                       part);
}

/// Half a million cached parts of one browser, and pages whose parts lie among them.
struct LargeProject {
    test::TestProject project;
    RecordStore store = project.store();
    fs::path folder = project.folder.path() / "evidence";
    fs::path temp = project.folder.path() / "temp";
    Evidence evidence{folder};
    std::vector<UrlId> pages;

    LargeProject() {
        fs::create_directories(folder);
        fs::create_directories(temp);
        writeWhole(folder / "part.gif", "GIF89a and what makes a small picture");
        SQLite::Transaction whole(project.connection());
        for (int i = 0; i < kRows; ++i)
            add(partUrl(i), "part.gif");
        for (int page = 0; page < kPages; ++page)
            addPage(page);
        whole.commit();
    }

    UrlId add(const std::string &url, const std::string &name) {
        UrlRecord record;
        record.cacheType = "Chrome Cache";
        record.URL = record.URLRawValue = url;
        record.host = url.substr(8, url.find('/', 8) - 8);
        record.URLFileExt = name.substr(name.rfind('.') + 1);
        record.ActionDateUTC = Date::fromDays(45000);
        record.CacheFileName = name;
        record.RootPath = evidence.rootOf(folder / name);
        record.CacheFileRelativePath = evidence.relativeOf(folder / name);
        record.CacheFileExists = true;
        store.saveRecord(record, project.file);
        return record.URLID;
    }
    void addPage(int page) {
        std::string html = "<!DOCTYPE html><html><h1>A page</h1>";
        for (int i = 0; i < kReferences; ++i)
            html += fmt::format("<p>Text <img src=\"{}\" ></p>\r\n",
                                partUrl((page * 9973 + i * 7919) % kRows));
        const std::string name = fmt::format("page{}.htm", page);
        writeWhole(folder / name, html + "</html> ");
        pages.push_back(add("https://host1.example/" + name, name));
    }
};

void rebuild(benchmark::State &state, MethodChoice method) {
    static LargeProject large;
    Unwatched task;
    RebuildSettings settings;
    settings.wideRecordIds = true;
    settings.method = method;
    const RebuildContext ctx{large.project.connection(), large.store, large.evidence, large.temp,
                             large.project.log,          task,        settings};
    for (auto _ : state)
        for (const UrlId id : large.pages) {
            UrlRecord page = *large.store.getURL(id);
            if (!rebuildWebPage(page, Batch::yes, ctx, large.project.clock))
                state.SkipWithError("a page was not rebuilt");
        }
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
