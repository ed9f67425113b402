#pragma once

#include "base/ByteView.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace nv {

/// Of a body, each of which has a hash of its own.
inline constexpr std::uint64_t kCache2Chunk = std::uint64_t{256} << 10;
/// Later ones are read as this one, which is told.
inline constexpr std::uint32_t kCache2LastVersion = 4;

/// What stands behind the body of an entry of cache2.
struct Cache2Entry {
    std::uint64_t stored = 0; ///< bytes of the body with what the browser made of it
    std::uint64_t body = 0;   ///< those that came from the server
    std::uint64_t size = 0;   ///< of the metadata, in bytes
    bool isHashRight = true;
    std::vector<std::uint16_t> chunks; ///< their hashes

    std::uint32_t version = 0;
    std::uint32_t fetchCount = 0;
    std::uint32_t lastFetched = 0;  ///< seconds since 1970, UTC; 0 is never
    std::uint32_t lastModified = 0; ///< the same
    std::uint32_t frecency = 0;
    std::uint32_t expires = 0; ///< the same; 0xFFFFFFFF is never
    std::uint32_t flags = 0;
    std::string key;            ///< as it stands, undecoded
    std::uint64_t fieldsAt = 0; ///< of the version, in bytes from the metadata's begin
    std::uint64_t keyAt = 0;    ///< the same of the key
    std::vector<std::pair<std::string, std::string>> elements;

    /// Empty when there is none.
    std::string_view element(std::string_view name) const;
    /// Where its value stands, in bytes from the metadata's begin; nothing when there is none.
    std::optional<std::uint64_t> elementAt(std::string_view name) const;
};

/// A key: "O^partitionKey=...,a,:https://host/".
struct Cache2Key {
    std::string_view url;
    std::string originAttributes; ///< "^partitionKey=..."
    bool isAnonymous = false;     ///< asked for without cookies
};

/// The whole key is the address where it isn't built so.
Cache2Key parseCache2Key(std::string_view key);

/// Where the metadata begin, by the last bytes of a file of `size` bytes. Throws
/// std::runtime_error when they can't begin there.
std::uint64_t cache2MetaDataAt(ByteView lastWord, std::uint64_t size);

/// `bytes` are those from the metadata's begin to the end of the file. Throws std::runtime_error
/// and OutOfBytes when they are none.
Cache2Entry parseCache2Entry(ByteView bytes, std::uint64_t stored);

} // namespace nv
