// What is said of a log of pages beside an SQLite file that is damaged.

#include "base/Files.h"
#include "readers/Scratch.h"
#include "readers/chrome/history/History.h"
#include "readers/sqlite/PageLog.h"
#include "support/SqliteHistoryReading.h"
#include "support/builders/ChromeHistory.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <fstream>
#include <string>

namespace nv {
namespace {

namespace fs = std::filesystem;
using test::ChromeHistory;

constexpr std::uint64_t kHead = 32;
constexpr std::uint64_t kFrame = 24 + 4096;

class PageLog : public testing::Test {
  protected:
    fs::path file() const { return folder.path() / "Default" / "History"; }
    fs::path log() const { return file().string() + "-wal"; }

    /// Pages 1 to `inLog` in the log, each of a change of its own.
    void make(int inLog) const {
        ChromeHistory history(file());
        history.keepInLog();
        history.run("PRAGMA wal_checkpoint(TRUNCATE)");
        for (int id = 1; id <= inLog; ++id)
            history.add({.id = id, .url = fmt::format("http://page{}/", id)});
        history.close();
    }
    std::string bytes() const { return std::string(ByteView(readWhole(log())).raw()); }
    void put(const std::string &changed) const {
        std::ofstream(log(), std::ios::binary | std::ios::trunc) << changed;
    }
    void flip(std::uint64_t at) const {
        std::string changed = bytes();
        changed.at(at) = static_cast<char>(changed.at(at) ^ 1);
        put(changed);
    }
    std::string damage() const { return pageLogDamage(ScratchFile(log())); }
    test::SqliteHistoryReading &read() { return reading.read(parseChromeHistoryFile, file()); }
    void expectCutShort(std::size_t rows, const std::string &words) {
        read();
        EXPECT_EQ(reading.result.state, ReadState::cutShort);
        EXPECT_EQ(reading.records().size(), rows);
        EXPECT_NE(reading.result.reason.find("History-wal\" is cut short: " + words),
                  std::string::npos)
            << reading.result.reason;
        ASSERT_EQ(reading.log.entries.size(), 1U);
        EXPECT_EQ(reading.log.entries.front().message, reading.result.reason);
    }

    test::TempFolder folder;
    test::SqliteHistoryReading reading;
};

TEST_F(PageLog, ofASoundOneIsReadWithoutAWord) {
    make(4);
    read();
    EXPECT_EQ(reading.result.state, ReadState::complete);
    EXPECT_EQ(reading.records().size(), 4U);
    EXPECT_TRUE(reading.log.entries.empty());
    EXPECT_EQ(damage(), "");
}

TEST_F(PageLog, withABitFlippedTellsTheFrameAndWhatIsLost) {
    make(4);
    const std::uint64_t frames = (bytes().size() - kHead) / kFrame;
    ASSERT_GE(frames, 4U);
    const std::uint64_t last = kHead + (frames - 1) * kFrame;
    flip(last + 24 + 4000);
    expectCutShort(3, fmt::format("the frame at offset {} is damaged: 1 committed change", last));
}

TEST_F(PageLog, withABitFlippedInItsFirstFrameGivesNothingAndSaysSo) {
    make(4);
    flip(kHead + 24 + 4000);
    expectCutShort(0, "the frame at offset 32 is damaged: 4 committed changes");
}

TEST_F(PageLog, withTheSaltOfAFrameDamagedIsNoOlderUse) {
    make(4);
    flip(kHead + 9);
    expectCutShort(0, "the frame at offset 32 is damaged: ");
}

TEST_F(PageLog, cutInsideOfAFrameTellsWhere) {
    make(4);
    const std::string whole = bytes();
    const std::uint64_t last = kHead + ((whole.size() - kHead) / kFrame - 1) * kFrame;
    for (const std::uint64_t rest : {std::uint64_t{3}, std::uint64_t{20}, std::uint64_t{2000}}) {
        put(whole.substr(0, last + rest));
        reading.log.entries.clear();
        reading.sink.records.clear();
        expectCutShort(3, fmt::format("it ends amid the frame at offset {}", last));
    }
}

TEST_F(PageLog, withoutAHeadOfItsOwnIsTold) {
    make(4);
    std::string changed = bytes();
    changed.replace(0, kHead, kHead, '\0');
    put(changed);
    expectCutShort(0, "at offset 0 stands no head of a log");
}

TEST_F(PageLog, withADamagedHeadIsTold) {
    make(2);
    for (const std::uint64_t at : {0, 5, 9, 17, 25}) {
        const std::string whole = bytes();
        flip(at);
        EXPECT_NE(damage(), "") << at;
        put(whole);
    }
}

TEST_F(PageLog, shorterThanItsHeadIsToldAndAnEmptyOneIsNot) {
    make(2);
    const std::string whole = bytes();
    put(whole.substr(0, 20));
    EXPECT_EQ(damage(), "it ends amid its head, at offset 20");
    put(whole.substr(0, kHead));
    EXPECT_EQ(damage(), "");
    put("");
    EXPECT_EQ(damage(), "");
}

TEST_F(PageLog, withFramesOfAnEarlierUseBehindItsEndIsSound) {
    {
        ChromeHistory history(file());
        history.keepInLog();
        for (int id = 1; id <= 20; ++id)
            history.add({.id = id, .url = "http://old/"});
        history.run("PRAGMA wal_checkpoint(RESTART)");
        history.add({.id = 99, .url = "http://new/"});
        history.close();
    }
    const std::string whole = bytes();
    ASSERT_GT(whole.size(), kHead + 3 * kFrame);
    read();
    EXPECT_EQ(reading.result.state, ReadState::complete);
    EXPECT_EQ(reading.records().size(), 21U);
    EXPECT_EQ(damage(), "");
    put(whole.substr(0, whole.size() - 1000)); // a limit of its size cuts where it will
    EXPECT_EQ(damage(), "");
}

TEST_F(PageLog, withAChangeThatWasTakenBackIsSound) {
    {
        ChromeHistory history(file());
        history.keepInLog();
        history.run("PRAGMA cache_size=1;PRAGMA cache_spill=1");
        history.run("BEGIN");
        for (int id = 1; id <= 200; ++id)
            history.add({.id = id, .url = "http://spilt/" + std::string(1000, 'x')});
        history.run("ROLLBACK");
        history.add({.id = 999, .url = "http://kept/"});
        history.close();
    }
    ASSERT_GT(bytes().size(), kHead + 20 * kFrame);
    EXPECT_EQ(damage(), "");
    read();
    EXPECT_EQ(reading.result.state, ReadState::complete);
    EXPECT_EQ(reading.records().size(), 1U);
}

} // namespace
} // namespace nv
