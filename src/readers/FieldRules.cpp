#include "readers/FieldRules.h"

#include "base/Text.h"
#include "readers/Registry.h"
#include "readers/chrome/ChromeFieldRules.h"
#include "readers/firefox/FirefoxFieldRules.h"
#include "readers/mac/CacheFile.h"
#include "time/SourceClocks.h"

#include <algorithm>

namespace nv {

namespace {

using F = SourceForm;

const KindRules *found(std::span<const KindRules> all, const RecordKind &kind,
                       std::string_view table) {
    const auto rules = std::ranges::find_if(all, [&](const KindRules &each) {
        return each.kind == &kind && (table.empty() || each.table == table);
    });
    return rules == all.end() ? nullptr : &*rules;
}

constexpr std::int64_t kLastSecond = 253'402'300'799; // since 1970, of the year 9999

bool isChromeTime(std::int64_t number) {
    constexpr std::int64_t kLeast = 10'000'000'000'000; // of the year 1601
    return number >= kLeast;
}

} // namespace

std::string_view wordsOf(SourceForm form) {
    switch (form) {
    case F::text:
        return "text";
    case F::number:
        return "number";
    case F::chromeTime:
        return "microseconds since 1601-01-01, UTC";
    case F::chromeOrUnixTime:
        return "microseconds since 1601-01-01, UTC; in early versions seconds since 1970-01-01, "
               "told by the size of the number";
    case F::unixSeconds:
        return "seconds since 1970-01-01, UTC; in the newest versions milliseconds, told by the "
               "size of the number";
    case F::unixMicroseconds:
        return "microseconds since 1970-01-01, UTC";
    case F::unixFirstTen:
        return "microseconds since 1970-01-01, UTC, of whose whole seconds the first ten "
               "characters count: here they have more, so the date is none of the event";
    case F::storedFirstTen:
        return "seconds or milliseconds since 1970-01-01, UTC, of which the first ten characters "
               "count: here that is another date than the stored one";
    case F::fileTime:
        return "FILETIME: 100 nanoseconds since 1601-01-01, UTC";
    case F::fileTimeLocal:
        return "FILETIME: 100 nanoseconds since 1601-01-01, in the local time of the machine that "
               "wrote it";
    case F::fileTimeMoved:
        return "FILETIME: 100 nanoseconds since 1601-01-01, UTC, moved to the zone that the "
               "machine of the import had then";
    case F::dosDate:
        return "FAT: date in the lower 16 bits, time in the upper ones, in steps of 2 seconds, UTC";
    case F::secondsOf1904:
        return "seconds since 1904-01-01, five hours added, taken as UTC";
    case F::unixMilliseconds:
        return "milliseconds since 1970-01-01, UTC";
    case F::truth:
        return "number: 0 is no, every other one yes";
    case F::hex:
        return "bytes, shown as hexadecimal digits";
    case F::part:
        return "a part of the text";
    case F::within:
        return "one of the texts or numbers that the value is put together of";
    case F::summand:
        return "one of the numbers that are added up";
    case F::encrypted:
        return "encrypted: the value tells in which form and of how many bytes";
    case F::encryptedBase64:
        return "base64 of what is encrypted: the value tells of how many bytes";
    case F::decrypted:
        return "encrypted, and decrypted by the key that the browser has on every Linux";
    }
    return {};
}

std::string_view wordsOf(SourceForm form, std::int64_t number) {
    if (number != 0 && form == F::chromeOrUnixTime)
        return isChromeTime(number)
                   ? "microseconds since 1601-01-01, UTC, told by the size of the number"
                   : "seconds since 1970-01-01, UTC, told by the size of the number";
    if (number != 0 && form == F::unixSeconds)
        return number > kLastSecond
                   ? "milliseconds since 1970-01-01, UTC, told by the size of the number"
                   : "seconds since 1970-01-01, UTC, told by the size of the number";
    return wordsOf(form);
}

Date dateOf(SourceForm form, std::int64_t number) {
    constexpr std::uint64_t kHalf = 0xFFFF;
    if (number == 0)
        return {};
    const auto bits = static_cast<std::uint64_t>(number);
    switch (form) {
    case F::chromeTime:
        return chromeTimeToDate(number);
    case F::chromeOrUnixTime:
        return isChromeTime(number) ? chromeTimeToDate(number) : Date::fromUnixSeconds(number);
    case F::unixSeconds:
        return Date::fromUnixSeconds(number > kLastSecond ? number / 1000 : number);
    case F::unixMicroseconds:
        return Date::fromUnixMicroseconds(number);
    case F::unixFirstTen:
        return unixSecondsToDate(number / 1'000'000);
    case F::storedFirstTen:
        return unixSecondsToDate(number);
    case F::fileTime:
    case F::fileTimeLocal:
    case F::fileTimeMoved:
        return fileTimeToUtc(bits);
    case F::dosDate:
        return dosDateToUtc(static_cast<std::uint16_t>(bits & kHalf),
                            static_cast<std::uint16_t>(bits >> 16 & kHalf));
    case F::secondsOf1904:
        return macStampToDate(static_cast<std::uint32_t>(bits));
    case F::unixMilliseconds:
        return Date::fromUnixSeconds(number / 1000 - (number % 1000 < 0 ? 1 : 0));
    case F::text:
    case F::number:
    case F::truth:
    case F::hex:
    case F::part:
    case F::within:
    case F::summand:
    case F::encrypted:
    case F::encryptedBase64:
    case F::decrypted:
        break;
    }
    return {};
}

std::vector<const FieldRule *> rulesFor(const KindRules &rules, std::string_view field) {
    std::vector<const FieldRule *> all;
    for (const FieldRule &rule : rules.fields)
        if (equalsNoCase(rule.field, field))
            all.push_back(&rule);
    return all;
}

const KindRules *rulesOf(std::string_view cacheType, std::string_view table) {
    const RecordKind *kind = recordKind(cacheType);
    if (!kind)
        return nullptr;
    const KindRules *rules = found(chromeFieldRules(), *kind, table);
    return rules ? rules : found(firefoxFieldRules(), *kind, table);
}

std::string_view pageOf(std::string_view cacheType) {
    const RecordKind *kind = recordKind(cacheType);
    for (const Reader *reader : registry())
        if (kind && std::ranges::find(reader->kinds, kind) != reader->kinds.end())
            return reader->page;
    return {};
}

} // namespace nv
