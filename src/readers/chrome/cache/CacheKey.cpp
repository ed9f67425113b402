#include "readers/chrome/cache/CacheKey.h"

#include <algorithm>

namespace nv {

namespace {

constexpr std::string_view kPiece = "Range_";
constexpr std::string_view kSites = "_dk_";

bool take(std::string_view &text, std::string_view prefix) {
    if (!text.starts_with(prefix))
        return false;
    text.remove_prefix(prefix.size());
    return true;
}

/// A whole number with "/" after it; empty when the text begins otherwise.
std::string_view takeFigure(std::string_view &text) {
    const std::size_t end = text.find('/');
    const std::string_view figure = text.substr(0, end);
    if (end == std::string_view::npos || figure.empty() ||
        !std::ranges::all_of(figure, [](char c) { return c >= '0' && c <= '9'; }))
        return {};
    text.remove_prefix(end + 1);
    return figure;
}

/// What a piece has after the URL: ":" 16 digits or fewer ":" number.
void dropPart(std::string_view &url) {
    for (int colons = 0; colons < 2; ++colons)
        if (const std::size_t at = url.rfind(':'); at != std::string_view::npos)
            url = url.substr(0, at);
}

/// Up to the last blank, after which the URL stands.
std::string partitionIn(std::string_view sites) {
    while (take(sites, "s_") || take(sites, "cn_") || take(sites, " "))
        continue;
    return std::string(sites.substr(0, sites.find(' ')));
}

std::uint32_t pairAt(std::string_view key, std::size_t at) {
    return static_cast<std::uint8_t>(key[at]) |
           static_cast<std::uint32_t>(static_cast<std::uint8_t>(key[at + 1])) << 8;
}

/// With its sign, as the browser takes it.
std::uint32_t charAt(std::string_view key, std::size_t at) {
    return static_cast<std::uint32_t>(static_cast<std::int32_t>(static_cast<std::int8_t>(key[at])));
}

/// The one to three characters after the last four.
std::uint32_t withRest(std::uint32_t hash, std::string_view rest) {
    switch (rest.size()) {
    case 3:
        hash += pairAt(rest, 0);
        hash ^= hash << 16;
        hash ^= charAt(rest, 2) << 18;
        return hash + (hash >> 11);
    case 2:
        hash += pairAt(rest, 0);
        hash ^= hash << 11;
        return hash + (hash >> 17);
    case 1:
        hash += charAt(rest, 0);
        hash ^= hash << 10;
        return hash + (hash >> 1);
    default:
        return hash;
    }
}

} // namespace

ChromeCacheKey chromeCacheKeyOf(std::string_view key) {
    ChromeCacheKey parts;
    const bool isPiece = take(key, kPiece);
    const std::string_view first = takeFigure(key);
    const std::string_view second = first.empty() ? first : takeFigure(key);
    const std::string_view upload = second.empty() ? first : second;
    if (upload != "0")
        parts.upload = upload;
    if (take(key, kSites)) {
        const std::size_t blank = key.rfind(' ');
        const std::string_view url = blank == std::string_view::npos ? key : key.substr(blank + 1);
        parts.partition = blank == std::string_view::npos ? "" : partitionIn(key.substr(0, blank));
        key = url;
    }
    if (isPiece)
        dropPart(key);
    parts.url = key;
    return parts;
}

std::uint32_t chromeKeyHash(std::string_view key) {
    auto hash = static_cast<std::uint32_t>(key.size());
    std::size_t at = 0;
    for (; key.size() - at >= 4; at += 4) {
        hash += pairAt(key, at);
        hash = (hash << 16) ^ (pairAt(key, at + 2) << 11) ^ hash;
        hash += hash >> 11;
    }
    hash = withRest(hash, key.substr(at));
    hash ^= hash << 3;
    hash += hash >> 5;
    hash ^= hash << 4;
    hash += hash >> 17;
    hash ^= hash << 25;
    return hash + (hash >> 6);
}

} // namespace nv
