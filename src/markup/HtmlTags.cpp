#include "markup/HtmlTags.h"

#include "base/Text.h"

#include <algorithm>
#include <utility>

namespace nv {

namespace {

constexpr std::string_view kBlanks = " \t\n\f\r";
constexpr std::string_view kNameEnds = " \t\n\f\r/>";

bool isLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool isOneOf(std::string_view list, char c) {
    return list.find(c) != std::string_view::npos;
}

} // namespace

bool HtmlTags::next(HtmlTag &tag, std::string *text) {
    while (m_at < m_html.size()) {
        const std::size_t from =
            std::exchange(m_at, std::min(m_html.find('<', m_at), m_html.size()));
        if (text != nullptr)
            text->append(m_html, from, m_at - from);
        if (m_at == m_html.size())
            return false;
        if (startsTag(m_at))
            return readTag(tag);
        const char second = at(m_at + 1);
        if (second == '!')
            skipDeclaration();
        else if (second == '/' || second == '?') // neither is anything: up to the ">" it is dropped
            skipBehind(">", m_at + 2);
        else
            skipSign(text);
    }
    return false;
}

/// A "<" that begins nothing.
void HtmlTags::skipSign(std::string *text) {
    ++m_at;
    if (text != nullptr)
        text->append("&lt;");
}

bool HtmlTags::startsTag(std::size_t place) const {
    return isLetter(at(at(place + 1) == '/' ? place + 2 : place + 1));
}

bool HtmlTags::readTag(HtmlTag &tag) {
    tag = {};
    const std::size_t begin = m_at;
    tag.isEnd = at(m_at + 1) == '/';
    m_at += tag.isEnd ? 2 : 1;
    const std::size_t end = std::min(m_html.find_first_of(kNameEnds, m_at), m_html.size());
    tag.name = m_html.substr(m_at, end - m_at);
    m_at = end;
    while (skipAttribute())
        ++tag.attributes;
    tag.size = m_at + 1 - begin;
    return m_at++ < m_html.size();
}

/// False at the ">" that ends the tag, and at the end of the text.
bool HtmlTags::skipAttribute() {
    const auto leap = [this](std::size_t to) { m_at = std::min(to, m_html.size()); };
    leap(m_html.find_first_not_of(" \t\n\f\r/", m_at));
    if (m_at == m_html.size() || at(m_at) == '>')
        return false;
    leap(m_html.find_first_of(" \t\n\f\r/>=", m_at + 1)); // a "=" in front belongs to the name
    const std::size_t sign = std::min(m_html.find_first_not_of(kBlanks, m_at), m_html.size());
    if (at(sign) != '=')
        return true;
    leap(m_html.find_first_not_of(kBlanks, sign + 1));
    const char quote = at(m_at);
    if (quote == '"' || quote == '\'')
        leap(std::max(m_html.find(quote, m_at + 1), m_at + 1));
    else
        leap(m_html.find_first_of(" \t\n\f\r>", m_at));
    if (m_at < m_html.size() && (quote == '"' || quote == '\''))
        ++m_at;
    return true;
}

void HtmlTags::skipDeclaration() {
    const std::string_view text = m_html.substr(m_at);
    if (!text.starts_with("<!--"))
        return skipBehind(">", m_at + 2);
    if (text.starts_with("<!-->"))
        return skipBehind(">", m_at);
    if (text.starts_with("<!--->"))
        return skipBehind(">", m_at);
    const std::size_t plain = text.find("-->", 4);
    const std::size_t odd = text.substr(0, plain).find("--!>", 4); // ends a comment as well
    if (odd != std::string_view::npos)
        m_at += odd + 4;
    else
        skipBehind("-->", m_at + 4);
}

void HtmlTags::skipBehind(std::string_view mark, std::size_t from) {
    const std::size_t found =
        from < m_html.size() ? m_html.find(mark, from) : std::string_view::npos;
    m_at = found == std::string_view::npos ? m_html.size() : found + mark.size();
}

/// Whether "<name" or "</name" stands at `place`, where `name` comes with its "<" or "</".
bool HtmlTags::isNamed(std::size_t place, std::string_view name) const {
    const char behind = at(place + name.size());
    return startsWithNoCase(m_html.substr(place), name) && isOneOf(kNameEnds, behind) &&
           place + name.size() < m_html.size();
}

void HtmlTags::skipText(std::string_view name) {
    if (equalsNoCase(name, "script"))
        return skipScript();
    const std::string end = "</" + std::string(name);
    do
        m_at = std::min(m_html.find('<', m_at), m_html.size());
    while (m_at < m_html.size() && !isNamed(m_at, end) && ++m_at);
}

/// A script inside of a comment inside of a script hides its end tag: "<!-- <script> </script>
/// -->".
void HtmlTags::skipScript() {
    bool inComment = false;
    bool inInner = false;
    for (; m_at < m_html.size(); ++m_at) {
        const std::string_view text = m_html.substr(m_at, 4);
        if (text == "<!--" && !inComment)
            inComment = true;
        else if (inComment && text.starts_with("-->"))
            inComment = inInner = false;
        else if (text[0] == '<' && isNamed(m_at, "</script") && !std::exchange(inInner, false))
            return;
        else if (text[0] == '<' && inComment && isNamed(m_at, "<script"))
            inInner = true;
    }
}

} // namespace nv
