#include "address/DomainNames.h"

#include "base/Text.h"

#include <unicode/idna.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>

namespace nv {

namespace {

constexpr std::size_t kMaxBytes = 2048;

/// Empty and long labels, and hyphens wherever they stand, are no errors of an address.
constexpr std::uint32_t kPassedOver =
    UIDNA_ERROR_EMPTY_LABEL | UIDNA_ERROR_LABEL_TOO_LONG | UIDNA_ERROR_DOMAIN_NAME_TOO_LONG |
    UIDNA_ERROR_LEADING_HYPHEN | UIDNA_ERROR_TRAILING_HYPHEN | UIDNA_ERROR_HYPHEN_3_4;

struct Mapping {
    UChar32 first;
    UChar32 last;
    UChar32 to; ///< of the first; 0: taken out
};

// What Unicode maps otherwise since the tables of the ICU that systems have now; those of a later
// ICU would never get to see these characters.
constexpr std::array<Mapping, 12> kLaterMappings = {{
    {0x04C0, 0x04C0, 0x04CF},
    {0x10A0, 0x10C5, 0x2D00},
    {0x180E, 0x180E, 0},
    {0x1E9E, 0x1E9E, 0x00DF},
    {0x206A, 0x206F, 0},
    {0x2132, 0x2132, 0x214E},
    {0x2183, 0x2183, 0x2184},
    {0x2F868, 0x2F868, 0x36FC},
    {0x2F874, 0x2F874, 0x5F33},
    {0x2F91F, 0x2F91F, 0x43AB},
    {0x2F95F, 0x2F95F, 0x7AEE},
    {0x2F9BF, 0x2F9BF, 0x45D7},
}};

icu::UnicodeString mapped(std::string_view domain) {
    const icu::StringPiece piece(domain.data(), static_cast<std::int32_t>(domain.size()));
    const icu::UnicodeString text = icu::UnicodeString::fromUTF8(piece);
    icu::UnicodeString out;
    for (std::int32_t at = 0; at < text.length(); at = text.moveIndex32(at, 1)) {
        const UChar32 code = text.char32At(at);
        const auto *row = std::ranges::find_if(kLaterMappings, [code](const Mapping &mapping) {
            return code >= mapping.first && code <= mapping.last;
        });
        if (row == kLaterMappings.end())
            out.append(code);
        else if (row->to != 0)
            out.append(row->to + (code - row->first));
    }
    return out;
}

/// Null where ICU has no data: then only names in ASCII are known.
const icu::IDNA *names() {
    static const std::unique_ptr<icu::IDNA> instance = [] {
        UErrorCode status = U_ZERO_ERROR;
        std::unique_ptr<icu::IDNA> made(icu::IDNA::createUTS46Instance(
            UIDNA_CHECK_BIDI | UIDNA_CHECK_CONTEXTJ | UIDNA_NONTRANSITIONAL_TO_ASCII |
                UIDNA_NONTRANSITIONAL_TO_UNICODE,
            status));
        return U_SUCCESS(status) ? std::move(made) : nullptr;
    }();
    return instance.get();
}

} // namespace

std::optional<std::string> asciiDomain(std::string_view domain) {
    if (std::ranges::all_of(domain, [](char c) { return (c & 0x80) == 0; }))
        return toLower(domain);
    if (domain.size() > kMaxBytes || names() == nullptr)
        return std::nullopt;
    icu::UnicodeString name;
    icu::IDNAInfo info;
    UErrorCode status = U_ZERO_ERROR;
    names()->nameToASCII(mapped(domain), name, info, status);
    if (U_FAILURE(status) || (info.getErrors() & ~kPassedOver) != 0)
        return std::nullopt;
    std::string ascii;
    return name.toUTF8String(ascii);
}

std::optional<std::string> readableDomain(std::string_view domain) {
    if (domain.size() > kMaxBytes || names() == nullptr ||
        toLower(domain).find("xn--") == std::string::npos)
        return std::nullopt;
    icu::UnicodeString name;
    icu::IDNAInfo info;
    UErrorCode status = U_ZERO_ERROR;
    const icu::StringPiece piece(domain.data(), static_cast<std::int32_t>(domain.size()));
    names()->nameToUnicode(icu::UnicodeString::fromUTF8(piece), name, info, status);
    if (U_FAILURE(status) || (info.getErrors() & ~kPassedOver) != 0)
        return std::nullopt;
    std::string readable;
    return name.toUTF8String(readable);
}

} // namespace nv
