#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace nv {

/// The key by which the browser finds an entry of its cache again.
///   key   = ["Range_"] [figure "/"] [figure "/"] ["_dk_" marks site " " site " "] URL [":" part]
///   marks = ["s_"] ["cn_"]
/// The first figure says whether logins may be sent, the last before the URL which upload was
/// answered. "Range_" and part stand in the block cache's pieces of larger entries alone.
struct ChromeCacheKey {
    std::string url;
    std::string partition; ///< site of the page that it was loaded for; empty in older caches
    std::string upload;    ///< number of the upload; empty for what no upload led to
};

/// Whatever the text is: without any of these parts all of it is the URL.
ChromeCacheKey chromeCacheKeyOf(std::string_view key);

/// The browser's own hash of a key, which is stored beside it.
std::uint32_t chromeKeyHash(std::string_view key);

} // namespace nv
