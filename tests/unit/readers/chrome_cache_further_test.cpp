#include "readers/chrome/cache/CacheBody.h"
#include "readers/chrome/cache/ResponseInfo.h"
#include "support/Facts.h"
#include "time/DateFormat.h"
#include "unit/readers/ChromeCacheFixture.h"

#include <fmt/format.h>

namespace nv {
namespace {

using test::ChromeCache;
using test::ChromeCachePlace;
using test::factOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;

/// What a cache holds beyond its classic rows.
struct ChromeCacheFurther : test::ChromeCacheTest {
    ChromeCacheFurther() { reading.classicOnly = false; }

    const UrlRecord &record(std::size_t i) const { return reading.records().at(i); }
    std::vector<std::string> kinds() const {
        std::vector<std::string> found;
        for (const UrlRecord &each : reading.records())
            found.push_back(each.cacheType + " " + each.URL);
        return found;
    }
    std::string bodyOf(const UrlRecord &of) {
        const test::TempFolder scratch;
        BodyTarget target(scratch.path() / "body", kBodyInMemory);
        const Evidence evidence(disk.path());
        return fetchChromeBody(of, evidence, target) ? std::string(target.take().raw()) : "(none)";
    }
    /// Takes the word of a slot away, as the browser does when it deletes an entry.
    void forget(const ChromeCachePlace &place) {
        put32(cache.file("index"), ChromeCache::kTableAt + (place.slot - 1) * 4, 0);
    }
    static test::ChromeCacheEntry page(const std::string &url, const std::string &body = "body") {
        test::ChromeCacheEntry made = entry(url, body);
        made.answer = std::string("HTTP/1.1 200 OK\0Content-Type: Text/HTML; charset=x\0\0", 52);
        return made;
    }
};

TEST_F(ChromeCacheFurther, entriesOfChainsAreRowsOfTheSameKind) {
    const auto first = cache.add(page("http://first/"));
    const auto second = cache.addBehind(first.entry, page("http://second/", "the second"));
    cache.addBehind(second.entry, page("http://third/"));
    cache.add(page("http://alone/"));
    read();
    EXPECT_THAT(kinds(), ElementsAre("Chrome Cache http://first/", "Chrome Cache http://alone/",
                                     "Chrome Cache http://second/", "Chrome Cache http://third/"));
    EXPECT_THAT(reading.result.passedOver, IsEmpty());
    EXPECT_EQ(factOf(record(0), "chain"), "slot 1, entry 1");
    EXPECT_EQ(factOf(record(1), "chain"), "-");
    EXPECT_EQ(factOf(record(2), "chain"), "slot 1, entry 2");
    EXPECT_EQ(factOf(record(3), "chain"), "slot 1, entry 3");
    EXPECT_EQ(record(2).Status, "URL");
    EXPECT_EQ(record(2).MIMEType, "text/html");
    EXPECT_EQ(record(2).MetaData, "HTTP/1.1 200 OK\r\nContent-Type: Text/HTML; charset=x\r\n");
    EXPECT_EQ(isoUtc(record(2).ActionDateUTC), "2011-06-15T12:01:00Z");
    EXPECT_EQ(bodyOf(record(2)), "the second");
    EXPECT_EQ(factOf(record(2), "classic_rule"), "entry that shares a slot with the one before it");
}

TEST_F(ChromeCacheFurther, classicRowsStayAndTellTheRestAsFacts) {
    const std::string url = "http://host/" + std::string(300, 'x');
    cache.add(page(url));
    read();
    ASSERT_THAT(reading.records(), SizeIs(1));
    EXPECT_EQ(record(0).URL, url.substr(0, 218));
    EXPECT_EQ(factOf(record(0), "cache_key"), url);
    EXPECT_EQ(record(0).MetaData, "");
    EXPECT_EQ(record(0).MIMEType, "");
    EXPECT_EQ(factOf(record(0), "http_headers"),
              "HTTP/1.1 200 OK\r\nContent-Type: Text/HTML; charset=x\r\n");
    EXPECT_EQ(factOf(record(0), "mime_type"), "text/html");
    EXPECT_EQ(factOf(record(0), "last_used"), "2011-06-15 12:00:01");
    EXPECT_THAT(reading.result.passedOver, IsEmpty());
    reading.classicOnly = true;
    reading.sink.records.clear();
    read();
    EXPECT_TRUE(record(0).facts.empty());
    EXPECT_THAT(reading.result.passedOver,
                ElementsAre(Pair("rest of a URL of more than 218 characters", 1)));
}

TEST_F(ChromeCacheFurther, keysOutsideOfTheirEntriesAreRead) {
    const auto place = cache.add(page("http://short/", "http://host/long"));
    put(place.entry, 0xC, 16);
    put(place.entry, 0x10, place.body);
    const auto lost = cache.add(page("http://lost/"));
    put(lost.entry, 0x10, 0xA001'FFFF);
    const auto huge = cache.add(page("http://huge/"));
    put(huge.entry, 0xC, 0xFFFF'FFFF);
    put(huge.entry, 0x10, place.body);
    read();
    EXPECT_EQ(factOf(record(0), "cache_key"), "http://host/long");
    EXPECT_EQ(factOf(record(1), "cache_key"), "-");
    EXPECT_THAT(reading.result.passedOver, ElementsAre(Pair("end of a URL that isn't there", 2)));
}

TEST_F(ChromeCacheFurther, entriesWithoutAHeaderAreRowsWithoutADate) {
    test::ChromeCacheEntry bare = page("http://bare/");
    bare.hasHeader = false;
    const auto place = cache.add(bare);
    cache.word(place.entry); // twice in the index, and one event
    const auto lost = cache.add(page("http://lost/"));
    put(lost.entry, 0x1C, 0xC103'0001);
    cache.remove("data_3");
    read();
    EXPECT_THAT(kinds(), ElementsAre("Chrome Cache http://bare/", "Chrome Cache http://lost/"));
    EXPECT_FALSE(record(0).ActionDateUTC.has());
    EXPECT_EQ(factOf(record(0), "classic_rule"), "entry without a header");
    EXPECT_EQ(factOf(record(0), "last_used"), "2011-06-15 12:00:01");
    EXPECT_EQ(bodyOf(record(0)), "body");
    EXPECT_EQ(reading.result.state, ReadState::cutShort);
    EXPECT_EQ(reading.result.notReached, 0U);
    EXPECT_THAT(reading.result.reason, HasSubstr("data_3: the block file is missing"));
    EXPECT_THAT(reading.result.noted, ElementsAre(Pair("entry whose header could not be read", 1)));
}

TEST_F(ChromeCacheFurther, entriesOfNoSlotAreRecovered) {
    cache.add(page("http://listed/"));
    const auto gone = cache.add(page("http://deleted/", "what was there"));
    forget(gone);
    read();
    EXPECT_THAT(kinds(),
                ElementsAre("Chrome Cache http://listed/", "Chrome Cache Remnant http://deleted/"));
    const UrlRecord &remnant = record(1);
    EXPECT_EQ(remnant.Status, "Recovered");
    EXPECT_EQ(remnant.Visits, kVisitsUnknown);
    EXPECT_EQ(remnant.MIMEType, "text/html");
    EXPECT_EQ(isoUtc(remnant.ActionDateUTC), "2011-06-15T12:01:00Z");
    EXPECT_EQ(remnant.MapFileOffset, static_cast<std::int64_t>(ChromeCache::offsetOf(gone.entry)));
    EXPECT_EQ(factOf(remnant, "recovered_from"),
              fmt::format("block {} of data_1 (0x{:X}), which no slot or chain leads to, free by "
                          "the file's map of blocks",
                          gone.entry & 0xFFFF, ChromeCache::offsetOf(gone.entry)));
    EXPECT_EQ(factOf(remnant, "last_used"), "-"); // the node may be another entry's
    EXPECT_THAT(factOf(remnant, "body"), HasSubstr("others may have been written there since"));
    EXPECT_EQ(bodyOf(remnant), "what was there");
    EXPECT_THAT(reading.result.passedOver, IsEmpty());
}

TEST_F(ChromeCacheFurther, remnantsTellWhetherTheirBlockIsInUse) {
    const auto gone = cache.add(page("http://doomed/"));
    forget(gone);
    const std::uint32_t block = gone.entry & 0xFFFF;
    cache.file("data_1").at(0x50 + block / 8) = static_cast<char>(1 << (block % 8));
    read();
    EXPECT_THAT(factOf(record(0), "recovered_from"), HasSubstr(", in use by the file's map"));
}

TEST_F(ChromeCacheFurther, remnantsGetNothingThatListedEntriesHave) {
    const auto listed = cache.add(page("http://listed/", "the listed body"));
    const auto gone = cache.add(page("http://deleted/"));
    put(gone.entry, 0x1C, listed.header);
    put(gone.entry, 0x20, listed.body);
    forget(gone);
    read();
    const UrlRecord &remnant = record(1);
    EXPECT_EQ(remnant.URL, "http://deleted/");
    EXPECT_FALSE(remnant.ActionDateUTC.has());
    EXPECT_EQ(remnant.MetaData, "");
    EXPECT_EQ(factOf(remnant, "body"), "none: a listed entry has its place");
    EXPECT_FALSE(remnant.CacheFileExists);
    EXPECT_EQ(bodyOf(remnant), "(none)");
}

TEST_F(ChromeCacheFurther, remnantsWhoseBodyWasEmptiedHaveNone) {
    const auto gone = cache.add(page("http://deleted/", "body"));
    for (const std::uint32_t address : {gone.body, gone.header})
        cache.file(ChromeCache::fileOf(address))
            .replace(ChromeCache::offsetOf(address), 256, std::string(256, '\0'));
    forget(gone);
    read();
    EXPECT_EQ(factOf(record(0), "body"), "none: its place is gone, or holds zeros");
    EXPECT_FALSE(record(0).ActionDateUTC.has());
}

TEST_F(ChromeCacheFurther, longKeysOfRemnantsAreWhole) {
    const std::string url = "http://host/" + std::string(500, 'x');
    forget(cache.add(page(url)));
    read();
    EXPECT_THAT(urls(), ElementsAre(url));
}

TEST_F(ChromeCacheFurther, whatIsNoEntryIsNoRemnant) {
    const auto odd = [&](std::size_t field, std::uint32_t value) {
        const auto gone = cache.add(page("http://odd/"));
        put(gone.entry, field, value);
        forget(gone);
    };
    odd(4, 0x8000'0001);    // the next one can't be a separate file
    odd(8, 0);              // no rankings
    odd(8, 0xA001'0001);    // or not among those
    odd(0xC, 12);           // the key is shorter
    odd(0xC, 0xFFFF'FFFF);  // or longer
    odd(0x1C, 0x0000'0001); // header and body not in use
    odd(0x20, 0xF000'0001);
    read();
    EXPECT_THAT(reading.records(), IsEmpty());
    EXPECT_THAT(reading.result.passedOver, IsEmpty());
    EXPECT_EQ(reading.result.state, ReadState::complete);
}

TEST_F(ChromeCacheFurther, whatStandsInBlocksOfAListedEntryIsNoRemnant) {
    const auto gone = cache.add(page("http://deleted/"));
    const std::string stale = cache.file("data_1").substr(ChromeCache::offsetOf(gone.entry), 0x100);
    forget(gone);
    const auto listed = cache.add(page("http://listed/", std::string(600, 'b')));
    cache.file("data_1").replace(ChromeCache::offsetOf(listed.body) + 0x100, 0x100, stale);
    read();
    EXPECT_THAT(urls(), ElementsAre("http://listed/", "http://deleted/"));
    EXPECT_THAT(reading.result.passedOver,
                ElementsAre(Pair("entry within the blocks of a listed one", 1)));
}

TEST_F(ChromeCacheFurther, slotsThatTheIndexDoesNotCount) {
    cache.add(page("http://listed/"));
    cache.add(page("http://uncounted/"));
    put32(cache.file("index"), 0x1C, 1);
    read();
    EXPECT_THAT(kinds(), ElementsAre("Chrome Cache http://listed/",
                                     "Chrome Cache Remnant http://uncounted/"));
    EXPECT_EQ(factOf(record(1), "recovered_from"), "slot 2 of the index, which counts 1");
    put32(cache.file("index"), 0x1C, 0); // the browser's own number goes unsaid
    reading.sink.records.clear();
    read();
    EXPECT_THAT(kinds(),
                ElementsAre("Chrome Cache http://listed/", "Chrome Cache http://uncounted/"));
    EXPECT_EQ(factOf(record(1), "classic_rule"), "index that counts no slots");
}

TEST_F(ChromeCacheFurther, chainsThatLoopOrLeadOutEnd) {
    const auto one = cache.add(page("http://one/"));
    const auto behind = cache.addBehind(one.entry, page("http://behind/"));
    put(behind.entry, 4, one.entry);
    const auto two = cache.add(page("http://two/"));
    put(two.entry, 4, 0xA001'FFFF);
    read();
    EXPECT_THAT(urls(), ElementsAre("http://one/", "http://two/", "http://behind/"));
    EXPECT_THAT(
        reading.result.passedOver,
        ElementsAre(Pair("entry that shares a slot with the one before it, and isn't there", 1)));
}

TEST_F(ChromeCacheFurther, isCancelledAmidIt) {
    const auto one = cache.add(page("http://one/"));
    cache.addBehind(one.entry, page("http://behind/"));
    forget(cache.add(page("http://deleted/")));
    read();
    const std::vector<double> &fractions = reading.task.fractions;
    EXPECT_TRUE(std::is_sorted(fractions.begin(), fractions.end()));
    EXPECT_LE(fractions.back(), 1.0);
    for (const int last : {1, 2}) {
        test::CancelAfter task(static_cast<int>(fractions.size()) - last);
        reading.sink.records.clear();
        reading.read(cache.write(folder()), disk.path(), task);
        EXPECT_EQ(reading.result.state, ReadState::cancelled);
        EXPECT_THAT(reading.records(), SizeIs(last == 1 ? 2 : 1));
    }
}

TEST(ChromeResponseInfo, endsWithItsBytes) {
    std::string bytes(0x18, '\0');
    bytes += std::string("\x11\0\0\0", 4) + "HTTP/1.1 200 OK" + std::string(2, '\0');
    EXPECT_EQ(answerOf(viewOf(bytes)), "HTTP/1.1 200 OK\r\n");
    for (std::size_t length = 0; length < bytes.size(); ++length)
        EXPECT_EQ(answerOf(viewOf(bytes.substr(0, length))), "") << length;
    bytes[0x1B] = '\x7F';
    EXPECT_EQ(answerOf(viewOf(bytes)), "");
}

} // namespace
} // namespace nv
