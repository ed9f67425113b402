#pragma once

#include "views/hex/NeedleSearch.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace nv {

/// The spellings of a search as bytes: in UTF-8, UTF-16 of both orders and Windows-1252, which has
/// Latin-1 in it, in capital and small letters.
class HexHits {
  public:
    explicit HexHits(const std::vector<std::string> &forms);

    bool isEmpty() const { return !m_search.hasNeedles(); }
    /// Bytes of the longest match there can be.
    std::uint64_t longest() const;
    /// The matches that begin among the first `starts` bytes of the block, from the left, none in
    /// another, by their places in the file; the block lies at `at` there.
    std::vector<HexMatch> in(std::string_view block, std::uint64_t at, std::size_t starts) const;

  private:
    NeedleSearch m_search;
    NeedleSearch m_bigEndian;
};

/// Finds all hits of a file in steps that are short, so that a window goes on meanwhile.
class HexHitScan {
  public:
    static constexpr std::size_t kMostHits = 10'000;
    static constexpr std::uint64_t kStep = std::uint64_t{256} * 1024; ///< bytes

    /// Nothing is looked for.
    HexHitScan() : HexHitScan(std::vector<std::string>(), 0) {}
    HexHitScan(const std::vector<std::string> &forms, std::uint64_t fileSize);

    /// Reads and looks through the next piece. Throws FileFailure.
    void step(const FileReader &file);
    /// It ends where it is.
    void stop() { m_isOver = true; }

    const HexHits &hits() const { return m_hits; }
    /// From the file's start.
    const std::vector<HexMatch> &found() const { return m_found; }
    /// Nothing comes any more.
    bool isOver() const { return m_isOver; }
    /// All of the file was looked through, and all of its hits are there.
    bool isWhole() const { return m_at >= m_size; }

  private:
    HexHits m_hits;
    std::vector<HexMatch> m_found;
    std::uint64_t m_size = 0;
    std::uint64_t m_at = 0; ///< what comes next
    bool m_isOver = false;
};

} // namespace nv
