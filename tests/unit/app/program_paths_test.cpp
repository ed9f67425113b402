#include "app/ProgramPaths.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <map>

namespace nv {
namespace {

namespace fs = std::filesystem;

/// Sets a variable of the environment, or takes it away, until the end of the test.
class Variable {
  public:
    Variable(const char *name, const std::string &value) : m_name(name) {
        if (const char *before = std::getenv(name)) {
            m_before = before;
            m_wasSet = true;
        }
        set(value);
    }
    ~Variable() { m_wasSet ? ::setenv(m_name, m_before.c_str(), 1) : ::unsetenv(m_name); }
    Variable(const Variable &) = delete;
    Variable &operator=(const Variable &) = delete;
    void set(const std::string &value) {
        value.empty() ? ::unsetenv(m_name) : ::setenv(m_name, value.c_str(), 1);
    }

  private:
    const char *m_name;
    std::string m_before;
    bool m_wasSet = false;
};

struct ProgramPathsTest : testing::Test {
    ProgramPaths installed() {
        folder.write("usr/share/norvelane/nvTZ.dat", "");
        fs::create_directories(root / "usr" / "bin");
        return findProgramPaths(root / "usr" / "bin" / "norvelane");
    }
    ProgramPaths built() {
        folder.write("build/nvTZ.dat", "");
        return findProgramPaths(root / "build" / "norvelane");
    }

    test::TempFolder folder;
    fs::path root = folder.path();
    Variable home{"HOME", (root / "mara").string()};
    Variable named{"NORVELANE_HOME", ""};
    Variable data{"XDG_DATA_HOME", ""};
    Variable config{"XDG_CONFIG_HOME", ""};
    Variable state{"XDG_STATE_HOME", ""};
};

TEST_F(ProgramPathsTest, inTheBuildFolderAllLiesBesideTheProgram) {
    const ProgramPaths paths = built();
    EXPECT_EQ(paths.zones(), root / "build" / "nvTZ.dat");
    EXPECT_EQ(paths.settings(), root / "build" / "Norvelane.ini");
    EXPECT_EQ(paths.errorLog(false), root / "build" / "error.log");
    EXPECT_EQ(paths.state, root / "build");
    EXPECT_EQ(paths.home, root / "build");
    EXPECT_FALSE(fs::exists(root / "mara"));
}

TEST_F(ProgramPathsTest, installedItIsTheUsersFoldersForTheUserAlone) {
    const ProgramPaths paths = installed();
    EXPECT_EQ(paths.zones(), root / "usr" / "share" / "norvelane" / "nvTZ.dat");
    EXPECT_EQ(paths.settings(), root / "mara" / ".config" / "norvelane" / "Norvelane.ini");
    EXPECT_EQ(paths.errorLog(true),
              root / "mara" / ".local" / "state" / "norvelane" / "error-cli.log");
    EXPECT_EQ(paths.home, root / "mara" / ".local" / "share" / "norvelane");
    for (const fs::path &made : {paths.home, paths.config, paths.state})
        EXPECT_EQ(fs::status(made).permissions(), fs::perms::owner_all) << made;
    EXPECT_TRUE(fs::is_empty(root / "usr" / "bin"));
}

TEST_F(ProgramPathsTest, theEnvironmentMovesTheUsersFolders) {
    data.set((root / "data").string());
    config.set((root / "config").string());
    state.set("relative/folders/count/as/none");
    const ProgramPaths paths = installed();
    EXPECT_EQ(paths.home, root / "data" / "norvelane");
    EXPECT_EQ(paths.config, root / "config" / "norvelane");
    EXPECT_EQ(paths.state, root / "mara" / ".local" / "state" / "norvelane");
}

TEST_F(ProgramPathsTest, aNamedHomeHoldsAll) {
    named.set((root / "case").string());
    for (const ProgramPaths &paths : {installed(), built()}) {
        EXPECT_EQ(paths.home, root / "case");
        EXPECT_EQ(paths.settings(), root / "case" / "Norvelane.ini");
        EXPECT_EQ(paths.state, root / "case");
    }
}

TEST_F(ProgramPathsTest, aFolderForProgramsIsNeverWrittenTo) {
    fs::create_directories(root / "opt" / "bin");
    const ProgramPaths paths = findProgramPaths(root / "opt" / "bin" / "norvelane");
    EXPECT_EQ(paths.state, root / "mara" / ".local" / "state" / "norvelane");
    EXPECT_TRUE(fs::is_empty(root / "opt" / "bin"));
}

TEST_F(ProgramPathsTest, withoutAnyHomeItSaysSo) {
    home.set("");
    EXPECT_THROW(installed(), std::runtime_error);
    named.set((root / "case").string());
    EXPECT_EQ(installed().home, root / "case");
}

} // namespace
} // namespace nv
