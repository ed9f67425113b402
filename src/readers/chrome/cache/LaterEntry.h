#pragma once

#include "readers/chrome/cache/CacheBlockFiles.h"
#include "readers/chrome/cache/CacheRecords.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>

namespace nv {

/// A stream of an entry: what its blocks or its separate file hold.
struct LaterStream {
    ChromeAddressMap address;
    std::uint64_t size = 0;

    /// Most that blocks of the address can hold; of separate files there is none.
    std::uint64_t room() const;
};

/// An entry of Chromium's block caches of versions 2 and 3, in one to four blocks of 256 bytes.
///   entry = hash next:address rankings:address reuse refetch state created:u64@24 length@32
///           key:address size{4}@40 stream:address{4}@56 flags@72 ... key:byte[length]@96
/// Each u32, little-endian.
struct LaterEntry {
    static constexpr std::uint64_t kBlock = 0x100;
    static constexpr std::uint64_t kKeyAt = 96;
    static constexpr std::uint64_t kMostBytes = 4 * kBlock;
    enum State : std::uint32_t { normal = 0, evicted = 1, doomed = 2 };
    enum Flag : std::uint32_t { sparseParent = 1, sparseChild = 2 };
    enum Stream : std::size_t { head = 0, body = 1, further = 2 };

    ChromeAddressMap address;
    std::uint32_t hash = 0;
    std::uint32_t next = 0;
    ChromeAddressMap rankings;
    std::uint32_t state = 0;
    std::int64_t created = 0; ///< microseconds since 1601
    std::uint32_t keyLength = 0;
    ChromeAddressMap longKey; ///< initialised where the key lies outside
    std::array<LaterStream, 4> streams;
    std::uint32_t flags = 0;
    std::string key; ///< as its bytes are

    bool hasItsHash() const;
};

/// Reads entries and streams of one folder.
class LaterEntries {
  public:
    /// Both must outlive this.
    LaterEntries(ChromeBlockFiles &blocks, const Evidence &evidence, std::filesystem::path folder)
        : m_blocks(blocks), m_evidence(evidence), m_folder(std::move(folder)) {}

    /// Nothing when the address leads to no entry with a whole key. Throws EvidenceFailure.
    std::optional<LaterEntry> at(std::uint32_t address);
    std::optional<LaterEntry> at(const ChromeAddressMap &address);
    /// At most `most` bytes of it. Throws EvidenceFailure.
    Bytes read(const LaterStream &stream, std::uint64_t most);
    /// The file that holds a stream's bytes; nothing when it isn't there.
    std::optional<std::filesystem::path> fileOf(const LaterStream &stream) const;
    ChromeBlockFiles &blocks() { return m_blocks; }

    static std::string fileNameOf(const LaterStream &stream);

  private:
    ChromeBlockFiles &m_blocks;
    const Evidence &m_evidence;
    std::filesystem::path m_folder;
};

} // namespace nv
