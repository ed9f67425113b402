#include "cli/CliCase.h"
#include "support/Places.h"
#include "support/SqliteHistoryReading.h"
#include "support/Unprivileged.h"
#include "support/builders/ChromeCache.h"
#include "support/builders/FirefoxCache.h"
#include "support/builders/Safari.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <fcntl.h>
#include <set>
#include <sys/stat.h>
#include <thread>

namespace nv::test {
namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::Not;
namespace fs = std::filesystem;

IndexDat historyOf(const std::string &url) {
    IndexDat history;
    history.add({.url = "Visited: mara@" + url, .secondDate = fileTime(2011, 3, 1, 12)});
    return history;
}

/// What lies in the evidence stays as it is, and what can't be read of it is told.
class EvidenceCliTest : public CliCase {
  protected:
    fs::path addHistory(const fs::path &name) {
        return folder.write("evidence" / name, historyOf("http://host/").bytes());
    }
    /// As somebody who is bound by the modes of files.
    CliResult asNobody(const std::vector<std::string> &words) {
        fs::create_directories(folder.path() / "home");
        giveToNobody(folder.path());
        return CliProcess(words, folder.path() / "home", cliProgram(), CliProcess::As::nobody)
            .finish();
    }
    /// A cache of one page, row 1.
    void importCache() {
        IndexDat index;
        index.folder("ABCDEFGH");
        addCached(index, "http://host/page.htm", "page[1].htm", "<html><title>T</title></html>");
        import(index);
    }
    json importAsJson(int exit) {
        const CliResult run = cli({"import", project, evidence.string(), "--format", "json"});
        EXPECT_EQ(run.exit, exit) << run.err;
        return json::parse(run.out);
    }
    /// A list of keywords on which the making of a project waits.
    fs::path endlessKeywords() {
        const fs::path pipe = folder.path() / "home" / "keywords" / "child-exploitation.txt";
        fs::create_directories(pipe.parent_path());
        EXPECT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
        return pipe;
    }
    /// Until somebody reads it; the descriptor that keeps them waiting, below 0 after ten seconds.
    static int waitForReader(const fs::path &pipe) {
        int fd = -1;
        for (int tries = 0; fd < 0 && tries < 1000; ++tries) {
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
            fd = ::open(pipe.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC);
        }
        return fd;
    }
    json trail() {
        json all = json::array();
        const std::string lines = cli({"trail", project, "--format", "jsonl"}).out;
        for (std::size_t at = 0, end = 0; (end = lines.find('\n', at)) != lines.npos; at = end + 1)
            all.push_back(json::parse(lines.substr(at, end - at)));
        return all;
    }
};

TEST_F(EvidenceCliTest, bareNamesInTheEvidenceFolderWriteNothingThere) {
    importCache();
    const auto before = contentsOf(evidence);
    for (const auto &call : std::vector<std::vector<std::string>>{
             {"import", "new.nvp", "."},
             {"import", "./inner/../new.nvp", "."},
             {"import", "new.nvp", "ABCDEFGH", "index.dat", "."},
             {"extract", project, "1", "page.htm"},
             {"extract", project, "1", "ABCDEFGH/new.htm"},
             {"export", project, "rows.csv"},
             {"gallery", project, "--out", "sheet.html"},
             {"report", project, "--all", "--type", "tabular", "--out", "report"},
             {"rebuild", project, "1", "--out", "pages", "--no-thumbnails"},
             {"template", "create", project, "1", "--folder", "templates"}}) {
        const CliResult run = cliIn(evidence, call);
        EXPECT_EQ(run.exit, 1) << call.front() << run.err;
        EXPECT_THAT(run.err, HasSubstr("evidence")) << call.front();
        EXPECT_EQ(contentsOf(evidence), before) << call.front();
    }
    EXPECT_EQ(cliIn(folder.path(), {"extract", project, "1", "page.htm"}).exit, 0);
}

TEST_F(EvidenceCliTest, noFolderOfAnyImportIsWrittenTo) {
    importCache();
    const fs::path second = folder.write("second/index.dat", historyOf("http://2/").bytes());
    const fs::path third = folder.write("third/index.dat", historyOf("http://3/").bytes());
    EXPECT_EQ(cli({"import", project, second.parent_path().string()}).exit, 0);
    EXPECT_EQ(cli({"import", project, third.string(), "--base", third.parent_path()}).exit, 0);
    for (const fs::path &place : {evidence, second.parent_path(), third.parent_path()}) {
        const auto before = contentsOf(place);
        for (const auto &call : std::vector<std::vector<std::string>>{
                 {"extract", project, "1", "page.htm"},
                 {"export", project, "rows.csv"},
                 {"gallery", project, "--out", "sheet.html"},
                 {"report", project, "--all", "--type", "tabular", "--out", "report"},
                 {"rebuild", project, "1", "--out", "pages", "--no-thumbnails"},
                 {"template", "create", project, "1", "--folder", "templates"}}) {
            const CliResult run = cliIn(place, call);
            EXPECT_EQ(run.exit, 1) << place << call.front() << run.err;
            EXPECT_THAT(run.err, HasSubstr("lies in the evidence folder")) << call.front();
        }
        EXPECT_EQ(contentsOf(place), before);
    }
    EXPECT_EQ(cliIn(folder.path(), {"export", project, "rows.csv"}).exit, 0);
}

TEST_F(EvidenceCliTest, noProjectIsMadeInItsOwnBaseFolder) {
    addHistory("inner/index.dat");
    addHistory("other/index.dat");
    const auto before = contentsOf(evidence);
    for (const auto &[place, call] : std::vector<std::pair<fs::path, std::vector<std::string>>>{
             {"inner", {"import", "me.nvp", "index.dat"}},
             {"inner", {"import", "../me.nvp", "index.dat", "../other"}},
             {"other", {"import", "me.nvp", "../inner", "--base", ".."}}}) {
        const CliResult run = cliIn(evidence / place, call);
        EXPECT_EQ(run.exit, 1) << run.err;
        EXPECT_THAT(run.err, HasSubstr("lies in the evidence folder"));
        EXPECT_EQ(contentsOf(evidence), before);
    }
}

TEST_F(EvidenceCliTest, aProjectMayGetAFileThatLiesBesideIt) {
    addHistory("index.dat");
    EXPECT_EQ(cli({"import", project, evidence.string()}).exit, 0);
    folder.write("index.dat", historyOf("http://beside/").bytes());
    EXPECT_EQ(cliIn(folder.path(), {"import", "case.nvp", "index.dat"}).exit, 0);
    EXPECT_EQ(cliIn(folder.path(), {"export", "case.nvp", "rows.csv"}).exit, 0);
}

TEST_F(EvidenceCliTest, aLinkToWhatIsNotThereYetLeadsNoOutputIntoTheEvidence) {
    importCache();
    fs::create_symlink(evidence / "new.htm", folder.path() / "link.htm");
    EXPECT_EQ(cliIn(folder.path(), {"extract", project, "1", "link.htm"}).exit, 1);
    EXPECT_FALSE(fs::exists(evidence / "new.htm"));
}

TEST_F(EvidenceCliTest, aProjectIsTheSameForTwoImportsHoweverItIsNamed) {
    addHistory("index.dat");
    const fs::path pipe = endlessKeywords();
    const CliProcess first({"import", project, evidence.string()}, folder.path() / "home");
    const int waiting = waitForReader(pipe);
    ASSERT_GE(waiting, 0);
    const WorkingFolder in(folder.path());
    const CliResult second =
        runCli({"import", "case.nvp", evidence.string()}, folder.path() / "home2");
    EXPECT_EQ(second.exit, 3);
    EXPECT_THAT(second.err, HasSubstr("another import into this project is running"));
    ::close(waiting);
}

TEST_F(EvidenceCliTest, anImportThatIsKilledAtItsBeginningLeavesNoHalfProject) {
    addHistory("index.dat");
    const fs::path pipe = endlessKeywords();
    int waiting = -1;
    {
        const CliProcess killed({"import", project, evidence.string()}, folder.path() / "home");
        waiting = waitForReader(pipe);
        EXPECT_FALSE(fs::exists(project));
    }
    ASSERT_GE(waiting, 0);
    ::close(waiting);
    fs::remove(pipe);
    const CliResult again = cli({"import", project, evidence.string()});
    EXPECT_EQ(again.exit, 0) << again.err;
    for (const auto &entry : fs::directory_iterator(folder.path()))
        EXPECT_THAT(entry.path().filename().string(), Not(HasSubstr("~new")));
}

TEST_F(EvidenceCliTest, aReportOfContentThatCantBeReadSaysSo) {
    importCache();
    const fs::path page = evidence / "ABCDEFGH" / "page[1].htm";
    fs::permissions(page, fs::perms::none);
    if (asNobody({"--version"}).exit != 0)
        GTEST_SKIP() << "nobody may not run the program where it lies";
    const CliResult run = asNobody({"report", project, "--all", "--type", "graphical", "--out",
                                    (folder.path() / "report").string()});
    fs::permissions(page, fs::perms::owner_all);
    EXPECT_THAT(run.err, HasSubstr("1 cached file could not be read"));
    EXPECT_EQ(run.exit, 2) << run.err;
}

TEST_F(EvidenceCliTest, aPipeThatIsNamedIsNoPlainFile) {
    const fs::path pipe = evidence / "pipe";
    fs::create_directories(evidence);
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    const CliResult run = cli({"import", project, pipe.string()});
    EXPECT_EQ(run.exit, 2) << run.err;
    EXPECT_THAT(run.out, HasSubstr("\"" + pipe.string() + "\" is no plain file and no folder"));
}

TEST_F(EvidenceCliTest, whatCantBeReadStandsInSummaryJsonAndTrail) {
    addHistory("a/index.dat");
    const fs::path file = addHistory("b/index.dat");
    fs::create_directories(evidence / "closed");
    fs::create_symlink(file, evidence / "link");
    fs::permissions(file, fs::perms::none);
    fs::permissions(evidence / "closed", fs::perms::none);
    if (asNobody({"--version"}).exit != 0)
        GTEST_SKIP() << "nobody may not run the program where it lies";
    const CliResult text = asNobody({"import", project, evidence.string()});
    EXPECT_EQ(text.exit, 2) << text.err;
    EXPECT_THAT(text.out, HasSubstr("not readable cannot list \"" + (evidence / "closed").string() +
                                    "\": Permission denied"));
    EXPECT_THAT(text.out, HasSubstr("not readable cannot open \"" + file.string() + "\""));
    EXPECT_THAT(text.out, HasSubstr("2 files or folders could not be read"));
    EXPECT_THAT(text.out, HasSubstr("1 link not followed"));
    const CliResult again = asNobody({"import", project, evidence.string(), "--format", "json"});
    const json summary = json::parse(again.out);
    EXPECT_EQ(summary["unreadable"].size(), 2u);
    EXPECT_EQ(summary["unreadable"][1]["path"], file.string());
    EXPECT_THAT(summary["unreadable"][1]["reason"], HasSubstr("Permission denied"));
    EXPECT_EQ(summary["links_not_followed"], 1);
    EXPECT_EQ(summary["totals"]["rows"], 1);
    const json entries = trail();
    ASSERT_EQ(entries.size(), 10u); // each import has one for its begin and one for its end
    EXPECT_EQ(entries[3]["Action"], "Not Readable");
    EXPECT_EQ(entries[3]["FilePath"], file.string());
    fs::permissions(evidence / "closed", fs::perms::owner_all);
    EXPECT_EQ(cli({"verify", project}).exit, 0) << "there is nothing to compare it with";
}

TEST_F(EvidenceCliTest, filesBesideACacheThatCantBeReadStandInSummaryJsonAndTrail) {
    const std::string page = "<html><title>T</title>" + std::string(2000, 'x');
    FirefoxCache firefox;
    firefox.add({.key = "HTTP:http://1/", .body = page, .bodyFile = 2});
    firefox.add({.key = "HTTP:http://2/", .body = page, .bodyFile = 2});
    firefox.add({.key = "HTTP:http://3/", .body = page, .bodyFile = 0});
    firefox.writeTo(evidence / "firefox/Cache");
    ChromeCache chrome;
    chrome.add({.url = "http://4/", .body = page});
    chrome.add({.url = "http://5/", .body = page, .where = ChromeCacheEntry::Body::separate});
    chrome.write(evidence / "Chrome/Default/Cache");
    IndexDat index;
    index.folder("ABCDEFGH");
    addCached(index, "http://6/page.htm", "page[1].htm", page, evidence / "ie");
    folder.write("evidence/ie/index.dat", index.bytes());
    std::set<std::string> closed = {
        (evidence / "firefox/Cache/_CACHE_002_").string(),
        (evidence / "firefox/Cache" / (firefox.separateFiles.begin()->first)).string(),
        (evidence / "Chrome/Default/Cache/data_2").string(),
        (evidence / "Chrome/Default/Cache/f_000001").string(),
        (evidence / "ie/ABCDEFGH/page[1].htm").string()};
    for (const std::string &file : closed)
        fs::permissions(file, fs::perms::none);
    if (asNobody({"--version"}).exit != 0)
        GTEST_SKIP() << "nobody may not run the program where it lies";
    // The loose page is an artefact too, which the scan can't read either.
    const CliResult run = asNobody({"import", project, evidence.string(), "--format", "json"});
    EXPECT_EQ(run.exit, 2) << run.err;
    const json summary = json::parse(run.out);
    EXPECT_EQ(summary["totals"]["rows"], 6);
    std::multiset<std::string> told;
    for (const json &place : summary["unreadable"]) {
        told.insert(place["path"].get<std::string>());
        EXPECT_THAT(place["reason"].get<std::string>(), HasSubstr("Permission denied"));
    }
    EXPECT_EQ(told, std::multiset<std::string>(closed.begin(), closed.end())) << "each once";
    std::multiset<std::string> inTrail;
    for (const json &entry : trail())
        if (entry["Action"] == "Not Readable")
            inTrail.insert(entry["FilePath"].get<std::string>());
    EXPECT_EQ(inTrail, told);
    const CliResult text = asNobody({"import", project, evidence.string()});
    EXPECT_EQ(text.exit, 2);
    EXPECT_THAT(text.out, HasSubstr("not readable cannot open \"" + *closed.begin()));
    EXPECT_THAT(text.out, HasSubstr("5 files or folders could not be read"));
}

TEST_F(EvidenceCliTest, aNamedFileWhoseReadingFailsIsNoWrongUsage) {
    const CliResult run = cli({"import", project, "/proc/self/mem"});
    EXPECT_EQ(run.exit, 2);
    EXPECT_THAT(run.out, HasSubstr("Input/output error"));
    EXPECT_THAT(run.err, Not(HasSubstr("is not known as an artefact")));
    EXPECT_EQ(trail().size(), 3u);
}

TEST_F(EvidenceCliTest, aNamedPathThatCantBeReachedStopsNoOther) {
    addHistory("a/index.dat");
    const fs::path file = addHistory("closed/index.dat");
    fs::permissions(file.parent_path(), fs::perms::none);
    if (asNobody({"--version"}).exit != 0)
        GTEST_SKIP() << "nobody may not run the program where it lies";
    const CliResult run = asNobody({"import", project, file.string(), (evidence / "a").string()});
    fs::permissions(file.parent_path(), fs::perms::owner_all);
    EXPECT_EQ(run.exit, 2) << run.err;
    EXPECT_THAT(run.out, HasSubstr("not readable cannot open \"" + file.string()));
    EXPECT_THAT(run.out, HasSubstr("1 row from 1 of 1 artefact;"));
}

TEST_F(EvidenceCliTest, linksThatAreNotFollowedAreNoFailure) {
    const fs::path file = addHistory("a/index.dat");
    fs::create_symlink(file, evidence / "index.dat");
    const CliResult run = cli({"import", project, evidence.string()});
    EXPECT_EQ(run.exit, 0);
    EXPECT_THAT(run.out, HasSubstr("1 link not followed"));
}

TEST_F(EvidenceCliTest, theLogOfCommandsGoesOnAndNamesThem) {
    addHistory("a/index.dat");
    const fs::path log = folder.path() / "home" / "error-cli.log";
    EXPECT_EQ(cli({"import", project, "/proc/self/mem"}).exit, 2);
    const std::string first = text(log);
    EXPECT_THAT(first, HasSubstr("]  Command:  norvelane-cli import " + project));
    EXPECT_EQ(cli({"import", project, evidence.string()}).exit, 0);
    EXPECT_EQ(text(log), first) << "nothing failed";
    EXPECT_EQ(cli({"import", project, "/proc/self/mem", evidence.string()}).exit, 2);
    EXPECT_TRUE(text(log).starts_with(first));
    EXPECT_THAT(text(log).substr(first.size()), HasSubstr("/proc/self/mem " + evidence.string()));
}

TEST_F(EvidenceCliTest, aFormThatIsNotReadYetIsTwo) {
    FirefoxCache cache(0x00010013);
    cache.add({.key = "HTTP:http://1/"}).add({.key = "HTTP:http://2/"});
    fs::create_directories(evidence / "Cache");
    cache.writeTo(evidence / "Cache");
    const json summary = importAsJson(2);
    EXPECT_EQ(summary["artefacts"][0]["state"], "not read yet");
    EXPECT_EQ(summary["totals"]["not_reached"], 2);
    EXPECT_THAT(summary["artefacts"][0]["reason"], HasSubstr("holds 2 entries"));
}

TEST_F(EvidenceCliTest, aCacheThatIsTakenForAHistoryByItsNameIsWarnedOf) {
    IndexDat index;
    index.folder("ABCDEFGH");
    addCached(index, "http://host/page.htm", "page[1].htm", "<html></html>");
    writeWhole(evidence / "index.dat", index.bytes());
    addHistory("History/index.dat");
    const CliResult run = cli({"import", project, evidence.string(), "--no-signatures"});
    EXPECT_EQ(run.exit, 0) << run.err;
    const std::size_t warning =
        run.out.find("Warning: read as a history, but it lists cache folders");
    ASSERT_NE(warning, std::string::npos) << run.out;
    EXPECT_EQ(run.out.find("Warning: ", warning + 1), std::string::npos) << run.out;
    EXPECT_THAT(trail()[1]["Detail"].dump() + trail()[0]["Detail"].dump(),
                HasSubstr("lists cache folders"));
    EXPECT_THAT(cli({"import", project, evidence.string()}).out, Not(HasSubstr("Warning")));
}

TEST_F(EvidenceCliTest, shaderCachesAreToldInOneLine) {
    for (const char *name : {"GPUCache", "DawnWebGPUCache"}) {
        folder.write(fs::path("evidence") / name / "data_0", "blocks");
        folder.write(fs::path("evidence") / name / "index", "index");
    }
    const CliResult run = cli({"import", project, evidence.string()});
    EXPECT_EQ(run.exit, 1) << run.err;
    EXPECT_THAT(run.out, HasSubstr("2 shader caches passed over"));
    EXPECT_EQ(importAsJson(1)["shader_caches"], 2);
}

TEST_F(EvidenceCliTest, filesBelowAFolderWhoseNameIsNoUtf8AreVerifiedAndExtracted) {
    const fs::path place = evidence / "Caf\xE9" / "Safari";
    fs::create_directories(place);
    SafariCache(place / "Cache.db")
        .add({.id = 1, .url = "http://host/a.txt", .body = "the body of it"})
        .close();
    EXPECT_EQ(cli({"import", project, evidence.string()}).exit, 0);
    const CliResult verified = cli({"verify", project});
    EXPECT_EQ(verified.exit, 0) << verified.out << verified.err;
    EXPECT_EQ(cli({"extract", project, "1", "-"}).out, "the body of it");
    const std::string inner = (folder.path() / "inner.nvp").string();
    EXPECT_EQ(cli({"import", inner, (evidence / "Caf\xE9").string()}).exit, 0);
    EXPECT_EQ(cli({"verify", inner}).exit, 0);
    EXPECT_EQ(cli({"extract", inner, "1", "-"}).out, "the body of it");
    EXPECT_EQ(cliIn(place, {"extract", inner, "1", "new.txt"}).exit, 1) << "that is evidence";
}

TEST_F(EvidenceCliTest, verifyOpensNoPipeAndEndsWithAnInterrupt) {
    const fs::path file = addHistory("index.dat");
    EXPECT_EQ(cli({"import", project, evidence.string()}).exit, 0);
    fs::remove(file);
    ASSERT_EQ(::mkfifo(file.c_str(), 0600), 0);
    const CliResult run = cli({"verify", project});
    EXPECT_EQ(run.exit, 2);
    EXPECT_THAT(run.out, HasSubstr("unreadable"));
}

} // namespace
} // namespace nv::test
