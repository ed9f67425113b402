// Block caches of versions 2 and 3, made of the golden case: the same files, damaged.

#include "base/Files.h"
#include "readers/chrome/cache/Cache.h"
#include "readers/chrome/cache/CacheBody.h"
#include "readers/chrome/cache/LaterCache.h"
#include "readers/chrome/cache/LaterEntry.h"
#include "support/BodyOf.h"
#include "support/FactText.h"
#include "support/FileReading.h"
#include "support/Places.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

namespace nv {
namespace {

namespace fs = std::filesystem;
using test::fact;
using testing::HasSubstr;

struct BlockCache : testing::Test {
    BlockCache() {
        fs::copy(test::goldenFolder() / "chromium-block-cache/every-kind/input", folder());
        for (const auto &entry : fs::directory_iterator(folder()))
            fs::permissions(entry.path(), fs::perms::owner_write, fs::perm_options::add);
    }
    fs::path folder() const { return disk.path() / "Cache_Data"; }
    std::string bytes(const char *name) const {
        const Bytes whole = readWhole(folder() / name);
        return std::string(ByteView(whole).raw());
    }
    void put(const char *name, const std::string &content) const {
        writeWhole(folder() / name, content);
    }
    const std::vector<UrlRecord> &read(const char *name = "index") {
        return reading.read(parseChromeCache, folder() / name);
    }
    const UrlRecord &of(std::string_view url) const {
        const auto found = std::ranges::find(reading.sink.records, url, &UrlRecord::URL);
        EXPECT_NE(found, reading.sink.records.end()) << url;
        static const UrlRecord none;
        return found == reading.sink.records.end() ? none : *found;
    }
    std::string body(const UrlRecord &record) const {
        return test::bodyOf(fetchChromeBody, record, disk.path()).value_or("none");
    }
    /// All that must hold, whatever the files hold.
    void checkHostile() {
        for (const UrlRecord &record : read()) {
            EXPECT_LE(body(record).size(), std::size_t{64} << 10);
            EXPECT_FALSE(record.cacheType.empty());
        }
        EXPECT_LE(reading.sink.records.size(), 100U);
    }

    test::TempFolder disk;
    test::FileReading reading;
};

TEST_F(BlockCache, piecesAreOneBodyWithItsGapsTold) {
    read();
    const UrlRecord &film = of("https://quay.example/film.webm");
    EXPECT_EQ(body(film), std::string(1024, 'A') + std::string(1024, 'C') + std::string(100, 'D'));
    EXPECT_EQ(fact(film, "byte_ranges"), "0-1023, 2048-3171; missing 1024-2047, 3172-3999");
    EXPECT_EQ(
        std::ranges::count(reading.sink.records, "https://quay.example/film.webm", &UrlRecord::URL),
        1);
}

TEST_F(BlockCache, aSeparateFilesBodyIsThere) {
    read();
    EXPECT_EQ(body(of("https://quay.example/big.bin")), std::string(40, 'F'));
    EXPECT_EQ(body(of("https://quay.example/gone.png")), "none");
    EXPECT_THAT(fact(of("https://quay.example/gone.png"), "body"), HasSubstr("f_000002"));
}

TEST_F(BlockCache, byTheClassicRulesIsNotReadYet) {
    const Evidence evidence(disk.path());
    ContentProbe content;
    HistoryFile file;
    file.fullPath = folder() / "index";
    test::MemorySink sink;
    ReadContext ctx{file, evidence,    content,     reading.clock, reading.scratch.path(),
                    sink, reading.log, reading.task};
    ctx.classicOnly = true;
    EXPECT_EQ(parseChromeCache(ctx).state, ReadState::notReadYet);
    EXPECT_TRUE(sink.records.empty());
}

TEST_F(BlockCache, aMissingBlockFileLosesWhatLayInIt) {
    const std::size_t whole = read().size();
    fs::remove(folder() / "data_2");
    // The key that lies outside and the piece's body were there.
    EXPECT_GE(read().size() + 2, whole);
    EXPECT_EQ(reading.result.state, ReadState::cutShort);
    EXPECT_THAT(reading.result.reason, HasSubstr("data_2"));
    fs::remove(folder() / "data_1");
    ASSERT_EQ(read().size(), 1U);
    EXPECT_EQ(reading.sink.records[0].DataBlockFile, "f_000001") << "no entry leads to it any more";
    EXPECT_THAT(reading.result.reason, HasSubstr("data_1"));
}

/// The addresses of the rows, in their order.
std::vector<std::string> addresses(const std::vector<UrlRecord> &records) {
    std::vector<std::string> all;
    all.reserve(records.size());
    for (const UrlRecord &record : records)
        all.push_back(record.URL);
    std::ranges::sort(all);
    return all;
}

TEST_F(BlockCache, aDamagedIndexIsReadAsNone) {
    constexpr std::size_t kFilm = 2148;
    const std::string index = bytes("index");
    fs::remove(folder() / "index");
    const std::vector<std::string> without = addresses(read("data_1"));
    EXPECT_EQ(body(of("https://quay.example/film.webm")).size(), kFilm) << "by its pieces' keys";
    const auto check = [&](const std::string &damaged, const char *told) {
        put("index", damaged);
        EXPECT_EQ(addresses(read()), without) << told;
        EXPECT_EQ(reading.result.state, ReadState::cutShort) << told;
        EXPECT_THAT(reading.result.reason, HasSubstr(told));
        EXPECT_EQ(body(of("https://quay.example/film.webm")).size(), kFilm) << told;
        for (const UrlRecord &record : reading.sink.records)
            EXPECT_EQ(record.HistoryVersion, "Block files") << told;
    };
    check("", "the index has 0 bytes");
    check(std::string(8, '\0') + index.substr(8), "the index begins with 00000000");
    std::string later = index;
    later.replace(4, 4, std::string("\0\0\x09\0", 4));
    check(later, "version 9.0, which isn't known");
}

TEST_F(BlockCache, anIndexOfTheFirstNumberThatIsCutShortIsALaterOne) {
    std::string index = bytes("index");
    const std::size_t whole = read().size();
    index.replace(4, 4, std::string("\0\0\2\0", 4));
    put("index", index.substr(0, index.size() - 4));
    EXPECT_EQ(read().size(), whole);
    EXPECT_EQ(reading.result.state, ReadState::cutShort);
    EXPECT_THAT(reading.result.reason, HasSubstr("the table of addresses ends"));
}

TEST_F(BlockCache, anUnknownVersionOfOtherEntriesIsRefusedByName) {
    std::string index = bytes("index");
    index.replace(4, 4, std::string("\0\0\x09\0", 4));
    put("index", index);
    put("data_1", bytes("data_1").substr(0, 0x2000));
    EXPECT_TRUE(read().empty());
    EXPECT_EQ(reading.result.state, ReadState::notReadYet);
    EXPECT_THAT(reading.result.reason, HasSubstr("not read yet"));
}

TEST_F(BlockCache, blockFilesWithoutTheirEndAreTold) {
    for (const char *name : {"data_0", "data_1", "data_2"}) {
        const std::string whole = bytes(name);
        put(name, "");
        read();
        EXPECT_EQ(reading.result.state, ReadState::cutShort) << name;
        EXPECT_THAT(reading.result.reason, HasSubstr(name));
        put(name, whole);
    }
}

TEST_F(BlockCache, aSeparateFileThatNoEntryLeadsToIsARow) {
    put("f_0000fe", "lone");
    put("f_0000zz", "no such file of a cache");
    read();
    const UrlRecord &lone = of("");
    EXPECT_EQ(lone.cacheType, "Chrome Cache Remnant");
    EXPECT_EQ(lone.Status, "Recovered");
    EXPECT_EQ(fact(lone, "recovered_from"), "f_0000fe, which no entry leads to");
    EXPECT_EQ(body(lone), "lone");
    EXPECT_EQ(lone.CacheFileSize, 4);
    EXPECT_EQ(std::ranges::count(reading.sink.records, "", &UrlRecord::URL), 1);
}

TEST_F(BlockCache, aLoopEnds) {
    read();
    std::string data = bytes("data_1");
    for (std::size_t at = 0x2000; at + 256 <= data.size(); at += 256) {
        std::string looped = data;
        const auto block = static_cast<char>((at - 0x2000) / 256);
        looped.replace(at + 4, 4, std::string({block, '\0', '\1', '\xA0'}));
        put("data_1", looped);
        checkHostile();
    }
}

TEST_F(BlockCache, filesCutAnywhereAreSurvived) {
    for (const char *name : {"index", "data_0", "data_1", "data_2"}) {
        const std::string whole = bytes(name);
        for (std::size_t size = 0; size < whole.size(); size += whole.size() / 60 + 1) {
            put(name, whole.substr(0, size));
            checkHostile();
        }
        put(name, whole);
    }
}

TEST_F(BlockCache, eachFieldMayBeHuge) {
    const std::string whole = bytes("data_1");
    for (std::size_t at = 0x2000; at + 4 <= whole.size(); at += 4) {
        std::string damaged = whole;
        damaged.replace(at, 4, 4, at % 8 == 0 ? '\xFF' : '\x7F');
        put("data_1", damaged);
        for (const UrlRecord &record : read())
            EXPECT_GE(record.CacheFileSize, 0);
    }
}

TEST_F(BlockCache, anotherHashIsNoted) {
    std::string data = bytes("data_1");
    const std::size_t key = data.find("https://older.example/bare");
    ASSERT_NE(key, std::string::npos);
    data[key + 8] = 'O';
    put("data_1", data);
    read();
    EXPECT_EQ(reading.result.noted.at("entry whose key has another hash than is stored"), 1U);
}

TEST_F(BlockCache, cancellingEndsTheReading) {
    test::CancelAfter watcher(3);
    reading.read(parseChromeCache, folder() / "index", watcher);
    EXPECT_EQ(reading.result.state, ReadState::cancelled);
}

} // namespace
} // namespace nv
