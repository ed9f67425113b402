#include "cli/CliCase.h"
#include "support/SmallFiles.h"
#include "support/builders/MacCache.h"

#include <fmt/format.h>
#include <gmock/gmock.h>

#include <regex>

namespace nv {
namespace {

using test::CliResult;
using testing::HasSubstr;

struct FullDiskCli : test::CliCase {
    std::string rows() const { return cli({"query", project, "SELECT Count(*) FROM URLs"}).out; }
};

TEST_F(FullDiskCli, ofScratchEndsAnImportThatSaysWhatIsKept) {
    constexpr std::size_t kLimit = std::size_t{4} << 20;
    test::MacCache cache;
    cache.add({.url = "http://host/small.html", .body = "<html>small</html>"});
    cache.add({.url = "http://host/large.html", .body = "<html>" + std::string(kLimit, 'x')});
    std::filesystem::create_directories(evidence);
    writeWhole(evidence / "cache.waf", cache.bytes());
    CliResult run;
    {
        const test::SmallFiles limit(kLimit);
        run = cli({"import", project, (evidence / "cache.waf").string(), "--as", "mac-cache"});
    }
    EXPECT_EQ(run.exit, 3);
    EXPECT_THAT(run.out, HasSubstr("The import ended: cannot write \""));
    EXPECT_THAT(run.out, HasSubstr("~body\" on the disk \""));
    EXPECT_THAT(run.out, HasSubstr("What was written before is kept: 1 row.\n"));
    EXPECT_THAT(rows(), HasSubstr("\n1\n"));
    EXPECT_THAT(cli({"trail", project}).out, HasSubstr("mac-cache: failed"));
}

TEST_F(FullDiskCli, ofTheProjectLeavesTheSummary) {
    test::IndexDat cache;
    cache.folder("ABCDEFGH");
    for (int i = 0; i < 4000; ++i)
        cache.add({.url = fmt::format("http://host/{}/{}.htm", i, std::string(400, 'p'))});
    std::filesystem::create_directories(evidence);
    writeWhole(evidence / "index.dat", cache.bytes());
    CliResult run;
    const auto page = folder.path() / "summary.html";
    {
        const test::SmallFiles limit(std::size_t{2} << 20);
        run = cli({"import", project, evidence.string(), "--kinds", "ie-cache", "--summary",
                   page.string()});
    }
    EXPECT_EQ(run.exit, 3);
    EXPECT_NE(std::filesystem::exists(page), run.err.find("No summary was") != std::string::npos)
        << run.err;
    EXPECT_THAT(run.out, HasSubstr("The import ended: \"" + project + "\" on the disk \""));
    std::smatch kept;
    ASSERT_TRUE(std::regex_search(run.out, kept, std::regex("is kept: ([0-9]+) rows?\\.\n")));
    EXPECT_THAT(rows(), HasSubstr(fmt::format("\n{}\n", kept[1].str())));
}

TEST_F(FullDiskCli, ofTheProjectIsNamedAtWhateverStepOfAnImport) {
    constexpr std::size_t kStep = std::size_t{16} << 10; // two pages of the project
    for (int i = 0; i < 40; ++i)
        folder.write(fmt::format("evidence/{}.html", i),
                     fmt::format("<html><a href=\"http://host/{}\">{}</a></html>", i,
                                 std::string(1000, 'x')));
    const std::string first = folder.write("first/page.html", "<html></html>").string();
    ASSERT_EQ(cli({"import", project, first}).exit, 0);
    const std::string made = text(project);
    int ended = 0;
    CliResult run;
    for (std::size_t limit = 6 * kStep; limit < 50 * kStep; limit += kStep) {
        for (const char *log : {"-wal", "-shm"}) // of the project of before
            std::filesystem::remove(project + log);
        writeWhole(project, made);
        {
            const test::SmallFiles full(limit);
            run = cli({"import", project, evidence.string()});
        }
        if (run.exit == 0)
            continue;
        ++ended;
        EXPECT_THAT(run.out, HasSubstr("The import ended: \"" + project + "\" on the disk \""))
            << limit << ": " << run.err;
    }
    EXPECT_EQ(run.exit, 0) << "there was room in the end";
    EXPECT_GT(ended, 0);
}

TEST_F(FullDiskCli, ofTheProjectCostsTheNoteOfWhatOnlyLooks) {
    test::IndexDat cache;
    cache.folder("ABCDEFGH");
    cache.add({.url = "http://host/a.htm"});
    import(cache);
    const std::string before = text(project);
    for (const std::vector<std::string> &words :
         {std::vector<std::string>{"verify", project},
          {"export", project, (folder.path() / "rows.csv").string()}}) {
        CliResult run;
        {
            const test::SmallFiles full(std::size_t{7} << 10); // less than a page
            run = cli(words);
        }
        EXPECT_EQ(run.exit, 0) << run.err;
        EXPECT_THAT(run.err, HasSubstr("\"" + project + "\": on the disk \""));
        EXPECT_THAT(run.err, HasSubstr("its trail has no note of this"));
        EXPECT_EQ(text(project), before);
    }
    EXPECT_THAT(text(folder.path() / "rows.csv"), HasSubstr("http://host/a.htm"));
}

} // namespace
} // namespace nv
