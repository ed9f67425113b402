#include "base/Files.h"
#include "platform/ChildProcess.h"
#include "platform/posix/DrawProgram.h"
#include "support/TestProject.h"
#include "views/Thumbnails.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <benchmark/benchmark.h>
#include <fmt/format.h>

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

/// A project of cached photographs of 1024 by 768, some 300 KB each: the drawing program makes
/// them, of pages that are full of noise.
struct Album {
    test::TestProject project;
    RecordStore store = project.store();
    fs::path folder = project.folder.path() / "evidence";
    fs::path temp = project.folder.path() / "temp";
    Evidence evidence{folder};
    DrawProgram drawing{companionProgram("norvelane-draw"), project.folder.path()};
    std::vector<std::int64_t> ids;

    Album() {
        fs::create_directories(folder);
        fs::create_directories(temp);
        std::vector<DrawJob> jobs;
        for (std::size_t i = 0; i < kDifferent; ++i) {
            const fs::path page = project.folder.write(
                fmt::format("page{}/page.htm", i),
                fmt::format("<body style='margin:0;background:linear-gradient({}deg,#124,#fc8)'>"
                            "<svg width=1024 height=768><filter id=n><feTurbulence seed={} "
                            "type=fractalNoise baseFrequency=0.05 numOctaves=4 /></filter>"
                            "<rect width=1024 height=768 filter='url(#n)' opacity=0.6 /></svg>",
                            i * 60, i));
            jobs.push_back(
                {DrawJob::Kind::page, page, folder / fmt::format("{}.jpg", i), 1024, 768});
        }
        if (!drawPhotographs(drawing, jobs))
            return;
        for (int i = 0; i < kPictures; ++i)
            add(jobs[static_cast<std::size_t>(i) % kDifferent].target);
    }

    void add(const fs::path &file) {
        URLClass record;
        record.cacheType = "IE Cache";
        record.URL = "http://host/" + file.filename().string();
        record.CacheFileExt = record.URLFileExt = "jpg";
        record.CacheFileName = file.filename().string();
        record.RootPath = evidence.rootOf(file);
        record.CacheFileRelativePath = evidence.relativeOf(file);
        record.CacheFileExists = true;
        store.SaveRecord(record, project.file);
        ids.push_back(number(record.URLID));
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
    for (auto _ : state)
        if (makeThumbnails(ctx, album.ids, task).made != album.ids.size())
            state.SkipWithError("not all were drawn");
    state.SetItemsProcessed(state.iterations() * kPictures);
}
BENCHMARK(thumbnailsOfPhotographs)->Iterations(1)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace
} // namespace nv
