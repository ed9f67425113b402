#include "support/builders/ChromeHistory.h"
#include "support/builders/Cookies.h"
#include "support/builders/HistEx.h"
#include "support/builders/IndexDat.h"
#include "support/builders/Nvd.h"
#include "support/builders/Places.h"
#include "unit/import/ImportFixture.h"

#include <functional>
#include <map>

namespace nv {
namespace {

// Every reader, through the driver, on files that are cut or have a byte changed. The readers' own
// tests go through all positions; here is what all must have in common.

constexpr std::size_t kPositions = 240;

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
const std::map<std::string_view, MakeFile> &smallFiles() {
    static const std::map<std::string_view, MakeFile> files = {
        {"ie-history", [](const auto &path) { makeIndex(path, false); }},
        {"ie-cache", [](const auto &path) { makeIndex(path, true); }},
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
        {"chrome-cookies",
         [](const auto &path) {
             test::ChromeCookies(path).add({.creation = 1}).add({.creation = 2});
         }},
        {"firefox-cookies",
         [](const auto &path) { test::FirefoxCookies(path).add({}).add({.name = "other"}); }},
        {"firefox3-history",
         [](const auto &path) {
             test::Places places(path);
             test::addExamplePlaces(places);
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

class DamageTest : public test::ImportFixture, public testing::WithParamInterface<const char *> {
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
    EXPECT_GT(rows(), 0);
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

INSTANTIATE_TEST_SUITE_P(Readers, DamageTest,
                         testing::Values("ie-history", "ie-cache", "ie-cookies", "hist-ex",
                                         "hist-ex-index", "nvd", "html", "csv", "chrome-history",
                                         "firefox3-history", "chrome-cookies", "firefox-cookies"));

TEST(DamageTests, coverEveryReader) {
    for (const Reader &reader : registry())
        EXPECT_EQ(reader.read != nullptr, smallFiles().contains(reader.key)) << reader.key;
}

} // namespace
} // namespace nv
