#include "support/builders/IndexDat.h"
#include "support/builders/IndexReading.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

using test::IndexReading;

/// A cache index of two tables of one block, with every kind of record, about 20 KB.
std::string smallIndex() {
    test::IndexDat index(1, 2);
    index.folder("ABCDEFGH").folder("IJKLMNOP");
    const std::uint64_t date = test::fileTime(2011, 6, 15);
    for (const char *signature : {"URL ", "LEAK", "FILE"})
        index.add({.signature = signature,
                   .url = "http://host/a%20b.htm?c=d",
                   .firstDate = date,
                   .secondDate = date,
                   .folder = 1,
                   .created = test::dosDate(2011, 6, 15),
                   .fileName = "b%5B1%5D.htm",
                   .headers = "HTTP/1.1 200 OK\r\n"});
    index.addRedirect("http://host/");
    index.endTable();
    index.add({.url = "Visited: user@http://host/", .secondDate = date});
    return index.bytes();
}

/// Reads as every kind; what goes wrong must come out as a result and never as an exception.
void readAsAllKinds(const std::string &bytes, const std::string &what) {
    for (const auto type : {HistoryFileType::ieCache, HistoryFileType::ieHistory,
                            HistoryFileType::ieWeekly, HistoryFileType::none}) {
        IndexReading reading(type);
        ASSERT_NO_THROW(reading.readBytes(bytes)) << what;
        ASSERT_NE(reading.result.state, ReadState::failed) << what;
        ASSERT_EQ(reading.result.state == ReadState::cutShort, !reading.result.reason.empty())
            << what;
        ASSERT_LE(reading.records().size(), 60U) << what;
    }
}

TEST(IEDamage, ofACutAtEveryLengthIsSurvived) {
    const std::string whole = smallIndex();
    std::size_t before = 0;
    for (std::size_t length = 4000; length <= whole.size(); ++length) {
        // Between the header's end and the first table nothing changes.
        if (length > 4200 && length < test::IndexDat::kFirstTable - 100)
            length = test::IndexDat::kFirstTable - 100;
        readAsAllKinds(whole.substr(0, length), "cut at " + std::to_string(length));
        IndexReading reading(HistoryFileType::ieCache);
        const std::size_t now = reading.readBytes(whole.substr(0, length)).records().size();
        ASSERT_GE(now, before) << "more bytes give fewer records at " << length;
        before = now;
    }
    EXPECT_EQ(before, 5U);
}

TEST(IEDamage, ofEachByteIsSurvived) {
    const std::string whole = smallIndex();
    for (std::size_t at = 0; at < whole.size(); ++at) {
        if (at == 0x200)
            at = test::IndexDat::kFirstTable;
        for (const int value : {0x00, 0x7F, 0x80, 0xFF}) {
            std::string damaged = whole;
            damaged[at] = static_cast<char>(value);
            readAsAllKinds(damaged, std::to_string(value) + " at " + std::to_string(at));
        }
    }
}

TEST(IEDamage, thatLosesRecordsIsAlwaysTold) {
    const std::string whole = smallIndex();
    IndexReading sound(HistoryFileType::ieCache);
    ASSERT_EQ(sound.readBytes(whole).records().size(), 5U);
    for (std::size_t length = test::IndexDat::kFirstTable; length < whole.size(); ++length) {
        IndexReading reading(HistoryFileType::ieCache);
        reading.readBytes(whole.substr(0, length));
        const bool told =
            reading.result.state == ReadState::cutShort || !reading.result.passedOver.empty();
        ASSERT_TRUE(told || reading.records().size() == 5) << "cut at " << length;
    }
}

TEST(IEDamage, byAChainThatNamesATableAtEveryBlockEndsAtTheCap) {
    std::string bytes(1 << 20, '\0');
    test::put32(bytes, 0x20, 0x4000);
    for (std::size_t at = 0x4000; at + 0x90 <= bytes.size(); at += 0x10) {
        test::put32(bytes, at + 4, 0x7FFF);
        test::put32(bytes, at + 8, static_cast<std::uint32_t>(at + 0x10));
    }
    const IndexReading reading = IndexReading().readBytes(bytes);
    EXPECT_EQ(reading.result.state, ReadState::cutShort);
    EXPECT_TRUE(reading.records().empty());
}

} // namespace
} // namespace nv
