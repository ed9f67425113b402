#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace nv::test {

/// A JPEG file of one EXIF segment and no picture data. All tags stand in its first directory, in
/// little-endian order.
class ExifJpeg {
  public:
    ExifJpeg &ascii(std::uint16_t tag, std::string_view text);
    ExifJpeg &number(std::uint16_t tag, std::uint16_t value);
    ExifJpeg &rational(std::uint16_t tag, std::uint32_t numerator, std::uint32_t denominator);
    ExifJpeg &undefined(std::uint16_t tag, std::string_view bytes);

    /// Where it was taken: degrees, minutes, hundredths of a second, and the letters.
    ExifJpeg &position(std::vector<std::uint32_t> latitude, char northSouth,
                       std::vector<std::uint32_t> longitude, char eastWest);

    /// The directory with its values, as a TIFF file has them.
    std::string tiff() const;
    /// With `before` segments of another kind in front of that of EXIF.
    std::string bytes(int before = 0) const;

  private:
    struct Entry {
        std::uint16_t tag;
        std::uint16_t type;
        std::uint32_t count;
        std::string value;
    };
    static std::string directoryOf(const std::vector<Entry> &entries, std::size_t at);

    std::vector<Entry> m_entries;
    std::vector<Entry> m_position;
};

} // namespace nv::test
