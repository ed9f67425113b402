#include "readers/ContentProbe.h"
#include "readers/opera/Cache.h"
#include "support/TempFolder.h"
#include "support/TestDoubles.h"
#include "support/builders/Opera.h"

#include <gtest/gtest.h>

#include <random>

namespace nv {
namespace {

constexpr std::size_t kHeader = 15;

/// An index as the browser writes it, with the fields that aren't read: a second date, a flag, and
/// headers in fields of their own.
test::OperaCache indexOfRecords(int count) {
    test::OperaCache cache;
    for (int i = 0; i < count; ++i) {
        const std::string number = std::to_string(100 + i);
        cache.field(1, test::operaField(3, "http://www.example.com/page" + number) +
                           test::operaField(4, test::bigEndian(1300000000, 8)) +
                           test::operaField(5, test::bigEndian(1300000000 + i, 8)) + "\x8B" +
                           test::operaField(7, test::bigEndian(2, 4)) +
                           test::operaField(9, "text/html") +
                           test::operaField(16, test::operaField(21, "HTTP/1.1 200 OK")) +
                           (i % 2 ? std::string() : test::operaField(13, "opr00" + number)));
    }
    return cache.field(0x40, "000123");
}

class OperaCacheGaps : public testing::Test {
  protected:
    void read(const std::string &bytes) {
        const Evidence evidence("");
        ContentProbe content;
        file.fullPath = folder.write("dcache4.url", bytes);
        ReadContext ctx{file, evidence, content, clock, {}, sink, log, task};
        sink.records.clear();
        result = parseOperaCache(ctx);
    }
    /// Whether the reading says that something is wrong with its file.
    bool isTold() const {
        return result.state != ReadState::complete || !result.passedOver.empty();
    }

    test::TempFolder folder;
    HistoryFile file;
    test::FixedClock clock;
    test::MemorySink sink;
    test::MemoryLog log;
    test::MemoryTask task;
    ReadResult result;
};

TEST_F(OperaCacheGaps, areNotInASoundIndex) {
    read(indexOfRecords(40).bytes());
    EXPECT_EQ(sink.records.size(), 40U);
    EXPECT_FALSE(isTold());
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(OperaCacheGaps, areToldWhereGarbageTakesRecords) {
    const std::string bytes = indexOfRecords(40).bytes();
    std::mt19937 random(20110615); // NOLINT: the same garbage each time
    std::size_t lost = 0;
    for (const std::size_t length : {4U, 16U, 60U, 300U, 1500U})
        for (std::size_t at = kHeader; at + length <= bytes.size(); at += 23)
            for (const bool zeros : {true, false}) {
                std::string damaged = bytes;
                for (std::size_t i = at; i < at + length; ++i)
                    damaged[i] = zeros ? '\0' : static_cast<char>(random());
                read(damaged);
                if (sink.records.size() >= 40U)
                    continue;
                ++lost;
                EXPECT_TRUE(isTold()) << length << " bytes at " << at << ", zeros " << zeros;
            }
    EXPECT_GT(lost, 500U);
}

TEST_F(OperaCacheGaps, areLoggedWithTheirPlace) {
    std::string bytes = indexOfRecords(10).bytes();
    const std::size_t at = bytes.find("http://www.example.com/page105") - 6;
    bytes.replace(at, 200, 200, '\0');
    read(bytes);
    EXPECT_LT(sink.records.size(), 10U);
    EXPECT_EQ(result.passedOver.at("stretch of bytes without a record, in which some may be lost"),
              1U);
    ASSERT_EQ(log.entries.size(), 1U);
    EXPECT_NE(log.entries[0].message.find("at " + std::to_string(at)), std::string::npos)
        << log.entries[0].message;
}

/// Records that are laid out without lengths of their own are read as before, without a word.
TEST_F(OperaCacheGaps, areNotInFieldsWithoutRecordsAroundThem) {
    test::OperaCache cache;
    for (int i = 0; i < 3; ++i)
        cache.begin().field(3, "http://x/").field(13, "opr00021").raw(std::string("\4\0", 2));
    read(cache.bytes());
    EXPECT_EQ(sink.records.size(), 3U);
    EXPECT_FALSE(isTold());
}

} // namespace
} // namespace nv
