#pragma once

#include "base/ByteView.h"
#include "readers/opera/CacheField.h"

#include <cstdint>
#include <functional>
#include <optional>

namespace nv {

/// Follows the walk over a cache index and finds what it steps over without a field of any kind:
/// garbage, in which records may be lost.
class CacheGaps {
  public:
    /// Gets each gap, from its first byte to the one after its last.
    using Tell = std::function<void(std::uint64_t from, std::uint64_t end)>;

    CacheGaps(ByteView file, Tell tell);

    /// The walk goes on by the byte at `at`.
    void stepsOver(std::uint64_t at);
    /// The walk takes the field at `at`.
    void takes(const OperaField &field, std::uint64_t at);
    /// What the walk has lost of the record in hand is told elsewhere.
    void isTold() { m_openedAt.reset(); }
    void ends();

  private:
    std::uint64_t lengthAt(std::uint64_t at) const;
    std::uint64_t lengthOfOther(std::uint64_t at) const;
    void opens(std::uint64_t at);
    void comesTo(std::uint64_t at);
    void closeGap(std::uint64_t end);
    void closeRecord(std::uint64_t end);

    ByteView m_file;
    Tell m_tell;
    std::uint64_t m_otherAt = 0;  ///< the last field of another kind that was met
    std::uint64_t m_otherEnd = 0; ///< and the byte after it
    std::optional<std::uint64_t> m_gapAt;
    std::optional<std::uint64_t> m_openedAt; ///< a record that has no URL yet
    std::uint64_t m_recordAt = 0;
    std::optional<std::uint64_t> m_recordEnd; ///< where the record at m_recordAt says that it ends
    bool m_hasLengths = false;                ///< one has kept its word
};

} // namespace nv
