#include "markup/Charsets.h"

#include "base/Text.h"

#include <unicode/ucnv_cb.h>
#include <unicode/ucnv_err.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>

namespace nv {

namespace {

struct WebEncoding {
    std::string_view name;
    std::string_view labels; ///< separated by blanks; its name is one as well
};

// Of the Encoding standard, but for those that browsers show nothing of.
constexpr std::array<WebEncoding, 39> kEncodings = {{
    {"utf-8", "unicode-1-1-utf-8 unicode11utf8 unicode20utf8 utf8 x-unicode20utf8"},
    {"utf-16be", "unicodefffe"},
    {"utf-16le", "csunicode iso-10646-ucs-2 ucs-2 unicode unicodefeff utf-16"},
    {"windows-1252", "ansi_x3.4-1968 ascii cp1252 cp819 csisolatin1 ibm819 iso-8859-1 iso-ir-100 "
                     "iso8859-1 iso88591 iso_8859-1 iso_8859-1:1987 l1 latin1 us-ascii x-cp1252"},
    {"windows-1250", "cp1250 x-cp1250"},
    {"windows-1251", "cp1251 x-cp1251"},
    {"windows-1253", "cp1253 x-cp1253"},
    {"windows-1254", "cp1254 csisolatin5 iso-8859-9 iso-ir-148 iso8859-9 iso88599 iso_8859-9 "
                     "iso_8859-9:1989 l5 latin5 x-cp1254"},
    {"windows-1255", "cp1255 x-cp1255"},
    {"windows-1256", "cp1256 x-cp1256"},
    {"windows-1257", "cp1257 x-cp1257"},
    {"windows-1258", "cp1258 x-cp1258"},
    {"windows-874", "dos-874 iso-8859-11 iso8859-11 iso885911 tis-620"},
    {"iso-8859-2", "csisolatin2 iso-ir-101 iso8859-2 iso88592 iso_8859-2 iso_8859-2:1987 l2 "
                   "latin2"},
    {"iso-8859-3", "csisolatin3 iso-ir-109 iso8859-3 iso88593 iso_8859-3 iso_8859-3:1988 l3 "
                   "latin3"},
    {"iso-8859-4", "csisolatin4 iso-ir-110 iso8859-4 iso88594 iso_8859-4 iso_8859-4:1988 l4 "
                   "latin4"},
    {"iso-8859-5", "csisolatincyrillic cyrillic iso-ir-144 iso8859-5 iso88595 iso_8859-5 "
                   "iso_8859-5:1988"},
    {"iso-8859-6", "arabic asmo-708 csiso88596e csiso88596i csisolatinarabic ecma-114 "
                   "iso-8859-6-e iso-8859-6-i iso-ir-127 iso8859-6 iso88596 iso_8859-6 "
                   "iso_8859-6:1987"},
    {"iso-8859-7", "csisolatingreek ecma-118 elot_928 greek greek8 iso-ir-126 iso8859-7 iso88597 "
                   "iso_8859-7 iso_8859-7:1987 sun_eu_greek"},
    {"iso-8859-8", "csiso88598e csisolatinhebrew hebrew iso-8859-8-e iso-ir-138 iso8859-8 "
                   "iso88598 iso_8859-8 iso_8859-8:1988 visual"},
    {"iso-8859-8-i", "csiso88598i logical"},
    {"iso-8859-10", "csisolatin6 iso-ir-157 iso8859-10 iso885910 l6 latin6"},
    {"iso-8859-13", "iso8859-13 iso885913"},
    {"iso-8859-14", "iso8859-14 iso885914"},
    {"iso-8859-15", "csisolatin9 iso8859-15 iso885915 iso_8859-15 l9"},
    {"iso-8859-16", ""},
    {"ibm866", "866 cp866 csibm866"},
    {"koi8-r", "cskoi8r koi koi8 koi8_r"},
    {"koi8-u", "koi8-ru"},
    {"macintosh", "csmacintosh mac x-mac-roman"},
    {"x-mac-cyrillic", "x-mac-ukrainian"},
    {"gbk", "chinese csgb2312 csiso58gb231280 gb2312 gb_2312 gb_2312-80 iso-ir-58 x-gbk"},
    {"gb18030", ""},
    {"big5", "big5-hkscs cn-big5 csbig5 x-x-big5"},
    {"euc-jp", "cseucpkdfmtjapanese x-euc-jp"},
    {"iso-2022-jp", "csiso2022jp"},
    {"shift_jis", "csshiftjis ms932 ms_kanji shift-jis sjis windows-31j x-sjis"},
    {"euc-kr", "cseuckr csksc56011987 iso-ir-149 korean ks_c_5601-1987 ks_c_5601-1989 ksc5601 "
               "ksc_5601 windows-949"},
    {"x-user-defined", ""},
}};

// Where ICU calls another encoding by the standard's name.
constexpr std::array<std::pair<std::string_view, std::string_view>, 7> kNamesOfIcu = {{
    {"gbk", "gb18030"},
    {"big5", "Big5-HKSCS"},
    {"shift_jis", "windows-31j"},
    {"euc-kr", "windows-949"},
    {"iso-8859-8-i", "iso-8859-8"},
    {"koi8-u", "us-ascii"}, // the rest by a table
    {"x-user-defined", "us-ascii"},
}};

bool hasWord(std::string_view list, std::string_view word) {
    for (std::size_t at = 0; (at = list.find(word, at)) != std::string_view::npos; ++at) {
        const std::size_t end = at + word.size();
        if ((at == 0 || list[at - 1] == ' ') && (end == list.size() || list[end] == ' ') &&
            word.find(' ') == std::string_view::npos)
            return true;
    }
    return false;
}

constexpr std::size_t kUpperHalf = 128;
/// What bytes from 0x80 on stand for.
using UpperHalf = std::array<UChar, kUpperHalf>;

UpperHalf userDefined() {
    UpperHalf table{};
    for (std::size_t at = 0; at < table.size(); ++at)
        table[at] = static_cast<UChar>(0xF780 + at);
    return table;
}

/// ICU's has frames of tables where the standard has letters of Belarus.
UpperHalf koi8u() {
    UpperHalf table{};
    std::array<char, kUpperHalf> bytes{};
    for (std::size_t at = 0; at < bytes.size(); ++at)
        bytes[at] = static_cast<char>(kUpperHalf + at);
    UErrorCode status = U_ZERO_ERROR;
    const Converter converter(ucnv_open("koi8-u", &status), &ucnv_close);
    ucnv_toUChars(converter.get(), table.data(), static_cast<std::int32_t>(table.size()),
                  bytes.data(), static_cast<std::int32_t>(bytes.size()), &status);
    table[0xAE - kUpperHalf] = 0x045E;
    table[0xBE - kUpperHalf] = 0x040E;
    return table;
}

const UpperHalf *upperHalfOf(std::string_view encoding) {
    static const UpperHalf ofKoi = koi8u();
    static const UpperHalf ofUser = userDefined();
    if (encoding == "koi8-u")
        return &ofKoi;
    return encoding == "x-user-defined" ? &ofUser : nullptr;
}

/// As ICU calls it for bytes that the converter doesn't know.
void U_CALLCONV fromTable(const void *context, UConverterToUnicodeArgs *args, const char *bytes,
                          std::int32_t count, UConverterCallbackReason reason, UErrorCode *status) {
    if (reason > UCNV_IRREGULAR)
        return; // no bytes, but the converter's own life
    const auto byte = static_cast<unsigned char>(count > 0 ? *bytes : 0);
    if (count != 1 || byte < kUpperHalf)
        return UCNV_TO_U_CALLBACK_SUBSTITUTE(nullptr, args, bytes, count, reason, status);
    const UChar unit = (*static_cast<const UpperHalf *>(context))[byte - kUpperHalf];
    *status = U_ZERO_ERROR;
    ucnv_cbToUWriteUChars(args, &unit, 1, 0, status);
}

/// Chinese browsers and pages have the sign of the euro there.
void U_CALLCONV withEuro(const void *, UConverterToUnicodeArgs *args, const char *bytes,
                         std::int32_t count, UConverterCallbackReason reason, UErrorCode *status) {
    constexpr UChar kEuro = 0x20AC;
    if (reason > UCNV_IRREGULAR)
        return;
    if (count != 1 || static_cast<unsigned char>(*bytes) != 0x80)
        return UCNV_TO_U_CALLBACK_SUBSTITUTE(nullptr, args, bytes, count, reason, status);
    *status = U_ZERO_ERROR;
    ucnv_cbToUWriteUChars(args, &kEuro, 1, 0, status);
}

void completeConverter(UConverter *converter, std::string_view encoding) {
    UErrorCode status = U_ZERO_ERROR;
    if (const UpperHalf *table = upperHalfOf(encoding))
        ucnv_setToUCallBack(converter, &fromTable, table, nullptr, nullptr, &status);
    else if (encoding == "gbk" || encoding == "gb18030")
        ucnv_setToUCallBack(converter, &withEuro, nullptr, nullptr, nullptr, &status);
}

} // namespace

std::string_view webEncodingOf(std::string_view label) {
    const std::string wanted = toLower(trim(label));
    if (wanted.empty())
        return {};
    const auto *found = std::ranges::find_if(kEncodings, [&wanted](const WebEncoding &encoding) {
        return encoding.name == wanted || hasWord(encoding.labels, wanted);
    });
    return found == kEncodings.end() ? std::string_view() : found->name;
}

Converter converterOf(std::string_view charset) {
    const std::string_view encoding = webEncodingOf(charset);
    const auto *row =
        std::ranges::find(kNamesOfIcu, encoding, &decltype(kNamesOfIcu)::value_type::first);
    const std::string name(row != kNamesOfIcu.end() ? row->second
                           : encoding.empty()       ? charset
                                                    : encoding);
    UErrorCode status = U_ZERO_ERROR;
    Converter converter(ucnv_open(name.c_str(), &status), &ucnv_close);
    if (converter)
        completeConverter(converter.get(), encoding);
    return converter;
}

std::string convert(std::string_view bytes, UConverter *converter) {
    UErrorCode status = U_ZERO_ERROR;
    const icu::UnicodeString text(bytes.data(), static_cast<std::int32_t>(bytes.size()), converter,
                                  status);
    std::string utf8;
    return U_SUCCESS(status) ? text.toUTF8String(utf8) : utf8;
}

} // namespace nv
