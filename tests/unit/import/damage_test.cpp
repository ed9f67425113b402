#include "support/builders/ChromeCache.h"
#include "support/builders/ChromeHistory.h"
#include "support/builders/Cookies.h"
#include "support/builders/FirefoxCache.h"
#include "support/builders/HistEx.h"
#include "support/builders/IndexDat.h"
#include "support/builders/MacCache.h"
#include "support/builders/Mork.h"
#include "support/builders/NetAnalysisCase.h"
#include "support/builders/Nvd.h"
#include "support/builders/Opera.h"
#include "support/builders/Places.h"
#include "support/builders/Safari.h"
#include "unit/import/ImportFixture.h"

#include <functional>
#include <map>
#include <set>

namespace nv {
namespace {

// Every reader, through the driver, on files that are cut or have a byte changed. The readers' own
// tests go through all positions; here is what all must have in common.

constexpr std::size_t kPositions = 240;

/// Formats that are listed and hold nothing that is read.
const std::set<std::string> kWithoutRows = {"opera-cookies", "safari-cookies"};

using MakeFile = std::function<void(const std::filesystem::path &)>;

void makeIndex(const std::filesystem::path &path, bool isCache) {
    test::IndexDat index(1, 2);
    if (isCache)
        index.folder("ABCDEFGH");
    for (const char *signature : {"URL ", "LEAK"})
        index.add({.signature = signature,
                   .url = "http://host/a.htm",
                   .secondDate = test::fileTime(2011, 6, 15),
                   .folder = 0,
                   .fileName = "a.htm",
                   .headers = "HTTP/1.1 200 OK\r\n"});
    index.addRedirect("http://host/");
    writeWhole(path, index.bytes());
}

/// The map; its block files lie beside it under their own names.
void makeFirefoxCache(const std::filesystem::path &path) {
    test::FirefoxCache cache(test::FirefoxCache::kFirefox3, 8);
    test::addExampleEntries(cache);
    std::filesystem::rename(cache.writeTo(path.parent_path()), path);
}

/// The block files stay whole beside the index.
void makeChromeCache(const std::filesystem::path &index) {
    test::ChromeCache cache(16);
    cache.add({.url = "http://host/a.htm", .requested = 1, .modified = 2, .body = "<html>"});
    cache.add({.url = "http://host/b.htm", .requested = 3, .modified = 4, .body = "<html>"});
    std::filesystem::rename(cache.write(index.parent_path()), index);
}

void makeCookiesIndex(const std::filesystem::path &path) {
    test::IndexDat index(1, 2);
    for (const char *host : {"one.example", "two.example"})
        index.add({.url = "Cookie:user@" + std::string(host) + "/",
                   .secondDate = test::fileTime(2011, 6, 15),
                   .fileName = "user@" + std::string(host) + "[1].txt"});
    writeWhole(path, index.bytes());
}

void makeHistEx(const std::filesystem::path &path) {
    test::HistEx carved;
    carved.add({.url = "Visited: user@http://host/", .secondDate = test::fileTime(2011, 6, 15)});
    carved.addRedirect("http://host/a");
    carved.add({.signature = "LEAK", .url = "http://host/b"});
    writeWhole(path, carved.bytes());
}

void makeNvd(const std::filesystem::path &path) {
    test::Nvd results;
    results.add({.url = "Visited: user@http://host/", .secondDate = test::fileTime(2011, 6, 15)});
    results.addRedirect("http://host/a");
    writeWhole(path, results.bytes());
}

void makePage(const std::filesystem::path &path) {
    writeWhole(path, "<html><head><title>A page</title></head><body></body></html>");
}

/// A small sound file of each format that is read. A new reader needs a line here.
// NOLINTNEXTLINE(readability-function-size): it is one table
const std::map<std::string_view, MakeFile> &smallFiles() {
    static const std::map<std::string_view, MakeFile> files = {
        {"ie-history", [](const auto &path) { makeIndex(path, false); }},
        {"ie-cache", [](const auto &path) { makeIndex(path, true); }},
        {"firefox-mork-history",
         [](const auto &path) {
             test::MorkHistory history;
             test::addExamplePages(history);
             writeWhole(path, history.bytes());
         }},
        {"opera-cache",
         [](const auto &path) {
             test::OperaCache cache;
             test::addExampleFiles(cache);
             writeWhole(path, cache.bytes());
         }},
        {"opera-history",
         [](const auto &path) {
             test::OperaHistory history;
             test::addExampleVisits(history);
             writeWhole(path, history.bytes());
         }},
        // Known to hold nothing that is read, so it isn't among the files with rows below.
        {"opera-cookies", [](const auto &path) { writeWhole(path, "cookies"); }},
        {"ie-cookies", makeCookiesIndex},
        {"hist-ex", makeHistEx},
        {"hist-ex-index", makeHistEx},
        {"nvd", makeNvd},
        {"html", makePage},
        {"csv", makePage},
        {"chrome-history",
         [](const auto &path) {
             test::ChromeHistory history(path);
             test::addExamplePages(history);
         }},
        {"chrome-cache", makeChromeCache},
        {"chrome-cookies",
         [](const auto &path) {
             test::ChromeCookies(path).add({.creation = 1}).add({.creation = 2});
         }},
        {"firefox-cache", makeFirefoxCache},
        {"firefox-cookies",
         [](const auto &path) { test::FirefoxCookies(path).add({}).add({.name = "other"}); }},
        {"firefox3-history",
         [](const auto &path) {
             test::Places places(path);
             test::addExamplePlaces(places);
         }},
        {"safari-cache",
         [](const auto &path) {
             test::SafariCache cache(path);
             test::addExampleEntries(cache);
         }},
        {"safari-history",
         [](const auto &path) {
             test::SafariHistory history;
             test::addExampleVisits(history);
             writeWhole(path, history.text());
         }},
        {"safari-cookies", [](const auto &path) { writeWhole(path, "<plist/>"); }}, // none is read

        {"netanalysis",
         [](const auto &path) {
             test::NetAnalysisCase made;
             made.add({.InternetHistory = "http://host/a.htm"}).add({.Comment = "note"});
             writeWhole(path, made.bytes());
         }},
        {"mac-cache",
         [](const auto &path) {
             test::MacCache cache;
             for (const char *url : {"http://host/a.htm", "http://host/b.htm"})
                 cache.add({.url = url, .body = "<html>"});
             writeWhole(path, cache.bytes());
         }},
    };
    return files;
}

/// The first bytes, where headers are, and places spread over the rest.
std::vector<std::size_t> positionsIn(std::size_t size) {
    std::vector<std::size_t> positions;
    const std::size_t stride = size * 2 / kPositions + 1;
    for (std::size_t at = 0; at < size; at += at < kPositions / 2 ? 1 : stride)
        positions.push_back(at);
    return positions;
}

class DamageTest : public test::ImportFixture, public testing::WithParamInterface<std::string> {
  protected:
    /// Imports the bytes and checks what holds for any import, whatever is in the file.
    void importDamaged(const std::string &bytes, const std::string &what) {
        writeWhole(file.FullPath, bytes);
        file.FileSize = bytes.size();
        file.HistoryFileType = readerByKey(GetParam())->type;
        job.HistoryFiles.Clear();
        job.HistoryFiles.Add(file);
        const std::int64_t before = rows();
        Unwatched task;
        const ImportSummary summary = import(task, readerFor);
        const ArtefactResult &result = summary.artefacts.at(0);
        EXPECT_EQ(summary.failure, "") << what;
        EXPECT_EQ(rows() - before, static_cast<std::int64_t>(result.rowsSaved)) << what;
        EXPECT_EQ(result.rowsLost, 0u) << what;
        EXPECT_LE(result.rowsSaved, 1000u) << what;
        EXPECT_TRUE(result.state == ArtefactState::complete || !result.reason.empty()) << what;
        for (const Failure &failure : project.log.entries)
            EXPECT_NE(failure.procedure, "ImportForm.ImportFiles()") << what << failure.message;
        project.log.entries.clear();
    }

    std::string soundFile() {
        file.FullPath = project.folder.path() / "damaged";
        file.FileName = "damaged";
        smallFiles().at(GetParam())(file.FullPath);
        const Bytes bytes = readWhole(file.FullPath);
        return std::string(ByteView(bytes).raw());
    }

    HistoryFile file;
};

TEST_P(DamageTest, isSurvived) {
    const std::string sound = soundFile();
    importDamaged(sound, "sound");
    if (!kWithoutRows.contains(GetParam())) {
        EXPECT_GT(rows(), 0);
    }
    for (const std::size_t at : positionsIn(sound.size())) {
        importDamaged(sound.substr(0, at), "cut at " + std::to_string(at));
        for (const int value : {0x00, 0x7F, 0x80, 0xFF}) {
            std::string damaged = sound;
            damaged[at] = static_cast<char>(value);
            importDamaged(damaged, std::to_string(value) + " at " + std::to_string(at));
        }
    }
    EXPECT_EQ(project.text("PRAGMA integrity_check"), "ok");
}

std::vector<std::string> keysOfSmallFiles() {
    std::vector<std::string> keys;
    for (const auto &[key, make] : smallFiles())
        keys.emplace_back(key);
    return keys;
}

INSTANTIATE_TEST_SUITE_P(Readers, DamageTest, testing::ValuesIn(keysOfSmallFiles()));

TEST(DamageTests, coverEveryReader) {
    for (const Reader *reader : registry())
        EXPECT_EQ(reader->read != nullptr, smallFiles().contains(reader->key)) << reader->key;
}

} // namespace
} // namespace nv
