#include "reports/case/CodedText.h"

#include "base/Base64.h"

#include <algorithm>
#include <cstdint>

namespace nv {

namespace {

int hexDigit(char c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    const char low = static_cast<char>(c | 0x20);
    return low >= 'a' && low <= 'f' ? low - 'a' + 10 : -1;
}

bool isHexDigit(char c) {
    return hexDigit(c) >= 0;
}

bool isBase64Letter(char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '+' ||
           c == '/' || c == '-' || c == '_';
}

/// From the first digit on; an odd last one goes.
std::string fromHex(std::string_view digits) {
    std::string bytes;
    bytes.reserve(digits.size() / 2);
    for (std::size_t at = 0; at + 1 < digits.size(); at += 2)
        bytes += static_cast<char>(hexDigit(digits[at]) * 16 + hexDigit(digits[at + 1]));
    return bytes;
}

/// At least `shortest` letters.
template <class Is>
std::vector<std::string_view> runsOf(std::string_view text, const Is &is, std::size_t shortest) {
    std::vector<std::string_view> runs;
    for (std::size_t at = 0; at < text.size();) {
        const auto *const begin = text.begin() + static_cast<std::ptrdiff_t>(at);
        const auto size = static_cast<std::size_t>(std::find_if_not(begin, text.end(), is) - begin);
        if (size > 0 && size >= shortest)
            runs.push_back(text.substr(at, size));
        at += std::max<std::size_t>(size, 1);
    }
    return runs;
}

/// Mails and certificates break their lines; blanks in front of the next are part of the break.
std::string withoutBreaks(std::string_view text) {
    std::string joined;
    joined.reserve(text.size());
    bool isBreak = false;
    for (const char c : text) {
        isBreak = c == '\r' || c == '\n' || (isBreak && (c == ' ' || c == '\t'));
        if (!isBreak)
            joined += c;
    }
    return joined;
}

/// The digits of "73 65 63" and "73:65:63", for each such list.
std::vector<std::string> partedPairs(std::string_view text, std::size_t fewest) {
    std::vector<std::string> found;
    std::string digits;
    const auto end = [&] {
        if (digits.size() / 2 >= fewest)
            found.push_back(digits);
        digits.clear();
    };
    for (std::size_t at = 0; at + 1 < text.size();) {
        if (!isHexDigit(text[at]) || !isHexDigit(text[at + 1])) {
            end();
            ++at;
            continue;
        }
        digits += text.substr(at, 2);
        at += 2;
        const bool isParted =
            at < text.size() && (text[at] == ' ' || text[at] == ':' || text[at] == '-');
        if (!isParted)
            end();
        at += isParted ? 1 : 0;
    }
    end();
    return found;
}

} // namespace

std::vector<std::string_view> codedRuns(std::string_view text, std::size_t fewest) {
    return runsOf(text, isBase64Letter, (fewest * 8 + 5) / 6);
}

bool anyReading(std::string_view run, std::size_t fewest, const CodedTest &test) {
    constexpr std::size_t kGroup = 4;
    for (std::size_t from = 0; from < std::min(kGroup, run.size()); ++from)
        if (test(fromBase64(run.substr(from), Base64Letters::ofEither)))
            return true;
    return std::ranges::any_of(runsOf(run, isHexDigit, fewest * 2),
                               [&test](std::string_view digits) {
                                   return test(fromHex(digits)) || test(fromHex(digits.substr(1)));
                               });
}

bool anyCoded(std::string_view text, std::size_t fewest, const CodedTest &test) {
    const auto isIn = [&](std::string_view where) {
        return std::ranges::any_of(codedRuns(where, fewest), [&](std::string_view run) {
            return anyReading(run, fewest, test);
        });
    };
    if (isIn(text))
        return true;
    if (text.find_first_of("\r\n") != std::string_view::npos && isIn(withoutBreaks(text)))
        return true;
    return std::ranges::any_of(partedPairs(text, fewest), [&test](const std::string &digits) {
        return test(fromHex(digits));
    });
}

} // namespace nv
