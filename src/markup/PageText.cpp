#include "markup/PageText.h"

#include "base/Text.h"
#include "markup/Charsets.h"

#include <algorithm>
#include <array>
#include <utility>

namespace nv {

namespace {

using namespace std::string_view_literals;

/// Browsers look for the charset in the first 1024 bytes; pages of the time often had it later.
constexpr std::size_t kMetaBytes = 4096;

constexpr std::array<std::pair<std::string_view, std::string_view>, 3> kMarks = {{
    {kUtf8Mark, "utf-8"},
    {"\xFF\xFE"sv, "utf-16le"},
    {"\xFE\xFF"sv, "utf-16be"},
}};

/// A converter for an encoding in which tags are tags, as it must be for the charset to have been
/// found; null for others and for unknown names.
Converter pageConverter(std::string_view charset) {
    constexpr std::string_view kTag = "<a href=\"b\">";
    if (charset.empty())
        return {nullptr, &ucnv_close};
    // A page whose charset can be read isn't in UTF-16: browsers take the word for UTF-8.
    Converter converter = converterOf(startsWithNoCase(charset, "utf-16") ? "utf-8" : charset);
    if (converter && convert(kTag, converter.get()) != kTag)
        converter.reset();
    return converter;
}

std::string_view behindSign(std::string_view text) {
    text = trim(text);
    return text.starts_with('=') ? trim(text.substr(1)) : std::string_view();
}

/// The value after "charset =" in a tag or a header line, or after another word.
std::string_view charsetIn(std::string_view text, std::string_view word = "charset") {
    for (std::size_t at = 0; (at = findNoCase(text, word, at)) != std::string_view::npos;
         at += word.size()) {
        std::string_view value = behindSign(text.substr(at + word.size()));
        if (value.starts_with('"') || value.starts_with('\''))
            value.remove_prefix(1);
        value = trim(value.substr(0, value.find_first_of("\"';>/, \t\r\n", 0)));
        if (!value.empty())
            return value;
    }
    return {};
}

/// Of the declaration that pages in XHTML begin with.
std::string_view charsetOfXml(std::string_view page) {
    constexpr std::string_view kBegin = "<?xml";
    page = trim(page.substr(0, kMetaBytes));
    const std::size_t end = page.find("?>");
    return startsWithNoCase(page, kBegin) && end != std::string_view::npos
               ? charsetIn(page.substr(0, end), "encoding")
               : std::string_view();
}

/// The name in `@charset "name";`, of which no byte may differ.
std::string_view charsetOfStyle(std::string_view css) {
    constexpr std::string_view kBegin = "@charset \"";
    if (!css.starts_with(kBegin))
        return {};
    css = css.substr(kBegin.size(), kMetaBytes);
    const std::size_t end = css.find('"');
    return end != std::string_view::npos && css.substr(end).starts_with("\";") ? css.substr(0, end)
                                                                               : std::string_view();
}

} // namespace

std::string_view charsetOfMeta(std::string_view head) {
    constexpr std::string_view kMeta = "<meta";
    for (std::size_t at = 0; (at = head.find('<', at)) != std::string_view::npos;) {
        const std::string_view text = head.substr(at);
        if (text.starts_with("<!--")) {
            at = std::min(head.find("-->", at), head.size());
            continue;
        }
        at += 1;
        if (!startsWithNoCase(text, kMeta))
            continue;
        if (const auto charset = charsetIn(text.substr(0, text.find('>'))); !charset.empty())
            return charset;
    }
    return {};
}

std::string_view charsetOfHeader(std::string_view httpHeader) {
    for (const std::string_view line : split(httpHeader, '\n'))
        if (startsWithNoCase(trim(line), "content-type:"))
            return charsetIn(line);
    return {};
}

std::string decodePage(ByteView bytes, std::string_view httpHeader) {
    return decodedPage(bytes, httpHeader).text;
}

DecodedPage decodedPage(ByteView bytes, std::string_view httpHeader) {
    const std::string_view text = bytes.raw();
    for (const auto &[mark, charset] : kMarks)
        if (text.starts_with(mark))
            return {convert(text.substr(mark.size()), converterOf(charset).get()),
                    std::string(charset), "byte-order mark"};
    const std::array<std::pair<std::string_view, std::string_view>, 3> named = {{
        {charsetOfMeta(text.substr(0, kMetaBytes)), "meta tag"},
        {charsetOfHeader(httpHeader), "HTTP header"},
        {charsetOfXml(text), "XML declaration"},
    }};
    for (const auto &[charset, foundIn] : named)
        if (const Converter converter = pageConverter(charset))
            return {convert(text, converter.get()), toLower(charset), foundIn};
    return {fromAnsi(text), "windows-1252", kNoCharset};
}

DecodedPage decodedStyle(ByteView bytes, std::string_view server, std::string_view page) {
    const std::string_view css = bytes.raw();
    if (std::ranges::any_of(kMarks,
                            [css](const auto &mark) { return css.starts_with(mark.first); }))
        return decodedPage(bytes, {});
    const std::array<std::pair<std::string_view, std::string_view>, 4> named = {{
        {trim(server), "HTTP header"},
        {charsetOfStyle(css), "@charset"},
        {page, "page"},
        {"utf-8", kNoCharset},
    }};
    for (const auto &[charset, foundIn] : named)
        if (const Converter converter = startsWithNoCase(charset, "utf-7")
                                            ? Converter{nullptr, &ucnv_close}
                                            : pageConverter(charset))
            return {convert(css, converter.get()),
                    startsWithNoCase(charset, "utf-16") ? "utf-8" : toLower(charset), foundIn};
    return {fromAnsi(css), "windows-1252", kNoCharset};
}

} // namespace nv
