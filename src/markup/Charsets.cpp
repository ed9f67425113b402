#include "markup/Charsets.h"

#include "base/Text.h"

#include <unicode/unistr.h>

#include <algorithm>
#include <array>
#include <utility>

namespace nv {

namespace {

constexpr std::array<std::pair<std::string_view, std::string_view>, 9> kSupersets = {{
    {"iso-8859-1", "windows-1252"},
    {"latin1", "windows-1252"},
    {"us-ascii", "windows-1252"},
    {"ascii", "windows-1252"},
    {"iso-8859-9", "windows-1254"},
    {"tis-620", "windows-874"},
    {"gb2312", "gb18030"},
    {"gbk", "gb18030"},
    {"ks_c_5601-1987", "windows-949"},
}};

} // namespace

Converter converterOf(std::string_view charset) {
    const auto *superset = std::ranges::find_if(
        kSupersets, [charset](const auto &row) { return equalsNoCase(row.first, charset); });
    const std::string name(superset == kSupersets.end() ? charset : superset->second);
    UErrorCode status = U_ZERO_ERROR;
    return {ucnv_open(name.c_str(), &status), &ucnv_close};
}

std::string convert(std::string_view bytes, UConverter *converter) {
    UErrorCode status = U_ZERO_ERROR;
    const icu::UnicodeString text(bytes.data(), static_cast<std::int32_t>(bytes.size()), converter,
                                  status);
    std::string utf8;
    return U_SUCCESS(status) ? text.toUTF8String(utf8) : utf8;
}

} // namespace nv
