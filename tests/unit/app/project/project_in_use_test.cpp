#include "app/jobs/Trail.h"
#include "app/options/ProjectOptions.h"
#include "app/program/ProjectHold.h"
#include "app/program/Zones.h"
#include "app/project/Project.h"
#include "base/Files.h"
#include "unit/app/ProjectCommandsFixture.h"

#include <SQLiteCpp/SQLiteCpp.h>

#include <unistd.h>

namespace nv {
namespace {

namespace fs = std::filesystem;
using test::ProjectCommandsTest;

/// Another window has the project.
struct ProjectInUseTest : ProjectCommandsTest {
    ProjectInUseTest() {
        commands.openFile(path, OpenMode::newAtPath);
        db().connection().exec("INSERT INTO URLs(URL) VALUES ('x')");
        set("AppMinor", "0");
        commands.closeFile();
        program->state.disableFileVersionCheck = true;
        other = std::make_unique<ProjectHold>(path, Front::window, clock);
    }
    std::unique_ptr<ProjectHold> other;
};

TEST_F(ProjectInUseTest, readingOnlyIsOfferedWithWhoHasIt) {
    const std::string who = holderOf(path, Front::window).value();
    examiner.expect("project-in-use", Answer::No);
    EXPECT_FALSE(commands.openFile(path, OpenMode::existing));
    EXPECT_NE(examiner.heard.at(0).text.find(who), std::string::npos);
    EXPECT_NE(examiner.heard.at(0).text.find(path.string()), std::string::npos);
    EXPECT_FALSE(db().isOpen());
    other.reset();
    EXPECT_TRUE(commands.openFile(path, OpenMode::existing)) << "and without a question";
    EXPECT_FALSE(db().isReadOnly());
}

TEST_F(ProjectInUseTest, readingOnlyWritesNothing) {
    const Bytes before = readWhole(path);
    examiner.expect("project-in-use", Answer::Yes);
    ASSERT_TRUE(commands.openFile(path, OpenMode::existing));
    EXPECT_TRUE(db().isReadOnly());
    EXPECT_EQ(rows(), 1);
    EXPECT_TRUE(window.caption.ends_with("(reading only)"));
    ASSERT_TRUE(setZone(*program, 20));
    setRootPath(*program, folder.path());
    EXPECT_TRUE(
        storeProjectValues(*program, projectValuesInForce(*program), TrailNote::yes).empty());
    noteInTrail(*program, {});
    dialogs.answer = folder.path() / "copy.nvp";
    EXPECT_FALSE(commands.saveAs());
    commands.closeFile();
    EXPECT_TRUE(readWhole(path) == before);
    EXPECT_FALSE(fs::exists(paths.home / "error.log")) << "and nothing has failed";
}

TEST_F(ProjectInUseTest, anOlderProjectThatIsReadOnlyOffersNoUpgrade) {
    program->state.disableFileVersionCheck = false;
    examiner.expect("project-in-use", Answer::Yes);
    examiner.expect("older-project");
    EXPECT_TRUE(commands.openFile(path, OpenMode::existing));
    EXPECT_TRUE(db().isReadOnly());
}

TEST_F(ProjectInUseTest, neitherANewProjectNorSaveAsReplacesIt) {
    examiner.expect("opening-failed");
    EXPECT_FALSE(commands.openFile(path, OpenMode::newAtPath));
    ASSERT_TRUE(commands.openFile(folder.path() / "second.nvp", OpenMode::newAtPath));
    dialogs.answer = path;
    examiner.expect("save-as-failed");
    EXPECT_FALSE(commands.saveAs());
    EXPECT_EQ(program->state.projectDBPath, folder.path() / "second.nvp");
    other.reset();
    ASSERT_TRUE(commands.openFile(path, OpenMode::existing));
    EXPECT_EQ(rows(), 1);
}

TEST_F(ProjectCommandsTest, aWriteProtectedProjectIsOfferedForReading) {
    if (::geteuid() == 0)
        GTEST_SKIP() << "the superuser may write everywhere";
    commands.openFile(path, OpenMode::newAtPath);
    commands.closeFile();
    fs::permissions(path, fs::perms::owner_read);
    examiner.expect("project-not-writable", Answer::Yes);
    EXPECT_TRUE(commands.openFile(path, OpenMode::existing));
    EXPECT_TRUE(db().isReadOnly());
}

} // namespace
} // namespace nv
