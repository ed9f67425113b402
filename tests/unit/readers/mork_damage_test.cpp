#include "readers/Limits.h"
#include "readers/firefox/mork/MorkFile.h"
#include "support/builders/Mork.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>

namespace nv {
namespace {

using test::MorkHistory;
using test::morkTime;

struct Parsed {
    MorkFileParser file;
    ReadResult result;
};

Parsed parsed(const std::string &bytes) {
    Parsed parsed;
    Unwatched task;
    parsed.file.parseBytes(viewOf(bytes), task, parsed.result);
    return parsed;
}

/// Far above what a linear reading takes on a busy machine, far below what a quadratic one would.
constexpr std::chrono::seconds kFewSeconds{20};

/// Reads what must be read in linear time.
Parsed parsedSoon(const std::string &bytes) {
    const auto begun = std::chrono::steady_clock::now();
    Parsed result = parsed(bytes);
    EXPECT_LT(std::chrono::steady_clock::now() - begun, kFewSeconds);
    return result;
}

std::string beforeTable() {
    const std::string bytes = MorkHistory("\n").bytes();
    return bytes.substr(0, bytes.find("{1:^80"));
}

std::string soundFile() {
    MorkHistory history;
    test::addExamplePages(history);
    history.beginGroup().add({.url = "http://late.example/", .lastVisit = morkTime(1300000300)});
    return history.bytes();
}

TEST(MorkDamage, aCutFileGivesNoValueThatTheWholeOneHasNot) {
    const std::string sound = soundFile();
    const Parsed whole = parsed(sound);
    ASSERT_EQ(whole.file.entries.count(), 5U);
    for (std::size_t size = 0; size < sound.size(); ++size) {
        SCOPED_TRACE(size);
        const Parsed cut = parsed(sound.substr(0, size));
        ASSERT_LE(cut.file.entries.count(), 5U);
        for (std::size_t i = 1; i <= cut.file.entries.count(); ++i) {
            const MorkEntry &entry = cut.file.entries.item(i);
            const MorkEntry &sameEntry = whole.file.entries.item(i);
            EXPECT_EQ(entry.rowID, sameEntry.rowID);
            EXPECT_TRUE(entry.url.empty() || entry.url == sameEntry.url) << entry.url;
            EXPECT_TRUE(entry.lastVisitDate.empty() ||
                        entry.lastVisitDate == sameEntry.lastVisitDate);
        }
    }
}

TEST(MorkDamage, aCutFileSaysSo) {
    const std::string sound = soundFile();
    const std::size_t table = sound.find("{1:^80");
    const std::size_t tableEnd = sound.find("}\r\n\r\n@$${");
    for (std::size_t size = table + 1; size <= tableEnd; ++size)
        EXPECT_EQ(parsed(sound.substr(0, size)).result.state, ReadState::cutShort) << size;
    const Parsed amidRow = parsed(sound.substr(0, sound.find("[3(") + 4));
    EXPECT_EQ(amidRow.result.reason,
              fmt::format("the file ends before what begins at {} is complete", sound.find("[3(")));
    EXPECT_EQ(amidRow.result.notReached, 1U); // its first cell is cut too: nothing is left of it
    const Parsed amidGroup = parsed(sound.substr(0, sound.find("@$$}")));
    EXPECT_EQ(
        amidGroup.result.reason,
        fmt::format("the file ends before what begins at {} is complete", sound.find("@$${") + 3));
    EXPECT_EQ(amidGroup.file.entries.count(), 5U);
}

std::uint64_t passedOver(const ReadResult &result) {
    std::uint64_t sum = 0;
    for (const auto &[reason, count] : result.passedOver)
        sum += count;
    return sum;
}

TEST(MorkDamage, aChangedByteAmongTheRowsLosesNoneInSilence) {
    const std::string sound = soundFile();
    for (std::size_t at = sound.find("{1:^80 "); at < sound.size(); ++at)
        for (const char value : {'\0', '\x7F', '\x80', '\xFF'}) {
            std::string damaged = sound;
            damaged[at] = value;
            const Parsed read = parsed(damaged);
            EXPECT_LE(read.file.entries.count(), 7U) << at;
            EXPECT_GE(read.file.entries.count() + passedOver(read.result) + read.result.notReached,
                      4U)
                << at;
        }
}

TEST(MorkDamage, aRowWithoutAnEndDoesNotTakeTheNextOne) {
    const Parsed read = parsed(MorkHistory()
                                   .rawRow("[2(^82=http://two/)(^86=3")
                                   .rawRow("  [3(^82=http://three/)[4(^82=http://four/)]")
                                   .rawRow("[5")
                                   .rawRow("[6(^82=http://six/)]")
                                   .bytes());
    std::vector<std::string> rows;
    for (const MorkEntry &entry : read.file.entries)
        rows.push_back(entry.rowID + " " + entry.url + entry.visitCount);
    EXPECT_EQ(rows, (std::vector<std::string>{"1 ", "2 http://two/", "3 http://three/",
                                              "4 http://four/", "6 http://six/"}));
    EXPECT_EQ(read.result.noted.at("row that is broken off, stored with the cells that are whole"),
              2U);
    EXPECT_EQ(read.result.notReached, 1U);
}

TEST(MorkDamage, aDictionaryWithoutAnEndDoesNotTakeTheRows) {
    std::string bytes = MorkHistory().add({.url = "http://x/"}).bytes();
    const std::size_t end = bytes.find(")>", bytes.find("<(81=http"));
    bytes[end + 1] = ' ';
    const Parsed read = parsed(bytes);
    ASSERT_EQ(read.file.entries.count(), 2U);
    EXPECT_EQ(read.file.entries.item(2).url, "http://x/");
    EXPECT_EQ(read.result.state, ReadState::cutShort);
    EXPECT_EQ(read.result.reason,
              fmt::format("the dictionary at {} has no end", bytes.find("<(81=http")));
}

TEST(MorkDamage, aDictionaryCutByTheFilesEndSaysSo) {
    const Parsed read = parsed(beforeTable() + "<(81=http://x/)(82=htt");
    EXPECT_EQ(read.file.values.count(), 1U); // not the value that is cut
    EXPECT_EQ(read.result.state, ReadState::cutShort);
}

TEST(MorkDamage, aHundredThousandRowsTakeSeconds) {
    MorkHistory history;
    for (int i = 0; i < 100'000; ++i)
        history.add({.url = fmt::format("http://www.example.com/page/{}", i),
                     .lastVisit = morkTime(1300000000 + i),
                     .firstVisit = morkTime(1200000000 + i),
                     .host = "example.com"});
    const Parsed read = parsedSoon(history.bytes());
    ASSERT_EQ(read.file.entries.count(), 100'001U);
    EXPECT_EQ(read.file.entries.item(100'001).url, "http://www.example.com/page/99999");
    EXPECT_GT(read.file.entries.item(100'001).fileOffset, 0);
    EXPECT_EQ(read.result.state, ReadState::complete);
}

TEST(MorkDamage, aLineOfAHundredMegabytesIsLeftOut) {
    const std::string begin = beforeTable();
    const std::string end = "\n{1:^80 {(k^81:c)(s=9)[1(^8C=LE)]}\n[2(^82=http://x/)]}\n";
    for (const char *piece : {"x", "[", "<(1=a)>"}) {
        std::string line;
        while (line.size() < 100'000'000)
            line += piece;
        const Parsed read = parsedSoon(begin + line + end);
        EXPECT_EQ(read.file.entries.count(), 2U);
        EXPECT_EQ(read.result.state, ReadState::cutShort);
        EXPECT_EQ(read.result.reason,
                  fmt::format("the line at {} is longer than 16777216 bytes and is left out",
                              begin.size()));
    }
}

/// Long lines made of a piece that opens and closes nothing or much.
TEST(MorkDamage, nestingOfAnyDepthIsReadInOnePass) {
    for (const char *piece :
         {"[", "(", "{", "}", "]", "<", "<(", "[(", "(\\", "<(1=a)>", "<(1=a)> ", "[2(^8A=1)",
          "[2(^8A=1)]", "@$${", "{1:^80[", "< <(a=c)>", "\\"}) {
        SCOPED_TRACE(piece);
        std::string line;
        while (line.size() < 2'000'000)
            line += piece;
        parsedSoon(beforeTable() + "{1:^80 {(k^81:c)[1(^8C=LE)]}\n" + line + "\n" + line);
    }
}

TEST(MorkDamage, rowsAfterTheCapAreCounted) {
    std::string bytes = beforeTable() + "{1:^80 {(k^81:c)[1(^8C=LE)]}\n";
    for (std::size_t i = 0; i < limits::kMorkRows + 5; ++i)
        bytes += "[2(^8A=1)]\n";
    const Parsed read = parsedSoon(bytes + "}");
    EXPECT_EQ(read.file.entries.count(), limits::kMorkRows);
    EXPECT_EQ(read.result.state, ReadState::cutShort);
    EXPECT_EQ(read.result.reason, "only 500000 rows are read");
    EXPECT_EQ(read.result.notReached, 6U);
}

TEST(MorkDamage, oneValueNamedByEveryRowDoesNotFillTheMemory) {
    std::string bytes = beforeTable() + "<(A0=" + std::string(limits::kMorkValueBytes, 'x') +
                        ")>\n{1:^80 {(k^81:c)[1(^8C=LE)]}\n";
    for (int i = 0; i < 1000; ++i)
        bytes += "[2(^82^A0)]\n";
    const Parsed read = parsedSoon(bytes + "}");
    EXPECT_EQ(read.result.state, ReadState::cutShort);
    EXPECT_EQ(read.file.entries.count() + read.result.notReached, 1001U);
    EXPECT_LT(read.file.entries.count(), 300U);
}

TEST(MorkDamage, valuesLongerThanTheCapAreCutAndCounted) {
    MorkHistory history;
    history.add({.url = std::string(limits::kMorkValueBytes + 10, 'x')});
    const Parsed read = parsed(history.bytes());
    EXPECT_EQ(read.file.entries.item(2).url.size(), limits::kMorkValueBytes);
    EXPECT_EQ(read.result.noted.size(), 1U);
}

} // namespace
} // namespace nv
