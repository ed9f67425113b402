#include "search/SearchQuery.h"

#include "base/Text.h"
#include "search/FoldedText.h"
#include "search/SearchFailure.h"
#include "time/LocalSeconds.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <utility>

namespace nv {

namespace {

constexpr std::size_t kMostBytes = 10'000;
constexpr std::size_t kMostClauses = 64;
constexpr std::string_view kBlanks = " \t\r\n";

struct Operator {
    std::string_view word;
    ClauseKind kind;
};
constexpr std::array<Operator, 7> kOperators = {{{"host:", ClauseKind::host},
                                                 {"browser:", ClauseKind::browser},
                                                 {"kind:", ClauseKind::kind},
                                                 {"before:", ClauseKind::before},
                                                 {"after:", ClauseKind::after},
                                                 {"tag:", ClauseKind::tag},
                                                 {"hashset:", ClauseKind::hashSet}}};

/// What is left of the box's text, from the left.
class Words {
  public:
    explicit Words(std::string_view text) : m_text(text), m_rest(text) {}

    /// In bytes.
    std::size_t place() const { return m_text.size() - m_rest.size(); }
    /// As people count, from 1.
    std::size_t letter() const { return charCount(m_text.substr(0, place())) + 1; }

    bool skipBlanks() {
        m_rest.remove_prefix(std::min(m_rest.find_first_not_of(kBlanks), m_rest.size()));
        return !m_rest.empty();
    }
    /// A "-" before something.
    bool takeMinus() {
        const bool isMinus = m_rest.size() > 1 && m_rest.front() == '-' &&
                             kBlanks.find(m_rest[1]) == std::string_view::npos;
        if (isMinus)
            m_rest.remove_prefix(1);
        return isMinus;
    }
    const Operator *takeOperator() {
        for (const Operator &each : kOperators)
            if (startsWithNoCase(m_rest, each.word)) {
                m_rest.remove_prefix(each.word.size());
                return &each;
            }
        return nullptr;
    }
    /// What stands between quotation marks; two of them within it stand for one.
    std::optional<std::string> takeQuoted() {
        if (m_rest.empty() || m_rest.front() != '"')
            return std::nullopt;
        std::string text;
        std::size_t at = 1;
        for (; at < m_rest.size(); ++at) {
            if (m_rest[at] == '"' && (at + 1 == m_rest.size() || m_rest[at + 1] != '"'))
                break;
            at += m_rest[at] == '"' ? 1 : 0;
            text.push_back(m_rest[at]);
        }
        m_rest.remove_prefix(std::min(at + 1, m_rest.size()));
        return text;
    }
    /// From "/" to a "/" before a blank or the end: addresses and folders have others within them.
    std::optional<std::string> takeExpression() {
        if (m_rest.size() < 2 || m_rest.front() != '/')
            return std::nullopt;
        for (std::size_t at = 1; at < m_rest.size(); ++at) {
            const bool ends =
                at + 1 == m_rest.size() || kBlanks.find(m_rest[at + 1]) != std::string_view::npos;
            if (m_rest[at] == '\\')
                ++at;
            else if (m_rest[at] == '/' && ends && at > 1)
                return take(at + 1).substr(1, at - 1);
        }
        return std::nullopt;
    }
    std::string takeWord() { return take(std::min(m_rest.find_first_of(kBlanks), m_rest.size())); }

  private:
    std::string take(std::size_t length) {
        std::string taken(m_rest.substr(0, length));
        m_rest.remove_prefix(length);
        return taken;
    }

    std::string_view m_text;
    std::string_view m_rest;
};

/// The numbers of "2011-03-01"; nothing when there is anything else.
std::vector<int> numbersOf(std::string_view text, char separator, std::size_t most) {
    std::vector<int> numbers;
    for (const std::string_view part : split(text, separator)) {
        int value = 0;
        const auto [end, error] = std::from_chars(part.data(), part.data() + part.size(), value);
        if (error != std::errc() || end != part.data() + part.size() || value < 0 ||
            numbers.size() == most)
            return {};
        numbers.push_back(value);
    }
    return numbers;
}

void takeStars(SearchClause &clause) {
    std::string_view text = clause.text;
    while (text.starts_with('*'))
        text.remove_prefix(1);
    const bool open = text.size() < clause.text.size();
    const std::size_t withEnd = text.size();
    while (text.ends_with('*'))
        text.remove_suffix(1);
    if (text.empty()) // stars alone: they are looked for
        return;
    clause.anyPart = open;
    clause.anyEnd = !open && text.size() < withEnd;
    clause.text = std::string(text);
}

constexpr std::string_view kDateExpected =
    "a date such as 2011, 2011-03, 2011-03-01 or 2011-03-01T15:30 was expected";

bool isOfDate(ClauseKind kind) {
    return kind == ClauseKind::before || kind == ClauseKind::after;
}

/// `letter` is where its value begins.
SearchClause clauseOf(const Operator &given, std::string value, std::size_t letter) {
    const bool isDate = isOfDate(given.kind);
    if (trim(value).empty())
        throw SearchFailure(fmt::format("letter {}: \"{}\" needs a value behind it{}", letter,
                                        given.word,
                                        isDate ? fmt::format(": {}", kDateExpected) : ""));
    SearchClause clause{.kind = given.kind, .text = std::move(value)};
    if (!isDate)
        return clause;
    clause.date = searchDate(clause.text);
    if (!clause.date.has())
        throw SearchFailure(
            fmt::format("letter {}: \"{}{}\": {}", letter, given.word, clause.text, kDateExpected));
    return clause;
}

/// `letter` is where it begins.
SearchClause clauseOf(std::string expression, std::size_t letter) {
    if (const auto fault = Expression::faultIn(expression))
        throw SearchFailure(fmt::format("letter {}: {}", letter, *fault));
    SearchClause clause{.kind = ClauseKind::expression, .text = expression};
    clause.expression = std::make_shared<const Expression>(std::move(expression));
    return clause;
}

SearchClause nextClause(Words &words) {
    const bool isExcluded = words.takeMinus();
    SearchClause clause;
    const std::size_t begin = words.letter();
    if (const Operator *given = words.takeOperator()) {
        const std::size_t letter = words.letter();
        auto quoted = words.takeQuoted();
        clause = clauseOf(*given, quoted ? std::move(*quoted) : words.takeWord(), letter);
    } else if (auto phrase = words.takeQuoted()) {
        clause.text = std::move(*phrase);
    } else if (auto expression = words.takeExpression()) {
        clause = clauseOf(std::move(*expression), begin);
    } else {
        clause.text = words.takeWord();
        takeStars(clause);
    }
    clause.isExcluded = isExcluded;
    // Whoever looks for words in these would miss what stands there.
    if (clause.kind == ClauseKind::text && isWithoutWords(clause.text)) {
        clause.anyPart = true;
        clause.anyEnd = false;
    }
    return clause;
}

/// Goes behind the words of a clause without reading what they say.
void passOver(Words &words) {
    static_cast<void>(words.takeQuoted() || words.takeExpression() || !words.takeWord().empty());
}

} // namespace

void goByClock(SearchQuery &query, const TimeZone &zone, bool enableDSTChanges) {
    for (SearchClause &clause : query.clauses) {
        if (!isOfDate(clause.kind) || !clause.date.has())
            continue;
        const Date moment = firstMoment(clause.date.unixSeconds(), zone, enableDSTChanges);
        if (moment.has()) // at the calendar's end no zone moves a date
            clause.date = moment;
    }
}

bool hasDates(const SearchQuery &query) {
    return std::ranges::any_of(query.clauses, isOfDate, &SearchClause::kind);
}

bool isFoundAtOnce(const SearchQuery &query) {
    constexpr std::size_t kLeastLetters = 3;
    return std::ranges::any_of(query.clauses, [](const SearchClause &clause) {
        const bool isText = clause.kind == ClauseKind::text;
        return clause.kind != ClauseKind::expression && !clause.isExcluded &&
               (!isText || charCount(clause.text) >= kLeastLetters);
    });
}

std::optional<TypedOperator> operatorAt(std::string_view text, std::size_t place) {
    for (Words words(text); words.skipBlanks() && words.place() <= place;) {
        words.takeMinus();
        const Operator *given = words.takeOperator();
        if (given == nullptr) {
            passOver(words);
            continue;
        }
        TypedOperator typed{given->kind, {}, words.place(), 0};
        if (const auto quoted = words.takeQuoted())
            typed.value = *quoted;
        else
            typed.value = words.takeWord();
        typed.length = words.place() - typed.at;
        if (typed.at <= place && place <= typed.at + typed.length)
            return typed;
    }
    return std::nullopt;
}

std::string operatorValue(std::string_view value) {
    const bool isWord =
        !value.empty() && value.find_first_of(" \t\r\n\"") == std::string_view::npos;
    return isWord ? std::string(value)
                  : fmt::format("\"{}\"", replaceAll(value, std::string_view("\""), "\"\""));
}

std::string_view operatorWord(ClauseKind kind) {
    const auto *const found = std::ranges::find(kOperators, kind, &Operator::kind);
    return found == kOperators.end() ? std::string_view() : found->word;
}

Date searchDate(std::string_view text) {
    const std::size_t gap = text.find('T');
    const std::vector<int> day = numbersOf(text.substr(0, gap), '-', 3);
    std::vector<int> time;
    if (gap != std::string_view::npos)
        time = numbersOf(text.substr(gap + 1), ':', 3);
    const bool hasTime = time.size() > 1 && day.size() == 3;
    if (day.empty() || text.find('-') < 4 || (gap != std::string_view::npos && !hasTime))
        return {};
    CivilTime civil{.year = day[0]};
    civil.month = day.size() > 1 ? day[1] : 1;
    civil.day = day.size() > 2 ? day[2] : 1;
    civil.hour = hasTime ? time[0] : 0;
    civil.minute = hasTime ? time[1] : 0;
    civil.second = time.size() > 2 ? time[2] : 0;
    return Date::fromCivil(civil);
}

SearchQuery parseSearch(std::string_view text) {
    if (text.size() > kMostBytes)
        throw SearchFailure(fmt::format("the search has {} bytes: at most {} can be read; a list "
                                        "of keywords takes more",
                                        text.size(), kMostBytes));
    const std::string decoded =
        replaceAll(decodeText(text), std::string_view("\0", 1), std::string_view(" "));
    SearchQuery query;
    for (Words words(decoded); words.skipBlanks();) {
        SearchClause clause = nextClause(words);
        if (!clause.text.empty())
            query.clauses.push_back(std::move(clause));
        if (query.clauses.size() > kMostClauses)
            throw SearchFailure(fmt::format("the search has more than {} words: a list of "
                                            "keywords takes more",
                                            kMostClauses));
    }
    if (query.clauses.empty())
        throw SearchFailure("there is nothing to look for: a word was expected");
    return query;
}

} // namespace nv
