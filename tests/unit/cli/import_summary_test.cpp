#include "base/Files.h"
#include "cli/Commands.h"
#include "cli/Grammar.h"
#include "cli/Session.h"
#include "support/TempFolder.h"
#include "support/builders/IndexDat.h"

#include <gmock/gmock.h>

#include <array>
#include <cstdlib>
#include <sstream>

namespace nv::cli {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::Not;

constexpr std::array<MakeCommand, 1> kTable = {importCommand};

struct ImportSummaryTest : testing::Test {
    ImportSummaryTest() {
        ::setenv("NORVELANE_HOME", (folder.path() / "home").c_str(), 1);
        test::IndexDat index;
        index.add({.url = "Visited: mara@http://a.example/"});
        folder.write("evidence/History.IE5/index.dat", index.bytes());
    }
    ~ImportSummaryTest() override { interrupted = false; }

    Exit import() {
        Session session(fs::read_symlink("/proc/self/exe"), "import", out, err);
        const Call call =
            callOf({"import", (folder.path() / "case.nvp").string(),
                    (folder.path() / "evidence").string(), "--summary", page.string()},
                   kTable);
        return call.run(session);
    }

    test::TempFolder folder;
    fs::path page = folder.path() / "summary.html";
    std::ostringstream out;
    std::ostringstream err;
};

TEST_F(ImportSummaryTest, aCancelledSearchLeavesNoPageAndSaysSo) {
    interrupted = true;
    EXPECT_EQ(import(), Exit::interrupted);
    EXPECT_FALSE(fs::exists(page));
    EXPECT_THAT(err.str(), HasSubstr("No summary was written to \"" + page.string() +
                                     "\": it was cancelled before anything was imported\n"));
}

/// Its trail tells of the import before, which the page must not show.
TEST_F(ImportSummaryTest, aCancelledSearchDoesNotTellOfAnEarlierImport) {
    EXPECT_EQ(import(), Exit::ok);
    EXPECT_THAT(err.str(), Not(HasSubstr("No summary")));
    EXPECT_TRUE(fs::remove(page));
    interrupted = true;
    EXPECT_EQ(import(), Exit::interrupted);
    EXPECT_FALSE(fs::exists(page));
}

} // namespace
} // namespace nv::cli
