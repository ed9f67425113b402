#include "markup/CssWriter.h"

#include "markup/Utf8.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

namespace nv {

namespace {

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

bool isLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

std::string escaped(std::uint32_t code) {
    return fmt::format("\\{:x} ", code);
}

/// A name in ASCII; an identifier's doesn't begin with a digit, and isn't a single "-".
std::string nameText(std::string_view name, bool isIdent) {
    std::string text;
    for (std::size_t at = 0; at < name.size();) {
        const bool isFirst = at == 0 || (at == 1 && name[0] == '-');
        const std::uint32_t code = nextCode(name, at);
        const char c = code < 0x80 ? static_cast<char>(code) : '\0';
        const bool isPlain = isLetter(c) || c == '_' ||
                             (c == '-' && (!isIdent || name.size() > 1)) ||
                             (isDigit(c) && !(isFirst && isIdent));
        if (isPlain)
            text += c;
        else
            text += escaped(code);
    }
    return text;
}

std::string stringText(std::string_view value) {
    constexpr std::string_view kEscaped = "\"'\\<>&";
    std::string text = "\"";
    for (std::size_t at = 0; at < value.size();) {
        const std::uint32_t code = nextCode(value, at);
        if (code < 0x20 || code >= 0x7F ||
            kEscaped.find(static_cast<char>(code)) != std::string_view::npos)
            text += escaped(code);
        else
            text += static_cast<char>(code);
    }
    return text + '"';
}

/// A unit that goes on as an exponent would is escaped: "3\65 -2".
std::string unitText(std::string_view unit) {
    const std::size_t sign = unit.size() > 1 && unit[1] == '-' ? 1 : 0;
    if ((unit.starts_with('e') || unit.starts_with('E')) && unit.size() > 1 + sign &&
        isDigit(unit[1 + sign]))
        return escaped(static_cast<unsigned char>(unit[0])) + nameText(unit.substr(1), false);
    return nameText(unit, true);
}

bool isOneOf(CssKind kind, std::initializer_list<CssKind> kinds) {
    return std::ranges::find(kinds, kind) != kinds.end();
}

bool beginsWord(CssKind kind) {
    return isOneOf(kind, {CssKind::ident, CssKind::function, CssKind::unicodeRange});
}

bool isNumber(CssKind kind) {
    return isOneOf(kind, {CssKind::number, CssKind::percentage, CssKind::dimension});
}

} // namespace

/// Which tokens would be read as one, or as others, side by side.
bool CssWriter::needsGap(CssKind kind, std::string_view text) const {
    const char first = text.front();
    const char last = m_text.empty() ? ' ' : m_text.back();
    const bool isWordLike = beginsWord(kind) || isNumber(kind) || kind == CssKind::cdc;
    switch (m_last) {
    case CssKind::ident:
        return isWordLike || kind == CssKind::openRound || first == '-' ||
               (first == '+' && (last == 'u' || last == 'U')) || (first == '>' && last == '-');
    case CssKind::unicodeRange:
        return isWordLike || first == '-' || first == '?' || first == '(' || first == '+';
    case CssKind::atKeyword:
    case CssKind::hash:
    case CssKind::dimension:
        return isWordLike || first == '-';
    case CssKind::number:
        return isWordLike || first == '%' || first == '-';
    case CssKind::delim:
    case CssKind::match:
        break;
    default:
        return false;
    }
    switch (last) {
    case '#':
    case '-':
        return isWordLike || first == '-';
    case '@':
        return beginsWord(kind) || first == '-';
    case '.':
    case '+':
        return isNumber(kind);
    case '/':
        return first == '*';
    case '&':
        return isLetter(first) || isDigit(first) || first == '#';
    case '~':
    case '|':
    case '^':
    case '$':
    case '*':
        return first == '=' || first == '|' || (last == '*' && first == '/');
    default:
        return false;
    }
}

void CssWriter::put(CssKind kind, std::string_view text) {
    if (!m_text.empty() && needsGap(kind, text))
        m_text += "/**/";
    m_text += text;
    m_last = kind;
}

void CssWriter::sign(CssKind kind, std::string_view text) {
    // After "<", and where what stood between two blanks has no form.
    const bool isWritten =
        m_last == CssKind::blank || (m_last == CssKind::delim && m_text.ends_with(' '));
    if (kind != CssKind::blank || !isWritten)
        put(kind, text);
}

void CssWriter::name(std::string_view ident) {
    put(CssKind::ident, nameText(ident, true));
}

void CssWriter::string(std::string_view text) {
    put(CssKind::string, stringText(text));
}

void CssWriter::url(std::string_view address) {
    put(CssKind::function, "url(");
    string(address);
    put(CssKind::closeRound, ")");
}

bool CssWriter::token(const CssToken &token) {
    switch (token.kind) {
    case CssKind::badString:
    case CssKind::badUrl:
    case CssKind::cdo:
    case CssKind::cdc:
        return false;
    case CssKind::ident:
        name(token.text);
        return true;
    case CssKind::function:
        put(token.kind, nameText(token.text, true) + '(');
        return true;
    case CssKind::atKeyword:
        put(token.kind, '@' + nameText(token.text, true));
        return true;
    case CssKind::hash:
        put(token.kind, '#' + nameText(token.text, token.isId));
        return true;
    case CssKind::string:
        string(token.text);
        return true;
    case CssKind::url:
        url(token.text);
        return true;
    case CssKind::percentage:
        put(token.kind, token.text + '%');
        return true;
    case CssKind::dimension:
        put(token.kind, token.text + unitText(token.unit));
        return true;
    case CssKind::delim:
        // A blank keeps "<" from beginning a tag, and "]]>" from ending a section of XML.
        if (token.text == "<")
            put(token.kind, "< ");
        else if (token.text == ">" && m_text.ends_with(']'))
            put(token.kind, " >");
        else if (token.text == "\\" || token.text[0] < ' ' || token.text[0] == 0x7F)
            return false;
        else
            put(token.kind, token.text);
        return true;
    default:
        sign(token.kind, token.text);
        return true;
    }
}

} // namespace nv
