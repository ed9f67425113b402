#include "search/KeywordList.h"

#include "base/Files.h"
#include "base/Text.h"
#include "markup/PageText.h"
#include "search/Expression.h"
#include "search/FoldedText.h"
#include "search/SearchFailure.h"

#include <fmt/format.h>

#include <optional>
#include <set>
#include <utility>

namespace nv {

namespace {

constexpr std::uint64_t kMostFileBytes = std::uint64_t{64} << 20;
constexpr std::size_t kMostTerms = 200'000;
constexpr std::size_t kMostTermBytes = 2'000;

bool isBetween(std::string_view line, char sign) {
    return line.size() > 2 && line.front() == sign && line.back() == sign;
}

Keyword keywordIn(std::string_view line, PlainTerms plain) {
    Keyword term;
    term.isExpression = isBetween(line, '/');
    term.isWholeWord =
        !term.isExpression && (plain == PlainTerms::wholeWords || isBetween(line, '"'));
    term.text =
        isBetween(line, '/') || isBetween(line, '"') ? line.substr(1, line.size() - 2) : line;
    return term;
}

/// Tells with its line what is wrong with a term; nothing when it is well.
std::optional<std::string> faultOf(const Keyword &term) {
    if (term.text.size() > kMostTermBytes)
        return fmt::format("the term has {} bytes, and at most {} can be looked for",
                           term.text.size(), kMostTermBytes);
    if (!term.isExpression && wordsOf(term.text).empty() && term.isWholeWord)
        return fmt::format("\"{}\" has no word in it", term.text);
    return term.isExpression ? Expression::faultIn(term.text) : std::nullopt;
}

bool isUtf16(std::string_view bytes) {
    return bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF");
}

} // namespace

KeywordList parseKeywords(std::string_view text, const std::string &name, PlainTerms plain) {
    KeywordList list;
    std::set<std::pair<int, std::string>> known;
    if (text.starts_with(kUtf8Mark))
        text.remove_prefix(kUtf8Mark.size());
    std::size_t number = 0;
    for (const std::string_view line : split(text, '\n')) {
        ++number;
        const std::string said = decodeText(trim(line));
        if (said.empty() || said.front() == '#')
            continue;
        Keyword term = keywordIn(said, plain);
        term.line = number;
        if (const auto fault = faultOf(term))
            throw SearchFailure(fmt::format("\"{}\" line {}: {}", name, number, *fault));
        const int form = (term.isExpression ? 2 : 0) + (term.isWholeWord ? 1 : 0);
        const bool isNew =
            known.emplace(form, term.isExpression ? term.text : foldedCase(term.text)).second;
        list.repeated += isNew ? 0 : 1;
        if (isNew)
            list.terms.push_back(std::move(term));
        if (list.terms.size() > kMostTerms)
            throw SearchFailure(
                fmt::format("\"{}\" has more than {} terms: divide it", name, kMostTerms));
    }
    if (list.terms.empty())
        throw SearchFailure(fmt::format("\"{}\" holds no terms: one a line was expected", name));
    return list;
}

KeywordList readKeywords(const std::filesystem::path &file, PlainTerms plain) {
    const FileReader reader(file);
    if (reader.size() > kMostFileBytes)
        throw SearchFailure(fmt::format("\"{}\" has {} bytes: a list of at most {} was expected",
                                        textOf(file), reader.size(), kMostFileBytes));
    const Bytes bytes = reader.read(0, reader.size());
    const std::string_view raw = ByteView(bytes).raw();
    if (isUtf16(raw))
        return parseKeywords(decodedPage(ByteView(bytes), {}).text, textOf(file), plain);
    return parseKeywords(raw, textOf(file), plain);
}

} // namespace nv
