// An SQLite file; of it are read
//   moz_cookies = host name value lastAccessed expiry
// with lastAccessed in microseconds since 1970, UTC, and expiry in seconds, in the newest versions
// in milliseconds; and beyond the classic rules
//   path isSecure isHttpOnly creationTime updateTime originAttributes sameSite schemeMap

#include "readers/firefox/profile/Cookies.h"

#include "readers/FactSource.h"
#include "readers/firefox/Kinds.h"
#include "readers/firefox/ProfileValues.h"
#include "readers/sqlite/CookieRow.h"
#include "readers/sqlite/HistoryRow.h"
#include "readers/sqlite/SchemaVersion.h"
#include "readers/sqlite/SqliteReading.h"
#include "time/SourceClocks.h"

#include <array>

namespace nv {

namespace {

constexpr SqliteReader kReader = {"ParserClass.ParseFirefoxCookiesFile()",
                                  "PARSING FIREFOX COOKIES FILE", "Mozilla Firefox",
                                  "firefox-32.png"};

constexpr const char *kTable = "moz_cookies";
constexpr std::array<std::string_view, 13> kColumns = {
    "host",     "name",       "value",        "lastAccessed", "expiry",           "path",
    "isSecure", "isHttpOnly", "creationTime", "updateTime",   "originAttributes", "sameSite",
    "schemeMap"};
enum Column : std::size_t {
    kHost,
    kName,
    kValue,
    kLastAccessed,
    kExpiry,
    kPath,
    kSecure,
    kHttpOnly,
    kCreated,
    kUpdated,
    kAttributes,
    kSameSite,
    kSchemes
};

constexpr auto kSites =
    std::to_array<MozWord>({{0, "none"}, {1, "lax"}, {2, "strict"}, {256, "not set"}});
/// Bits: a cookie may have come from pages of several.
constexpr auto kSchemeWords = std::to_array<MozWord>(
    {{0, "unknown"}, {1, "http"}, {2, "https"}, {3, "http and https"}, {4, "file"}});

void addTruth(FactList &facts, FactName name, const Row &row, std::size_t column) {
    if (row.number(column))
        facts.add(name, row.truth(column) ? "yes" : "no");
}

void addFacts(FactList &facts, const Row &row) {
    facts.add("path", row.text(kPath));
    addTruth(facts, "secure", row, kSecure);
    addTruth(facts, "http_only", row, kHttpOnly);
    addMozWord(facts, "same_site", kSites, row.number(kSameSite));
    addMozWord(facts, "source_scheme", kSchemeWords, row.number(kSchemes));
    addOriginAttributes(facts, row.text(kAttributes));
    addMozDate(facts, "created", row.number(kCreated), MozUnit::microseconds);
    addMozDate(facts, "last_updated", row.number(kUpdated), MozUnit::microseconds);
}

/// The conversion keeps the first ten digits, so both units come out as seconds.
Date dateOf(const Row &row, std::size_t column) {
    const std::int64_t stored = row.number(column).value_or(0);
    return stored == 0 ? Date() : unixSecondsToDate(stored);
}

} // namespace

ReadResult parseFirefoxCookiesFile(ReadContext &ctx) {
    return readSqliteFile(ctx, kReader, [&ctx](EvidenceDatabase &database) {
        const Date fileCreated = ctx.evidence.factsOf(ctx.file.fullPath).created;
        noteSchemaVersion(ctx, "cookies", userVersion(database));
        const auto save = [&](std::int64_t id, const Row &row) {
            UrlRecord record = cookieRecord(ctx,
                                            {row.text(kHost), row.text(kName), row.text(kValue),
                                             dateOf(row, kLastAccessed), dateOf(row, kExpiry)},
                                            kFirefoxCookies.word, fileCreated);
            record.LastVisited = record.ActionDateLocal;
            record.OtherDate = record.ExpiryDate;
            record.OtherDateMeaning = "Expiry Date";
            if (!ctx.classicOnly) {
                addSource(record.facts, kTable, id);
                addFacts(record.facts, row);
            }
            ctx.sink.save(record);
        };
        return mainRows(database, kTable, kColumns, ctx, kReader.procedure, save);
    });
}

} // namespace nv
