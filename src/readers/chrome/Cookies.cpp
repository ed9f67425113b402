// An SQLite file; of it are read
//   cookies = host_key name value last_access_utc creation_utc expires_utc
// with dates in microseconds since 1601, UTC. 0 in expires_utc is a cookie of one session.

#include "readers/chrome/Cookies.h"

#include "readers/sqlite/CookieRow.h"
#include "readers/sqlite/HistoryRow.h"
#include "readers/sqlite/SqliteReading.h"
#include "time/SourceClocks.h"

#include <array>

namespace nv {

namespace {

constexpr SqliteReader kReader = {"ParserClass.ParseChromeCookiesFile()",
                                  "PARSING CHROME COOKIES FILE", "Google Chrome", "chrome-32.png"};

constexpr std::array<std::string_view, 6> kColumns = {
    "host_key", "name", "value", "last_access_utc", "creation_utc", "expires_utc"};
enum Column : std::size_t { kHost, kName, kValue, kLastAccess, kCreation, kExpires };

Date dateOf(const Row &row, std::size_t column) {
    const std::int64_t stored = row.number(column).value_or(0);
    return stored == 0 ? Date() : ChromeTimeToDate(stored);
}

} // namespace

ReadResult ParseChromeCookiesFile(ReadContext &ctx) {
    return readSqliteFile(ctx, kReader, [&ctx](EvidenceDatabase &database) {
        TableCursor cursor(database, "cookies", kColumns);
        const Date fileCreated = creationDateOf(ctx.file.FullPath);
        return eachRow(cursor, ctx, ctx.task, kReader.procedure, [&](const Row &row) {
            URLClass record = cookieRecord(ctx,
                                           {row.text(kHost), row.text(kName), row.text(kValue),
                                            dateOf(row, kLastAccess), dateOf(row, kExpires)},
                                           "Chrome Cookies", fileCreated);
            record.OtherDate = dateOf(row, kCreation);
            record.OtherDateMeaning = "Creation Date (UTC)";
            ctx.sink.save(record);
        });
    });
}

} // namespace nv
