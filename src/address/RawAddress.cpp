#include "address/RawAddress.h"

#include "base/Text.h"

#include <algorithm>

namespace nv {

namespace {

bool isOfScheme(char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '+' ||
           c == '-' || c == '.' || c == '@' || c == ':';
}

/// Whole, or without a piece of larger contents behind it, as keys of caches have.
std::optional<std::string_view> givesFrom(std::string_view stored, std::string_view address) {
    if (percentDecode(stored) == address)
        return stored;
    const std::size_t mark = stored.rfind(':');
    if (mark != std::string_view::npos && percentDecode(stored.substr(0, mark)) == address)
        return stored.substr(0, mark);
    return std::nullopt;
}

} // namespace

std::optional<std::string_view> rawAddressOf(std::string_view address, std::string_view stored) {
    constexpr int kMostTries = 8; // each takes as long as the text is
    if (address.empty() || stored.empty())
        return std::nullopt;
    if (stored == address)
        return stored;
    const std::string_view scheme = address.substr(0, address.find(':') + 1);
    std::size_t at = scheme.empty() ? 0 : stored.find(scheme);
    for (int tries = 0; tries < kMostTries && at != std::string_view::npos; ++tries) {
        if (const auto found = givesFrom(stored.substr(at), address))
            return found;
        at = scheme.empty() ? std::string_view::npos : stored.find(scheme, at + 1);
    }
    return std::nullopt;
}

std::optional<RoughAddress> roughAddress(std::string_view text) {
    constexpr std::size_t kLongestScheme = 32;
    const std::size_t scheme = text.find("://");
    if (scheme == std::string_view::npos || scheme == 0 || scheme > kLongestScheme ||
        !std::ranges::all_of(text.substr(0, scheme), isOfScheme))
        return std::nullopt;
    std::string_view rest = text.substr(scheme + 3);
    RoughAddress parts;
    const auto cutFrom = [&rest](char mark) {
        const std::size_t at = rest.find(mark);
        if (at == std::string_view::npos)
            return std::string_view();
        const std::string_view behind = rest.substr(at + 1);
        rest = rest.substr(0, at);
        return behind;
    };
    parts.fragment = cutFrom('#');
    parts.query = cutFrom('?');
    const std::size_t slash = std::min(rest.find('/'), rest.size());
    parts.host = rest.substr(0, slash);
    parts.path = rest.substr(slash);
    return parts;
}

std::string_view takeParameter(std::string_view &parameters) {
    std::size_t end = std::min(parameters.find('&'), parameters.size());
    const std::size_t sign = parameters.substr(0, end).find(';');
    if (sign != std::string_view::npos) {
        const std::string_view next = parameters.substr(sign + 1, end - sign - 1);
        if (const std::size_t equals = next.find_first_of("=;");
            equals != std::string_view::npos && equals > 0 && next[equals] == '=')
            end = sign;
    }
    const std::string_view piece = parameters.substr(0, end);
    parameters.remove_prefix(std::min(end + 1, parameters.size()));
    return piece;
}

std::string parameterText(std::string_view coded) {
    return percentDecode(replaceAll(coded, "+", " "));
}

} // namespace nv
