#include "app/program/ProjectHold.h"
#include "app/program/ScratchFolder.h"
#include "cli/CliCase.h"
#include "support/TestDoubles.h"

#include <gmock/gmock.h>

#include <csignal>
#include <memory>
#include <thread>
#include <vector>

// Command lines beside a window and beside each other, as processes.
namespace nv::test {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

struct BesideCliTest : CliCase {
    void import() {
        IndexDat cache;
        cache.folder("ABCDEFGH");
        addCached(cache, "http://host.example/page.htm", "page.htm", "<html><body>x</body></html>");
        CliCase::import(cache);
    }
    /// What a window does to the project that it has open.
    std::unique_ptr<ProjectHold> window() const {
        return std::make_unique<ProjectHold>(project, Front::window, clock);
    }
    fs::path temp() const { return folder.path() / "home" / "Temp"; }
    FixedClock clock;
};

TEST_F(BesideCliTest, besideAWindowWhatOnlyReadsWorks) {
    import();
    const auto open = window();
    const std::vector<std::vector<std::string>> calls = {
        {"list", project},
        {"show", project, "1"},
        {"hosts", project},
        {"timeline", project},
        {"query", project, "SELECT URL FROM URLs"},
        {"queries", project},
        {"extract", project, "1", (folder.path() / "page.htm").string()},
        {"options", "get", "--project", project},
        {"trail", project},
        {"summary", project},
        {"export", project, (folder.path() / "rows.csv").string()},
        {"verify", project}};
    for (const auto &call : calls) {
        const CliResult run = cli(call);
        EXPECT_EQ(run.exit, 0) << call.front() << ": " << run.err;
    }
    EXPECT_THAT(cli({"trail", project}).out, HasSubstr("Export")) << "notes of it are safe";
}

TEST_F(BesideCliTest, besideAWindowWhatWritesSaysWhoHasTheProject) {
    import();
    const auto open = window();
    const std::string who = holderOf(project, Front::headless).value();
    const std::vector<std::vector<std::string>> calls = {
        {"tag", project, "1"},
        {"note", project, "1", "mine"},
        {"rebuild", project, "1", "--out", (folder.path() / "out").string()},
        {"thumbnails", project, "--all"},
        {"links", project},
        {"queries", "save", project, "Mine", "SELECT * FROM URLs"},
        {"options", "set", "LastTimeZoneID", "15", "--project", project},
        {"upgrade", project, "--fix"},
        {"import", project, evidence.string()}};
    for (const auto &call : calls) {
        const CliResult run = cli(call);
        EXPECT_EQ(run.exit, 3) << call.front();
        EXPECT_THAT(run.err, HasSubstr("is open already, for writing: " + who)) << call.front();
    }
    EXPECT_THAT(cli({"list", project, "--format", "csv"}).out, testing::Not(HasSubstr("True")));
}

TEST_F(BesideCliTest, shortWritesWaitForEachOther) {
    import();
    std::vector<std::unique_ptr<CliProcess>> running;
    for (const char *name : {"North", "East", "South", "West"})
        running.push_back(std::make_unique<CliProcess>(
            std::vector<std::string>{"tag", project, "1", "--name", name, "--note", name},
            folder.path() / name));
    for (const auto &each : running) {
        const CliResult run = each->finish();
        EXPECT_EQ(run.exit, 0) << run.err;
        EXPECT_THAT(run.out, HasSubstr("1 row tagged"));
    }
    const std::string tags = cli({"tags", project}).out;
    for (const char *name : {"North", "East", "South", "West"})
        EXPECT_THAT(tags, HasSubstr(name));
    EXPECT_THAT(cli({"verify", project}).err, HasSubstr("The case trail is whole"));
}

TEST_F(BesideCliTest, nothingStaysBesideTheProject) {
    EXPECT_EQ(cli({"tag", project, "1"}).exit, 3);
    EXPECT_FALSE(fs::exists(project + "-open"));
    import();
    EXPECT_EQ(cli({"tag", project, "1"}).exit, 0);
    EXPECT_FALSE(fs::exists(project + "-open"));
}

TEST_F(BesideCliTest, whatAKilledCommandLeftGoesWithTheNextOne) {
    import();
    const fs::path left = ScratchFolder(temp(), Front::headless).path();
    const ScratchFolder living(temp(), Front::headless);
    EXPECT_EQ(cli({"text", project, "1"}).exit, 0);
    EXPECT_FALSE(fs::exists(left));
    EXPECT_TRUE(fs::exists(living.path()));
}

/// A command that is killed in the middle of its work, while another one and a window start.
TEST_F(BesideCliTest, aRunningImportKeepsItsScratchThroughOtherStarts) {
    IndexDat cache;
    cache.folder("ABCDEFGH");
    for (int i = 0; i < 400; ++i)
        addCached(cache, "http://host.example/" + std::to_string(i),
                  "page" + std::to_string(i) + ".htm", std::string(20'000, 'x'));
    writeWhole(evidence / "index.dat", cache.bytes());
    const fs::path home = folder.path() / "home";
    CliProcess import({"import", project, evidence.string()}, home);
    const auto scratch = [this]() -> fs::path {
        std::error_code none;
        for (const auto &entry : fs::directory_iterator(temp(), none))
            if (fs::exists(entry.path() / ".norvelane-scratch"))
                return entry.path();
        return {};
    };
    fs::path folderOfImport;
    for (int i = 0; i < 2000 && folderOfImport.empty(); ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
        folderOfImport = scratch();
    }
    ASSERT_FALSE(folderOfImport.empty());
    import.signal(SIGSTOP);
    Unwatched nobody;
    emptyTempFolder(temp(), Front::window, nobody);
    EXPECT_TRUE(fs::exists(folderOfImport)) << "its process lives";
    EXPECT_TRUE(holderOf(project, Front::window)) << "and has the project";
    import.signal(SIGKILL);
    import.finish();
    emptyTempFolder(temp(), Front::window, nobody);
    EXPECT_FALSE(fs::exists(folderOfImport));
    EXPECT_FALSE(holderOf(project, Front::window));
}

} // namespace
} // namespace nv::test
