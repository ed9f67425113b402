// Block caches of which the file that leads to all others can't be read, or isn't one.

#include "base/Files.h"
#include "import/ImportRun.h"
#include "import/Scan.h"
#include "support/Places.h"
#include "support/TestProject.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <set>

namespace nv {
namespace {

namespace fs = std::filesystem;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

/// Files that nobody may open.
struct Closed final : EvidenceWatch {
    int errorBefore(Step step, const fs::path &path) override {
        return step == Step::open && names.contains(path.filename().string()) ? EACCES : 0;
    }
    std::set<std::string> names;
};

struct BlockCacheGaps : testing::Test {
    void copyCase(const char *golden) const {
        fs::copy(test::goldenFolder() / golden / "input", place);
        for (const auto &entry : fs::directory_iterator(place))
            fs::permissions(entry.path(), fs::perms::owner_write, fs::perm_options::add);
    }
    void import() {
        ImportSettings job;
        job.startingDirectory = place;
        Unwatched task;
        ScanResult found = scan(job, task, project.log, &closed);
        job.historyFiles = std::move(found.historyFiles);
        job.gaps = found.gaps;
        const Evidence evidence(place, &closed);
        const ImportRun run{project.connection(),  project.projectZone(), evidence,
                            project.clock,         project.log,           task,
                            project.folder.path(), nv::readerFor};
        summary = runImport(run, job);
    }
    std::vector<std::string> artefacts() const {
        std::vector<std::string> names;
        for (const ArtefactResult &artefact : summary.artefacts)
            names.push_back(artefact.path.filename().string());
        return names;
    }
    std::vector<std::string> unread() const {
        std::vector<std::string> names;
        for (const UnreadPlace &each : summary.gaps.unreadable)
            names.push_back(each.path.filename().string());
        return names;
    }
    std::int64_t rows(const std::string &where = "1") {
        return project.number("SELECT count(*) FROM URLs WHERE URL <> '' AND " + where);
    }
    std::int64_t foundWithoutIndex() {
        return project.number("SELECT count(*) FROM RecordFacts WHERE Name = 'recovered_from' "
                              "AND Value LIKE '%found without the index%'");
    }

    test::TestProject project;
    fs::path place = project.folder.path() / "Cache_Data";
    Closed closed;
    ImportSummary summary;
};

constexpr const char *kLater = "chromium-block-cache/every-kind";
constexpr const char *kFirst = "chrome-cache-further/chains-and-deleted-entries";

TEST_F(BlockCacheGaps, withoutTheIndexTheEntriesAreFoundInTheirBlocks) {
    copyCase(kLater);
    closed.names = {"index"};
    import();
    EXPECT_THAT(artefacts(), ElementsAre("data_1"));
    EXPECT_THAT(unread(), UnorderedElementsAre("data_0", "index"));
    EXPECT_EQ(summary.artefacts.at(0).state, ArtefactState::cutShort);
    EXPECT_THAT(summary.artefacts.at(0).reason, HasSubstr("index"));
    EXPECT_GE(rows("CacheType = 'Chrome Cache Remnant' AND Status = 'Recovered'"), 7);
    EXPECT_EQ(rows("CacheType <> 'Chrome Cache Remnant'"), 0) << "nobody knows what was in use";
    EXPECT_EQ(foundWithoutIndex(), rows());
}

TEST_F(BlockCacheGaps, withoutItsFirstBlockFileACacheIsReadByItsIndex) {
    copyCase(kLater);
    import();
    const std::int64_t whole = rows("CacheType = 'Chrome Cache'");
    EXPECT_THAT(artefacts(), ElementsAre("index"));
    closed.names = {"data_0"};
    import();
    EXPECT_THAT(artefacts(), ElementsAre("data_1"));
    EXPECT_THAT(unread(), Contains("data_0"));
    EXPECT_EQ(rows("CacheType = 'Chrome Cache'"), 2 * whole);
    EXPECT_EQ(foundWithoutIndex(), 0);
}

TEST_F(BlockCacheGaps, somethingElseOfTheIndexsNameHidesNoEntries) {
    copyCase(kLater);
    fs::remove(place / "data_0");
    for (const std::string &bytes :
         {std::string(), std::string(5000, '\0'), std::string("<html>")}) {
        writeWhole(place / "index", bytes);
        const std::int64_t before = rows();
        import();
        EXPECT_THAT(artefacts(), ElementsAre("data_1"));
        EXPECT_GE(rows(), before + 7);
        EXPECT_THAT(unread(), IsEmpty());
    }
}

TEST_F(BlockCacheGaps, entriesOfTheFirstLayoutAreFoundToo) {
    copyCase(kFirst);
    import();
    const std::int64_t listed = rows("CacheType = 'Chrome Cache'");
    const std::int64_t whole = rows();
    ASSERT_GT(listed, 0);
    closed.names = {"index"};
    import();
    EXPECT_THAT(artefacts(), ElementsAre("data_1"));
    EXPECT_EQ(summary.artefacts.at(0).state, ArtefactState::cutShort);
    const std::int64_t found = foundWithoutIndex();
    EXPECT_GE(found, listed);
    EXPECT_EQ(rows(), whole + found);
    closed.names = {"data_0"};
    import();
    EXPECT_THAT(artefacts(), ElementsAre("data_1"));
    EXPECT_EQ(rows(), 2 * whole + found) << "the index is there";
    EXPECT_EQ(foundWithoutIndex(), found);
    closed.names = {};
    writeWhole(place / "index", "cut");
    import();
    EXPECT_THAT(artefacts(), ElementsAre("index"));
    EXPECT_EQ(rows(), 2 * (whole + found));
    EXPECT_EQ(foundWithoutIndex(), 2 * found);
}

TEST_F(BlockCacheGaps, ofNothingThatCanBeReadNothingIsMade) {
    copyCase(kLater);
    closed.names = {"index", "data_0", "data_1"};
    import();
    EXPECT_THAT(artefacts(), IsEmpty());
    EXPECT_THAT(unread(), UnorderedElementsAre("data_0", "data_1", "index"));
    closed.names = {"index"};
    writeWhole(place / "data_1", std::string(9000, '\xC3'));
    import();
    EXPECT_EQ(rows(), 0);
}

} // namespace
} // namespace nv
