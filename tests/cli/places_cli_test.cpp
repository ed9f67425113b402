#include "base/Text.h"
#include "cli/CliCase.h"

#include <gmock/gmock.h>

namespace nv::test {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

/// A cache of three files of two sites.
class PlacesCliTest : public CliCase {
  protected:
    PlacesCliTest() {
        IndexDat index;
        index.folder("ABCDEFGH");
        for (const char *url : {"http://www.harbour.co.uk/search?q=low+water",
                                "http://mail.harbour.co.uk/", "http://forum.example/?t=1299006630"})
            index.add({.url = url,
                       .secondDate = fileTime(2011, 3, 1, 12),
                       .fileSize = 6,
                       .folder = 0,
                       .fileName = "a"});
        fs::create_directories(evidence);
        writeWhole(evidence / "index.dat", index.bytes());
        const CliResult run = cli({"import", project, evidence.string(), "--kinds", "ie-cache",
                                   "--zone", "Europe/Berlin"});
        EXPECT_EQ(run.exit, 0) << run.err;
    }
};

TEST_F(PlacesCliTest, treesAreListedWithTheirCounts) {
    EXPECT_EQ(
        cli({"places", project, "--tree", "hosts", "--format", "csv"}).out,
        "Place,Is,Records,Level\r\nharbour.co.uk,Domain,2,0\r\nmail.harbour.co.uk,Host,1,1\r\n"
        "www.harbour.co.uk,Host,1,1\r\nforum.example,Domain,1,0\r\n");
    const CliResult kinds = cli({"places", project, "--tree", "kinds"});
    EXPECT_EQ(kinds.exit, 0) << kinds.err;
    EXPECT_THAT(kinds.out, HasSubstr("Cache"));
    EXPECT_THAT(kinds.out, HasSubstr("  IE CACHE"));
    const CliResult all = cli({"places", project, "--format", "jsonl"});
    EXPECT_THAT(all.out, HasSubstr("\"Is\":\"Evidence\""));
    EXPECT_THAT(all.out, HasSubstr("\"Is\":\"Kind\""));
}

TEST_F(PlacesCliTest, tagsAreATree) {
    ASSERT_EQ(cli({"tag", project, "2", "--name", "Import, ant"}).exit, 0);
    EXPECT_EQ(cli({"places", project, "--tree", "tags", "--format", "csv"}).out,
              "Place,Is,Records,Level\r\n\"Import, ant\",Tag,1,0\r\n,Tag,2,0\r\n");
    EXPECT_THAT(cli({"places", project}).out, HasSubstr("(untagged)"));
}

TEST_F(PlacesCliTest, foldersThatAreImportedTogetherStandApart) {
    const auto history = [](const char *user) {
        IndexDat index;
        index.add({.url = std::string("Visited: ") + user + "@http://a.example/",
                   .secondDate = fileTime(2011, 3, 1, 12)});
        return index.bytes();
    };
    for (const char *disk : {"disks/one/Users/ada", "disks/one/Users/bob", "disks/two/Users/ada"})
        folder.write(std::string(disk) + "/History.IE5/index.dat", history("ada"));
    const fs::path disks = fs::canonical(folder.path() / "disks");
    const auto nodesOf = [this](std::vector<std::string> paths) {
        const std::string made = (folder.path() / (std::to_string(paths.size()) + ".nvp")).string();
        paths.insert(paths.begin(), {"import", made});
        EXPECT_EQ(cli(paths).exit, 0);
        const CliResult run = cli({"places", made, "--tree", "evidence", "--format", "jsonl"});
        std::vector<std::string> nodes;
        for (const std::string_view line : split(run.out, '\n'))
            if (line.find("\"Is\":\"Evidence\"") != std::string_view::npos)
                nodes.emplace_back(line);
        return nodes;
    };
    const auto apart = nodesOf({(disks / "one").string(), (disks / "two").string()});
    ASSERT_EQ(apart.size(), 2U);
    EXPECT_THAT(apart[0], HasSubstr((disks / "one").string() + "/\",\"Is\""));
    EXPECT_THAT(apart[0], HasSubstr("\"Records\":2"));
    EXPECT_THAT(apart[1], HasSubstr((disks / "two").string() + "/\",\"Is\""));
    EXPECT_THAT(apart[1], HasSubstr("\"Records\":1"));
    EXPECT_EQ(nodesOf({disks.string()}).size(), 1U) << "a folder with several profiles is one";
}

TEST_F(PlacesCliTest, layoutsGiveTheColumnsOfAList) {
    const CliResult caches =
        cli({"list", project, "--layout", "caches", "--columns", "COL_URL_ID"});
    EXPECT_EQ(caches.exit, 1);
    EXPECT_THAT(caches.err, HasSubstr("one of them is enough"));
    const CliResult pictures = cli({"list", project, "--layout", "PICTURES", "--format", "table"});
    EXPECT_EQ(pictures.exit, 0) << pictures.err;
    EXPECT_THAT(pictures.out, HasSubstr("Width"));
    EXPECT_THAT(pictures.out, Not(HasSubstr("Icon")));
    const CliResult none = cli({"list", project, "--layout", "Mine"});
    EXPECT_EQ(none.exit, 1);
    EXPECT_THAT(none.err, HasSubstr("Examiner, Caches, Pictures, Classic were expected"));
}

TEST_F(PlacesCliTest, aCardSaysWhatARecordIs) {
    const CliResult card = cli({"show", project, "1", "--card"});
    EXPECT_EQ(card.exit, 0) << card.err;
    EXPECT_THAT(card.out, StartsWith("Title "));
    EXPECT_THAT(card.out, HasSubstr("2011-03-01 13:00:00 Europe/Berlin (+0100 CET)"));
    EXPECT_THAT(card.out, HasSubstr("Searched for            low water"));
    EXPECT_THAT(cli({"show", project, "3"}).out,
                HasSubstr("2011-03-01 19:10:30 UTC [Unix time in seconds]"));
    EXPECT_THAT(cli({"show", project, "1", "--card", "--format", "csv"}).out,
                StartsWith("Label,Text\r\n"));
}

} // namespace
} // namespace nv::test
