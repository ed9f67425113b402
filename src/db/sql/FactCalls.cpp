#include "db/sql/FactCalls.h"

#include "base/Text.h"
#include "db/schema/FactNames.h"
#include "db/sql/Dialect.h"
#include "db/sql/SqlTokens.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <vector>

namespace nv {

namespace {

struct FactFunction {
    std::string_view word;
    std::string_view value; ///< of the look-up
};
constexpr std::array<FactFunction, 2> kFunctions = {
    {{"Fact", "Value"}, {"RawFact", "ifnull(RawValue, Value)"}}};

/// The inner names keep `record`, which may be a bare urlID, from meaning the table's own. A
/// sub-select has no collation of its column's.
std::string lookUp(const FactFunction &function, std::string_view record, std::string_view name) {
    return fmt::format("(SELECT F.Found FROM (SELECT rowid AS Place, URL_ID AS Record, Name, {} AS "
                       "Found FROM RecordFacts) AS F WHERE F.Record = {} AND F.Name = {} ORDER BY "
                       "F.Place LIMIT 1) COLLATE NOCASE",
                       function.value, record, quotedText(name));
}

class FactCalls {
  public:
    explicit FactCalls(std::string_view sql) : m_tokens(tokensOf(sql)) {
        for (std::size_t i = 0; i < m_tokens.size(); ++i)
            if (m_tokens[i].kind != TokenKind::blank)
                m_places.push_back(i);
        for (const Token &token : m_tokens)
            m_pieces.emplace_back(token.source);
    }

    std::string run() {
        for (std::size_t at = 0; at < m_places.size(); ++at) {
            if (const FactFunction *function = functionAt(at))
                at = replace(*function, at);
            else
                follow(at);
        }
        std::string sql;
        for (const std::string &piece : m_pieces)
            sql += piece;
        return sql;
    }

  private:
    const Token &token(std::size_t at) const { return m_tokens[m_places[at]]; }
    bool is(std::size_t at, std::string_view source) const {
        return at < m_places.size() && token(at).kind != TokenKind::text &&
               equalsNoCase(token(at).source, source);
    }
    std::string &piece(std::size_t at) { return m_pieces[m_places[at]]; }

    const FactFunction *functionAt(std::size_t at) const {
        if (token(at).kind != TokenKind::word || !is(at + 1, "("))
            return nullptr;
        const auto *found = std::ranges::find_if(kFunctions, [&](const FactFunction &each) {
            return equalsNoCase(each.word, token(at).source);
        });
        return found == kFunctions.end() ? nullptr : found;
    }

    /// Keeps in mind whether a result column may stand here, for each open parenthesis.
    void follow(std::size_t at) {
        if (is(at, "("))
            m_isInResult.push_back(false);
        else if (is(at, ")") && m_isInResult.size() > 1)
            m_isInResult.pop_back();
        else if (is(at, "select"))
            m_isInResult.back() = true;
        else if (is(at, "from"))
            m_isInResult.back() = false;
    }

    /// The place of the call's closing parenthesis.
    std::size_t replace(const FactFunction &function, std::size_t at) {
        const std::string name = nameIn(function, at + 2);
        const std::size_t end = at + 3;
        std::size_t first = at;
        while (first > 1 && is(first - 1, "."))
            first -= 2;
        std::string record;
        for (std::size_t part = first; part < at; ++part)
            record += piece(part);
        record += "URL_ID";
        const bool isColumn = isWholeColumn(first, end);
        for (std::size_t part = m_places[first]; part <= m_places[end]; ++part)
            m_pieces[part].clear();
        piece(first) = lookUp(function, record, name);
        if (isColumn)
            piece(first) += " AS " + quotedName(name);
        return end;
    }

    std::string nameIn(const FactFunction &function, std::size_t at) const {
        const bool isText =
            at < m_places.size() && token(at).kind == TokenKind::text && is(at + 1, ")");
        if (!isText)
            throw DialectError(
                fmt::format("{0}() takes the name of a fact in quotes, such as {0}('transition')",
                            function.word));
        const std::string_view name = token(at).inner;
        const auto known = factNames();
        const auto found = std::ranges::find_if(
            known, [name](std::string_view each) { return equalsNoCase(each, name); });
        if (found == known.end())
            throw DialectError(fmt::format("{}('{}'): there is no such fact; {}", function.word,
                                           name, suggestionFor(name)));
        return std::string(*found);
    }

    static std::string suggestionFor(std::string_view name) {
        const auto known = factNames();
        const auto nearest = std::ranges::min_element(
            known, {}, [name](std::string_view each) { return editDistance(toLower(name), each); });
        return fmt::format("the nearest is '{}', and the formats' page on facts lists all",
                           *nearest);
    }

    /// Nothing else belongs to the result column, not even a name of its own.
    bool isWholeColumn(std::size_t first, std::size_t end) const {
        const bool begins = first > 0 && (is(first - 1, ",") || is(first - 1, "select") ||
                                          is(first - 1, "distinct") || is(first - 1, "all"));
        const bool ends = end + 1 >= m_places.size() || is(end + 1, ",") || is(end + 1, "from");
        return m_isInResult.back() && begins && ends;
    }

    std::vector<Token> m_tokens;
    std::vector<std::size_t> m_places; ///< of the tokens that mean something
    std::vector<std::string> m_pieces;
    std::vector<bool> m_isInResult = {false};
};

} // namespace

std::string withFactsLookedUp(std::string_view sql) {
    return FactCalls(sql).run();
}

} // namespace nv
