#include "db/sql/Comparisons.h"

#include "base/Text.h"
#include "db/schema/Schema.h"
#include "db/sql/Dialect.h"
#include "db/sql/LikePattern.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <optional>
#include <span>

namespace nv {

namespace {

enum class Comparing { equal, notEqual, order };

struct Operator {
    Comparing kind;
    std::size_t count; ///< tokens that it takes
};

/// The tokens that mean something, by their place among them.
class Meaning {
  public:
    explicit Meaning(const std::vector<Token> &tokens) : m_tokens(tokens) {
        for (std::size_t i = 0; i < tokens.size(); ++i)
            if (tokens[i].kind != TokenKind::blank)
                m_places.push_back(i);
    }

    std::size_t size() const { return m_places.size(); }
    /// In the statement.
    std::size_t placeOf(std::size_t at) const { return m_places[at]; }
    const Token &operator[](std::size_t at) const { return m_tokens[m_places[at]]; }

    bool is(std::size_t at, std::string_view source) const {
        return at < size() && (*this)[at].kind != TokenKind::text &&
               equalsNoCase((*this)[at].source, source);
    }
    bool isText(std::size_t at) const { return at < size() && (*this)[at].kind == TokenKind::text; }

    std::optional<Operator> operatorAt(std::size_t at) const {
        const std::string two = symbolsAt(at);
        if (two == "==")
            return Operator{Comparing::equal, 2};
        if (two == "<>" || two == "!=")
            return Operator{Comparing::notEqual, 2};
        if (two == "<=" || two == ">=")
            return Operator{Comparing::order, 2};
        if (two == "<<" || two == ">>" || two.empty())
            return std::nullopt;
        if (two.front() == '=')
            return Operator{Comparing::equal, 1};
        if (two.front() == '<' || two.front() == '>')
            return Operator{Comparing::order, 1};
        return std::nullopt;
    }

    /// Of the operator that ends before `at`.
    std::optional<Operator> operatorBefore(std::size_t at) const {
        for (const std::size_t count : {std::size_t{2}, std::size_t{1}}) {
            if (at < count)
                continue;
            const auto found = operatorAt(at - count);
            if (found && found->count == count)
                return found;
        }
        return std::nullopt;
    }

    /// The place of the parenthesis that closes the one at `open`; size() when none does.
    std::size_t closing(std::size_t open) const {
        int depth = 0;
        for (std::size_t at = open; at < size(); ++at) {
            depth += is(at, "(") ? 1 : is(at, ")") ? -1 : 0;
            if (depth == 0)
                return at;
        }
        return size();
    }

    /// The place of the parenthesis around what stands at `inner`; size() when there is none.
    std::size_t opening(std::size_t inner) const {
        int depth = 0;
        for (std::size_t at = inner; at-- > 0;) {
            depth += is(at, "(") ? 1 : is(at, ")") ? -1 : 0;
            if (depth == 1)
                return at;
        }
        return size();
    }

    /// The first token of a name whose last one stands at `last`, as of main.URLs.Host.
    std::size_t firstOfName(std::size_t last) const {
        while (last > 1 && is(last - 1, "."))
            last -= 2;
        return last;
    }

  private:
    /// One symbol, or two that touch each other.
    std::string symbolsAt(std::size_t at) const {
        if (at >= size() || (*this)[at].kind != TokenKind::symbol)
            return {};
        std::string symbols((*this)[at].source);
        const bool touches = at + 1 < size() && (*this)[at + 1].kind == TokenKind::symbol &&
                             m_places[at + 1] == m_places[at] + 1;
        if (touches)
            symbols += (*this)[at + 1].source;
        return symbols;
    }

    const std::vector<Token> &m_tokens;
    std::vector<std::size_t> m_places;
};

bool isDateColumn(std::string_view name) {
    return std::ranges::any_of(schema::projectTables(), [name](const schema::Table &table) {
        const schema::Column *column = schema::findColumn(table, name);
        return column && column->type == schema::ColumnType::Date;
    });
}

/// The name of a date column that stands at a place; empty for anything else.
std::string_view dateColumnAt(const Meaning &sql, std::size_t at) {
    if (at >= sql.size() || sql.is(at + 1, ".") || sql.is(at + 1, "("))
        return {};
    const Token &token = sql[at];
    const bool isName = token.kind == TokenKind::word || token.kind == TokenKind::name;
    return isName && isDateColumn(token.inner) ? token.inner : std::string_view();
}

/// What gives the time of the query as a text.
bool isNow(const Meaning &sql, std::size_t at) {
    return sql.is(at, "current_timestamp") || sql.is(at, "current_date") ||
           sql.is(at, "current_time");
}

/// The functions that give a date as a text.
bool isDateCall(const Meaning &sql, std::size_t at) {
    constexpr std::array<std::string_view, 4> kFunctions = {"date", "datetime", "strftime", "time"};
    return sql.is(at + 1, "(") &&
           std::ranges::any_of(kFunctions, [&](std::string_view name) { return sql.is(at, name); });
}

class DateCheck {
  public:
    explicit DateCheck(const std::vector<Token> &tokens) : m_sql(tokens) {}

    void run() {
        for (std::size_t at = 0; at < m_sql.size(); ++at)
            if (const std::string_view column = dateColumnAt(m_sql, at); !column.empty())
                checkBehind(at, column);
            else if (m_sql.isText(at) || isNow(m_sql, at))
                checkOther(at + 1);
            else if (isDateCall(m_sql, at))
                checkOther(m_sql.closing(at + 1) + 1);
    }

  private:
    [[noreturn]] static void refuse(std::string_view column) {
        throw DialectError(fmt::format(
            "{} holds dates, which are no texts: compare it with a date such as #2011-03-01# or "
            "#2011-03-01 15:30:00#; IS NULL finds the rows without one",
            column));
    }

    void refuseText(std::size_t at, std::string_view column) const {
        while (m_sql.is(at, "("))
            ++at;
        if (m_sql.isText(at) || isNow(m_sql, at) || isDateCall(m_sql, at))
            refuse(column);
    }

    /// What follows a date column and the parentheses and calls that hold nothing else. A date that
    /// is one of several arguments says nothing of the call, but for calls that give dates.
    std::size_t behind(std::size_t column) const {
        std::size_t first = m_sql.firstOfName(column);
        std::size_t at = column + 1;
        for (; m_sql.is(at, ")"); ++at) {
            const std::size_t open = m_sql.opening(first);
            if (open == m_sql.size())
                break;
            const bool isCall = open > 0 && m_sql[open - 1].kind == TokenKind::word;
            if (open + 1 != first && !(isCall && isDateCall(m_sql, open - 1)))
                break;
            first = isCall ? open - 1 : open;
        }
        return at;
    }

    /// "column > text" and the like.
    void checkBehind(std::size_t at, std::string_view column) const {
        at = behind(at);
        if (const auto compares = m_sql.operatorAt(at))
            return refuseText(at + compares->count, column);
        at += m_sql.is(at, "not") || m_sql.is(at, "is") ? 1 : 0;
        at += m_sql.is(at, "not") ? 1 : 0;
        if (m_sql.is(at, "in"))
            return checkList(at + 1, column);
        if (m_sql.is(at, "between") && m_sql.is(at + 2, "and"))
            refuseText(at + 3, column);
        if (m_sql.is(at, "between"))
            return refuseText(at + 1, column);
        if (m_sql.is(at, "like") && !m_sql.isText(at + 1) && !m_sql.is(at + 1, "("))
            return refuseText(at + 1, column);
        if (m_sql.is(at, "glob"))
            return refuseText(at + 1, column);
        if (m_sql.is(at - 1, "is") || m_sql.is(at - 1, "not"))
            refuseText(at, column);
    }

    void checkList(std::size_t open, std::string_view column) const {
        if (!m_sql.is(open, "(") || m_sql.is(open + 1, "select"))
            return;
        for (std::size_t at = open + 1; at < m_sql.closing(open); ++at)
            refuseText(at, column);
    }

    /// "text < column", where the operator may stand at `at`.
    void checkOther(std::size_t at) const {
        if (const auto compares = m_sql.operatorAt(at)) {
            refuseColumn(at + compares->count);
            return;
        }
        at += m_sql.is(at, "not") ? 1 : 0;
        if (!m_sql.is(at, "between"))
            return;
        if (const std::size_t low = refuseColumn(at + 1); m_sql.is(low + 1, "and"))
            refuseColumn(low + 2);
    }

    /// The last token of the name at `at`, which is no date column.
    std::size_t refuseColumn(std::size_t at) const {
        while (m_sql.is(at, "("))
            ++at;
        while (m_sql.is(at + 1, "."))
            at += 2;
        if (const std::string_view column = dateColumnAt(m_sql, at); !column.empty())
            refuse(column);
        return at;
    }

    Meaning m_sql;
};

bool isBeyondAscii(std::string_view text) {
    return std::ranges::any_of(text, [](char c) { return (c & 0x80) != 0; });
}

class Rewriting {
  public:
    explicit Rewriting(const std::vector<Token> &tokens) : m_sql(tokens) {
        for (const Token &token : tokens)
            m_pieces.emplace_back(token.source);
    }

    std::string run() {
        for (std::size_t at = 0; at < m_sql.size(); ++at)
            if (m_sql.is(at, "like"))
                spellDate(at);
            else if (m_sql.isText(at) && isBeyondAscii(m_sql[at].inner))
                fold(at);
        std::string sql;
        for (const std::string &piece : m_pieces)
            sql += piece;
        return sql;
    }

  private:
    /// The date column before LIKE and a text as a text.
    void spellDate(std::size_t like) {
        std::size_t pattern = like + 1;
        while (m_sql.is(pattern, "("))
            ++pattern;
        std::size_t column = like - (m_sql.is(like - 1, "not") ? 2 : 1);
        std::size_t parentheses = 0;
        for (; m_sql.is(column, ")"); --column)
            ++parentheses;
        if (!m_sql.isText(pattern) || dateColumnAt(m_sql, column).empty())
            return;
        const std::size_t first = m_sql.firstOfName(column);
        for (std::size_t open = 1; open <= parentheses; ++open)
            if (!m_sql.is(first - open, "("))
                return; // the column is a part of something else
        // Days are counted from 1899-12-30 00:00, whose Julian day this is.
        m_pieces[m_sql.placeOf(first)].insert(0, "datetime(");
        m_pieces[m_sql.placeOf(column)] += " + 2415018.5)";
    }

    void fold(std::size_t at) {
        if (isPartOfMore(at))
            return;
        const auto before = m_sql.operatorBefore(at);
        if (before && before->kind != Comparing::order) {
            take(at - before->count, before->count, likeOf(*before));
            m_pieces[m_sql.placeOf(at)] = patternOf(at);
            return;
        }
        const auto behind = m_sql.operatorAt(at + 1);
        if (!behind || behind->kind == Comparing::order || before || isCompared(at))
            return;
        const auto last = columnAt(at + 1 + behind->count);
        if (!last)
            return;
        take(at, 1 + behind->count, " ");
        m_pieces[m_sql.placeOf(*last)] += likeOf(*behind) + patternOf(at);
    }

    /// 'a' & 'b', and a comparison by a collation that the examiner has chosen.
    bool isPartOfMore(std::size_t at) const {
        const auto joins = [this](std::size_t place) {
            return place < m_sql.size() && m_sql[place].kind == TokenKind::symbol &&
                   std::string_view("&|+-*/%.").find(m_sql[place].source) != std::string_view::npos;
        };
        return joins(at + 1) || (at > 0 && joins(at - 1)) || m_sql.is(at + 1, "collate");
    }

    static std::string likeOf(const Operator &compares) {
        return compares.kind == Comparing::equal ? " LIKE " : " NOT LIKE ";
    }

    std::string patternOf(std::size_t at) const {
        const char quote = m_sql[at].source.front();
        return quotedText(escapedForLike(
            replaceAll(m_sql[at].inner, std::string(2, quote), std::string_view(&quote, 1))));
    }

    void take(std::size_t first, std::size_t count, const std::string &instead) {
        for (std::size_t at = first; at < first + count; ++at)
            m_pieces[m_sql.placeOf(at)].clear();
        m_pieces[m_sql.placeOf(first)] = instead;
    }

    bool isAny(std::size_t at, std::span<const std::string_view> words) const {
        return std::ranges::any_of(words,
                                   [&](std::string_view word) { return m_sql.is(at, word); });
    }

    /// Whether a comparison that is spelt as a word takes the text that stands at `at`.
    bool isCompared(std::size_t at) const {
        constexpr std::array<std::string_view, 4> kWords = {"like", "glob", "is", "between"};
        return (at > 0 && isAny(at - 1, kWords)) ||
               (at > 1 && m_sql.is(at - 1, "not") && m_sql.is(at - 2, "is"));
    }

    /// The last token of a column that ends its expression. Of anything longer only the database
    /// knows where it ends.
    std::optional<std::size_t> columnAt(std::size_t at) const {
        constexpr std::array<std::string_view, 22> kEnds = {
            ")",     ",",      ";",         "and",  "or",    "then", "else",   "end",
            "order", "group",  "limit",     "from", "where", "as",   "having", "offset",
            "union", "except", "intersect", "join", "inner", "left"};
        const bool isOpen = m_sql.is(at, "(");
        at += isOpen ? 1 : 0;
        while (m_sql.is(at + 1, "."))
            at += 2;
        if (at >= m_sql.size() ||
            (m_sql[at].kind != TokenKind::word && m_sql[at].kind != TokenKind::name))
            return std::nullopt;
        if (isOpen && !m_sql.is(++at, ")"))
            return std::nullopt;
        return at + 1 == m_sql.size() || isAny(at + 1, kEnds) ? std::optional(at) : std::nullopt;
    }

    Meaning m_sql;
    std::vector<std::string> m_pieces;
};

} // namespace

void checkDateComparisons(const std::vector<Token> &tokens) {
    DateCheck(tokens).run();
}

std::string asExaminersMean(const std::vector<Token> &tokens) {
    return Rewriting(tokens).run();
}

} // namespace nv
