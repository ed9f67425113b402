#include "base/Md5.h"
#include "import/Scan.h"
#include "support/ImportOption.h"
#include "support/TempFolder.h"
#include "support/TestDoubles.h"
#include "support/Unprivileged.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace nv {
namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;

std::string indexBytes(char folders) {
    std::string bytes = "Client UrlCache MMF Ver 5.2\0"s;
    bytes.resize(128, '\0');
    bytes[72] = folders;
    return bytes;
}

class ScanTest : public testing::Test {
  protected:
    ScanTest() { job.startingDirectory = folder.path(); }

    ScanResult scanWatchedBy(TaskMonitor &task) { return scan(job, task, log, nullptr, formats); }
    ScanResult scanned() {
        Unwatched task;
        return scanWatchedBy(task);
    }

    /// "type name" of each file, in the order of the list.
    std::vector<std::string> found() {
        std::vector<std::string> lines;
        for (const HistoryFile &file : scanned().historyFiles)
            lines.push_back(std::to_string(static_cast<int>(file.historyFileType)) + " " +
                            fs::path(file.fullPath).lexically_relative(folder.path()).string());
        return lines;
    }

    void dontLookFor(const SourceOption &box) { setWanted(job, box, false); }
    void dontLookFor(std::string_view box) { dontLookFor(test::importOption(box)); }

    /// As somebody to whom the modes of files mean something.
    ScanResult scannedWithoutPrivileges() {
        const test::Unprivileged nobody(folder.path());
        return scanned();
    }
    static std::vector<std::string> unreadable(const ScanResult &result) {
        std::vector<std::string> paths;
        for (const UnreadPlace &place : result.gaps.unreadable)
            paths.push_back(place.path.string());
        return paths;
    }

    test::TempFolder folder;
    test::MemoryLog log;
    ImportSettings job;
    std::vector<const Reader *> formats{registry().begin(), registry().end()};
};

using Lines = std::vector<std::string>;

TEST_F(ScanTest, describesEachFile) {
    const auto path = folder.write("Profile/Places.sqlite", "bytes");
    const ScanResult result = scanned();
    ASSERT_EQ(result.historyFiles.count(), 1u);
    const HistoryFile &file = result.historyFiles.item(1);
    EXPECT_EQ(file.fullPath, path);
    EXPECT_EQ(file.fileName, "Places.sqlite");
    EXPECT_EQ(file.fileExt, "sqlite");
    EXPECT_EQ(file.fileParentPath, (folder.path() / "Profile").string());
    EXPECT_EQ(file.fileSize, 5u);
    EXPECT_EQ(file.md5Hash, md5Hex("bytes"));
    EXPECT_EQ(file.historyFileType, HistoryFileType::firefox3History);
    EXPECT_EQ(file.version, "3.0");
    EXPECT_EQ(file.sourceFileID, SourceFileId::none);
    EXPECT_FALSE(result.cancelled);
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(ScanTest, goesDepthFirstInTheOrderOfTheNamesBytes) {
    for (const char *name : {"b/places.sqlite", "a/z/places.sqlite", "a/a/places.sqlite",
                             "B/places.sqlite", "places2.sqlite", "places.sqlite"})
        folder.write(name, "");
    EXPECT_EQ(found(),
              (Lines{"22 places.sqlite", "22 places2.sqlite", "22 B/places.sqlite",
                     "22 a/a/places.sqlite", "22 a/z/places.sqlite", "22 b/places.sqlite"}));
}

TEST_F(ScanTest, staysInTheFolderWithoutRecursion) {
    folder.write("places.sqlite", "");
    folder.write("below/places.sqlite", "");
    job.recurseSubfolders = false;
    EXPECT_EQ(found(), Lines{"22 places.sqlite"});
}

TEST_F(ScanTest, tellsAnIndexByItsFolderCountWhateverItsOwnFolderIsCalled) {
    folder.write("Cache/index.dat", indexBytes(0));
    folder.write("History/index.dat", indexBytes(3));
    EXPECT_EQ(found(), (Lines{"1 Cache/index.dat", "4 History/index.dat"}));
    job.verifyFileSignatures = false;
    EXPECT_EQ(found(), (Lines{"1 Cache/index.dat", "1 History/index.dat"}));
}

TEST_F(ScanTest, passesAMorkHistoryWithoutItsMarkOver) {
    folder.write("history.dat", "no mark");
    EXPECT_EQ(found(), Lines{});
    job.verifyFileSignatures = false;
    EXPECT_EQ(found(), Lines{"7 history.dat"});
}

TEST_F(ScanTest, looksForMarksInTheFirstBlockOnly) {
    folder.write("history.dat", std::string(70'000, ' ') + "<mdb:mork:z");
    EXPECT_EQ(found(), Lines{});
}

TEST_F(ScanTest, passesOverWhatIsNotWanted) {
    folder.write("index.dat", indexBytes(0));
    folder.write("places.sqlite", "");
    dontLookFor("chkHistoryFirefox");
    EXPECT_EQ(found(), Lines{"1 index.dat"});
    dontLookFor("chkHistoryIE"); // listed for the sake of caches, and then not wanted
    EXPECT_EQ(found(), Lines{});
}

TEST_F(ScanTest, meetsCookiesOfInternetExplorerOnlyBesideItsOtherFiles) {
    folder.write("Cookies/index.dat", indexBytes(0));
    EXPECT_EQ(found(), Lines{"5 Cookies/index.dat"});
    dontLookFor("chkHistoryIE");
    dontLookFor("chkCacheIE");
    EXPECT_EQ(found(), Lines{});
}

TEST_F(ScanTest, listsOnlyNamesThatMeetTheMask) {
    folder.write("my index.dat", indexBytes(0)); // the name test would take it
    EXPECT_EQ(found(), Lines{});
}

TEST_F(ScanTest, listsTheSameFileInTwoFoldersTwice) {
    folder.write("a/index.dat", indexBytes(0));
    folder.write("b/index.dat", indexBytes(0));
    const ScanResult result = scanned();
    ASSERT_EQ(result.historyFiles.count(), 2u);
    EXPECT_EQ(result.historyFiles.item(1).md5Hash, result.historyFiles.item(2).md5Hash);
}

TEST_F(ScanTest, listsTheIndexOfAChromeCache) {
    folder.write("Cache/data_0", "blocks");
    folder.write("Cache/index", "the index");
    const ScanResult result = scanned();
    ASSERT_EQ(result.historyFiles.count(), 1u);
    EXPECT_EQ(result.historyFiles.item(1).fileName, "index");
    EXPECT_EQ(result.historyFiles.item(1).md5Hash, md5Hex("the index"));
    EXPECT_EQ(result.historyFiles.item(1).fileExt, "");
}

TEST_F(ScanTest, takesASingleFileWithoutAMask) {
    job.startingDirectory = folder.write("my index.dat", indexBytes(0));
    folder.write("places.sqlite", "");
    EXPECT_EQ(found(), Lines{"1 my index.dat"});
    job.startingDirectory = folder.write("letter.doc", "");
    EXPECT_EQ(found(), Lines{});
}

TEST_F(ScanTest, followsNoLinksAndCountsThem) {
    const auto file = folder.write("real/places.sqlite", "");
    fs::create_directory_symlink(folder.path(), folder.path() / "real/loop");
    fs::create_symlink(file, folder.path() / "places.sqlite");
    EXPECT_EQ(found(), Lines{"22 real/places.sqlite"});
    EXPECT_EQ(scanned().gaps.linksNotFollowed, 2u);
}

TEST_F(ScanTest, tellsWhatHoldsThePlaceOfABrowsersFileAndIsNone) {
    const fs::path cache = folder.path() / "Temporary Internet Files/Content.IE5";
    const fs::path profile = folder.path() / "User Data/Default";
    for (const fs::path &pipe : {cache / "index.dat", cache / "letter.doc", profile / "History"}) {
        fs::create_directories(pipe.parent_path());
        ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    }
    const ScanResult result = scanned();
    EXPECT_EQ(unreadable(result), (Lines{cache / "index.dat", profile / "History"}));
    for (const UnreadPlace &each : result.gaps.unreadable)
        EXPECT_NE(each.reason.find("is no plain file and no folder"), std::string::npos);
}

TEST_F(ScanTest, takesNoNameForAPlainFile) {
    fs::create_directory(folder.path() / "index.dat");
    EXPECT_EQ(found(), Lines{});
}

TEST_F(ScanTest, readsNamesThatAreNoUtf8) {
    folder.write("Caf\xE9/places.sqlite", "x");
    const ScanResult result = scanned();
    ASSERT_EQ(result.historyFiles.count(), 1u);
    EXPECT_TRUE(result.historyFiles.item(1).fileParentPath.ends_with("Caf\xC3\xA9"));
}

TEST_F(ScanTest, notesAFolderThatIsntThere) {
    job.startingDirectory = folder.path() / "gone";
    const ScanResult result = scanned();
    EXPECT_EQ(result.historyFiles.count(), 0u);
    EXPECT_EQ(unreadable(result), Lines{job.startingDirectory});
    ASSERT_EQ(log.entries.size(), 1u);
    EXPECT_EQ(log.entries[0].procedure, "ImportForm.GetFolderList()");
}

TEST_F(ScanTest, notesWhatItCantReadAndGoesOn) {
    const auto file = folder.write("a/index.dat", indexBytes(0));
    folder.write("b/index.dat", indexBytes(0));
    folder.write("z/index.dat", indexBytes(0));
    fs::permissions(file, fs::perms::none);
    fs::permissions(folder.path() / "b", fs::perms::none);
    const ScanResult result = scannedWithoutPrivileges();
    fs::permissions(folder.path() / "b", fs::perms::owner_all);
    EXPECT_EQ(result.historyFiles.count(), 1u);
    EXPECT_EQ(unreadable(result), (Lines{(folder.path() / "b").string(), file.string()}));
    EXPECT_NE(result.gaps.unreadable.at(1).reason.find("Permission denied"), std::string::npos);
    EXPECT_EQ(log.entries.size(), 2u);
}

TEST_F(ScanTest, notesTheNamesInAFolderThatCantBeEntered) {
    folder.write("b/index.dat", indexBytes(0));
    fs::permissions(folder.path() / "b", fs::perms::owner_read | fs::perms::others_read);
    const ScanResult result = scannedWithoutPrivileges();
    fs::permissions(folder.path() / "b", fs::perms::owner_all);
    EXPECT_EQ(unreadable(result), Lines{(folder.path() / "b" / "index.dat").string()});
}

/// Its first bytes are where nothing is mapped, so reading fails although it was opened.
TEST_F(ScanTest, notesAReadingThatFails) {
    job.startingDirectory = "/proc/self/mem";
    const ScanResult result = scanned();
    EXPECT_EQ(unreadable(result), Lines{"/proc/self/mem"});
    EXPECT_NE(result.gaps.unreadable.at(0).reason.find("Input/output error"), std::string::npos);
}

TEST_F(ScanTest, passesShaderCachesOverAndCountsThem) {
    for (const char *name :
         {"Cache", "GPUCache", "DawnCache", "DawnGraphiteCache", "dawnWebGPUCache", "GrShaderCache",
          "ShaderCache", "Dawn", "GPUCache2"}) {
        folder.write(fs::path(name) / "data_0", "blocks");
        folder.write(fs::path(name) / "index", "the index");
    }
    folder.write("GPUPersistentCache/GPUCache/DOZVSIMZ/cache.db", "later form");
    EXPECT_EQ(found(), (Lines{"20 Cache/index", "20 Dawn/index", "20 GPUCache2/index"}));
    EXPECT_EQ(scanned().gaps.shaderCaches, 7u);
    job.startingDirectory = folder.path() / "GPUCache" / "data_0";
    EXPECT_EQ(scanned().historyFiles.count(), 1u) << "whoever names it wants it";
    job.startingDirectory = folder.path();
    dontLookFor("chkCacheChrome");
    dontLookFor("chkCacheSafari");
    EXPECT_EQ(scanned().gaps.shaderCaches, 0u);
}

constexpr SourceOption kMadeUp = {"chkMadeUp", RecordGroup::other, nullptr, "Made up"};

constexpr Reader madeUp(int type, std::string_view key, std::string_view mask) {
    return {.type = HistoryFileType{static_cast<std::int16_t>(type)},
            .key = key,
            .kind = key,
            .option = &kMadeUp,
            .mask = mask};
}

TEST_F(ScanTest, listsAFileOnceForEachFormatThatTakesIt) {
    Reader visits = madeUp(1000, "visits", "*.db");
    visits.recognises = [](const Candidate &file) { return file.extension == "db"; };
    Reader terms = visits;
    terms.type = HistoryFileType{1001};
    terms.takesBesideOthers = true;
    formats = {&visits, &terms};
    folder.write("history.db", "bytes");
    EXPECT_EQ(found(), (Lines{"1000 history.db", "1001 history.db"}));
    dontLookFor(kMadeUp);
    EXPECT_EQ(found(), Lines{});
}

TEST_F(ScanTest, listsAFolderOnceThatManyFilesLeadTo) {
    Reader cache = madeUp(1000, "entries", "*_0");
    cache.recognises = [](const Candidate &file) { return file.name.ends_with("_0"); };
    cache.artefact = [](const Candidate &file) { return file.file.parent_path(); };
    formats = {&cache};
    for (const char *name : {"Cache/a_0", "Cache/b_0", "Cache/below/x", "Other/a_0"})
        folder.write(name, name);
    EXPECT_EQ(found(), (Lines{"1000 Cache", "1000 Other"}));
    const ScanResult result = scanned();
    const HistoryFile &first = result.historyFiles.item(1);
    EXPECT_EQ(first.fileName, "Cache");
    EXPECT_EQ(first.fileParentPath, folder.path().string());
    EXPECT_EQ(first.fileSize, 31u);
    const auto lineOf = [](const char *bytes, const char *name) {
        return md5Hex(bytes) + "  " + name + "\n";
    };
    EXPECT_EQ(first.md5Hash, md5Hex(lineOf("Cache/a_0", "a_0") + lineOf("Cache/b_0", "b_0") +
                                    lineOf("Cache/below/x", "below/x")));
    EXPECT_EQ(first.sha256Hash.size(), 64u);
}

TEST_F(ScanTest, listsAFolderWhoseFilesCantAllBeReadAndNotesThoseThatCant) {
    Reader cache = madeUp(1000, "entries", "*_0");
    cache.recognises = [](const Candidate &file) { return file.name.ends_with("_0"); };
    cache.artefact = [](const Candidate &file) { return file.file.parent_path(); };
    formats = {&cache};
    folder.write("Cache/a_0", "x");
    const auto file = folder.write("Cache/data", "x");
    fs::permissions(file, fs::perms::none);
    const ScanResult result = scannedWithoutPrivileges();
    EXPECT_EQ(result.historyFiles.count(), 1u);
    EXPECT_EQ(unreadable(result), Lines{file.string()});
}

TEST_F(ScanTest, masksThatComeAnewFindNothingMoreForTheClassicRules) {
    Reader later = madeUp(1000, "later", "*.sqlite");
    later.recognises = [](const Candidate &) { return true; };
    later.isBeyondClassic = true;
    formats.push_back(&later);
    folder.write("my places.sqlite", ""); // the name test of a classic format would take it
    folder.write("places.sqlite", "");
    folder.write("songs.dat", "");
    EXPECT_EQ(found(), (Lines{"1000 my places.sqlite", "22 places.sqlite"}));
    job.classicOnly = true;
    EXPECT_EQ(found(), Lines{"22 places.sqlite"});
    job.startingDirectory = folder.path() / "my places.sqlite";
    EXPECT_EQ(found(), Lines{"22 my places.sqlite"}) << "whoever names it wants it";
}

TEST_F(ScanTest, listsCachesAndStoresOfTodayOnce) {
    const std::string magic = "\x30\x5C\x72\xA7\x1B\x6D\xFB\xFC";
    folder.write("Default/Cache/Cache_Data/index", magic);
    for (const char *name : {"00acb88820c9a06a_0", "0168de15768a740f_0", "0168de15768a740f_s"})
        folder.write(std::string("Default/Cache/Cache_Data/") + name, magic);
    folder.write("Default/Local Storage/leveldb/CURRENT", "MANIFEST-000001\n");
    folder.write("Default/Local Storage/leveldb/000003.log", "log");
    EXPECT_EQ(found(), (Lines{"60 Default/Cache/Cache_Data", "63 Default/Local Storage/leveldb"}));
    EXPECT_EQ(scanned().historyFiles.item(1).fileSize, 32u);
    job.classicOnly = true;
    EXPECT_EQ(found(), Lines{});
}

TEST_F(ScanTest, showsWhereItIs) {
    folder.write("a/x", "");
    folder.write("b/x", "");
    test::MemoryTask task;
    scanWatchedBy(task);
    ASSERT_EQ(task.steps.size(), 6u);
    EXPECT_EQ(task.steps[0].topMessage, "Scanning: " + folder.path().string());
    EXPECT_EQ(task.steps[2].bottomCounter, 1) << "files that were seen in the folders before";
    EXPECT_EQ(task.steps[3].topMessage, "Scanning folder 1 of 3");
    EXPECT_EQ(task.steps[5].topMessage, "Scanning folder 3 of 3");
    EXPECT_EQ(task.steps[5].topCounter, 3);
    EXPECT_EQ(task.steps[5].topTotal, 3);
    EXPECT_EQ(task.steps[5].bottomCounter, 1);
    EXPECT_EQ(task.steps[5].bottomMessage, (folder.path() / "b").string());
    EXPECT_TRUE(std::ranges::is_sorted(task.fractions));
}

TEST_F(ScanTest, canBeCancelledAtAnyTime) {
    for (const char *name : {"a/index.dat", "b/index.dat", "c/index.dat"})
        folder.write(name, indexBytes(0));
    std::size_t before = 0;
    bool completed = false;
    for (int calls = 0; !completed && calls < 100; ++calls) {
        test::CancelAfter task(calls);
        const ScanResult result = scanWatchedBy(task);
        EXPECT_GE(result.historyFiles.count(), before);
        for (const HistoryFile &file : result.historyFiles)
            EXPECT_EQ(file.md5Hash.size(), 32u);
        before = result.historyFiles.count();
        completed = !result.cancelled;
    }
    EXPECT_TRUE(completed);
    EXPECT_EQ(before, 3u);
}

} // namespace
} // namespace nv
