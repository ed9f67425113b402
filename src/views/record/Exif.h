#pragma once

#include "base/ByteView.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

struct _ExifData; // NOLINT(bugprone-reserved-identifier): the library calls it so

namespace nv {

/// What a camera or program wrote into a picture. Only the block that holds it, of at most 64 KB,
/// is ever read and taken apart.
class ExifPicture {
  public:
    /// A file that is no picture or has no such block is one without values. Throws FileFailure.
    explicit ExifPicture(const std::filesystem::path &file);

    bool hasData() const { return m_data != nullptr; }
    /// The value as plain text; empty when the picture doesn't have it. `gps` says which of two
    /// tags that share a number is meant.
    std::string valueOf(std::uint16_t tag, bool gps) const;

  private:
    struct Release {
        void operator()(_ExifData *data) const;
    };
    std::unique_ptr<_ExifData, Release> m_data;
};

/// A property of pictures and its number in EXIF and TIFF.
struct ExifTagName {
    std::string_view name;
    std::uint16_t tag;
};

/// The names that can be asked for, in alphabetical order.
std::span<const ExifTagName> exifTagNames();
/// Names of the position group share numbers with others.
inline bool isGpsName(std::string_view name) {
    return name.starts_with("Gps") && name != "GpsIFD";
}

class Exif {
  public:
    /// The text of one tag. The name is compared exactly; one that isn't in the table gives the
    /// empty text, as does a picture without the tag.
    static std::string getEXIFValue(std::string_view tagName, const ExifPicture &image);
};

/// The EXIF block of a JPEG or TIFF file, beginning with "Exif" and two zeros; nothing when there
/// is none. Throws FileFailure.
std::optional<Bytes> exifBlockOf(const std::filesystem::path &path);

} // namespace nv
