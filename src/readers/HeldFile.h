#pragma once

#include "readers/ByteSource.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>

namespace nv {

/// Another source, whose bytes are read at once and kept when they are few: for files of which
/// many small stretches are asked for. The other one must outlive it. Throws FileFailure.
class HeldFile final : public ByteSource {
  public:
    /// `most` in bytes: a larger file is read where it is asked for.
    HeldFile(const ByteSource &file, std::uint64_t most) : m_file(file) {
        if (file.size() > most)
            return;
        m_bytes = file.read(0, file.size());
        m_isHeld = true;
    }

    const std::filesystem::path &path() const override { return m_file.path(); }
    std::uint64_t size() const override { return m_isHeld ? m_bytes.size() : m_file.size(); }
    Bytes read(std::uint64_t offset, std::uint64_t count) const override {
        if (!m_isHeld)
            return m_file.read(offset, count);
        if (offset >= m_bytes.size())
            return {};
        const auto from = m_bytes.begin() + static_cast<std::ptrdiff_t>(offset);
        const auto size = std::min<std::uint64_t>(count, m_bytes.size() - offset);
        return {from, from + static_cast<std::ptrdiff_t>(size)}; // as one block, not byte by byte
    }

  private:
    const ByteSource &m_file;
    Bytes m_bytes;
    bool m_isHeld = false;
};

} // namespace nv
