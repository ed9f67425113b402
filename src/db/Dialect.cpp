#include "db/Dialect.h"

#include "base/Text.h"
#include "db/LikePattern.h"

#include <fmt/format.h>

#include <array>
#include <charconv>

namespace nv {

namespace {

struct Replacement {
    std::string_view word;
    std::string_view with;
};

constexpr std::array<Replacement, 3> kFunctions = {
    {{"Len", "length"}, {"UCase", "upper"}, {"LCase", "lower"}}};
constexpr std::array<Replacement, 2> kConstants = {{{"True", "1"}, {"False", "0"}}};

/// Puts the statement together; keeps for every open parenthesis the TOP that its SELECT asked for.
class Translation {
  public:
    explicit Translation(std::string_view sql) : m_tokens(tokensOf(sql)), m_limits(1) {}

    std::string run() {
        for (m_at = 0; m_at < m_tokens.size(); ++m_at)
            take(m_tokens[m_at]);
        closeLevel();
        return std::move(m_out);
    }

  private:
    void take(const Token &token) {
        switch (token.kind) {
        case TokenKind::blank:
            m_out +=
                token.source.starts_with('-') || token.source.starts_with('/') ? " " : token.source;
            break;
        case TokenKind::text:
            takeText(token);
            break;
        case TokenKind::name:
            m_out += quotedName(token.inner);
            break;
        case TokenKind::date:
            takeDate(token);
            break;
        case TokenKind::word:
            takeWord(token);
            break;
        case TokenKind::symbol:
            takeSymbol(token);
            break;
        }
    }

    void takeText(const Token &token) {
        const char quote = token.source.front();
        const std::string doubled(2, quote);
        const std::string text = replaceAll(token.inner, doubled, std::string_view(&quote, 1));
        if (equalsNoCase(wordBefore(), "like"))
            LikePattern::check(text);
        m_out += quotedText(text);
    }

    void takeDate(const Token &token) {
        const auto date = parseDateLiteral(token.inner);
        if (!date)
            throw DialectError(fmt::format("\"{}\" is no date: month/day/year or year-month-day "
                                           "was expected",
                                           token.inner));
        m_out += fmt::format("{:.10f}", date->days());
    }

    void takeWord(const Token &token) {
        if (equalsNoCase(token.source, "top") && followsSelect() && !isColumnHere())
            return takeTop();
        const bool isCall = symbolBehind('(');
        const bool isMember = symbolBehind('.') || precededBy('.');
        for (const Replacement &function : kFunctions)
            if (isCall && equalsNoCase(token.source, function.word))
                return void(m_out += function.with);
        for (const Replacement &constant : kConstants)
            if (!isCall && !isMember && equalsNoCase(token.source, constant.word))
                return void(m_out += constant.with);
        m_out += token.source;
    }

    /// "SELECT top FROM t" and "SELECT top, x" name a column.
    bool isColumnHere() const {
        const std::size_t next = nextMeaning(m_at);
        return next == m_tokens.size() || m_tokens[next].source == "," ||
               equalsNoCase(m_tokens[next].source, "from");
    }

    void takeTop() {
        const std::size_t count = nextMeaning(m_at);
        const std::string_view digits = count < m_tokens.size() ? m_tokens[count].source : "";
        if (digits.empty() || digits.find_first_not_of("0123456789") != std::string_view::npos)
            throw DialectError("behind TOP a number of rows was expected");
        if (const std::size_t next = nextMeaning(count);
            next < m_tokens.size() && equalsNoCase(m_tokens[next].source, "percent"))
            throw DialectError("TOP with PERCENT is not understood: a number of rows was expected");
        m_limits.back() = digits;
        m_at = count;
    }

    void takeSymbol(const Token &token) {
        const char c = token.source.front();
        if (c == '(') {
            m_limits.emplace_back();
        } else if (c == ')' && m_limits.size() > 1) {
            closeLevel();
        } else if (c == ';') {
            if (nextMeaning(m_at) < m_tokens.size())
                throw DialectError(
                    "only one statement is understood: something stands behind \";\"");
            return;
        }
        m_out += c == '&' ? std::string_view("||") : token.source;
    }

    /// The rows that TOP asked for are the end of its SELECT.
    void closeLevel() {
        if (!m_limits.back().empty())
            m_out += fmt::format(" LIMIT {}", m_limits.back());
        m_limits.pop_back();
        if (m_limits.empty())
            m_limits.emplace_back();
    }

    std::size_t nextMeaning(std::size_t at) const {
        for (++at; at < m_tokens.size() && m_tokens[at].kind == TokenKind::blank;)
            ++at;
        return at;
    }

    const Token *previousMeaning(std::size_t skip = 0) const {
        for (std::size_t i = m_at; i-- > 0;)
            if (m_tokens[i].kind != TokenKind::blank && skip-- == 0)
                return &m_tokens[i];
        return nullptr;
    }

    std::string_view wordBefore() const {
        const Token *token = previousMeaning();
        return token ? token->source : std::string_view();
    }

    bool followsSelect() const {
        const Token *before = previousMeaning();
        if (before &&
            (equalsNoCase(before->source, "distinct") || equalsNoCase(before->source, "all")))
            before = previousMeaning(1);
        return before && equalsNoCase(before->source, "select");
    }

    bool symbolBehind(char c) const {
        const std::size_t next = nextMeaning(m_at);
        return next < m_tokens.size() && m_tokens[next].source == std::string_view(&c, 1);
    }

    bool precededBy(char c) const { return wordBefore() == std::string_view(&c, 1); }

    std::vector<Token> m_tokens;
    std::vector<std::string_view> m_limits;
    std::string m_out;
    std::size_t m_at = 0;
};

/// Numbers of a date or time, separated by one of `separators`.
std::vector<int> numbersOf(std::string_view text, std::string_view separators) {
    std::vector<int> numbers;
    while (!text.empty()) {
        int value = 0;
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
        if (error != std::errc() || value < 0)
            return {};
        numbers.push_back(value);
        text.remove_prefix(static_cast<std::size_t>(end - text.data()));
        if (text.empty())
            break;
        if (separators.find(text.front()) == std::string_view::npos || text.size() == 1)
            return {};
        text.remove_prefix(1);
    }
    return numbers;
}

bool takeTime(std::string_view text, CivilTime &civil) {
    const bool pm = text.size() > 2 && equalsNoCase(text.substr(text.size() - 2), "pm");
    const bool am = text.size() > 2 && equalsNoCase(text.substr(text.size() - 2), "am");
    const std::vector<int> parts =
        numbersOf(trim(pm || am ? text.substr(0, text.size() - 2) : text), ":");
    if (parts.empty() || parts.size() > 3 || (parts.size() == 1 && !pm && !am))
        return false;
    if ((pm || am) && (parts[0] < 1 || parts[0] > 12))
        return false;
    civil.hour = pm || am ? parts[0] % 12 + (pm ? 12 : 0) : parts[0];
    civil.minute = parts.size() > 1 ? parts[1] : 0;
    civil.second = parts.size() > 2 ? parts[2] : 0;
    return true;
}

} // namespace

std::string translate(std::string_view sql) {
    return Translation(sql).run();
}

std::optional<Date> parseDateLiteral(std::string_view text) {
    text = trim(text);
    const std::size_t gap = text.find_first_of(" T");
    const std::string_view day = text.substr(0, gap);
    const std::vector<int> parts = numbersOf(day, "/-");
    if (parts.size() != 3)
        return std::nullopt;
    const bool yearFirst = parts[0] > 31 || day.find('-') == 4;
    CivilTime civil;
    civil.year = yearFirst ? parts[0] : parts[2];
    civil.month = yearFirst ? parts[1] : parts[0];
    civil.day = yearFirst ? parts[2] : parts[1];
    if (gap != std::string_view::npos && !takeTime(trim(text.substr(gap + 1)), civil))
        return std::nullopt;
    const Date date = Date::fromCivil(civil);
    return date.has() ? std::optional(date) : std::nullopt;
}

std::string quotedName(std::string_view name) {
    return '"' + replaceAll(name, "\"", "\"\"") + '"';
}

std::string quotedText(std::string_view text) {
    return '\'' + replaceAll(text, "'", "''") + '\'';
}

} // namespace nv
