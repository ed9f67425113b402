// A scan of several folders and files at once.
#include "import/Scan.h"
#include "support/TempFolder.h"
#include "support/TestDoubles.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;
using Lines = std::vector<std::string>;

class ScanPlacesTest : public testing::Test {
  protected:
    static std::string indexBytes() { return "Client UrlCache MMF Ver 5.2\0"s; }
    /// The names of what lies there, in the order of the list.
    std::vector<std::string> foundAt(const std::vector<fs::path> &names) {
        std::vector<fs::path> places;
        places.reserve(names.size());
        for (const fs::path &name : names)
            places.push_back(folder.path() / name);
        Unwatched task;
        last = scanPlaces(job, places, task, log);
        std::vector<std::string> lines;
        for (const HistoryFile &file : last.historyFiles)
            lines.push_back(file.fullPath.lexically_relative(folder.path()).string());
        return lines;
    }

    test::TempFolder folder;
    test::MemoryLog log;
    ImportSettings job;
    ScanResult last; ///< of foundAt()
};

TEST_F(ScanPlacesTest, severalPlacesAreLookedThroughInTheirOrder) {
    folder.write("b/index.dat", indexBytes());
    folder.write("a/index.dat", indexBytes());
    EXPECT_EQ(foundAt({"b", "a/", "gone"}), (Lines{"b/index.dat", "a/index.dat"}));
    EXPECT_EQ(last.places.at(0).artefacts, 1u);
    EXPECT_EQ(last.places.at(2).artefacts, 0u);
    EXPECT_EQ(last.places.at(2).unreadable, 1u);
    EXPECT_EQ(last.gaps.unreadable.size(), 1u);
}

TEST_F(ScanPlacesTest, whatLiesInSeveralPlacesIsListedOnce) {
    folder.write("a/b/index.dat", indexBytes());
    folder.write("a/letter.doc", "");
    EXPECT_EQ(foundAt({"a/b", "a", "a", "a/b/index.dat", "a/letter.doc"}), Lines{"a/b/index.dat"});
    EXPECT_TRUE(last.places.at(0).isWithinAnother);
    EXPECT_FALSE(last.places.at(1).isWithinAnother);
    EXPECT_TRUE(last.places.at(3).isFile);
    EXPECT_EQ(last.places.at(3).artefacts, 1u) << "it is one, though it was listed before";
    EXPECT_EQ(last.places.at(4).artefacts, 0u);
    job.recurseSubfolders = false;
    EXPECT_EQ(foundAt({"a/b", "a"}), Lines{"a/b/index.dat"});
    EXPECT_FALSE(last.places.at(0).isWithinAnother);
}

TEST_F(ScanPlacesTest, theProgressOfSeveralPlacesOnlyGoesUp) {
    for (const char *file : {"a/index.dat", "a/c/index.dat", "b/index.dat"})
        folder.write(file, indexBytes());
    struct Rising : TaskMonitor {
        void describe(const TaskHeading &) override {}
        bool advance(double fraction) override {
            rises = rises && fraction >= last && fraction <= 1;
            last = fraction;
            return true;
        }
        bool wantsStep() const override { return false; }
        void show(const TaskStep &) override {}
        double last = 0;
        bool rises = true;
    } task;
    const ScanResult result =
        scanPlaces(job, {folder.path() / "a", folder.path() / "b"}, task, log);
    EXPECT_EQ(result.historyFiles.count(), 3u);
    EXPECT_EQ(task.last, 1.0);
}

} // namespace
} // namespace nv
