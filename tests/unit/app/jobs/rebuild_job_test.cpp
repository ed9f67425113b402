#include "app/jobs/RebuildJob.h"
#include "app/project/Project.h"
#include "base/Files.h"
#include "readers/Dissection.h"
#include "support/FakeDrawing.h"
#include "unit/app/ProgramFixture.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>
#include <gmock/gmock.h>

namespace nv {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

/// The drawing that the tools own, which the test looks at.
class LentDrawing final : public Drawing {
  public:
    explicit LentDrawing(Drawing &drawing) : m_drawing(drawing) {}
    void draw(std::span<const DrawJob> jobs, std::chrono::seconds timeout,
              const std::function<bool(std::size_t, const Drawn &)> &take,
              const std::function<bool()> &goOn) override {
        m_drawing.draw(jobs, timeout, take, goOn);
    }

  private:
    Drawing &m_drawing;
};

/// A project of cached pages, whose thumbnails are drawn by writing down what was to be drawn.
struct RebuildJobTest : test::ProgramFixture {
    RebuildJobTest() {
        start(Front::headless);
        fs::create_directories(evidence);
        fs::create_directories(temp);
        EXPECT_TRUE(createProject(*program, folder.path() / "case.nvp"));
        setRootPath(*program, evidence);
    }

    /// A page of Internet Explorer's cache; `word` stands in it.
    UrlId addPage(const std::string &word) {
        const std::string name = "page" + std::to_string(++m_files) + ".htm";
        const fs::path file = evidence / name;
        writeWhole(file, "<html>" + word + "<img src=\"gone.gif\" ></html> ");
        const Evidence found(evidence);
        RecordStore store(project(), {program->state.gmtZone, false}, clock, program->log);
        UrlRecord record;
        record.cacheType = "IE Cache";
        record.URL = record.URLRawValue = "http://host/" + name;
        record.host = "host";
        record.CacheFileName = name;
        record.RootPath = found.rootOf(file);
        record.CacheFileRelativePath = found.relativeOf(file);
        record.CacheFileExists = true;
        HistoryFile artefact;
        store.saveRecord(record, artefact);
        return record.URLID;
    }
    SQLite::Database &project() { return program->state.projectDB.connection(); }
    std::string thumbnail(UrlId id) {
        return project()
            .execAndGet("SELECT ifnull(CAST(ThumbnailBLOB AS TEXT), '') FROM URLs WHERE URL_ID = " +
                        fmt::format("{}", id))
            .getString();
    }
    RecordTools &tools(TaskMonitor &task) {
        m_tools = std::make_unique<RecordTools>(*program, task, temp);
        m_tools->drawing = [this](const fs::path &) {
            return std::make_unique<LentDrawing>(drawing);
        };
        return *m_tools;
    }
    bool rebuild(const std::vector<UrlId> &ids) {
        pages.clear();
        return rebuildPages(*program, tools(nobody), ids,
                            [this](const RebuiltPage &page) { pages.push_back(page); });
    }
    std::vector<Redrawn> thumbnails() const {
        std::vector<Redrawn> all;
        for (const RebuiltPage &page : pages)
            all.push_back(page.thumbnail);
        return all;
    }
    std::string logText() { return std::string(ByteView(readWhole(program->log.path())).raw()); }

    fs::path evidence = folder.path() / "evidence";
    fs::path temp = folder.path() / "temp";
    test::FakeDrawing drawing;
    Unwatched nobody;
    std::vector<RebuiltPage> pages;

  private:
    std::unique_ptr<RecordTools> m_tools;
    int m_files = 0;
};

TEST_F(RebuildJobTest, aFullDiskEndsTheBatchAndSaysWhatIsKept) {
    const std::vector ids = {addPage("one"), addPage("two"), addPage("three")};
    program->state.redrawThumbIfPageRebuilt = false;
    int handedOn = 0;
    const auto run = [&] {
        rebuildPages(*program, tools(nobody), ids, [&](const RebuiltPage &) {
            if (++handedOn == 2)
                throw StorageFailure("no room");
        });
    };
    EXPECT_THAT(run, testing::ThrowsMessage<StorageFailure>(
                         "no room. 1 of 3 pages rebuilt before that, which is kept."));
    EXPECT_EQ(
        project().execAndGet("SELECT Detail FROM AuditTrail WHERE Action = 'Rebuild'").getString(),
        "1 of 3 pages rebuilt, then a failure ended it");
}

TEST_F(RebuildJobTest, onePageIsDrawnFromItsRebuild) {
    const auto id = addPage("harbour");
    const auto page = rebuildPage(*program, tools(nobody), id);
    ASSERT_TRUE(page && page->rebuilt);
    EXPECT_EQ(page->thumbnail, Redrawn::yes);
    EXPECT_THAT(thumbnail(id), testing::StartsWith("JPEG<html>harbour"));
    ASSERT_EQ(drawing.drawn.size(), 1u);
    EXPECT_EQ(drawing.drawn[0].kind, DrawJob::Kind::page);
    EXPECT_EQ(drawing.drawn[0].source, page->folder / "0000001.htm");
    EXPECT_EQ(drawing.drawn[0].target, page->folder / "~0000001.thumbnail.jpg");
    EXPECT_EQ(drawing.drawn[0].width, 200);
    EXPECT_EQ(drawing.drawn[0].height, 150);
    EXPECT_EQ(drawing.timeouts[0], std::chrono::seconds(5));
    EXPECT_TRUE(fs::exists(page->folder / "~0000001.thumbnail.jpg"));
}

TEST_F(RebuildJobTest, countsOnlyReferencesThatThePageNamesAPartForAsReplaced) {
    const auto id = addPage("<b style=\"background:url(page2.htm)\"><i background=\"page2.htm\">");
    addPage("frame");
    const auto page = rebuildPage(*program, tools(nobody), id);
    ASSERT_TRUE(page && page->rebuilt);
    EXPECT_EQ(page->tagsFound, 3u);
    EXPECT_EQ(page->replaced, 1u);
    EXPECT_EQ(page->notRewritten, 1u);
    EXPECT_EQ(page->missing, 1u);
}

TEST_F(RebuildJobTest, aBatchIsDrawnInOneRun) {
    std::vector<UrlId> ids;
    for (int i = 0; i < 7; ++i)
        ids.push_back(addPage("word" + std::to_string(i)));
    EXPECT_TRUE(rebuild(ids));
    EXPECT_THAT(drawing.batches, ElementsAre(7u));
    EXPECT_THAT(thumbnails(), testing::Each(Redrawn::yes));
    EXPECT_THAT(thumbnail(ids[4]), HasSubstr("word4"));
}

TEST_F(RebuildJobTest, manyPagesAreDrawnByTheHundred) {
    std::vector<UrlId> ids;
    for (int i = 0; i < 120; ++i)
        ids.push_back(addPage("x"));
    test::MemoryTask task;
    std::size_t handedOn = 0;
    EXPECT_TRUE(rebuildPages(*program, tools(task), ids, [&](const RebuiltPage &page) {
        EXPECT_EQ(page.urlID, ids[handedOn++]);
        EXPECT_EQ(page.thumbnail, Redrawn::yes);
    }));
    EXPECT_EQ(handedOn, 120u);
    EXPECT_THAT(drawing.batches, ElementsAre(100u, 20u));
    EXPECT_TRUE(std::ranges::is_sorted(task.fractions));
    EXPECT_DOUBLE_EQ(task.fractions.back(), 1);
}

TEST_F(RebuildJobTest, withTheSettingOffNothingIsDrawn) {
    program->state.redrawThumbIfPageRebuilt = false;
    const auto id = addPage("x");
    EXPECT_TRUE(rebuild({id}));
    EXPECT_THAT(thumbnails(), ElementsAre(Redrawn::notWanted));
    EXPECT_TRUE(rebuildPage(*program, tools(nobody), id)->rebuilt);
    EXPECT_TRUE(drawing.drawn.empty());
    EXPECT_EQ(thumbnail(id), "");
}

TEST_F(RebuildJobTest, aPageThatIsNotRebuiltIsNotDrawn) {
    const auto plain = addPage("x");
    fs::remove(evidence / "page1.htm");
    const auto good = addPage("y");
    EXPECT_TRUE(rebuild({plain, good}));
    EXPECT_THAT(thumbnails(), ElementsAre(Redrawn::notWanted, Redrawn::yes));
    EXPECT_EQ(drawing.drawn.size(), 1u);
}

TEST_F(RebuildJobTest, aDrawingThatFailsCostsItsThumbnailOnly) {
    const auto bad = addPage("broken");
    const auto good = addPage("good");
    project().exec("UPDATE URLs SET ThumbnailBLOB = 'older', ThumbnailMD5Hash = 'x'");
    EXPECT_TRUE(rebuild({bad, good}));
    EXPECT_TRUE(pages[0].rebuilt && pages[1].rebuilt);
    EXPECT_THAT(thumbnails(), ElementsAre(Redrawn::failed, Redrawn::yes));
    EXPECT_EQ(thumbnail(bad), "older");
    EXPECT_THAT(drawing.batches, ElementsAre(2u, 1u)); // tried once more
    EXPECT_THAT(logText(), HasSubstr("Win32 Error: not a picture (URL ID: 1)"));
}

TEST_F(RebuildJobTest, withoutTheDrawingProgramPagesAreRebuiltAllTheSame) {
    const auto id = addPage("x");
    RecordTools &plain = tools(nobody);
    plain.drawing = [](const fs::path &) -> std::unique_ptr<Drawing> {
        throw StorageFailure("nothing draws here");
    };
    const auto page = rebuildPage(*program, plain, id);
    EXPECT_TRUE(page->rebuilt);
    EXPECT_EQ(page->thumbnail, Redrawn::failed);
    EXPECT_THAT(logText(), HasSubstr("nothing draws here"));
}

TEST_F(RebuildJobTest, thePictureOfARecordIsDrawnAndItsTileLeft) {
    const auto id = addPage("a picture by its record");
    project().exec("UPDATE URLs SET IsPicture = 1, ThumbnailBLOB = 'tile'");
    EXPECT_TRUE(rebuild({id}));
    EXPECT_EQ(thumbnail(id), "tile");
    ASSERT_EQ(drawing.drawn.size(), 1u);
    EXPECT_EQ(drawing.drawn[0].kind, DrawJob::Kind::picture);
    EXPECT_EQ(drawing.drawn[0].width, 200);
    EXPECT_EQ(drawing.drawn[0].target.filename(), "~0000001.thumbnail.jpg");
    EXPECT_THAT(thumbnails(), ElementsAre(Redrawn::notWanted));
}

TEST_F(RebuildJobTest, aCancelKeepsWhatIsRebuiltAndTellsOfIt) {
    const std::vector<UrlId> ids{addPage("a"), addPage("b"), addPage("c")};
    bool whole = false;
    for (int calls = 0; calls < 300 && !whole; ++calls) {
        test::CancelAfter task(calls);
        project().exec("UPDATE URLs SET CacheFileRebuilt = 0, ThumbnailBLOB = NULL, "
                       "ThumbnailMD5Hash = NULL");
        std::int64_t told = 0;
        std::int64_t drawn = 0;
        whole = rebuildPages(*program, tools(task), ids, [&](const RebuiltPage &page) {
            told += page.rebuilt ? 1 : 0;
            drawn += page.thumbnail == Redrawn::yes ? 1 : 0;
            EXPECT_NE(page.thumbnail, Redrawn::failed);
        });
        EXPECT_EQ(project().execAndGet("SELECT count(ThumbnailBLOB) FROM URLs").getInt64(), drawn);
        EXPECT_EQ(told, project().execAndGet("SELECT sum(CacheFileRebuilt) FROM URLs").getInt64());
    }
    EXPECT_TRUE(whole);
    EXPECT_THAT(logText(), Not(HasSubstr("Win32")));
}

} // namespace
} // namespace nv
