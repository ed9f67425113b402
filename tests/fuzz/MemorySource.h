#pragma once

#include "readers/ByteSource.h"

#include <algorithm>
#include <filesystem>
#include <string_view>

namespace nv::fuzz {

/// Bytes in memory as a file, so that no disk slows the fuzzing down. They must outlive it.
class MemorySource final : public ByteSource {
  public:
    explicit MemorySource(std::string_view bytes) : m_bytes(bytes) {}
    const std::filesystem::path &path() const override { return m_path; }
    std::uint64_t size() const override { return m_bytes.size(); }
    Bytes read(std::uint64_t offset, std::uint64_t count) const override {
        if (offset >= m_bytes.size())
            return {};
        const std::string_view part = m_bytes.substr(offset, count);
        return {part.begin(), part.end()};
    }

  private:
    std::string_view m_bytes;
    std::filesystem::path m_path = "/nowhere";
};

} // namespace nv::fuzz
