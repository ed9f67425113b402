#include "base/Files.h"
#include "readers/BrowserOf.h"
#include "readers/Registry.h"
#include "support/TempFolder.h"
#include "support/TestDoubles.h"
#include "views/overview/FoundTree.h"

#include <gtest/gtest.h>

#include <chrono>

namespace nv {
namespace {

namespace fs = std::filesystem;
using Lines = std::vector<std::string>;

class FoundTreeTest : public testing::Test {
  protected:
    void add(const fs::path &file, HistoryFileType type, std::uint64_t size = 10) {
        HistoryFile found;
        found.fullPath = folder.path() / file;
        found.historyFileType = type;
        found.fileSize = size;
        files.add(found);
    }
    void scannedFrom(const fs::path &place, bool isFile = false) {
        places.push_back({.path = folder.path() / place, .isFile = isFile});
    }
    FoundTree grouped() {
        FoundTree tree;
        Unwatched task;
        EXPECT_EQ(groupFound(files, places, task, log, tree), Walk::Finished);
        return tree;
    }
    /// "  name files bytes" of each place; the test's own folder is "~".
    Lines lines() {
        Lines all;
        const FoundTree tree = grouped();
        addLines(tree.evidence, 0, all);
        return all;
    }

    test::TempFolder folder;
    HistoryFiles files;
    std::vector<ScannedPlace> places;
    test::MemoryLog log;

  private:
    void addLines(const std::vector<FoundNode> &nodes, std::size_t level, Lines &all) {
        for (const FoundNode &node : nodes) {
            std::string name = placeName(node.term);
            if (name.starts_with(folder.path().string()))
                name.replace(0, folder.path().string().size(), "~");
            all.push_back(std::string(level, ' ') + name + " " + std::to_string(node.files) + " " +
                          std::to_string(node.bytes));
            addLines(node.children, level + 1, all);
        }
    }
};

constexpr const char *kEdge = "disk/Users/ada/AppData/Local/Microsoft/Edge/User Data/";

TEST_F(FoundTreeTest, groupsByFolderPersonBrowserProfileAndKind) {
    scannedFrom("disk");
    const fs::path edge = kEdge;
    add(edge / "Default/Network/Cookies", HistoryFileType::chromiumCookies, 5);
    add(edge / "Default/History", HistoryFileType::chromiumHistory, 100);
    add(edge / "Profile 1/History", HistoryFileType::chromiumHistory, 1);
    add("disk/Users/bob/AppData/Roaming/Mozilla/Firefox/Profiles/x.default/permissions.sqlite",
        HistoryFileType::firefoxPermissions, 7);
    EXPECT_EQ(lines(),
              (Lines{"~/disk 4 113", " ada 3 106", "  Microsoft Edge 3 106", "   Default 2 105",
                     "    Chromium History 1 100", "    Chromium Cookies 1 5", "   Profile 1 1 1",
                     "    Chromium History 1 1", " bob 1 7", "  Firefox 1 7", "   x.default 1 7",
                     "    Firefox Permissions 1 7"}));
}

TEST_F(FoundTreeTest, whoAndWhichBrowserIsWhatTheImportFinds) {
    scannedFrom("disk");
    folder.write(fs::path(kEdge) / "Default/Preferences", "{}");
    add(fs::path(kEdge) / "Default/Cache/Cache_Data", HistoryFileType::chromeCache);
    const Evidence evidence({});
    BrowserOf browserOf(evidence);
    const HistoryFile &file = files.item(1);
    const Origin origin =
        browserOf(file.fullPath, engineOf(readerFor(HistoryFileType::chromeCache)));
    const FoundTree tree = grouped();
    const FoundNode &person = tree.evidence.at(0).children.at(0);
    EXPECT_EQ(person.term.value, origin.person);
    EXPECT_EQ(person.children.at(0).term.value, origin.browser);
    EXPECT_EQ(person.children.at(0).children.at(0).term.value, origin.profile);
}

TEST_F(FoundTreeTest, levelsOfWhichNothingIsKnownAreLeftOut) {
    scannedFrom("disk");
    add("disk/a.csv", HistoryFileType::csv, 3);
    const Lines found = lines();
    ASSERT_EQ(found.size(), 2u);
    EXPECT_EQ(found.front(), "~/disk 1 3");
    EXPECT_TRUE(found.back().starts_with(" ")) << found.back();
    EXPECT_FALSE(found.back().starts_with(" (no")) << found.back();
}

TEST_F(FoundTreeTest, eachFolderThatWasNamedStandsForItself) {
    scannedFrom("first");
    scannedFrom("second");
    scannedFrom("second/within");
    scannedFrom("third/index.dat", true);
    places.at(2).isWithinAnother = true;
    add("first/a/index.dat", HistoryFileType::ieHistory, 1);
    add("second/within/index.dat", HistoryFileType::ieHistory, 2);
    add("second", HistoryFileType::chromeCache, 4); // a folder that is read as one
    add("third/index.dat", HistoryFileType::ieHistory, 8);
    add("elsewhere/led to/index.dat", HistoryFileType::ieHistory, 16);
    std::vector<std::pair<std::string, std::uint64_t>> found;
    for (const FoundNode &node : grouped().evidence)
        found.emplace_back(fs::path(node.term.value).lexically_relative(folder.path()).string(),
                           node.bytes);
    EXPECT_EQ(found, (std::vector<std::pair<std::string, std::uint64_t>>{
                         {"elsewhere/led to", 16}, {"first", 1}, {"second", 6}, {"third", 8}}));
}

TEST_F(FoundTreeTest, whatIsNotReadYetIsCountedApart) {
    scannedFrom("disk");
    const Formats formats = registry();
    const auto unread = std::ranges::find(formats, nullptr, &Reader::read);
    ASSERT_TRUE(unread != formats.end());
    add("disk/a", (*unread)->type);
    add("disk/b", HistoryFileType::ieHistory);
    const FoundTree tree = grouped();
    EXPECT_EQ(tree.files, 2u);
    EXPECT_EQ(tree.notRead, 1u);
    EXPECT_EQ(tree.evidence.at(0).notRead, 1u);
}

TEST_F(FoundTreeTest, kindsHoldTheFilesOfTheList) {
    scannedFrom("disk");
    add("disk/b/index.dat", HistoryFileType::ieHistory);
    add("disk/a.csv", HistoryFileType::csv);
    add("disk/a/index.dat", HistoryFileType::ieHistory);
    std::vector<std::size_t> numbers;
    const auto collect = [&numbers](const auto &self, const std::vector<FoundNode> &nodes) -> void {
        for (const FoundNode &node : nodes) {
            EXPECT_EQ(node.term.field == PlaceField::Kind, !node.artefacts.empty());
            numbers.insert(numbers.end(), node.artefacts.begin(), node.artefacts.end());
            self(self, node.children);
        }
    };
    collect(collect, grouped().evidence);
    std::ranges::sort(numbers);
    EXPECT_EQ(numbers, (std::vector<std::size_t>{0, 1, 2}));
}

/// Names of evidence may be anything; they are values, and shown as one line of plain text.
TEST_F(FoundTreeTest, hostileNamesStayApartAndAreOneLine) {
    scannedFrom("disk");
    const std::string users[] = {"<b>ada</b>",
                                 "ada\nbob",
                                 "\xFF\xFE",
                                 "\xE2\x80\xAE"
                                 "ada",
                                 " ",
                                 std::string(250, 'x')};
    for (const std::string &user : users)
        add("disk/Users/" + user + "/AppData/Local/Microsoft/Edge/User Data/Default/History",
            HistoryFileType::chromiumHistory);
    const FoundTree tree = grouped();
    EXPECT_EQ(tree.files, std::size(users));
    ASSERT_EQ(tree.evidence.size(), 1u);
    EXPECT_GE(tree.evidence.at(0).children.size(), std::size(users) - 1);
    for (const FoundNode &person : tree.evidence.at(0).children)
        EXPECT_EQ(placeName(person.term).find_first_of("\n\r"), std::string::npos);
}

TEST_F(FoundTreeTest, nothingFoundIsAnEmptyTree) {
    scannedFrom("disk");
    EXPECT_TRUE(grouped().evidence.empty());
    EXPECT_EQ(grouped().files, 0u);
}

TEST_F(FoundTreeTest, aCancelLeavesNothing) {
    scannedFrom("disk");
    add("disk/index.dat", HistoryFileType::ieHistory);
    struct Cancelled : TaskMonitor {
        void describe(const TaskHeading &) override {}
        bool wantsStep() const override { return false; }
        void show(const TaskStep &) override {}
        bool advance(double) override { return false; }
    } task;
    FoundTree tree;
    tree.files = 9;
    EXPECT_EQ(groupFound(files, places, task, log, tree), Walk::Cancelled);
    EXPECT_EQ(tree.files, 0u);
}

TEST_F(FoundTreeTest, aHundredThousandFilesAreQuick) {
    scannedFrom("disk");
    for (int i = 0; i < 100'000; ++i)
        add(fs::path("disk/Users/u" + std::to_string(i % 50)) /
                "AppData/Local/Microsoft/Edge/User Data/Default" / std::to_string(i % 1000) /
                (std::to_string(i) + ".htm"),
            HistoryFileType::simpleHTML);
    const auto begun = std::chrono::steady_clock::now();
    const FoundTree tree = grouped();
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - begun;
    RecordProperty("seconds", std::to_string(took.count()));
    EXPECT_EQ(tree.files, 100'000u);
    EXPECT_LT(took.count(), 20) << "a development build on a busy machine";
}

TEST_F(FoundTreeTest, anAccountOfOneNameOnSeveralMachinesStandsOncePerMachine) {
    scannedFrom("disk");
    for (const char *machine : {"disk/pc1", "disk/pc2"}) {
        add(fs::path(machine) / "home/ada/.config/chromium/Default/History",
            HistoryFileType::chromiumHistory);
        add(fs::path(machine) / "home/ada/.cache/chromium/Default/Cache/Cache_Data",
            HistoryFileType::chromeCache);
    }
    add("disk/pc2/home/bea/.config/chromium/Default/History", HistoryFileType::chromiumHistory);
    EXPECT_EQ(lines(),
              (Lines{"~/disk 5 50", " ada (pc1) 2 20", "  Chromium 2 20", "   Default 2 20",
                     "    Chromium History 1 10", "    Chrome Cache 1 10", " ada (pc2) 2 20",
                     "  Chromium 2 20", "   Default 2 20", "    Chromium History 1 10",
                     "    Chrome Cache 1 10", " bea 1 10", "  Chromium 1 10", "   Default 1 10",
                     "    Chromium History 1 10"}));
}

} // namespace
} // namespace nv
