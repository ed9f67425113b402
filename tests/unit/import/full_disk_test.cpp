#include "base/Storage.h"
#include "db/sql/ReadOnlyConnection.h"
#include "support/SmallFiles.h"
#include "support/builders/MacCache.h"
#include "unit/import/ImportFixture.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <sqlite3.h>

namespace nv {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using enum HistoryFileType;

int countCommit(void *commits) {
    ++*static_cast<int *>(commits);
    return 0;
}

fs::path g_project; // a reader is a plain function and can't be handed it
std::int64_t g_seen = 0;

/// Looks at the project as it would be after a crash, before it brings a record.
ReadResult lookingAround(ReadContext &) {
    g_seen = openReadOnly(g_project)->execAndGet("SELECT Count(*) FROM URLs").getInt64();
    return {};
}

const Reader *pagesAndOthers(HistoryFileType type) {
    static constexpr Reader reader = test::madeUp(norvelaneNVD, "looking-around", lookingAround);
    return type == norvelaneNVD ? &reader : readerFor(type);
}

class FullDiskTest : public test::ImportFixture {
  protected:
    void addPages(int count) {
        for (int i = 0; i < count; ++i)
            add(simpleHTML, fmt::format("page{}.htm", i),
                fmt::format("<html><title>{}</title><body>{}</body></html>", i,
                            std::string(2000, static_cast<char>('a' + i % 26))));
    }
    ImportSummary importReally() {
        Unwatched task;
        return import(task, readerFor);
    }
    std::int64_t marked() {
        return project.number("SELECT Count(*) FROM SourceFiles WHERE Successful");
    }
};

TEST_F(FullDiskTest, ofScratchEndsTheImportAndIsTold) {
    constexpr std::size_t kLimit = std::size_t{4} << 20;
    test::MacCache cache;
    cache.add({.url = "http://host/small.html", .body = "<html>small</html>"});
    cache.add({.url = "http://host/large.html", .body = "<html>" + std::string(kLimit, 'x')});
    cache.add({.url = "http://host/behind.html", .body = "<html>behind</html>"});
    add(macIECache, "cache.waf", cache.bytes());
    addPages(1);
    const test::SmallFiles limit(kLimit);
    const ImportSummary summary = importReally();
    EXPECT_THAT(summary.failure, HasSubstr((scratch / "~import" / "~body").native()));
    EXPECT_THAT(summary.failure, HasSubstr("on the disk \"" + diskOf(scratch).native() + "\""));
    EXPECT_EQ(summary.artefacts[0].state, ArtefactState::failed);
    EXPECT_EQ(summary.artefacts[1].state, ArtefactState::notReached);
    EXPECT_EQ(summary.rowsSaved(), 1U);
    EXPECT_EQ(project.text("SELECT group_concat(Category) FROM URLs"), "HTML");
    EXPECT_EQ(marked(), 0);
}

TEST_F(FullDiskTest, ofTheProjectLeavesASummaryOfWhatIsKept) {
    addPages(400);
    const int inUse = static_cast<int>(project.number("PRAGMA page_count"));
    project.connection().exec(fmt::format("PRAGMA max_page_count={}", inUse + 60));
    const ImportSummary summary = importReally();
    EXPECT_THAT(summary.failure, HasSubstr(project.database.filePath.native()));
    EXPECT_THAT(summary.failure, HasSubstr("full"));
    EXPECT_EQ(summary.rowsSaved(), static_cast<std::uint64_t>(rows()));
    EXPECT_EQ(static_cast<std::int64_t>(summary.count(ArtefactState::complete)), marked());
    EXPECT_GT(summary.count(ArtefactState::notReached), 0U);
    EXPECT_EQ(project.text("PRAGMA integrity_check"), "ok");
}

/// The database gives up by itself what it could not write, and the summary must not count it.
TEST_F(FullDiskTest, takesBackWhatALostBatchHeld) {
    addPages(3);
    project.connection().exec("CREATE TRIGGER Third AFTER INSERT ON URLs WHEN NEW.WebpageTitle = "
                              "'2' BEGIN SELECT RAISE(ROLLBACK, 'gone'); END");
    add(safariCache, "full", ""); // the made-up reader that finds the disk full
    Unwatched task;
    const auto summary = import(task, [](HistoryFileType type) {
        return type == safariCache ? test::madeUpReader(type) : readerFor(type);
    });
    EXPECT_EQ(summary.rowsSaved(), static_cast<std::uint64_t>(rows()));
    EXPECT_EQ(static_cast<std::int64_t>(summary.count(ArtefactState::complete)), marked());
}

TEST_F(FullDiskTest, loosePagesShareCommits) {
    addPages(300);
    int commits = 0;
    sqlite3_commit_hook(project.connection().getHandle(), countCommit, &commits);
    const auto begun = std::chrono::steady_clock::now();
    EXPECT_EQ(importReally().count(ArtefactState::complete), 300U);
    const auto took = std::chrono::steady_clock::now() - begun;
    sqlite3_commit_hook(project.connection().getHandle(), nullptr, nullptr);
    EXPECT_LE(commits, 3 + took / std::chrono::milliseconds(250));
    EXPECT_EQ(rows(), 300);
    EXPECT_EQ(marked(), 300);
}

TEST_F(FullDiskTest, whatComesBeforeALongArtefactIsOnTheDisk) {
    addPages(20);
    add(norvelaneNVD, "long", "");
    addPages(1);
    g_project = project.database.filePath;
    g_seen = 0;
    Unwatched task;
    import(task, pagesAndOthers);
    EXPECT_EQ(g_seen, 20);
}

} // namespace
} // namespace nv
