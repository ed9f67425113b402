#pragma once

#include "base/ByteView.h"
#include "db/hashes/HashValue.h"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace nv {

// The form of a file of hashes (docs/formats/hash-set.md): hashes sorted as bytes, each once, and
// behind them an index by their first two bytes. Numbers are little-endian, eight bytes each.

inline constexpr std::string_view kHashSetExtension = ".nvhash";
inline constexpr std::string_view kHashSetStart = "NVHASHSET form 1";
inline constexpr std::string_view kHashSetEnd = "NVHSEND1";
/// For each two first bytes the place of the first hash, from 0, and at the end their number.
inline constexpr std::size_t kHashIndexEntries = 65537;
inline constexpr std::size_t kHashIndexBytes = kHashIndexEntries * sizeof(std::uint64_t);
inline constexpr std::size_t kMostHashSetText = std::size_t{1} << 20; ///< bytes

/// What a set's hashes stand for.
enum class HashMeaning {
    known,   ///< files that nobody needs to look at
    notable, ///< files that are looked for
};
std::string_view wordOf(HashMeaning meaning);

/// A list that a set was made of.
struct HashListSource {
    std::string file; ///< as it was named
    std::uint64_t size = 0;
    std::string md5;
    std::string sha256;
    std::uint64_t withoutHash = 0; ///< lines

    friend bool operator==(const HashListSource &, const HashListSource &) = default;
};

/// What a file of hashes says of itself.
struct HashSetFacts {
    std::string name;
    HashMeaning meaning = HashMeaning::known;
    std::string added; ///< ISO 8601, UTC
    std::vector<HashListSource> sources;
};

/// As lines, and back. Lines of a later build are passed over.
std::string textOf(const HashSetFacts &facts);
HashSetFacts hashSetFacts(std::string_view text);

/// Where the hashes of one length lie.
struct HashSection {
    std::uint64_t offset = 0; ///< of the first hash in the file
    std::uint64_t count = 0;
    std::uint64_t index = 0; ///< offset of its index
};

/// The last bytes of the file.
struct HashSetTail {
    static constexpr std::size_t kBytes = (3 * 3 + 2) * sizeof(std::uint64_t) + kHashSetEnd.size();

    std::array<HashSection, 3> sections; ///< by the algorithm's place
    std::uint64_t text = 0;              ///< offset of the facts
    std::uint64_t textBytes = 0;
};
std::string bytesOf(const HashSetTail &tail);
/// Without a look at whether the places lie in the file.
HashSetTail tailIn(ByteView bytes);

void appendNumber(std::string &bytes, std::uint64_t number);

} // namespace nv
