#include "search/HitFinder.h"

#include <algorithm>

namespace nv {

namespace {

/// Spellings, each once.
class Forms {
  public:
    void add(std::string_view text) {
        const std::string form(text.substr(0, cut(text)));
        const std::string folded = foldedCase(form);
        const auto holds = [](const std::string &whole, const std::string &part) {
            return whole.find(part) != std::string::npos;
        };
        if (folded.empty() || std::ranges::any_of(m_folded, [&](const std::string &known) {
                return holds(folded, known);
            }))
            return;
        for (std::size_t at = m_folded.size(); at-- > 0;)
            if (holds(m_folded[at], folded)) {
                m_folded.erase(m_folded.begin() + static_cast<std::ptrdiff_t>(at));
                m_forms.erase(m_forms.begin() + static_cast<std::ptrdiff_t>(at));
            }
        if (m_forms.size() == HitFinder::kMostForms)
            return;
        m_folded.push_back(folded);
        m_forms.push_back(form);
    }
    void addMarked(std::string_view text, const std::vector<TextSpan> &marks) {
        for (const TextSpan &mark : marks)
            add(text.substr(mark.at, mark.length));
    }
    std::vector<std::string> take() { return std::move(m_forms); }

  private:
    /// Between two characters.
    static std::size_t cut(std::string_view text) {
        if (text.size() <= HitFinder::kLongestForm)
            return text.size();
        std::size_t end = HitFinder::kLongestForm;
        while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U)
            --end;
        return end;
    }

    std::vector<std::string> m_forms;
    std::vector<std::string> m_folded; ///< of each
};

} // namespace

std::vector<std::string> HitFinder::formsIn(std::string_view text) {
    Forms forms;
    forms.addMarked(text, marksIn(text));
    return forms.take();
}

std::vector<std::string> HitFinder::formsOf(const SearchedRow &row) {
    Forms forms;
    for (const SearchClause &clause : m_match.query().clauses)
        if (clause.kind == ClauseKind::text && !clause.isExcluded)
            forms.add(clause.text);
    for (std::size_t at = 0; at < kSearchFields; ++at) {
        const auto field = static_cast<SearchField>(at);
        for (const TextSpan &value : row.valuesOf(field)) {
            const std::string_view text(row.at(field).data() + value.at, value.length);
            forms.addMarked(text, marksIn(text));
        }
    }
    return forms.take();
}

} // namespace nv
