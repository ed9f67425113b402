#include "rebuild/exact/SourceText.h"

#include "base/Text.h"
#include "markup/Charsets.h"
#include "rebuild/exact/BytePlaces.h"

#include <unicode/unistr.h>

#include <array>
#include <utility>

namespace nv {

namespace {

using namespace std::string_view_literals;

constexpr std::array<std::pair<std::string_view, std::string_view>, 2> kWideMarks = {{
    {"\xFF\xFE"sv, "utf-16le"},
    {"\xFE\xFF"sv, "utf-16be"},
}};

/// What decoded the bytes: the mark in front, and the encoding of the rest.
struct Encoding {
    std::string_view mark; ///< what is rewritten begins with it
    std::string charset;
    bool isMarked = true; ///< the bytes begin with the mark
};

/// Nothing for one that a page can't name: what is rewritten has no server to name it.
std::optional<Encoding> encodingOf(std::string_view bytes, const DecodedPage &page) {
    if (bytes.starts_with(kUtf8Mark))
        return Encoding{kUtf8Mark, "utf-8"};
    for (const auto &[mark, charset] : kWideMarks)
        if (bytes.starts_with(mark))
            return Encoding{mark, std::string(charset)};
    for (const auto &[mark, charset] : kWideMarks)
        if (page.charset == charset)
            return Encoding{mark, page.charset, false};
    const std::string_view known = webEncodingOf(page.charset);
    if (known.empty() || known == "x-user-defined")
        return std::nullopt;
    return Encoding{{}, page.charset};
}

std::string encoded(std::string_view text, UConverter *converter) {
    const auto wide = icu::UnicodeString::fromUTF8(
        icu::StringPiece(text.data(), static_cast<std::int32_t>(text.size())));
    std::string bytes(static_cast<std::size_t>(UCNV_GET_MAX_BYTES_FOR_STRING(
                          wide.length(), ucnv_getMaxCharSize(converter))),
                      '\0');
    UErrorCode status = U_ZERO_ERROR;
    const std::int32_t size =
        ucnv_fromUChars(converter, bytes.data(), static_cast<std::int32_t>(bytes.size()),
                        wide.getBuffer(), wide.length(), &status);
    bytes.resize(U_SUCCESS(status) ? static_cast<std::size_t>(size) : 0);
    return bytes;
}

} // namespace

SourceText::SourceText(ByteView bytes, DecodedPage page)
    : m_bytes(bytes), m_page(std::move(page)) {}

/// Nothing where what was made can't be shown to be what was meant.
std::optional<std::string> SourceText::inItsEncoding(const std::vector<TextEdit> &edits) const {
    const auto named = encodingOf(m_bytes.raw(), m_page);
    if (!named)
        return std::nullopt;
    const Encoding &encoding = *named;
    const std::string_view bytes =
        m_bytes.raw().substr(encoding.isMarked ? encoding.mark.size() : 0);
    std::vector<std::size_t> places;
    places.reserve(edits.size() * 2);
    for (const TextEdit &edit : edits) {
        places.push_back(edit.at.begin);
        places.push_back(edit.at.end);
    }
    const auto found = bytePlaces(bytes, encoding.charset, places);
    const Converter converter = converterOf(encoding.charset);
    if (!found || !converter)
        return std::nullopt;
    std::string made(encoding.mark);
    made.reserve(m_bytes.size());
    std::size_t done = 0;
    for (std::size_t i = 0; i < edits.size(); ++i) {
        made += bytes.substr(done, (*found)[i * 2] - done);
        made += encoded(edits[i].text, converter.get());
        done = (*found)[i * 2 + 1];
    }
    made += bytes.substr(done);
    const std::string again =
        convert(std::string_view(made).substr(encoding.mark.size()), converter.get());
    return again == edited(m_page.text, edits) ? std::optional(std::move(made)) : std::nullopt;
}

std::string SourceText::rewritten(std::vector<TextEdit> edits) const {
    edits = settledEdits(std::move(edits), m_page.text.size());
    if (m_bytes.raw() == m_page.text && encodingOf(m_bytes.raw(), m_page))
        return edited(m_page.text, std::move(edits));
    if (auto kept = inItsEncoding(edits))
        return std::move(*kept);
    return std::string(kUtf8Mark) + edited(m_page.text, std::move(edits));
}

} // namespace nv
