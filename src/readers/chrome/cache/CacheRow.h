#pragma once

#include "readers/Reader.h"
#include "readers/chrome/cache/CacheKey.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace nv {

// What the records of all of Chromium's caches have in common, whichever way they lie on the disk.

/// Where an entry and its body lie.
struct ChromeEntryPlace {
    std::filesystem::path folder;
    std::string file;           ///< of that folder, with the body
    std::uint64_t bodyAt = 0;   ///< 0-based; where the body is in pieces, the place of the first
    std::uint64_t bodySize = 0; ///< as it is stored, in bytes
    std::optional<std::uint64_t> entryAt{}; ///< of the entry in its file
};

/// A record of the entry with that key (as its bytes are) and that first stream: the head of the
/// answer, or what a service worker's cache keeps in its place. Its kind is "Chrome Cache" when the
/// key has an address and the stream an answer, otherwise "Chrome Site Cache".
UrlRecord chromeEntryRecord(const ReadContext &ctx, const ChromeEntryPlace &place,
                            std::string_view storedKey, ByteView head);

/// Gives it the address that its key hasn't.
void setChromeAddress(UrlRecord &record, const std::string &url);

/// A key as records have it.
std::string chromeKeyText(std::string_view stored);
/// The address in the key of a script's compiled form; empty for other keys.
std::string compiledScriptIn(std::string_view key);

/// Makes it one of an entry that the browser doesn't know any more.
void makeChromeRemnant(UrlRecord &record, std::string_view foundHow);

/// What "Content-Length" says; 0 without it.
std::uint64_t contentLengthIn(std::string_view headers);

/// Adds to the fact "body" how far the body can be trusted, when a length of the headers says so or
/// the transfer broke off. `size` is that of the body, which has no gaps.
void addBodyDoubts(UrlRecord &record, std::uint64_t size);

} // namespace nv
