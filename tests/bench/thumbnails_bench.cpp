#include "base/Files.h"
#include "platform/ChildProcess.h"
#include "platform/posix/DrawProgram.h"
#include "support/TestProject.h"
#include "views/gallery/Thumbnails.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include <cstdint>
#include <string>
#include <vector>

namespace nv {
namespace {

namespace fs = std::filesystem;

constexpr int kPictures = 600;
constexpr std::size_t kDifferent = 6;

bool drawPhotographs(Drawing &drawing, std::span<const DrawJob> jobs) {
    bool all = true;
    drawing.draw(
        jobs, std::chrono::seconds(30),
        [&all](std::size_t, const Drawn &drawn) { return all = all && drawn.done; },
        [] { return true; });
    return all;
}

/// A page of small letters on patches of all colours, which makes a picture as rich as a
/// photograph.
std::string patchwork(std::size_t seed) {
    constexpr int kRows = 48;
    constexpr int kColumns = 64;
    std::string html = "<body style='margin:0;font:9px sans-serif'><table cellspacing=0 "
                       "cellpadding=0 style='table-layout:fixed;width:1024px;height:768px'>";
    std::uint32_t noise = static_cast<std::uint32_t>(seed) + 1;
    for (int row = 0; row < kRows; ++row) {
        html += "<tr>";
        for (int column = 0; column < kColumns; ++column) {
            noise = noise * 1664525U + 1013904223U;
            html += fmt::format("<td bgcolor=#{:06x}>{:02x}</td>", noise >> 8, noise >> 24);
        }
        html += "</tr>";
    }
    return html;
}

/// A project of cached pictures of 1024 by 768, as rich as photographs: the drawing program makes
/// them.
struct Album {
    test::TestProject project;
    RecordStore store = project.store();
    fs::path folder = project.folder.path() / "evidence";
    fs::path temp = project.folder.path() / "temp";
    Evidence evidence{folder};
    DrawProgram drawing{companionProgram("norvelane-draw"), project.folder.path()};
    std::vector<UrlId> ids;

    Album() {
        fs::create_directories(folder);
        fs::create_directories(temp);
        std::vector<DrawJob> jobs;
        for (std::size_t i = 0; i < kDifferent; ++i) {
            const fs::path page =
                project.folder.write(fmt::format("page{}/page.htm", i), patchwork(i));
            jobs.push_back(
                {DrawJob::Kind::page, page, folder / fmt::format("{}.jpg", i), 1024, 768});
        }
        if (!drawPhotographs(drawing, jobs))
            return;
        for (int i = 0; i < kPictures; ++i)
            add(jobs[static_cast<std::size_t>(i) % kDifferent].target);
    }

    void add(const fs::path &file) {
        UrlRecord record;
        record.cacheType = "IE Cache";
        record.URL = "http://host/" + file.filename().string();
        record.CacheFileExt = record.URLFileExt = "jpg";
        record.CacheFileName = file.filename().string();
        record.RootPath = evidence.rootOf(file);
        record.CacheFileRelativePath = evidence.relativeOf(file);
        record.CacheFileExists = true;
        store.saveRecord(record, project.file);
        ids.push_back(record.URLID);
    }
};

/// Fetch, draw, hash and store; starting to draw is part of it.
void thumbnailsOfPhotographs(benchmark::State &state) {
    Album album;
    if (album.ids.empty())
        return state.SkipWithError("norvelane-draw is needed: see NORVELANE_PROGRAMS");
    const ThumbnailContext ctx{album.project.connection(),
                               album.store,
                               album.evidence,
                               album.temp,
                               album.drawing,
                               album.project.clock,
                               album.project.log,
                               ThumbnailSettings{}};
    Unwatched task;
    for (auto _ : state) {
        ThumbnailTotals totals;
        makeThumbnails(ctx, album.ids, task, totals);
        if (totals.made != album.ids.size())
            state.SkipWithError("not all were drawn");
    }
    state.SetItemsProcessed(state.iterations() * kPictures);
}
BENCHMARK(thumbnailsOfPhotographs)->Iterations(1)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace
} // namespace nv
