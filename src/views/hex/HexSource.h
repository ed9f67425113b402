#pragma once

#include "base/Files.h"

#include <cstdint>
#include <filesystem>
#include <string>

namespace nv {

/// Bytes of a row of the hex view.
inline constexpr std::uint64_t kHexRowBytes = 16;

/// A file of any size as rows of 16 bytes. Only what is looked at is read: the last window is kept,
/// so that painting row by row costs one read a screen.
class HexSource {
  public:
    /// Throws FileFailure.
    explicit HexSource(const std::filesystem::path &file) : m_file(file) {}

    const FileReader &file() const { return m_file; }
    std::uint64_t size() const { return m_file.size(); }
    std::uint64_t rowCount() const { return (size() + kHexRowBytes - 1) / kHexRowBytes; }
    /// Digits of the offset column: at least 8.
    int offsetDigits() const;
    /// The bytes of a row, 0-based; fewer in the last one, none after it. Throws FileFailure.
    Bytes row(std::uint64_t index);

  private:
    static constexpr std::uint64_t kWindowBytes = std::uint64_t{64} * 1024;

    FileReader m_file;
    std::uint64_t m_windowAt = 0;
    Bytes m_window;
};

/// Upper-case digits of an offset.
std::string hexOffset(std::uint64_t offset, int digits);
/// "4A 46 49 46".
std::string hexBytes(ByteView bytes);
/// "00000010  4A 46 49 46 ...  JFIF...": at most a row's bytes with their offset, which is the
/// view's place.
std::string hexLine(ByteView bytes, int digits);
/// A character a byte: printable ASCII as it is, a point for every other byte.
std::string hexChars(ByteView bytes);

} // namespace nv
