#include "readers/opera/CacheField.h"

#include "base/Text.h"
#include "readers/BigEndian.h"
#include "time/SourceClocks.h"

#include <algorithm>
#include <array>
#include <bit>
#include <limits>

namespace nv {

namespace {

constexpr std::uint64_t kLengthAt = 2;
constexpr std::uint64_t kValueAt = 3;
constexpr std::uint64_t kLongDate = 8;
constexpr std::uint64_t kShortDate = 4; ///< in versions before 10
constexpr std::uint64_t kShortNumber = 2;

bool isText(OperaTag tag) {
    return tag == OperaTag::url || tag == OperaTag::mimeType || tag == OperaTag::fileName;
}

bool isKnown(std::uint16_t tag) {
    constexpr std::array kTags = {OperaTag::url,  OperaTag::visited,  OperaTag::status,
                                  OperaTag::size, OperaTag::mimeType, OperaTag::fileName};
    return std::ranges::find(kTags, OperaTag{tag}) != kTags.end();
}

/// Dates and numbers have a length of their own; a byte that tells none of those is not believed.
std::uint64_t lengthOf(OperaTag tag, std::uint8_t told) {
    if (isText(tag))
        return told;
    if (tag == OperaTag::visited)
        return told == kShortDate ? kShortDate : kLongDate;
    return told == 1 || told == 4 || told == 8 ? told : kShortNumber;
}

/// Whether a text begins as "http:" does.
bool beginsWithScheme(std::string_view text) {
    constexpr std::size_t kLongestScheme = 12;
    const std::size_t mark = text.substr(0, kLongestScheme).find(':');
    return mark != std::string_view::npos && mark > 0 &&
           std::ranges::all_of(text.substr(0, mark), [](char c) {
               return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '-';
           });
}

/// The field of a URL of more than 255 bytes. Its tag's second byte is the length's higher one, so
/// it is only believed where a URL follows. Passed over, its date would go to the record before it.
std::optional<OperaField> longUrlAt(ByteView file, std::uint64_t at) {
    const std::uint64_t length =
        std::uint64_t{file.u8(at + 1)} << 8 | std::uint64_t{file.u8(at + kLengthAt)};
    const bool isLong = file.u8(at) == static_cast<std::uint8_t>(OperaTag::url) && length > 255;
    if (!isLong || !file.has(at + kValueAt, length) ||
        !beginsWithScheme(file.sub(at + kValueAt, length).raw()))
        return std::nullopt;
    return OperaField{OperaTag::url, file.sub(at + kValueAt, length), false, kValueAt + length};
}

} // namespace

std::optional<OperaField> operaFieldAt(ByteView file, std::uint64_t at) {
    if (!file.has(at, kValueAt))
        return std::nullopt;
    if (!isKnown(file.u16le(at)))
        return longUrlAt(file, at);
    OperaField field;
    field.tag = OperaTag{file.u16le(at)};
    const std::uint64_t wanted = lengthOf(field.tag, file.u8(at + kLengthAt));
    field.value = file.sub(at + kValueAt, std::min(wanted, file.size() - at - kValueAt));
    field.isCut = field.value.size() < wanted;
    field.length = kValueAt + field.value.size();
    return field;
}

std::string textOf(const OperaField &field) {
    return decodeText(field.value.untilZero(0).raw());
}

/// Numbers of two bytes are little-endian as the tags are; browsers write longer ones big-endian.
std::optional<std::uint64_t> numberOf(const OperaField &field) {
    if (field.isCut)
        return std::nullopt;
    return field.value.size() == kShortNumber ? field.value.u16le(0) : bigEndian(field.value);
}

Date dateOf(const OperaField &field) {
    const std::uint64_t seconds = bigEndian(field.value);
    if (field.isCut || seconds == 0 || seconds > std::numeric_limits<std::uint32_t>::max())
        return {};
    return secondsToDate1970(std::bit_cast<std::int32_t>(static_cast<std::uint32_t>(seconds)));
}

} // namespace nv
