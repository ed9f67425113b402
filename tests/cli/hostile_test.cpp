#include "cli/CliRun.h"
#include "support/TempFolder.h"
#include "support/builders/IndexDat.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <sys/stat.h>

// Evidence that was made to hurt, through the program as a whole: nothing crashes or hangs, no row
// is lost besides the bad one, and the project stays sound.
namespace nv::test {
namespace {

using nlohmann::json;
namespace fs = std::filesystem;

struct HostileTest : testing::Test {
    json importAll(int expectedExit) {
        const CliResult run = runCli(
            {"import", project.string(), (folder.path() / "evidence").string(), "--format", "json"},
            folder.path() / "home");
        EXPECT_EQ(run.exit, expectedExit) << run.err;
        SQLite::Database database(project.string());
        EXPECT_EQ(database.execAndGet("PRAGMA integrity_check").getString(), "ok");
        return json::parse(run.out);
    }
    std::vector<std::string> urls() {
        SQLite::Database database(project.string());
        SQLite::Statement rows(database, "SELECT URLRawValue FROM URLs ORDER BY URL_ID");
        std::vector<std::string> texts;
        while (rows.executeStep())
            texts.push_back(rows.getColumn(0).getString());
        return texts;
    }
    static std::string indexOf(const std::vector<std::string> &texts) {
        IndexDat index;
        for (const std::string &text : texts) {
            IndexRecord record;
            record.url = text;
            record.secondDate = fileTime(2011, 3, 1);
            index.add(record);
        }
        return index.bytes();
    }
    void evidence(const std::string &name, const std::string &bytes) {
        folder.write("evidence/" + name, bytes);
    }

    TempFolder folder;
    fs::path project = folder.path() / "case.nvp";
};

TEST_F(HostileTest, urlsThatLookLikeSomethingElseAreOnlyText) {
    const std::vector<std::string> texts = {"http://x/'; DROP TABLE URLs; --",
                                            "http://x/\"quoted\"",
                                            "http://x/line\r\nbreak\ttab",
                                            "http://x/%00%0A%27",
                                            "http://x/[a]%_*?",
                                            "http://x/" + std::string(1'000'000, 'a'),
                                            "http://x/last"};
    evidence("index.dat", indexOf(texts));
    const json summary = importAll(0);
    EXPECT_EQ(summary["totals"]["rows"], texts.size());
    EXPECT_EQ(urls(), texts);
}

TEST_F(HostileTest, bytesThatAreNoUtf8BecomeTextThatIs) {
    evidence("index.dat", indexOf({"http://x/\xE9\xFF\x80", "http://x/\xED\xA0\x80"}));
    importAll(0);
    EXPECT_EQ(urls(), (std::vector<std::string>{"http://x/\u00e9\u00ff\u20ac",
                                                "http://x/\u00ed\u00a0\u20ac"}));
}

TEST_F(HostileTest, emptyAndShortFilesAreToldAndTheRestIsRead) {
    evidence("a/index.dat", "");
    evidence("b/index.dat", "Client UrlCache MMF Ver 5.2");
    evidence("c/History.sqlite", "");
    evidence("d/places.sqlite", "");
    evidence("e/Chrome/History", std::string("SQLite format 3\0", 16));
    evidence("f/index.dat", indexOf({"http://x/"}));
    const json summary = importAll(2);
    EXPECT_EQ(summary["totals"]["rows"], 1);
}

TEST_F(HostileTest, aCutIndexKeepsItsRowsAndSaysHowManyWereNotReached) {
    std::vector<std::string> texts;
    for (int i = 0; i < 40; ++i)
        texts.push_back("http://x/" + std::to_string(i));
    const std::string whole = indexOf(texts);
    evidence("index.dat", whole.substr(0, whole.size() - 128 * 20));
    const json artefact = importAll(2)["artefacts"][0];
    EXPECT_EQ(artefact["state"], "cut short");
    int told = artefact["rows"].get<int>() + artefact["not_reached"].get<int>();
    for (const auto &[reason, count] : artefact["passed_over"].items())
        told += count.get<int>();
    EXPECT_EQ(told, 40) << artefact;
    EXPECT_GT(artefact["rows"], 0);
    SQLite::Database database(project.string());
    EXPECT_EQ(database.execAndGet("SELECT Successful FROM SourceFiles").getInt(), 0);
}

TEST_F(HostileTest, aLoopingChainOfTablesEnds) {
    std::string bytes = indexOf({"http://x/1", "http://x/2"});
    put32(bytes, IndexDat::kFirstTable + 8, IndexDat::kFirstTable); // the table follows itself
    evidence("index.dat", bytes);
    const json artefact = importAll(2)["artefacts"][0];
    EXPECT_EQ(artefact["rows"], 2);
    EXPECT_FALSE(artefact["reason"].get<std::string>().empty());
}

TEST_F(HostileTest, aSparseFileOfTwoGigabytesIsRead) {
    evidence("index.dat", indexOf({"http://x/"}));
    fs::resize_file(folder.path() / "evidence" / "index.dat", std::uintmax_t{2} << 30);
    const json summary = importAll(0);
    EXPECT_EQ(summary["totals"]["rows"], 1);
}

TEST_F(HostileTest, namesOfFilesMayBeAnything) {
    const std::string page = indexOf({"http://x/"});
    evidence("new\nline/index.dat", page);
    evidence("quo'te\"/index.dat", page);
    evidence("\xE9\xFF/index.dat", page);
    evidence("\u4e2d\u6587/index.dat", page);
    const json summary = importAll(0);
    EXPECT_EQ(summary["totals"]["rows"], 4);
}

TEST_F(HostileTest, linksAndPipesDontLeadAway) {
    evidence("index.dat", indexOf({"http://x/"}));
    fs::create_directory_symlink(folder.path(), folder.path() / "evidence" / "loop");
    fs::create_symlink("/etc/passwd", folder.path() / "evidence" / "index2.dat");
    ASSERT_EQ(::mkfifo((folder.path() / "evidence" / "index3.dat").c_str(), 0600), 0);
    const json summary = importAll(2); // nothing beside a browser makes a pipe of such a name
    EXPECT_EQ(summary["totals"]["rows"], 1);
    EXPECT_EQ(summary["unreadable"].size(), 1u);
}

} // namespace
} // namespace nv::test
