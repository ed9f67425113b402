// An SQLite file; of it are read
//   moz_cookies = host name value lastAccessed expiry
// with lastAccessed in microseconds and expiry in seconds since 1970, UTC.

#include "readers/firefox/Cookies.h"

#include "readers/firefox/Kinds.h"
#include "readers/sqlite/CookieRow.h"
#include "readers/sqlite/HistoryRow.h"
#include "readers/sqlite/SqliteReading.h"
#include "time/SourceClocks.h"

#include <array>

namespace nv {

namespace {

constexpr SqliteReader kReader = {"ParserClass.ParseFirefoxCookiesFile()",
                                  "PARSING FIREFOX COOKIES FILE", "Mozilla Firefox",
                                  "firefox-32.png"};

constexpr std::array<std::string_view, 5> kColumns = {"host", "name", "value", "lastAccessed",
                                                      "expiry"};
enum Column : std::size_t { kHost, kName, kValue, kLastAccessed, kExpiry };

/// The conversion keeps the first ten digits, so both units come out as seconds.
Date dateOf(const Row &row, std::size_t column) {
    const std::int64_t stored = row.number(column).value_or(0);
    return stored == 0 ? Date() : UnixSecondsToDate(stored);
}

} // namespace

ReadResult ParseFirefoxCookiesFile(ReadContext &ctx) {
    return readSqliteFile(ctx, kReader, [&ctx](EvidenceDatabase &database) {
        TableCursor cursor(database, "moz_cookies", kColumns);
        const Date fileCreated = ctx.evidence.factsOf(ctx.file.FullPath).created;
        return eachRow(cursor, ctx, ctx.task, kReader.procedure, [&](const Row &row) {
            URLClass record = cookieRecord(ctx,
                                           {row.text(kHost), row.text(kName), row.text(kValue),
                                            dateOf(row, kLastAccessed), dateOf(row, kExpiry)},
                                           kFirefoxCookies.word, fileCreated);
            record.LastVisited = record.ActionDateLocal;
            record.OtherDate = record.ExpiryDate;
            record.OtherDateMeaning = "Expiry Date";
            ctx.sink.save(record);
        });
    });
}

} // namespace nv
