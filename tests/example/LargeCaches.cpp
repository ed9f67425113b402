#include "LargeCaches.h"

#include "base/Files.h"
#include "support/builders/ChromeHistory.h"
#include "support/builders/ChromiumCache.h"
#include "support/builders/ChromiumSql.h"
#include "support/builders/FirefoxCache2.h"
#include "support/builders/FirefoxSiteCache.h"
#include "support/builders/SqliteFile.h"

#include <algorithm>

namespace nv::example {

using namespace nv::test;

namespace {

/// The head of an answer as today's caches of Chromium keep it.
std::string answerHead(std::size_t i, std::size_t size) {
    ChromiumAnswer answer;
    answer.lines = {"HTTP/1.1 200",
                    std::string("content-type: ") +
                        (i % 2 == 0 ? "text/html; charset=utf-8" : "image/gif"),
                    fmt::format("content-length: {}", size),
                    "cache-control: max-age=864000",
                    "server: nginx",
                    "vary: Accept-Encoding"};
    answer.requested = chromeTime(secondsOf(i));
    answer.answered = answer.requested + 250'000;
    return answer.bytes();
}

std::string keyOf(std::size_t i) {
    return "1/0/_dk_https://site.example https://site.example " + urlOf(i);
}

} // namespace

/// Written entry by entry: all of them are more than memory should hold.
void largeSimpleCache(const Wanted &wanted) {
    const fs::path folder = wanted.folder / "Cache_Data";
    SimpleCacheFiles list;
    each(wanted, [&](std::size_t i) {
        const std::uint64_t hash = (i + 1) * 0x9E37'79B9'7F4A'7C15;
        const std::string body = bodyOf(i, wanted.bodyBytes);
        SimpleCacheFiles one;
        one.add(hash, keyOf(i), answerHead(i, body.size()), body);
        one.write(folder, false);
        list.list(hash, chromeTime(secondsOf(i)));
    });
    list.write(folder);
}

/// In three files, as the browser makes them; a body of more than 1 MB is in pieces.
void largeSqlCache(const Wanted &wanted) {
    constexpr std::size_t kParts = 3;
    constexpr std::size_t kPiece = std::size_t{1} << 20;
    constexpr std::uint32_t kKeyHash = 1; // nobody looks an entry up by it
    const fs::path folder = wanted.folder / "Cache_Data";
    for (std::size_t part = 0; part < kParts; ++part) {
        SqliteFile file(folder / fmt::format("sqldb{}", part));
        file.run("CREATE TABLE resources(res_id INTEGER NOT NULL PRIMARY KEY AUTOINCREMENT,"
                 "last_used INTEGER NOT NULL,hints INTEGER NOT NULL,body_end INTEGER NOT NULL,"
                 "bytes_usage INTEGER NOT NULL,doomed INTEGER NOT NULL,check_sum INTEGER NOT NULL,"
                 "cache_key_hash INTEGER NOT NULL,cache_key TEXT NOT NULL,head BLOB)")
            .run("CREATE TABLE blobs(blob_id INTEGER NOT NULL PRIMARY KEY AUTOINCREMENT,"
                 "res_id INTEGER NOT NULL,start INTEGER NOT NULL,end INTEGER NOT NULL,"
                 "check_sum INTEGER NOT NULL,blob BLOB NOT NULL)")
            .run("CREATE UNIQUE INDEX index_blobs_res_id_start ON blobs(res_id, start)")
            .run("CREATE TABLE meta(key LONGVARCHAR NOT NULL UNIQUE PRIMARY KEY, value "
                 "LONGVARCHAR)")
            .run("INSERT INTO meta VALUES('version', '8')")
            .run("BEGIN");
        SQLite::Statement entry = file.prepare("INSERT INTO resources VALUES(?,?,0,?,?,0,?,?,?,?)");
        SQLite::Statement piece = file.prepare("INSERT INTO blobs VALUES(NULL,?,?,?,?,?)");
        for (std::size_t i = part; i < wanted.records; i += kParts) {
            const std::string body = bodyOf(i, wanted.bodyBytes);
            const std::string head = answerHead(i, body.size());
            const auto size = static_cast<std::int64_t>(body.size());
            const auto id = static_cast<std::int64_t>(i / kParts) + 1;
            SQLite::bind(entry, id, chromeTime(secondsOf(i)), size, size,
                         sqlChecksum(head, kKeyHash), static_cast<std::int64_t>(kKeyHash),
                         keyOf(i));
            entry.bind(8, head.data(), static_cast<int>(head.size()));
            entry.exec();
            entry.reset();
            for (std::size_t at = 0; at < body.size(); at += kPiece) {
                const std::size_t count = std::min(kPiece, body.size() - at);
                const std::string_view bytes = std::string_view(body).substr(at, count);
                SQLite::bind(piece, id, static_cast<std::int64_t>(at),
                             static_cast<std::int64_t>(at + count), sqlChecksum(bytes, kKeyHash));
                piece.bind(5, body.data() + at, static_cast<int>(count));
                piece.exec();
                piece.reset();
            }
        }
        file.run("COMMIT");
    }
    writeWhole(folder / "index", "SQLCacheTruncate3");
}

void largeFirefoxCache2(const Wanted &wanted) {
    each(wanted, [&](std::size_t i) {
        FirefoxCache2Entry entry;
        entry.key = "O^partitionKey=%28https%2Csite.example%29,:" + urlOf(i);
        entry.body = bodyOf(i, wanted.bodyBytes);
        entry.headers =
            fmt::format("HTTP/1.1 200 OK\r\nContent-Type: {}\r\nContent-Length: {}\r\n",
                        i % 2 == 0 ? "text/html; charset=utf-8" : "image/gif", entry.body.size());
        entry.elements = {{"request-method", "GET"}, {"peer-ip-address", "192.0.2.7"}};
        entry.fetched = static_cast<std::uint32_t>(secondsOf(i));
        entry.writeTo(wanted.folder / "cache2" / "entries");
    });
}

void largeFirefoxSiteCache(const Wanted &wanted) {
    FirefoxSiteCacheFiles cache(wanted.folder / "https+++app.example" / "cache");
    cache.file().run("BEGIN");
    each(wanted, [&](std::size_t i) {
        FirefoxSiteEntry entry;
        entry.url = urlOf(i);
        entry.body = fmt::format("{{00112233-4455-6677-8899-{:012x}}}", i);
        cache.add(entry);
        cache.addBody(FirefoxSiteCacheFiles::bodyName(entry.body),
                      snappyFrames(bodyOf(i, wanted.bodyBytes)));
    });
    cache.file().run("COMMIT");
}

} // namespace nv::example
