#include "base/Md5.h"
#include "readers/ie/CookieRecord.h"
#include "support/TestDoubles.h"
#include "support/builders/IndexDat.h"
#include "time/SourceClocks.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

using test::fileTime;
using test::IndexRecord;
using test::recordBytes;

UrlRecord parse(const std::string &bytes, DeletedFlag deleted = DeletedFlag::no,
                int offsetMinutes = 0) {
    HistoryFile file;
    file.historyFileType = HistoryFileType::ieCookies;
    file.fullPath = "/evidence/Cookies/index.dat";
    file.version = "5.2";
    file.sourceFileID = SourceFileId{7};
    test::FixedClock clock;
    clock.offset = std::chrono::minutes(offsetMinutes);
    return parseIECookie(viewOf(bytes), file, 4711, deleted, clock);
}

IndexRecord cookie(const std::string &text) {
    return {.url = text,
            .firstDate = fileTime(2011, 6, 15, 12, 30, 5),
            .secondDate = fileTime(2011, 6, 16, 7, 8, 9),
            .expiry = fileTime(2012, 1, 2, 3, 4, 5),
            .fileSize = 321,
            .hits = 11,
            .fileName = "user@example[2].txt"};
}

UrlRecord parsed(const std::string &text) {
    return parse(recordBytes(cookie(text)));
}

TEST(ParseIECookie, givesAllFields) {
    const UrlRecord record = parsed("Cookie:user@www.example.com/shop/a%20b?c=d");
    EXPECT_EQ(record.Status, "Cookie");
    EXPECT_EQ(record.HistoryFilePath, "/evidence/Cookies/index.dat");
    EXPECT_EQ(record.MapFileOffset, 4711);
    EXPECT_EQ(record.HistoryVersion, "5.2");
    EXPECT_EQ(record.SourceFile_ID, SourceFileId{7});
    EXPECT_EQ(record.Visits, 11);
    EXPECT_EQ(record.RecordSize, 256U);
    EXPECT_EQ(record.OtherDate, Date::fromCivil({2011, 6, 15, 12, 30, 5}));
    EXPECT_EQ(record.OtherDateMeaning, "Cookie Modified");
    EXPECT_EQ(record.cacheType, "IE Cookies");
    EXPECT_EQ(record.CacheFileLastAccessed, Date::fromCivil({2011, 6, 16, 7, 8, 9}));
    EXPECT_EQ(record.ActionDateLocal, Date::fromCivil({2011, 6, 16, 7, 8, 9}));
    EXPECT_EQ(record.ActionDateUTC, Date::fromCivil({2011, 6, 16, 7, 8, 9}));
    EXPECT_EQ(record.Action, "Stored");
    EXPECT_EQ(record.CacheFileSize, 321);
    EXPECT_EQ(record.ExpiryDate, Date::fromCivil({2012, 1, 2, 3, 4, 5}));
    EXPECT_EQ(record.CacheFileName, "user@example[2].txt");
    EXPECT_EQ(record.CacheFileExt, "txt");
    EXPECT_EQ(record.URLRawValue, "Cookie:user@www.example.com/shop/a%20b?c=d");
    EXPECT_EQ(record.URL, "www.example.com/shop/a b?c=d");
    EXPECT_EQ(record.HashedURL, hashOfUrl("www.example.com/shop/a b?c=d"));
    EXPECT_EQ(record.host, "www.example.com");
    EXPECT_EQ(record.User, "user");
    EXPECT_EQ(record.URLProtocol, "");
    EXPECT_EQ(record.URLParameters, "c=d");
    EXPECT_TRUE(record.IsCookie);
    EXPECT_FALSE(record.IsHistory);
    EXPECT_EQ(record.Links, "www.example.com/shop/a b?c=d;");
    EXPECT_FALSE(record.CacheFileExists);
    EXPECT_EQ(record.MetaData + record.Category, "");
}

// The event is told in UTC; the other dates stand as the examiner's machine shows them.
TEST(ParseIECookie, keepsItsDatesWhateverTheZoneOfTheExaminersMachine) {
    const UrlRecord record = parse(recordBytes(cookie("Cookie:user@host/")), DeletedFlag::no, 120);
    EXPECT_EQ(record.ActionDateUTC, Date::fromCivil({2011, 6, 16, 7, 8, 9}));
    EXPECT_EQ(record.ActionDateLocal, Date::fromCivil({2011, 6, 16, 9, 8, 9}));
    EXPECT_EQ(record.CacheFileLastAccessed, Date::fromCivil({2011, 6, 16, 7, 8, 9}));
    EXPECT_EQ(record.OtherDate, Date::fromCivil({2011, 6, 15, 12, 30, 5}));
    EXPECT_EQ(record.ExpiryDate, Date::fromCivil({2012, 1, 2, 3, 4, 5}));
}

TEST(ParseIECookie, givesNoDateForStampsThatAreNone) {
    for (const std::uint64_t stamp : {0ULL, 0xFFFFFFFFFFFFFFFFULL, 0x7FFFFFFFFFFFFFFFULL}) {
        const UrlRecord record = parse(
            recordBytes({.url = "x", .firstDate = stamp, .secondDate = stamp, .expiry = stamp}),
            DeletedFlag::no, 120);
        EXPECT_FALSE(record.OtherDate.has());
        EXPECT_FALSE(record.CacheFileLastAccessed.has());
        EXPECT_FALSE(record.ActionDateLocal.has());
        EXPECT_FALSE(record.ActionDateUTC.has());
        EXPECT_FALSE(record.ExpiryDate.has());
    }
}

TEST(ParseIECookie, readsTheExpiryOfVersionFiveAsADosDate) {
    const auto expiry = [](std::uint64_t stamp) {
        return parse(recordBytes({.url = "x", .expiry = stamp})).ExpiryDate;
    };
    constexpr std::uint64_t kUpperHalf = std::uint64_t{1} << 32;
    EXPECT_EQ(expiry(0x95C25399), Date::fromCivil({2021, 12, 25, 18, 46, 4})); // of a real index
    EXPECT_EQ(expiry(test::dosDate(2027, 4, 15)), Date::fromCivil({2027, 4, 15}));
    EXPECT_EQ(expiry(test::dosDate(1980, 1, 1)), Date::fromCivil({1980, 1, 1}));
    EXPECT_EQ(expiry(0x12 * kUpperHalf + test::dosDate(2011, 6, 15, 12, 30, 2)),
              Date::fromCivil({2011, 6, 15, 12, 30, 2}));
    EXPECT_FALSE(expiry(0xFFFFFFFF).has()) << "neither a DOS date nor a time when cookies end";
    EXPECT_FALSE(expiry(1).has());
}

TEST(ParseIECookie, readsTheExpiryOfEarlierVersionsAsAFileTime) {
    // The lower half of each of these is a DOS date too.
    for (const std::uint64_t low : {0x95C25399U, 0x00005E8FU, 0x959D539CU}) {
        const std::uint64_t stamp = (fileTime(2021, 12, 25) >> 32 << 32) + low;
        const Date read = parse(recordBytes({.url = "x", .expiry = stamp})).ExpiryDate;
        EXPECT_EQ(read, fileTimeToUtc(stamp)) << std::hex << stamp;
        EXPECT_GE(read, Date::fromCivil({2021, 12, 24})) << std::hex << stamp;
    }
    const auto expiry = [](std::uint64_t stamp) {
        return parse(recordBytes({.url = "x", .expiry = stamp})).ExpiryDate;
    };
    EXPECT_EQ(expiry(fileTime(1970, 1, 1)), Date::fromCivil({1970, 1, 1}));
    EXPECT_EQ(expiry(fileTime(9999, 12, 31, 23, 59, 59)),
              Date::fromCivil({9999, 12, 31, 23, 59, 59}));
}

TEST(ParseIECookie, readsTheFirstAndTheLastDate) {
    const auto used = [](std::uint64_t stamp) {
        return parse(recordBytes({.url = "x", .secondDate = stamp})).ActionDateUTC;
    };
    EXPECT_EQ(used(10'000'000), Date::fromCivil({1601, 1, 1, 0, 0, 1}));
    EXPECT_EQ(used(fileTime(9999, 12, 31, 23, 59, 59)),
              Date::fromCivil({9999, 12, 31, 23, 59, 59}));
}

TEST(ParseIECookie, takesForTheUrlOnlyWhatStandsAfterTheAtSign) {
    EXPECT_EQ(parsed("Cookie:user@example.com/a/").URL, "example.com/a/");
    EXPECT_EQ(parsed("Cookie:user@example.com/@home").URL, "home"); // cleaned at the second one
    EXPECT_EQ(parsed("@example.com/").URL, "example.com/");
    EXPECT_EQ(parsed("example.com/").URL, "example.com/");
    EXPECT_EQ(parsed("Cookie:user@").URL, "");
    EXPECT_EQ(parsed("").URL, "");
}

TEST(ParseIECookie, cleansAndDecodesTheUrlAfterTheAtSign) {
    const UrlRecord record = parsed("Cookie:user@~~local~~/http://host.example:8080/%E2%82%AC?");
    EXPECT_EQ(record.URL, "http://host.example:8080/\u20ac?");
    EXPECT_EQ(record.host, "host.example");
    EXPECT_EQ(record.URLProtocol, "http");
    EXPECT_EQ(record.URLParameters, "");
    EXPECT_EQ(record.User, "user");
}

TEST(ParseIECookie, givesTheHostOfATextWithoutAProtocol) {
    EXPECT_EQ(parsed("Cookie:user@example.com").host, "example.com");
    EXPECT_EQ(parsed("Cookie:user@example.com:8080/a").host, "example.com");
    EXPECT_EQ(parsed("Cookie:user@https://example.com/a").host, "example.com");
    EXPECT_EQ(parsed("Cookie:user@file:///C:/page.htm").URL, "file:///C:/page.htm");
}

TEST(ParseIECookie, readsTextsAsWindows1252AndEndsThemWithTheRecord) {
    EXPECT_EQ(parsed("Cookie:jos\xE9@caf\xE9.example/\x80").URL, "caf\u00e9.example/\u20ac");
    EXPECT_EQ(parsed("Cookie:jos\xE9@caf\xE9.example/").User, "jos\u00e9");
    std::string bytes = recordBytes({.url = "Cookie:"});
    bytes.replace(0x68, 24, std::string(24, 'x'));
    EXPECT_EQ(parse(bytes).URL, std::string(24, 'x'));
}

TEST(ParseIECookie, takesNumbersAsSigned) {
    IndexRecord record = cookie("Cookie:user@host/");
    record.fileSize = 0xFFFFFFFF;
    record.hits = 0xFFFFFFFE;
    const UrlRecord read = parse(recordBytes(record));
    EXPECT_EQ(read.CacheFileSize, -1);
    EXPECT_EQ(read.Visits, -2);
}

TEST(ParseIECookie, hasNoNameForAnOffsetOfZero) {
    IndexRecord record = cookie("Cookie:user@host/");
    record.fileName.clear();
    const UrlRecord read = parse(recordBytes(record));
    EXPECT_EQ(read.CacheFileName + read.CacheFileExt, "");
}

TEST(ParseIECookie, tellsDeletedRecords) {
    EXPECT_EQ(parse(recordBytes(cookie("Cookie:user@host/")), DeletedFlag::yes).Status, "Deleted");
}

TEST(ParseIECookie, throwsForFieldsOutsideOfTheRecord) {
    std::string bytes = recordBytes(cookie("Cookie:user@host/"));
    for (const std::size_t length : {0U, 3U, 8U, 0x57U, 0x67U})
        EXPECT_THROW(parse(bytes.substr(0, length)), OutOfBytes) << length;
    for (const std::uint32_t offset : {0xFFFFFFFFU, 0x7FFFFFFFU, 0x101U}) {
        test::put32(bytes, 0x3C, offset);
        EXPECT_THROW(parse(bytes), OutOfBytes) << offset;
    }
}

} // namespace
} // namespace nv
