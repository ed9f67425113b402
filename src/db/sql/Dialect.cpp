#include "db/sql/Dialect.h"

#include "base/Text.h"
#include "db/sql/Comparisons.h"
#include "db/sql/FactCalls.h"
#include "db/sql/LikePattern.h"

#include <fmt/format.h>

#include <array>

namespace nv {

namespace {

struct Replacement {
    std::string_view word;
    std::string_view with;
};

/// Built-ins of the same result, which read no more of a row than they must.
constexpr std::array<Replacement, 5> kFunctions = {{{"Len", "length"},
                                                    {"UCase", "upper"},
                                                    {"LCase", "lower"},
                                                    {"Mid", "substr"},
                                                    {"Nz", "ifnull"}}};
constexpr std::array<Replacement, 2> kConstants = {{{"True", "1"}, {"False", "0"}}};

constexpr std::array<std::string_view, 3> kCompounds = {"union", "except", "intersect"};

/// What stands between two parentheses: one SELECT, or several that are joined.
struct Level {
    std::string_view limit; ///< the rows that TOP asked for
    bool isCompound = false;
};

/// Puts the statement together, a level for every open parenthesis.
class Translation {
  public:
    explicit Translation(std::string sql)
        : m_sql(std::move(sql)), m_tokens(tokensOf(m_sql)), m_levels(1) {}

    std::string run() {
        for (m_at = 0; m_at < m_tokens.size(); ++m_at)
            take(m_tokens[m_at]);
        while (!m_levels.empty())
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
        // As many digits as bring the same number back: whole seconds compare as equal.
        // In parentheses: after a minus a negative number would begin a comment.
        m_out += fmt::format("({})", date->days());
    }

    void takeWord(const Token &token) {
        if (equalsNoCase(token.source, "top") && followsSelect() && !isColumnHere())
            return takeTop();
        for (const std::string_view compound : kCompounds)
            if (equalsNoCase(token.source, compound))
                m_levels.back().isCompound = true;
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
        m_levels.back().limit = digits;
        m_at = count;
    }

    void takeSymbol(const Token &token) {
        const char c = token.source.front();
        if (c == '(') {
            m_levels.emplace_back();
        } else if (c == ')' && m_levels.size() > 1) {
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
        const Level &level = m_levels.back();
        if (!level.limit.empty() && level.isCompound)
            throw DialectError("TOP beside UNION is not understood: put its SELECT in parentheses, "
                               "as SELECT * FROM (SELECT TOP ...)");
        if (!level.limit.empty())
            m_out += fmt::format(" LIMIT {}", level.limit);
        m_levels.pop_back();
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

    std::string m_sql;
    std::vector<Token> m_tokens; ///< lie in it
    std::vector<Level> m_levels;
    std::string m_out;
    std::size_t m_at = 0;
};

} // namespace

std::string translate(std::string_view sql) {
    if (sql.find('\0') != std::string_view::npos)
        throw DialectError("the statement holds a zero character, and what stands behind it would "
                           "not be read");
    const std::vector<Token> tokens = tokensOf(sql);
    checkDateComparisons(tokens);
    return Translation(withFactsLookedUp(asExaminersMean(tokens))).run();
}

std::string quotedName(std::string_view name) {
    return '"' + replaceAll(name, "\"", "\"\"") + '"';
}

std::string quotedText(std::string_view text) {
    return '\'' + replaceAll(text, "'", "''") + '\'';
}

} // namespace nv
