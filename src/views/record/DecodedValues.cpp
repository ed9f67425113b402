#include "views/record/DecodedValues.h"

#include "address/RawAddress.h"
#include "base/Base64.h"
#include "base/DisplayText.h"
#include "base/Text.h"
#include "time/DateFormat.h"
#include "views/record/NumberTimes.h"
#include "views/record/SnowflakeTimes.h"
#include "views/record/TimeNames.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <optional>
#include <utility>

namespace nv {

namespace {

constexpr int kDeepest = 3; ///< addresses within addresses
constexpr std::string_view kParameter = "Query parameter";
constexpr std::string_view kFragmentParameter = "Parameter after #";
constexpr std::string_view kPair = "Name and value";

/// Parameters that hold what was searched for, whatever the site, on pages whose address says that
/// they are of a search.
constexpr std::string_view kTermNames[] = {
    "q",  "query", "search_query", "searchterm", "search",        "p",
    "wd", "text",  "keywords",     "_nkw",       "field-keywords"};

/// Sites whose address need not say "search". Names of hosts begin so, or have a part that does.
constexpr std::string_view kSearchHosts[] = {"google.", "bing.",      "duckduckgo.", "ecosia.",
                                             "ask.",    "startpage.", "qwant.",      "yahoo.",
                                             "baidu.",  "yandex."};

bool isLetterOrDigit(char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

bool isOfSearch(std::string_view host, std::string_view path) {
    if (containsNoCase(path, "search") || containsNoCase(path, "results"))
        return true;
    return std::ranges::any_of(kSearchHosts, [host](std::string_view site) {
        const std::size_t at = findNoCase(host, site);
        return at != std::string_view::npos && (at == 0 || host[at - 1] == '.');
    });
}

/// At most so many bytes, of whole characters.
std::string_view beginningOf(std::string_view text, std::size_t most) {
    if (text.size() <= most)
        return text;
    std::size_t end = most;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U)
        --end;
    return text.substr(0, end);
}

std::string cutText(std::string text) {
    if (text.size() <= kLongestDecodedValue)
        return text;
    return std::string(beginningOf(text, kLongestDecodedValue)) + "\u2026";
}

/// Text that base64 stands for; nothing unless all of it can be read. Shorter ones are mostly words
/// that happen to be.
std::optional<std::string> textOfBase64(std::string_view text) {
    constexpr std::size_t kShortest = 12; // letters
    const std::string_view letters = text.substr(0, text.find_last_not_of('=') + 1);
    if (letters.size() < kShortest || letters.size() % 4 == 1 || text.size() - letters.size() > 2 ||
        !std::ranges::all_of(letters, [](char c) {
            return isLetterOrDigit(c) || c == '+' || c == '/' || c == '-' || c == '_';
        }))
        return std::nullopt;
    std::string bytes = fromBase64(letters, Base64Letters::ofEither);
    const auto isControl = [](char c) {
        return (static_cast<unsigned char>(c) < 0x20 && c != '\n' && c != '\r' && c != '\t') ||
               c == '\x7F';
    };
    if (!isUtf8(bytes) || std::ranges::any_of(bytes, isControl))
        return std::nullopt;
    return bytes;
}

std::string timeText(Date utc) {
    return formatDate(utc, "yyyy-mm-dd Hh:Nn:Ss") + " UTC";
}

/// Takes a value of a record apart.
class Decoder {
  public:
    explicit Decoder(std::string_view field) : m_field(field) {}

    bool address(const std::string &name, std::string_view text, int depth) {
        const auto parts = roughAddress(text);
        if (!parts)
            return false;
        pathTimes(name, *parts);
        const bool search = isOfSearch(parts->host, parts->path);
        parameters(name, parts->query, kParameter, search, depth);
        if (parts->fragment.find('=') != std::string_view::npos)
            parameters(name, parts->fragment.substr(parts->fragment.find_first_not_of("!?/")),
                       kFragmentParameter, search, depth);
        return true;
    }

    /// All that a text can be by itself, as the value of `own`.
    void text(std::string_view own, const std::string &name, std::string_view text, int depth) {
        if (depth > kDeepest || text.empty())
            return;
        if (depth < kDeepest && address(name, text, depth + 1))
            return;
        if (analytics(own, name, text) || time(own, name, text))
            return;
        if (const auto bytes = textOfBase64(text)) {
            add(name, *bytes, "Base64");
            return this->text(own, name, *bytes, depth + 1);
        }
        if (!callback(name, text))
            pieces(own, name, text);
    }

    void pairsOrText(std::string_view own, std::string_view text) {
        const std::size_t sign = text.find('=');
        // At the end it fills up base64.
        if (sign != std::string_view::npos &&
            text.find_first_not_of('=', sign) != std::string_view::npos)
            return parameters({}, text, kPair, false, 0);
        this->text(own, {}, percentDecode(text), 0);
    }

    std::vector<DecodedValue> take() { return std::move(m_values); }

  private:
    static std::string within(const std::string &outer, std::string_view name) {
        return outer.empty() ? std::string(name) : outer + " > " + std::string(name);
    }

    void add(const std::string &name, std::string value, std::string_view rule) {
        if (m_values.size() < kMostDecodedValues)
            m_values.push_back({m_field, name, cutText(std::move(value)), std::string(rule)});
    }

    void parameters(const std::string &outer, std::string_view text, std::string_view rule,
                    bool search, int depth) {
        while (!text.empty() && m_values.size() < kMostDecodedValues) {
            const std::string_view piece = takeParameter(text);
            parameter(outer, piece, rule, search, depth);
        }
    }

    void parameter(const std::string &outer, std::string_view piece, std::string_view rule,
                   bool search, int depth) {
        const std::size_t sign = piece.find('=');
        if (sign == std::string_view::npos || sign == 0)
            return;
        constexpr std::size_t kLongestName = 200; // bytes
        const std::string own = parameterText(trim(piece.substr(0, sign)));
        const std::string name =
            within(outer, own.size() > kLongestName ? std::string_view("...") : own);
        const std::string value = parameterText(piece.substr(sign + 1));
        if (value.empty())
            return;
        const bool isTerm = search && std::ranges::any_of(kTermNames, [&own](auto each) {
                                return equalsNoCase(own, each);
                            });
        add(name, value, isTerm ? kSearchTermRule : rule);
        if (!isTerm && !startOfSession(own, name, value))
            text(own, name, value, depth);
    }

    /// Numbers are times by their names alone.
    bool time(std::string_view own, const std::string &name, std::string_view text) {
        const bool isNumber =
            std::ranges::count(text, '.') <= 1 &&
            std::ranges::all_of(text, [](char c) { return isDigit(c) || c == '.'; });
        const NameSays says = isNumber ? saysOfTime(own) : NameSays::time;
        if (says == NameSays::nothing)
            return false;
        const auto read = isNumber ? timeOfNumber(text) : timeOfUuid(text);
        if (!read || (says == NameSays::milliseconds && read->rule != kUnixMilliseconds))
            return false;
        add(name, timeText(read->utc), read->rule);
        return true;
    }

    /// "jQuery", a number by chance, and the time at which the page was read, whatever the
    /// parameter is called.
    bool callback(const std::string &name, std::string_view text) {
        constexpr std::string_view kLibrary = "jQuery";
        const std::vector<std::string_view> parts = split(text, '_');
        const auto areDigits = [](std::string_view part) {
            return !part.empty() && std::ranges::all_of(part, isDigit);
        };
        if (parts.size() < 2 || !parts[0].starts_with(kLibrary) ||
            !areDigits(parts[0].substr(kLibrary.size())) || !areDigits(parts[1]))
            return false;
        const auto read = timeOfNumber(parts[1]);
        const bool isTime = read && read->rule == kUnixMilliseconds;
        if (isTime)
            add(name, timeText(read->utc), read->rule);
        return isTime;
    }

    /// Search pages begin a number of the session with the time of the first of them.
    bool startOfSession(std::string_view own, const std::string &name, std::string_view value) {
        constexpr std::size_t kLetters = 6; // of four bytes
        if ((own != "ei" && own != "sei") || value.size() < kLetters)
            return false;
        const std::string bytes = fromBase64(value.substr(0, kLetters), Base64Letters::ofEither);
        if (bytes.size() < 4)
            return false;
        std::uint32_t seconds = 0;
        for (std::size_t at = 4; at-- > 0;)
            seconds = seconds << 8 | static_cast<unsigned char>(bytes[at]);
        const auto read = timeOfNumber(std::to_string(seconds));
        if (!read || read->rule != kUnixSeconds)
            return false;
        add(name, timeText(read->utc),
            "First four bytes of base64, the lowest first: Unix time in seconds");
        return true;
    }

    /// Of a counter of visits: "number.time", "GA1.2.number.time" and
    /// "hash.number.first.before.last.count", of which the numbers aren't times.
    bool analytics(std::string_view own, const std::string &name, std::string_view text) {
        constexpr std::string_view kFirst = "First visit, by a counter of visits";
        const std::vector<std::string_view> parts = split(text, '.');
        const bool isClient = own == "cid" || own == "ga_vid" || own == "_ga";
        if ((parts.size() == 2 && isClient) || (parts.size() == 4 && text.starts_with("GA1.")))
            return counted(name, parts.back(), kFirst);
        if (own == "utmcc")
            return analyticsCookie(name, text);
        const bool areNumbers = std::ranges::all_of(parts, [](std::string_view part) {
            return !part.empty() && std::ranges::all_of(part, isDigit);
        });
        // Ids of the same form aren't in the order of visits.
        if (parts.size() != 6 || !areNumbers || parts[2] > parts[3] || parts[3] > parts[4] ||
            !secondsOf(parts[2]) || !secondsOf(parts[3]) || !secondsOf(parts[4]))
            return false;
        counted(name, parts[2], kFirst);
        counted(name, parts[3], "Visit before, by a counter of visits");
        counted(name, parts[4], "Last visit, by a counter of visits");
        return true;
    }

    /// The counter's cookies as a parameter of its own: "__utma=...;+__utmz=...".
    bool analyticsCookie(const std::string &name, std::string_view text) {
        constexpr std::string_view kVisits = "__utma=";
        for (std::string_view cookie : split(text, ';')) {
            cookie.remove_prefix(std::min(cookie.find_first_not_of("+ "), cookie.size()));
            if (cookie.starts_with(kVisits))
                return analytics({}, name, cookie.substr(kVisits.size()));
        }
        return false;
    }

    static std::optional<ReadTime> secondsOf(std::string_view digits) {
        auto read = timeOfNumber(digits);
        return read && read->rule == kUnixSeconds ? read : std::nullopt;
    }

    bool counted(const std::string &name, std::string_view digits, std::string_view what) {
        const auto read = secondsOf(digits);
        if (read)
            add(name, timeText(read->utc), fmt::format("{}, {}", what, read->rule));
        return read.has_value();
    }

    /// Whether the number that begins there is less than 0. A hyphen between words is no sign.
    static bool hasSign(std::string_view text, std::size_t begin) {
        return begin > 0 && text[begin - 1] == '-' &&
               (begin == 1 || !isLetterOrDigit(text[begin - 2]));
    }

    /// The word in front of a number: of `TM=1299006630` and `"time": 1299006630`.
    static std::string_view nameBefore(std::string_view text, std::size_t begin) {
        constexpr std::string_view kAround = " \"'\\";
        const auto cut = [&text](std::string_view signs) {
            text = text.substr(0, text.find_last_not_of(signs) + 1);
        };
        text = text.substr(0, begin);
        cut(kAround);
        if (!text.ends_with('=') && !text.ends_with(':'))
            return {};
        text.remove_suffix(1);
        cut(kAround);
        std::size_t from = text.size();
        while (from > 0 && (isLetterOrDigit(text[from - 1]) || text[from - 1] == '_'))
            --from;
        return text.substr(from);
    }

    /// Numbers between other characters.
    void pieces(std::string_view own, const std::string &name, std::string_view text) {
        constexpr std::size_t kFewestDigits = 10;
        for (std::size_t at = 0; at < text.size() && m_values.size() < kMostDecodedValues;) {
            const std::size_t begin = at;
            while (at < text.size() && isLetterOrDigit(text[at]))
                ++at;
            const std::string_view piece = text.substr(begin, at - begin);
            if (piece.size() >= kFewestDigits && std::ranges::all_of(piece, isDigit) &&
                !hasSign(text, begin)) {
                const std::string_view before = nameBefore(text, begin);
                time(before.empty() ? own : before, name, piece);
            }
            at += at == begin ? 1 : 0;
        }
    }

    void pathTimes(const std::string &outer, const RoughAddress &parts) {
        for (const ReadTime &read : timesOfIds(parts.host, parts.path))
            add(within(outer, "path"), timeText(read.utc), read.rule);
        for (const std::string_view piece : split(parts.path, '/'))
            if (const auto read = timeOfUuid(piece))
                add(within(outer, "path"), timeText(read->utc), read->rule);
    }

    std::string m_field;
    std::vector<DecodedValue> m_values;
};

} // namespace

std::vector<DecodedValue> decodedAddress(std::string_view field, std::string_view address) {
    Decoder decoder(field);
    decoder.address({}, beginningOf(address, kMostDecodedBytes), 0);
    return decoder.take();
}

/// Without its escapes an address has one value for sure where no sign stands in it that may have
/// been coded and may not.
std::vector<DecodedValue> decodedAddress(std::string_view field, std::string_view address,
                                         std::string_view stored) {
    if (const auto raw = rawAddressOf(address, stored))
        return decodedAddress(field, *raw);
    const std::size_t query = std::min(address.find('?'), address.size());
    const std::string_view behind = address.substr(std::min(query + 1, address.size()));
    const bool isSure = behind.find_first_of("&;+#%?") == std::string_view::npos &&
                        behind.find('=') == behind.rfind('=');
    return decodedAddress(field, isSure ? address : address.substr(0, query));
}

std::vector<DecodedValue> decodedText(std::string_view field, std::string_view text,
                                      std::string_view name) {
    Decoder decoder(field);
    const std::string_view looked = beginningOf(text, kMostDecodedBytes);
    if (!decoder.address({}, looked, 0))
        decoder.pairsOrText(name, looked);
    return decoder.take();
}

} // namespace nv
