// An SQLite file; of it are read
//   cookies = host_key name value last_access_utc creation_utc expires_utc encrypted_value
// with dates in microseconds since 1601, UTC. 0 in expires_utc is a cookie of one session. Since
// 2014 the value is empty, and encrypted_value has it behind "v10", "v11" or "v20" for the kind of
// key, or without such a prefix, encrypted for the user of the machine.

#include "readers/chrome/Cookies.h"

#include "readers/chrome/Kinds.h"
#include "readers/sqlite/CookieRow.h"
#include "readers/sqlite/HistoryRow.h"
#include "readers/sqlite/SqliteReading.h"
#include "time/SourceClocks.h"

#include <fmt/format.h>

#include <array>
#include <map>
#include <string>
#include <utility>

namespace nv {

namespace {

constexpr SqliteReader kReader = {"ParserClass.ParseChromeCookiesFile()",
                                  "PARSING CHROME COOKIES FILE", "Google Chrome", "chrome-32.png"};

constexpr std::array<std::string_view, 7> kColumns = {
    "host_key",     "name",        "value",          "last_access_utc",
    "creation_utc", "expires_utc", "encrypted_value"};
enum Column : std::size_t { kHost, kName, kValue, kLastAccess, kCreation, kExpires, kEncrypted };

Date dateOf(const Row &row, std::size_t column) {
    const std::int64_t stored = row.number(column).value_or(0);
    return stored == 0 ? Date() : ChromeTimeToDate(stored);
}

/// "v10", or empty for bytes that don't begin with a version.
std::string_view prefixOf(ByteView encrypted) {
    constexpr std::size_t kLength = 3;
    const std::string_view prefix = encrypted.raw().substr(0, kLength);
    const auto isDigit = [](char each) { return each >= '0' && each <= '9'; };
    return prefix.size() == kLength && prefix[0] == 'v' && isDigit(prefix[1]) && isDigit(prefix[2])
               ? prefix
               : std::string_view();
}

/// What to note of a row whose value can't be read; empty when it can.
std::string encryptionOf(const Row &row) {
    const auto encrypted = row.bytes(kEncrypted);
    if (!encrypted || encrypted->size() == 0 || !row.text(kValue).empty())
        return {};
    const std::string_view prefix = prefixOf(*encrypted);
    return prefix.empty()
               ? "encrypted value without a prefix, not shown"
               : fmt::format("encrypted value with the prefix \"{}\", not shown", prefix);
}

} // namespace

ReadResult ParseChromeCookiesFile(ReadContext &ctx) {
    return readSqliteFile(ctx, kReader, [&ctx](EvidenceDatabase &database) {
        TableCursor cursor(database, "cookies", kColumns);
        const Date fileCreated = ctx.evidence.factsOf(ctx.file.FullPath).created;
        std::map<std::string, std::uint64_t> noted;
        ReadResult result = eachRow(cursor, ctx, ctx.task, kReader.procedure, [&](const Row &row) {
            if (std::string encryption = encryptionOf(row); !encryption.empty())
                ++noted[std::move(encryption)];
            URLClass record = cookieRecord(ctx,
                                           {row.text(kHost), row.text(kName), row.text(kValue),
                                            dateOf(row, kLastAccess), dateOf(row, kExpires)},
                                           kChromeCookies.word, fileCreated);
            record.OtherDate = dateOf(row, kCreation);
            record.OtherDateMeaning = "Creation Date (UTC)";
            ctx.sink.save(record);
        });
        result.noted = std::move(noted);
        return result;
    });
}

} // namespace nv
