#include "address/AddressText.h"

#include "base/Text.h"

#include <unicode/unistr.h>

#include <cstdint>

namespace nv {

namespace {

constexpr std::string_view kTabsAndBreaks = "\t\n\r";

bool isControlOrBlank(char c) {
    return static_cast<unsigned char>(c) <= 0x20;
}

std::string validUtf8(std::string_view text) {
    const icu::StringPiece piece(text.data(), static_cast<std::int32_t>(text.size()));
    std::string out;
    return icu::UnicodeString::fromUTF8(piece).toUTF8String(out);
}

} // namespace

std::string addressText(std::string_view text) {
    while (!text.empty() && isControlOrBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isControlOrBlank(text.back()))
        text.remove_suffix(1);
    std::string out = isUtf8(text) ? std::string(text) : validUtf8(text);
    if (out.find_first_of(kTabsAndBreaks) != std::string::npos)
        std::erase_if(out, [](char c) { return kTabsAndBreaks.find(c) != std::string_view::npos; });
    return out;
}

} // namespace nv
