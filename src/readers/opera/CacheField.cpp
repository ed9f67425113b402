#include "readers/opera/CacheField.h"

#include "base/Text.h"
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

std::uint64_t bigEndian(ByteView value) {
    std::uint64_t number = 0;
    for (std::uint64_t at = 0; at < value.size(); ++at)
        number = number << 8 | value.u8(at);
    return number;
}

} // namespace

std::optional<OperaField> operaFieldAt(ByteView file, std::uint64_t at) {
    if (!file.has(at, kValueAt) || !isKnown(file.u16le(at)))
        return std::nullopt;
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
    return SecondsToDate1970(std::bit_cast<std::int32_t>(static_cast<std::uint32_t>(seconds)));
}

} // namespace nv
