#include "address/QueryEncoding.h"

#include "base/Text.h"

#include <unicode/ucnv.h>
#include <unicode/unistr.h>
#include <unicode/utf16.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>

namespace nv {

namespace {

/// How browsers write a charset that pages name.
struct Encoder {
    std::string_view label;
    std::string_view name;    ///< ICU's
    char16_t refused = 0;     ///< what ICU has and browsers haven't
    bool isMinusWide = false; ///< U+2212 is written as U+FF0D
    bool hasShifts = false;   ///< control bytes change what bytes mean
};

// Other labels are ICU's own. They are not those for reading, which has supersets (gb18030 for
// gbk).
constexpr std::array<Encoder, 18> kEncoders = {{
    {"iso-8859-1", "windows-1252"},
    {"latin1", "windows-1252"},
    {"us-ascii", "windows-1252"},
    {"ascii", "windows-1252"},
    {"iso-8859-9", "windows-1254"},
    {"iso-8859-11", "windows-874"},
    {"tis-620", "windows-874"},
    {"gb2312", "windows-936", 0xE5E5},
    {"gbk", "windows-936", 0xE5E5},
    {"gb18030", "gb18030", 0xE5E5},
    {"big5", "Big5-HKSCS"},
    {"ks_c_5601-1987", "windows-949"},
    {"euc-kr", "windows-949"},
    {"shift_jis", "windows-31j", 0, true},
    {"sjis", "windows-31j", 0, true},
    {"x-sjis", "windows-31j", 0, true},
    {"euc-jp", "EUC-JP", 0, true},
    {"iso-2022-jp", "ISO-2022-JP", 0, true, true},
}};

constexpr std::size_t kLongestLabel = 40;
constexpr char16_t kMinus = 0x2212;
constexpr char16_t kWideMinus = 0xFF0D;
constexpr char16_t kReplacement = 0xFFFD;

using Converter = std::unique_ptr<UConverter, decltype(&ucnv_close)>;

/// ICU would look for files of other names.
bool isLabel(std::string_view charset) {
    return charset.size() <= kLongestLabel && std::ranges::all_of(charset, [](char c) {
               return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
                      c == '-' || c == '_' || c == ':';
           });
}

Encoder encoderOf(std::string_view charset) {
    const auto *row = std::ranges::find_if(kEncoders, [charset](const Encoder &encoder) {
        return equalsNoCase(encoder.label, charset);
    });
    return row == kEncoders.end() ? Encoder{charset, charset} : *row;
}

/// Whether an address is written in it as in ASCII: otherwise nobody could have sent it.
bool keepsAscii(UConverter *converter) {
    constexpr std::u16string_view kText = u"a?b=%20&C";
    std::array<char, 4 * kText.size()> bytes{};
    UErrorCode status = U_ZERO_ERROR;
    const auto length = ucnv_fromUChars(converter, bytes.data(), bytes.size(), kText.data(),
                                        static_cast<std::int32_t>(kText.size()), &status);
    return U_SUCCESS(status) && length == static_cast<std::int32_t>(kText.size()) &&
           std::equal(kText.begin(), kText.end(), bytes.begin());
}

/// Null for what is written in UTF-8.
Converter converterOf(std::string_view charset, const Encoder &encoder) {
    Converter converter(nullptr, &ucnv_close);
    if (charset.empty() || startsWithNoCase(charset, "utf") || !isLabel(charset))
        return converter;
    UErrorCode status = U_ZERO_ERROR;
    converter.reset(ucnv_open(std::string(encoder.name).c_str(), &status));
    if (!converter || !keepsAscii(converter.get()))
        return {nullptr, &ucnv_close};
    ucnv_setFallback(converter.get(), 0);
    ucnv_setFromUCallBack(converter.get(), UCNV_FROM_U_CALLBACK_STOP, nullptr, nullptr, nullptr,
                          &status);
    return U_SUCCESS(status) ? std::move(converter) : Converter(nullptr, &ucnv_close);
}

class QueryWriter {
  public:
    QueryWriter(UConverter *converter, const Encoder &encoder, PercentSet set)
        : m_converter(converter), m_encoder(encoder), m_set(set) {}

    std::string written(icu::UnicodeString text) {
        if (m_encoder.isMinusWide)
            text.findAndReplace(icu::UnicodeString(kMinus), icu::UnicodeString(kWideMinus));
        const char16_t *at = text.getBuffer();
        const char16_t *const end = at + text.length();
        while (at != end) {
            const char16_t *const next =
                std::find_if(at, end, [this](char16_t unit) { return isRefused(unit); });
            while (!convert(at, next))
                refuse(invalidCharacter());
            if (at != end) {
                refuse(m_encoder.hasShifts ? kReplacement : *at);
                ++at;
            }
        }
        finish();
        return std::move(m_out);
    }

  private:
    bool isRefused(char16_t unit) const {
        const bool isShift = unit == 0x0E || unit == 0x0F || unit == 0x1B;
        return m_encoder.hasShifts ? isShift : unit == m_encoder.refused && unit != 0;
    }

    /// Up to `end`, or behind the first character that the charset hasn't: then false.
    bool convert(const char16_t *&at, const char16_t *end, bool isLast = false) {
        std::array<char, 1024> bytes{};
        for (;;) {
            char *to = bytes.data();
            UErrorCode status = U_ZERO_ERROR;
            ucnv_fromUnicode(m_converter, &to, bytes.data() + bytes.size(), &at, end, nullptr,
                             static_cast<UBool>(isLast), &status);
            appendEncoded(m_out, {bytes.data(), static_cast<std::size_t>(to - bytes.data())},
                          m_set);
            if (status != U_BUFFER_OVERFLOW_ERROR)
                return U_SUCCESS(status);
        }
    }

    UChar32 invalidCharacter() {
        std::array<char16_t, 8> units{};
        auto length = static_cast<std::int8_t>(units.size());
        UErrorCode status = U_ZERO_ERROR;
        ucnv_getInvalidUChars(m_converter, units.data(), &length, &status);
        if (U_FAILURE(status) || length < 1)
            return kReplacement;
        return length > 1 && U16_IS_LEAD(units[0]) ? U16_GET_SUPPLEMENTARY(units[0], units[1])
                                                   : static_cast<UChar32>(units[0]);
    }

    /// Back to where bytes mean ASCII.
    void finish() {
        const char16_t nothing = 0;
        const char16_t *at = &nothing;
        convert(at, at, true);
        ucnv_resetFromUnicode(m_converter);
    }

    /// The number of the character in place of it.
    void refuse(UChar32 code) {
        finish();
        m_out += "%26%23" + std::to_string(code) + "%3B";
    }

    UConverter *m_converter;
    const Encoder &m_encoder;
    PercentSet m_set;
    std::string m_out;
};

} // namespace

std::string encodedQuery(std::string_view text, PercentSet set, std::string_view charset) {
    const bool isAscii = std::ranges::all_of(text, [](char c) { return (c & 0x80) == 0; });
    if (isAscii && !containsNoCase(charset, "2022")) // in which even some of ASCII can't be had
        return percentEncoded(text, set);
    const Encoder encoder = encoderOf(charset);
    const Converter converter = converterOf(charset, encoder);
    if (!converter)
        return percentEncoded(text, set);
    const icu::StringPiece piece(text.data(), static_cast<std::int32_t>(text.size()));
    return QueryWriter(converter.get(), encoder, set).written(icu::UnicodeString::fromUTF8(piece));
}

} // namespace nv
