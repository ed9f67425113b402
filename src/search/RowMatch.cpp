#include "search/RowMatch.h"

#include "address/DomainNames.h"
#include "base/Text.h"
#include "readers/RecordKind.h"

#include <algorithm>
#include <deque>
#include <functional>
#include <utility>

namespace nv {

namespace {

bool isText(const SearchClause &clause) {
    return clause.kind == ClauseKind::text || clause.kind == ClauseKind::expression;
}

} // namespace

bool liesInTime(Date date, const SearchClause &clause) {
    if (!date.has())
        return false;
    const bool isEarlier = date.unixSeconds() < clause.date.unixSeconds();
    return isEarlier == (clause.kind == ClauseKind::before);
}

bool isOfHost(std::string_view host, std::string_view asked) {
    if (foldedCase(host).find(asked) != std::string::npos)
        return true;
    const auto readable = readableDomain(host);
    return readable && foldedCase(*readable).find(asked) != std::string::npos;
}

bool isOfBrowser(std::string_view browser, std::string_view cacheType, std::string_view asked) {
    if (!browser.empty())
        return foldedCase(browser).find(asked) != std::string::npos;
    const BrowserFamily *family = browserOf(cacheType);
    return family && foldedCase(family->name).find(asked) != std::string::npos;
}

bool isOfKind(std::string_view cacheType, std::string_view asked) {
    const std::string group = toLower(groupWord(groupOf(cacheType)));
    const bool isGroup = group == asked || group == std::string(asked) + "s";
    return isGroup || foldedCase(cacheType).find(asked) != std::string::npos;
}

namespace {

/// Goes over the places at which these words follow each other, until `take` has had enough.
void walkWords(const std::vector<std::string> &words, bool anyEnd, std::string_view text,
               const std::function<bool(const TextSpan &)> &take) {
    if (words.empty())
        return;
    const auto isLast = [&](const Word &word) {
        return anyEnd ? word.text.starts_with(words.back()) : word.text == words.back();
    };
    std::deque<Word> last; // as many as are looked for
    Word word;
    for (WordWalk walk(text); walk.next(word);) {
        last.push_back(word);
        if (last.size() > words.size())
            last.pop_front();
        if (last.size() < words.size() || !isLast(word))
            continue;
        const bool all = std::equal(
            words.begin(), words.end() - 1, last.begin(),
            [](const std::string &sought, const Word &found) { return sought == found.text; });
        if (all && !take({last.front().at, word.at + word.length - last.front().at}))
            return;
    }
}

} // namespace

std::optional<TextSpan> findWords(const std::vector<std::string> &words, bool anyEnd,
                                  std::string_view text) {
    std::optional<TextSpan> found;
    walkWords(words, anyEnd, text, [&](const TextSpan &span) {
        found = span;
        return false;
    });
    return found;
}

RowMatch::RowMatch(SearchQuery query, SearchScope scope)
    : m_query(std::move(query)), m_scope(scope), m_marked(m_query.clauses.size()) {
    m_sought.reserve(m_query.clauses.size());
    for (const SearchClause &clause : m_query.clauses)
        m_sought.push_back({codedForms(clause.text), wordsOf(clause.text)});
}

namespace {

/// "^" and "$" hold for each of the values.
std::optional<TextSpan> findExpression(const Expression &expression, std::string_view text,
                                       const std::vector<TextSpan> &values) {
    for (const TextSpan &value : values)
        if (const auto found = expression.firstIn(text.substr(value.at, value.length)))
            return TextSpan{value.at + found->at, found->length};
    return std::nullopt;
}

} // namespace

std::optional<TextSpan> RowMatch::findPart(const Sought &sought, std::string_view text) {
    m_folded.fold(text);
    std::size_t at = std::string::npos;
    std::size_t end = 0;
    for (const std::string &form : sought.forms)
        if (const std::size_t found = m_folded.text().find(form); found < at) {
            at = found;
            end = found + form.size();
        }
    if (at == std::string::npos)
        return std::nullopt;
    const std::size_t from = m_folded.origin(at);
    return TextSpan{from, m_folded.origin(end) - from};
}

std::optional<TextSpan> RowMatch::find(std::size_t clause, SearchField field,
                                       const SearchedRow &row) {
    const SearchClause &asked = m_query.clauses.at(clause);
    const Sought &sought = m_sought.at(clause);
    const std::string &text = row.at(field);
    if (text.empty())
        return std::nullopt;
    if (asked.expression)
        return findExpression(*asked.expression, text, row.valuesOf(field));
    if (static_cast<std::size_t>(field) >= kWholeValues && !asked.anyPart)
        return findWords(sought.words, asked.anyEnd, text);
    return findPart(sought, text);
}

bool RowMatch::meetsClause(std::size_t clause, const SearchedRow &row) {
    const SearchClause &asked = m_query.clauses.at(clause);
    const std::string &folded = m_sought.at(clause).forms.front();
    switch (asked.kind) {
    case ClauseKind::host:
        return isOfHost(row.at(SearchField::host), folded);
    case ClauseKind::browser:
        return isOfBrowser(row.browser, row.cacheType, folded);
    case ClauseKind::kind:
        return isOfKind(row.cacheType, folded);
    case ClauseKind::before:
    case ClauseKind::after:
        return liesInTime(row.actionDateUTC, asked);
    case ClauseKind::tag:
    case ClauseKind::hashSet:
        return std::ranges::binary_search(m_marked.at(clause), row.id);
    case ClauseKind::text:
    case ClauseKind::expression:
        break;
    }
    const std::size_t fields = m_scope == SearchScope::all ? kSearchFields : kWholeValues;
    for (std::size_t at = 0; at < fields; ++at)
        if (find(clause, static_cast<SearchField>(at), row))
            return true;
    return false;
}

bool RowMatch::meets(const SearchedRow &row) {
    for (std::size_t clause = 0; clause < m_query.clauses.size(); ++clause)
        if (meetsClause(clause, row) == m_query.clauses.at(clause).isExcluded)
            return false;
    return true;
}

bool RowMatch::isMarked(std::size_t clause) const {
    const SearchClause &asked = m_query.clauses.at(clause);
    return !asked.isExcluded && isText(asked);
}

std::optional<FieldMark> RowMatch::firstMark(const SearchedRow &row) {
    const std::size_t fields = m_scope == SearchScope::all ? kSearchFields : kWholeValues;
    for (std::size_t clause = 0; clause < m_query.clauses.size(); ++clause)
        for (std::size_t at = 0; at < fields && isMarked(clause); ++at) {
            const auto field = static_cast<SearchField>(at);
            if (const auto span = find(clause, field, row))
                return FieldMark{field, *span};
        }
    return std::nullopt;
}

void RowMatch::gather(std::size_t clause, std::string_view text, std::size_t most,
                      std::vector<TextSpan> &into) {
    const std::size_t end = into.size() + most;
    if (const auto &expression = m_query.clauses.at(clause).expression) {
        for (auto span = expression->firstIn(text); span && into.size() < end;
             span = expression->firstIn(text, span->at + span->length))
            into.push_back(*span);
        return;
    }
    m_folded.fold(text);
    for (const std::string &part : m_sought.at(clause).forms)
        for (std::size_t at = m_folded.text().find(part);
             at != std::string::npos && into.size() < end;
             at = m_folded.text().find(part, at + part.size())) {
            const std::size_t from = m_folded.origin(at);
            into.push_back({from, m_folded.origin(at + part.size()) - from});
        }
    // A word may be spelled with accents there, and other signs may stand between two.
    const std::size_t last = into.size() + most;
    walkWords(m_sought.at(clause).words, m_query.clauses.at(clause).anyEnd, text,
              [&](const TextSpan &span) {
                  into.push_back(span);
                  return into.size() < last;
              });
}

std::vector<TextSpan> RowMatch::marksIn(std::string_view text, std::size_t most) {
    std::vector<TextSpan> all;
    for (std::size_t clause = 0; clause < m_query.clauses.size(); ++clause)
        if (isMarked(clause))
            gather(clause, text, most, all);
    std::ranges::sort(all, {}, &TextSpan::at);
    std::vector<TextSpan> marks;
    for (const TextSpan &span : all)
        if (marks.size() < most &&
            (marks.empty() || span.at >= marks.back().at + marks.back().length))
            marks.push_back(span);
    return marks;
}

} // namespace nv
