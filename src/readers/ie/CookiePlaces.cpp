#include "readers/ie/CookiePlaces.h"

#include "base/Text.h"
#include "readers/Dissection.h"
#include "readers/Limits.h"
#include "readers/TextPlaces.h"
#include "readers/ie/CookieTexts.h"
#include "readers/ie/IndexFacts.h"
#include "readers/ie/IndexFields.h"
#include "readers/ie/IndexPlaces.h"
#include "time/SourceClocks.h"

#include <fmt/format.h>

#include <array>
#include <stdexcept>

namespace nv {

namespace {

using namespace indexfields;
using F = SourceForm;

constexpr std::uint64_t kLong = 8;
constexpr std::uint64_t kCookieName = kFileName;

constexpr auto kNumbers = std::to_array<NumberRule>({
    {"OtherDate", kFirstDate, kLong, F::fileTime},
    {"ActionDateUTC", kSecondDate, kLong, F::fileTime},
    {"LastVisited", kSecondDate, kLong, F::fileTime},
    {"CacheFileLastAccessed", kSecondDate, kLong, F::fileTime},
    {"CacheFileSize", kFileSize},
    {"Visits", kHits},
    {"count", kHits},
    {"last_checked", kLastChecked, 4, F::dosDate},
});

/// A cookie's text names no protocol, and may have a user before its host.
std::string addressOf(const std::string &raw) {
    const std::size_t at = raw.find('@');
    const bool hasUser = at != std::string::npos && at > 0;
    return percentDecode(parseURLFromRawURL(hasUser ? raw.substr(at + 1) : raw));
}

void placeRecord(const SourceBytes &record, FieldPlaces &places) {
    const ByteView view = record.view();
    const bool isRedirect = view.sub(0, 4).raw() == "REDR";
    const std::uint64_t at = isRedirect ? kRedirectUrl : kUrl;
    const ByteView text = view.untilZero(at);
    const std::string raw = fromAnsi(text);
    places.value("URLRawValue", record, at, text.size(), raw, "Windows-1252, up to a zero byte");
    places.value("URL", record, at, text.size(), isRedirect ? raw : addressOf(raw),
                 isRedirect ? "Windows-1252, up to a zero byte"
                            : "what stands behind \"@\" in it, its percent coding undone");
    if (isRedirect)
        return;
    places.value("User", record, at, text.size(), parseUserFromURL(raw),
                 "what stands before \"@\" in it");
    for (const std::string_view field : {"ExpiryDate", "expires"})
        places.value(field, record, kExpires, kLong, expiryOf(view),
                     "FILETIME, UTC; where that is before 1970, a FAT date and time");
    places.numbers(record, kNumbers);
    if (const std::uint64_t name = view.u32le(kCookieName); name != 0 && view.has(name, 1)) {
        const ByteView file = view.untilZero(name);
        places.value("CacheFileName", record, name, file.size(), fromAnsi(file),
                     "Windows-1252, up to a zero byte; its offset stands 0x3C bytes into the "
                     "record");
    }
}

/// The nine lines of a cookie.
struct CookieLines {
    std::array<std::string_view, 9> lines;

    enum Line : std::size_t {
        kName,
        kValue,
        kPlace,
        kFlags,
        kExpiresLow,
        kExpiresHigh,
        kCreatedLow,
        kCreatedHigh,
    };
    std::string text(Line line) const { return fromAnsi(viewOf(lines.at(line))); }
    std::uint32_t number(Line line) const {
        return static_cast<std::uint32_t>(wholeNumberIn(lines.at(line)).value_or(0));
    }
    Date date(Line low, Line high) const {
        return fileTimeToUtc(std::uint64_t{number(high)} << 32 | number(low));
    }
    /// Both lines, the end of the first between them.
    std::string_view both(Line low, Line high) const {
        const std::string_view first = lines.at(low);
        const std::string_view second = lines.at(high);
        return {first.data(),
                static_cast<std::size_t>(second.data() + second.size() - first.data())};
    }
};

CookieLines linesAt(std::string_view text, std::size_t at) {
    CookieLines found;
    for (std::string_view &line : found.lines) {
        if (at >= text.size())
            throw std::runtime_error("the text file has no nine lines of a cookie there");
        const std::size_t end = std::min(text.find('\n', at), text.size());
        line = text.substr(at, end - at);
        if (line.ends_with('\r'))
            line.remove_suffix(1);
        at = end + 1;
    }
    return found;
}

void placeDates(const CookieLines &cookie, TextPlaces &text,
                std::initializer_list<std::string_view> expires,
                std::initializer_list<std::string_view> created) {
    using Lines = CookieLines;
    constexpr const char *kRule = "two numbers in digits, the lower and the higher half of a "
                                  "FILETIME: 100 nanoseconds since 1601-01-01, UTC";
    for (const std::string_view field : expires)
        text.value(field, cookie.both(Lines::kExpiresLow, Lines::kExpiresHigh),
                   cookie.date(Lines::kExpiresLow, Lines::kExpiresHigh),
                   "fifth and sixth line of the cookie", kRule);
    for (const std::string_view field : created)
        text.value(field, cookie.both(Lines::kCreatedLow, Lines::kCreatedHigh),
                   cookie.date(Lines::kCreatedLow, Lines::kCreatedHigh),
                   "seventh and eighth line of the cookie", kRule);
}

/// What of the facts the text says.
void placeFacts(const CookieLines &cookie, TextPlaces &text) {
    using Lines = CookieLines;
    constexpr std::uint32_t kSecure = 0x1;
    constexpr std::uint32_t kHiddenFromScripts = 0x2000;
    const std::uint32_t flags = cookie.number(Lines::kFlags);
    const std::string place = cookie.text(Lines::kPlace);
    text.value("cookie_name", cookie.lines[Lines::kName], cookie.text(Lines::kName),
               "first line of the cookie");
    text.value("cookie_value", cookie.lines[Lines::kValue], cookie.text(Lines::kValue),
               "second line of the cookie");
    if (const std::size_t slash = place.find('/'); slash != std::string::npos)
        text.value("path", cookie.lines[Lines::kPlace], place.substr(slash),
                   "third line of the cookie", "from the first \"/\" on");
    text.digits("cookie_flags", cookie.lines[Lines::kFlags], F::number,
                "fourth line of the cookie");
    text.value("secure", cookie.lines[Lines::kFlags],
               std::string((flags & kSecure) != 0 ? "yes" : "no"), "fourth line of the cookie",
               "bit 0x1 of the number");
    text.value("http_only", cookie.lines[Lines::kFlags],
               std::string((flags & kHiddenFromScripts) != 0 ? "yes" : "no"),
               "fourth line of the cookie", "bit 0x2000 of the number");
}

/// A row of its own for a cookie that stands after the first one.
void placeFurther(const CookieLines &cookie, TextPlaces &text) {
    using Lines = CookieLines;
    const std::string place = cookie.text(Lines::kPlace);
    text.value("URLRawValue", cookie.lines[Lines::kPlace], place, "third line of the cookie");
    text.value("URL", cookie.lines[Lines::kPlace], percentDecode(parseURLFromRawURL(place)),
               "third line of the cookie", "its percent coding undone");
    text.value("URLFileName", cookie.lines[Lines::kName], cookie.text(Lines::kName),
               "first line of the cookie");
    for (const std::string_view field : {"URLParameters", "MetaData"})
        text.value(field, cookie.lines[Lines::kValue], cookie.text(Lines::kValue),
                   "second line of the cookie");
    placeDates(cookie, text, {"ExpiryDate"}, {"ActionDateUTC", "LastVisited"});
}

std::string withoutLineEnds(std::string text) {
    std::erase_if(text, [](char each) { return each == '\r' || each == '\n'; });
    return text;
}

void placeText(const PlaceSearch &search, FieldPlaces &places) {
    const std::string &name = search.record.CacheFileName;
    const auto file =
        name.empty() ? std::nullopt : search.evidence.find(search.source.parent_path(), name);
    if (!file)
        return;
    TextPlaces text(search, *file, limits::kCookieText, places);
    const auto offset = factNumber(search.record, "source_offset");
    const bool hasFacts = !factWords(search.record, "secure").empty();
    const bool isFurther = offset && hasFacts && *offset != search.record.MapFileOffset;
    if (isFurther)
        placeFurther(linesAt(text.text(), static_cast<std::size_t>(*offset)), text);
    // Of a file with damage the first cookie may stand further on.
    if (hasFacts) {
        const CookieLines cookie =
            linesAt(text.text(), isFurther ? static_cast<std::size_t>(*offset) : 0);
        placeFacts(cookie, text);
        placeDates(cookie, text, {"expires"}, {"created"});
    }
    if (!isFurther)
        text.value("MetaData", 0, text.text().size(), withoutLineEnds(fromAnsi(text.view())),
                   "all of the text file", "Windows-1252, without line ends");
}

} // namespace

void locateInCookies(const PlaceSearch &search, FieldPlaces &places) {
    placeText(search, places);
    // Of a cookie that stands after the first one of its file the index tells only the name.
    placeRecord(indexRecordAt(search, static_cast<std::uint64_t>(search.record.MapFileOffset)),
                places);
    places.derived("RecordSize", "number of the record's blocks, 4 bytes into it, times 128");
}

} // namespace nv
