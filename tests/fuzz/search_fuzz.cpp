// What somebody types into a search, lists of keywords, and texts of evidence: nothing but
// SearchFailure may come out, every place lies within its text, and places that are marked don't
// overlap.

#include "search/KeywordTexts.h"
#include "search/RowMatch.h"
#include "search/Search.h"
#include "search/SearchFailure.h"

#include <array>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>

namespace {

void require(bool condition) {
    if (!condition)
        std::abort();
}

bool isWithin(const nv::TextSpan &span, std::string_view text) {
    return span.at <= text.size() && span.length <= text.size() - span.at;
}

void search(std::string_view typed, std::string_view text) {
    std::optional<nv::RowMatch> match;
    try {
        match.emplace(nv::parseSearch(typed));
    } catch (const nv::SearchFailure &) { // most of what is typed at random is no search
        return;
    }
    nv::SearchedRow row;
    row.at(nv::SearchField::title) = text;
    row.at(nv::SearchField::page) = text;
    match->meets(row);
    if (const auto mark = match->firstMark(row)) {
        require(isWithin(mark->span, text));
        const nv::Snippet snippet = nv::snippetOf(text, mark->span);
        require(isWithin(snippet.mark, snippet.text));
    }
    std::size_t end = 0;
    for (const nv::TextSpan &span : match->marksIn(text, 100)) {
        require(isWithin(span, text) && span.at >= end);
        end = span.at + span.length;
    }
}

void look(std::string_view lines, std::string_view text) {
    try {
        const nv::KeywordList list = nv::parseKeywords(lines, "list");
        nv::KeywordTexts terms(list);
        const std::array<nv::TextSpan, 1> whole = {{{0, text.size()}}};
        for (const nv::TermInText &found : terms.in(text, whole))
            require(found.term < list.terms.size() && found.hits > 0 &&
                    isWithin(found.first, text));
    } catch (const nv::SearchFailure &) { // the same
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    if (size == 0)
        return 0;
    const std::string_view text(reinterpret_cast<const char *>(data) + 1, size - 1);
    const std::size_t cut = data[0] % size;
    search(text.substr(0, cut), text.substr(cut));
    look(text.substr(0, cut), text.substr(cut));
    return 0;
}
