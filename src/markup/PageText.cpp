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

bool isWide(std::string_view charset) {
    return webEncodingOf(charset).starts_with("utf-16");
}

/// A name that stands in the text itself.
struct InnerName {
    std::string_view charset;
};

/// What is meant by it: what can be read byte by byte isn't in UTF-16, and browsers take that word
/// for UTF-8, and bytes of a page's own making for Windows-1252.
std::string meantBy(const InnerName &name) {
    if (isWide(name.charset))
        return "utf-8";
    return webEncodingOf(name.charset) == "x-user-defined" ? "windows-1252" : toLower(name.charset);
}

/// The server may say of bytes that no tag could be read in that they are UTF-16.
std::string meantByServer(std::string_view charset) {
    return isWide(charset) ? std::string(webEncodingOf(charset)) : toLower(charset);
}

/// A converter for UTF-16, or for an encoding in which tags are tags; null for others and for
/// unknown names.
Converter pageConverter(const std::string &charset) {
    constexpr std::string_view kTag = "<a href=\"b\">";
    if (charset.empty())
        return {nullptr, &ucnv_close};
    Converter converter = converterOf(charset);
    if (converter && !isWide(charset) && convert(kTag, converter.get()) != kTag)
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

std::string_view wideCharsetOf(std::string_view bytes, std::string_view httpHeader) {
    for (const auto &[mark, charset] : kMarks)
        if (bytes.starts_with(mark))
            return isWide(charset) ? charset : std::string_view();
    const std::string_view served = webEncodingOf(charsetOfHeader(httpHeader));
    return isWide(served) ? served : std::string_view();
}

namespace {

struct NamedCharset {
    std::string charset;
    std::string_view foundIn;
};

/// Whether browsers read it by the rules of XML, in which there is no "meta".
bool isXmlAnswer(std::string_view httpHeader) {
    for (const std::string_view line : split(httpHeader, '\n')) {
        constexpr std::string_view kName = "content-type:";
        const std::string_view text = trim(line);
        if (!startsWithNoCase(text, kName))
            continue;
        const std::string type =
            toLower(trim(text.substr(kName.size(), text.find(';') - kName.size())));
        return type.ends_with("+xml") || type == "text/xml" || type == "application/xml";
    }
    return false;
}

} // namespace

std::string decodePage(ByteView bytes, std::string_view httpHeader) {
    return decodedPage(bytes, httpHeader).text;
}

DecodedPage decodedPage(ByteView bytes, std::string_view httpHeader) {
    const std::string_view text = bytes.raw();
    for (const auto &[mark, charset] : kMarks)
        if (text.starts_with(mark))
            return {convert(text.substr(mark.size()), converterOf(charset).get()),
                    std::string(charset), "byte-order mark"};
    const bool isXml = isXmlAnswer(httpHeader);
    const std::string meta = meantBy({charsetOfMeta(text.substr(0, kMetaBytes))});
    const std::string declared = meantBy({charsetOfXml(text)});
    const bool isPlainXml = isXml && declared.empty() && isUtf8(text);
    const std::array<NamedCharset, 5> named = {{
        {meantByServer(charsetOfHeader(httpHeader)), "HTTP header"},
        {isXml ? declared : std::string(), "XML declaration"},
        {isPlainXml ? "utf-8" : std::string(), kNoCharset},
        {meta, "meta tag"},
        {declared, "XML declaration"},
    }};
    for (const auto &[charset, foundIn] : named)
        if (const Converter converter = pageConverter(charset))
            return {convert(text, converter.get()), charset, foundIn};
    return {fromAnsi(text), "windows-1252", kNoCharset};
}

DecodedPage decodedStyle(ByteView bytes, std::string_view server, std::string_view page) {
    const std::string_view css = bytes.raw();
    if (std::ranges::any_of(kMarks,
                            [css](const auto &mark) { return css.starts_with(mark.first); }))
        return decodedPage(bytes, {});
    const std::array<NamedCharset, 4> named = {{
        {meantByServer(trim(server)), "HTTP header"},
        {meantBy({charsetOfStyle(css)}), "@charset"},
        {meantBy({page}), "page"},
        {"utf-8", kNoCharset},
    }};
    for (const auto &[charset, foundIn] : named)
        if (const Converter converter = startsWithNoCase(charset, "utf-7")
                                            ? Converter{nullptr, &ucnv_close}
                                            : pageConverter(charset))
            return {convert(css, converter.get()), charset, foundIn};
    return {fromAnsi(css), "windows-1252", kNoCharset};
}

} // namespace nv
