#include "markup/CssTokens.h"

#include "base/Text.h"
#include "markup/Utf8.h"

#include <algorithm>
#include <optional>

namespace nv {

namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";
constexpr std::size_t kEscapeDigits = 6;

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

bool isHex(char c) {
    return isDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

bool isNewline(char c) {
    return c == '\n' || c == '\r' || c == '\f';
}

bool isBlank(char c) {
    return c == ' ' || c == '\t' || isNewline(c);
}

/// A zero byte stands for U+FFFD, and all beyond ASCII may be in names.
bool startsName(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c == '\0' ||
           static_cast<unsigned char>(c) >= 0x80;
}

bool isInName(char c) {
    return startsName(c) || isDigit(c) || c == '-';
}

bool isUnprintable(char c) {
    return (c >= 1 && c <= 8) || c == 0x0B || (c >= 0x0E && c <= 0x1F) || c == 0x7F;
}

class Tokenizer {
  public:
    explicit Tokenizer(std::string_view css) : m_css(css) {}

    std::optional<CssToken> next() {
        skipComments();
        if (isEnd())
            return std::nullopt;
        m_token = {};
        m_token.at.begin = m_at;
        read();
        m_token.at.end = m_at;
        return std::move(m_token);
    }

  private:
    bool isEnd(std::size_t ahead = 0) const { return m_at + ahead >= m_css.size(); }
    /// A blank after the end: nothing depends on which one.
    char peek(std::size_t ahead = 0) const { return isEnd(ahead) ? '\n' : m_css[m_at + ahead]; }
    bool startsWith(std::string_view text) const { return m_css.substr(m_at).starts_with(text); }

    bool isEscape(std::size_t ahead = 0) const {
        return !isEnd(ahead) && peek(ahead) == '\\' &&
               (isEnd(ahead + 1) || !isNewline(peek(ahead + 1)));
    }
    bool startsIdent(std::size_t ahead = 0) const {
        if (isEnd(ahead))
            return false;
        if (peek(ahead) != '-')
            return startsName(peek(ahead)) || isEscape(ahead);
        return !isEnd(ahead + 1) &&
               (startsName(peek(ahead + 1)) || peek(ahead + 1) == '-' || isEscape(ahead + 1));
    }
    bool startsNumber() const {
        const std::size_t sign = peek() == '+' || peek() == '-' ? 1 : 0;
        return isDigit(peek(sign)) || (peek(sign) == '.' && isDigit(peek(sign + 1)));
    }

    void skipComments() {
        while (startsWith("/*")) {
            const std::size_t end = m_css.find("*/", m_at + 2);
            m_at = end == std::string_view::npos ? m_css.size() : end + 2;
        }
    }

    void read();
    void readSign(CssKind kind, std::size_t length);
    void readBlank();
    void readString();
    void readHash();
    void readNumber();
    void readIdentLike();
    void readUrl();
    void readBadUrl();
    bool readUnicodeRange();
    bool readLonger();
    std::string name();
    void addEscape(std::string &text);
    void addCharacter(std::string &text);
    void skipDigits();

    std::string_view m_css;
    std::size_t m_at = 0;
    CssToken m_token;
};

void Tokenizer::readSign(CssKind kind, std::size_t length) {
    m_token.kind = kind;
    m_token.text = m_css.substr(m_at, length);
    m_at += length;
}

/// After the "\".
void Tokenizer::addEscape(std::string &text) {
    if (isEnd()) {
        text += kReplacement;
        return;
    }
    if (!isHex(peek()))
        return addCharacter(text);
    std::uint32_t code = 0;
    for (std::size_t digits = 0; digits < kEscapeDigits && isHex(peek()); ++digits, ++m_at)
        code = code * 16 + static_cast<std::uint32_t>(isDigit(peek()) ? peek() - '0'
                                                                      : (peek() | 0x20) - 'a' + 10);
    text += isScalar(code) && code != 0 ? utf8Of(code) : std::string(kReplacement);
    if (startsWith("\r\n"))
        m_at += 2;
    else if (!isEnd() && isBlank(peek()))
        ++m_at;
}

void Tokenizer::addCharacter(std::string &text) {
    if (peek() == '\0')
        text += kReplacement;
    else
        text += peek();
    ++m_at; // the further bytes of a character are letters of names, and stand for themselves
}

std::string Tokenizer::name() {
    std::string text;
    while (!isEnd()) {
        if (isInName(peek())) {
            addCharacter(text);
        } else if (isEscape()) {
            ++m_at;
            addEscape(text);
        } else {
            break;
        }
    }
    return text;
}

void Tokenizer::readBlank() {
    m_token.kind = CssKind::blank;
    while (!isEnd() && isBlank(peek()))
        ++m_at;
    m_token.text = " ";
}

void Tokenizer::readString() {
    m_token.kind = CssKind::string;
    const char quote = peek();
    ++m_at;
    while (!isEnd() && peek() != quote) {
        if (isNewline(peek())) {
            m_token.kind = CssKind::badString;
            return;
        }
        if (peek() != '\\') {
            addCharacter(m_token.text);
            continue;
        }
        ++m_at;
        if (isEnd())
            break;
        if (!isNewline(peek()))
            addEscape(m_token.text);
        else
            m_at += startsWith("\r\n") ? 2 : 1;
    }
    m_token.isClosed = !isEnd();
    m_at += m_token.isClosed ? 1 : 0;
}

void Tokenizer::readHash() {
    if (isEnd(1) || !(isInName(peek(1)) || isEscape(1)))
        return readSign(CssKind::delim, 1);
    ++m_at;
    m_token.kind = CssKind::hash;
    m_token.isId = startsIdent();
    m_token.text = name();
}

void Tokenizer::skipDigits() {
    while (isDigit(peek()))
        ++m_at;
}

void Tokenizer::readNumber() {
    const std::size_t begin = m_at;
    m_token.isInteger = true;
    m_at += peek() == '+' || peek() == '-' ? 1 : 0;
    skipDigits();
    if (peek() == '.' && isDigit(peek(1))) {
        m_token.isInteger = false;
        ++m_at;
        skipDigits();
    }
    const std::size_t sign = peek(1) == '+' || peek(1) == '-' ? 1 : 0;
    if ((peek() == 'e' || peek() == 'E') && isDigit(peek(1 + sign))) {
        m_token.isInteger = false;
        m_at += 1 + sign;
        skipDigits();
    }
    m_token.text = m_css.substr(begin, m_at - begin);
    m_token.kind = CssKind::number;
    if (startsIdent()) {
        m_token.kind = CssKind::dimension;
        m_token.unit = name();
    } else if (!isEnd() && peek() == '%') {
        m_token.kind = CssKind::percentage;
        ++m_at;
    }
}

void Tokenizer::readIdentLike() {
    m_token.kind = CssKind::ident;
    m_token.text = name();
    if (isEnd() || peek() != '(')
        return;
    ++m_at;
    m_token.kind = CssKind::function;
    if (!equalsNoCase(m_token.text, "url"))
        return;
    std::size_t ahead = 0;
    while (!isEnd(ahead) && isBlank(peek(ahead)))
        ++ahead;
    if (isEnd(ahead) || (peek(ahead) != '"' && peek(ahead) != '\''))
        readUrl();
}

void Tokenizer::readUrl() {
    m_token.kind = CssKind::url;
    m_token.text.clear();
    const auto skipBlanks = [this] {
        while (!isEnd() && isBlank(peek()))
            ++m_at;
    };
    skipBlanks();
    while (!isEnd() && peek() != ')') {
        if (isBlank(peek())) {
            skipBlanks();
            if (!isEnd() && peek() != ')')
                return readBadUrl();
        } else if (isEscape()) {
            ++m_at;
            addEscape(m_token.text);
        } else if (std::string_view("\"'(\\").find(peek()) != std::string_view::npos ||
                   isUnprintable(peek())) {
            return readBadUrl();
        } else {
            addCharacter(m_token.text);
        }
    }
    m_token.isClosed = !isEnd();
    m_at += m_token.isClosed ? 1 : 0;
}

void Tokenizer::readBadUrl() {
    m_token.kind = CssKind::badUrl;
    m_token.text.clear();
    while (!isEnd() && peek() != ')')
        m_at += isEscape() ? 2 : 1;
    m_at = std::min(m_at + 1, m_css.size());
}

/// After "U+" or "u+"; false when there is none.
bool Tokenizer::readUnicodeRange() {
    if (isEnd(2) || (peek() != 'u' && peek() != 'U') || peek(1) != '+' ||
        !(isHex(peek(2)) || peek(2) == '?'))
        return false;
    const std::size_t begin = m_at;
    m_at += 2;
    std::size_t digits = 0;
    const auto take = [&](auto isIt) {
        for (; digits < kEscapeDigits && isIt(peek()); ++digits)
            ++m_at;
    };
    take(isHex);
    const std::size_t wild = m_at;
    take([](char c) { return c == '?'; });
    if (m_at == wild && peek() == '-' && isHex(peek(1))) {
        ++m_at;
        digits = 0;
        take(isHex);
    }
    m_token.kind = CssKind::unicodeRange;
    m_token.text = m_css.substr(begin, m_at - begin);
    return true;
}

/// Signs of more than one character.
bool Tokenizer::readLonger() {
    if (startsWith("<!--")) {
        readSign(CssKind::cdo, 4);
        return true;
    }
    if (startsWith("-->")) {
        readSign(CssKind::cdc, 3);
        return true;
    }
    for (const std::string_view sign : {"~=", "|=", "^=", "$=", "*=", "||"})
        if (startsWith(sign)) {
            readSign(CssKind::match, sign.size());
            return true;
        }
    return false;
}

void Tokenizer::read() {
    constexpr std::string_view kSigns = ":;,[](){}";
    constexpr CssKind kKinds[] = {CssKind::colon,      CssKind::semicolon,   CssKind::comma,
                                  CssKind::openSquare, CssKind::closeSquare, CssKind::openRound,
                                  CssKind::closeRound, CssKind::openCurly,   CssKind::closeCurly};
    const char c = peek();
    if (isBlank(c))
        return readBlank();
    if (c == '"' || c == '\'')
        return readString();
    if (c == '#')
        return readHash();
    if (startsNumber())
        return readNumber();
    if (readUnicodeRange() || readLonger())
        return;
    if (startsIdent())
        return readIdentLike();
    if (const std::size_t sign = kSigns.find(c); sign != std::string_view::npos)
        return readSign(kKinds[sign], 1);
    if (c != '@' || !startsIdent(1))
        return readSign(CssKind::delim, 1);
    ++m_at;
    m_token.kind = CssKind::atKeyword;
    m_token.text = name();
}

std::optional<CssKind> closing(CssKind kind) {
    switch (kind) {
    case CssKind::function:
    case CssKind::openRound:
        return CssKind::closeRound;
    case CssKind::openSquare:
        return CssKind::closeSquare;
    case CssKind::openCurly:
        return CssKind::closeCurly;
    default:
        return std::nullopt;
    }
}

/// Only the bracket that was opened last can be closed: another closing one stands for itself.
void matchBrackets(std::vector<CssToken> &tokens) {
    std::vector<std::size_t> open;
    for (std::size_t i = 0; i < tokens.size(); ++i) {
        if (closing(tokens[i].kind)) {
            tokens[i].partner = tokens.size();
            open.push_back(i);
        } else if (!open.empty() && closing(tokens[open.back()].kind) == tokens[i].kind) {
            tokens[open.back()].partner = i;
            open.pop_back();
        }
    }
}

} // namespace

std::vector<CssToken> cssTokens(std::string_view css) {
    std::vector<CssToken> tokens;
    Tokenizer tokenizer(css);
    while (auto token = tokenizer.next())
        tokens.push_back(std::move(*token));
    matchBrackets(tokens);
    return tokens;
}

bool opensBlock(CssKind kind) {
    return closing(kind).has_value();
}

} // namespace nv
