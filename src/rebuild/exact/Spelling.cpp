#include "rebuild/exact/Spelling.h"

#include "markup/Utf8.h"
#include "rebuild/exact/PageReferences.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>

namespace nv {

namespace {

bool isLetterOrDigit(std::uint32_t code) {
    return (code >= 'a' && code <= 'z') || (code >= 'A' && code <= 'Z') ||
           (code >= '0' && code <= '9');
}

/// Neither in CSS nor in HTML, quoted or not, do these mean anything.
bool isPlain(std::uint32_t code) {
    return isLetterOrDigit(code) ||
           (code < 0x80 &&
            std::string_view("-._~/:?@!$*+,;%[]#|^{}").find(static_cast<char>(code)) !=
                std::string_view::npos);
}

/// Six digits end an escape, so that nothing depends on what stands behind it.
std::string styleText(std::string_view address) {
    std::string text;
    text.reserve(address.size());
    for (std::size_t at = 0; at < address.size();) {
        const std::uint32_t code = nextCode(address, at);
        if (isPlain(code) || code == '=')
            text += static_cast<char>(code);
        else
            fmt::format_to(std::back_inserter(text), "\\{:06x}", code);
    }
    return text;
}

/// Blanks end an address there, and a comma at its end isn't taken for its own.
std::string candidateText(std::string_view address) {
    std::string text;
    text.reserve(address.size());
    for (std::size_t at = 0; at < address.size(); ++at) {
        const auto code = static_cast<unsigned char>(address[at]);
        const bool isOuterComma = code == ',' && (at == 0 || at + 1 == address.size());
        if (code <= ' ' || isOuterComma)
            fmt::format_to(std::back_inserter(text), "%{:02X}", code);
        else
            text += address[at];
    }
    return text;
}

} // namespace

std::string attributeValue(std::string_view address) {
    std::string text;
    text.reserve(address.size());
    for (std::size_t at = 0; at < address.size();) {
        const std::uint32_t code = nextCode(address, at);
        if (isPlain(code) || code == '(' || code == ')' || code == '\\')
            text += static_cast<char>(code);
        else if (code == '&')
            text += "&amp;";
        else if (code == '\r' || code == 0)
            continue; // no reference stands for these
        else
            fmt::format_to(std::back_inserter(text), "&#{};", code);
    }
    return text;
}

namespace {

bool startsPlain(std::string_view text) {
    return !text.empty() && isPlain(static_cast<unsigned char>(text[0]));
}

bool isInReference(char c) {
    return isLetterOrDigit(static_cast<unsigned char>(c)) || c == '#';
}

/// Whether a character reference without its ";" may stand in front of `at`: a letter, a digit or a
/// "=" behind it would make another one of it, or none.
bool isBehindReference(std::string_view source, const Reference &reference) {
    constexpr std::size_t kFarthest = 4096;
    std::size_t at = std::min(reference.at.begin, source.size());
    const std::size_t first = at > kFarthest ? at - kFarthest : 0;
    if (reference.nested > 0) // its "&" may be written in many ways
        return at > 0 && isInReference(source[at - 1]);
    while (at > first && isInReference(source[at - 1]))
        --at;
    return at > first && source[at - 1] == '&';
}

} // namespace

std::string spelled(const Reference &reference, std::string_view address, std::string_view source) {
    const bool isBehind = isBehindReference(source, reference);
    if (reference.form == RefForm::styleUrl || reference.form == RefForm::styleString) {
        const std::size_t kept = isBehind && startsPlain(address) ? 1 : 0;
        return (kept ? fmt::format("\\{:06x}", static_cast<unsigned>(address[0])) : "") +
               styleText(address.substr(kept));
    }
    std::string text =
        reference.form == RefForm::srcset ? candidateText(address) : std::string(address);
    for (int i = 0; i <= reference.nested; ++i) {
        const bool isOpen = isBehind && startsPlain(text);
        std::string outer = isOpen ? fmt::format("&#{};", static_cast<unsigned>(text[0])) : "";
        outer += attributeValue(std::string_view(text).substr(isOpen ? 1 : 0));
        text = std::move(outer);
    }
    return text;
}

} // namespace nv
