#include "views/record/Exif.h"

#include "base/Files.h"
#include "base/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <libexif/exif-data.h>

namespace nv {

namespace {

constexpr std::string_view kExifMark("Exif\0\0", 6);
constexpr std::string_view kJpegMark = "\xFF\xD8";
constexpr std::uint64_t kMostBytes = 65534; ///< what a segment of a JPEG file can hold
/// Segments that are passed over before the block of a JPEG file; a profile of colours alone can
/// take a dozen.
constexpr int kMostSegments = 256;
constexpr std::size_t kMostNumbers = 64;  ///< of a value that are shown
constexpr std::size_t kMostChars = 65536; ///< no block holds a longer text

Bytes withMark(const Bytes &tiff) {
    Bytes block(kExifMark.begin(), kExifMark.end());
    block.insert(block.end(), tiff.begin(), tiff.end());
    return block;
}

/// The EXIF segment among those that stand before the picture's own data.
std::optional<Bytes> blockOfJpeg(const FileReader &file) {
    constexpr std::uint64_t kHead = 4; // mark and length, which counts itself
    std::uint64_t at = kJpegMark.size();
    for (int segment = 0; segment < kMostSegments; ++segment) {
        const Bytes head = file.read(at, kHead);
        if (head.size() < kHead || head[0] != 0xFF)
            return std::nullopt;
        if (head[1] == 0xFF) { // filling
            ++at;
            continue;
        }
        const std::uint64_t length = (std::uint64_t{head[2]} << 8) | head[3];
        const bool dataBegins = head[1] == 0xDA || head[1] == 0xD9;
        if (dataBegins || length < 2)
            return std::nullopt;
        if (head[1] == 0xE1) {
            Bytes block = file.read(at + kHead, length - 2);
            if (ByteView(block).raw().starts_with(kExifMark))
                return block;
        }
        at += 2 + length;
    }
    return std::nullopt;
}

// Values are put in words here and not by the library, which translates them to the language of
// the machine: two examiners have to read the same.

std::string rational(std::int64_t numerator, std::int64_t denominator) {
    if (denominator == 1)
        return std::to_string(numerator);
    return fmt::format("{}/{}", numerator, denominator);
}

std::optional<std::string> numberAt(const ExifEntry &entry, ByteView bytes, std::size_t index) {
    const ExifByteOrder order = exif_data_get_byte_order(entry.parent->parent);
    const std::size_t size = exif_format_get_size(entry.format);
    if (size == 0 || !bytes.has(index * size, size))
        return std::nullopt;
    const unsigned char *at = entry.data + index * size; // has() covers it
    switch (entry.format) {
    case EXIF_FORMAT_BYTE:
    case EXIF_FORMAT_UNDEFINED:
        return std::to_string(*at);
    case EXIF_FORMAT_SBYTE:
        return std::to_string(static_cast<int>(static_cast<signed char>(*at)));
    case EXIF_FORMAT_SHORT:
        return std::to_string(exif_get_short(at, order));
    case EXIF_FORMAT_SSHORT:
        return std::to_string(exif_get_sshort(at, order));
    case EXIF_FORMAT_LONG:
        return std::to_string(exif_get_long(at, order));
    case EXIF_FORMAT_SLONG:
        return std::to_string(exif_get_slong(at, order));
    case EXIF_FORMAT_RATIONAL: {
        const ExifRational value = exif_get_rational(at, order);
        return rational(value.numerator, value.denominator);
    }
    case EXIF_FORMAT_SRATIONAL: {
        const ExifSRational value = exif_get_srational(at, order);
        return rational(value.numerator, value.denominator);
    }
    default:
        return std::nullopt;
    }
}

std::string numbersOf(const ExifEntry &entry, ByteView bytes) {
    std::string text;
    for (std::size_t at = 0; at < entry.components; ++at) {
        const auto value = numberAt(entry, bytes, at);
        if (!value)
            break;
        if (at == kMostNumbers)
            return text + " \u2026";
        text += text.empty() ? *value : " " + *value;
    }
    return text;
}

bool isWriting(std::string_view bytes) {
    return !bytes.empty() &&
           std::ranges::all_of(bytes, [](char c) { return c >= 0x20 && c < 0x7F; });
}

std::string textIn(ByteView bytes) {
    const std::string_view text = bytes.untilZero(0).raw().substr(0, kMostChars);
    return std::string(trim(decodeText(text)));
}

/// Bytes without a declared meaning: versions and comments are writing, others numbers.
std::string undefinedText(const ExifEntry &entry, ByteView bytes) {
    constexpr std::size_t kCharsetName = 8; // stands before comments
    if (entry.tag == EXIF_TAG_USER_COMMENT && bytes.size() >= kCharsetName)
        return textIn(bytes.from(kCharsetName));
    const std::string_view writing = bytes.untilZero(0).raw();
    return isWriting(writing) && writing.size() > 1 ? textIn(bytes) : numbersOf(entry, bytes);
}

std::string textOfEntry(const ExifEntry &entry) {
    if (!entry.data || !entry.parent || !entry.parent->parent)
        return {};
    const ByteView bytes(std::span(entry.data, entry.size));
    if (entry.format == EXIF_FORMAT_ASCII)
        return textIn(bytes);
    if (entry.format == EXIF_FORMAT_UNDEFINED)
        return undefinedText(entry, bytes);
    return numbersOf(entry, bytes);
}

} // namespace

std::optional<Bytes> exifBlockOf(const std::filesystem::path &path) {
    const FileReader file(path);
    const Bytes head = file.read(0, 4);
    const std::string_view mark = ByteView(head).raw();
    if (mark.starts_with(kJpegMark))
        return blockOfJpeg(file);
    if (mark == std::string_view("II*\0", 4) || mark == std::string_view("MM\0*", 4))
        return withMark(file.read(0, kMostBytes - kExifMark.size()));
    return std::nullopt;
}

void ExifPicture::Release::operator()(_ExifData *data) const {
    exif_data_unref(data);
}

ExifPicture::ExifPicture(const std::filesystem::path &file) {
    const auto block = exifBlockOf(file);
    if (!block)
        return;
    m_data.reset(exif_data_new());
    if (!m_data)
        return;
    // Else the library leaves out tags that it has no name for, and adds values that the picture
    // doesn't have.
    exif_data_unset_option(m_data.get(), EXIF_DATA_OPTION_IGNORE_UNKNOWN_TAGS);
    exif_data_unset_option(m_data.get(), EXIF_DATA_OPTION_FOLLOW_SPECIFICATION);
    exif_data_set_option(m_data.get(), EXIF_DATA_OPTION_DONT_CHANGE_MAKER_NOTE);
    exif_data_load_data(m_data.get(), block->data(), static_cast<unsigned int>(block->size()));
}

std::string ExifPicture::valueOf(std::uint16_t tag, bool gps) const {
    constexpr std::array<ExifIfd, 3> kPicture = {EXIF_IFD_0, EXIF_IFD_EXIF,
                                                 EXIF_IFD_INTEROPERABILITY};
    constexpr std::array<ExifIfd, 1> kPosition = {EXIF_IFD_GPS};
    if (!m_data)
        return {};
    const std::span<const ExifIfd> directories =
        gps ? std::span<const ExifIfd>(kPosition) : kPicture;
    for (const ExifIfd directory : directories)
        if (const ExifEntry *entry =
                exif_content_get_entry(m_data->ifd[directory], static_cast<ExifTag>(tag)))
            return textOfEntry(*entry);
    return {};
}

std::string Exif::getEXIFValue(std::string_view tagName, const ExifPicture &image) {
    const auto names = exifTagNames();
    const auto found = std::ranges::find(names, tagName, &ExifTagName::name);
    return found == names.end() ? std::string() : image.valueOf(found->tag, isGpsName(found->name));
}

} // namespace nv
