#include "rebuild/Replacement.h"

#include "base/Text.h"
#include "rebuild/PageText.h"
#include "rebuild/ReplacementIndex.h"
#include "rebuild/Tags.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>
#include <stdexcept>
#include <vector>

namespace nv {

namespace {

/// A short reference that its own local name begins with grows each time it is named.
constexpr std::size_t kMostGrowth = 64U << 20;

/// No reference found by a search holds one of these: they end it.
constexpr std::string_view kClosing = "\"')> \r\n";

/// What the definitions of the rules end in, and the one place within them where a quotation mark
/// stands in the middle.
std::vector<std::string> textsBeforeQuote() {
    std::vector<std::string> texts;
    for (const URLTagDef &rule : urlTagDefs())
        texts.emplace_back(toLower(trim(rule.tagDefinition)));
    const std::string scripted = texts[7];
    texts.push_back(scripted.substr(0, scripted.find('"')));
    texts.push_back(scripted.substr(0, scripted.rfind('"')));
    return texts;
}

/// Cuts a text into sections that no rule and reference can reach across: replacing in each of them
/// is the same as replacing in the whole.
class Sections {
  public:
    explicit Sections(std::string_view text) : m_text(text), m_beforeQuote(textsBeforeQuote()) {}

    std::string_view next() {
        std::size_t end = m_text.find_first_of(kClosing);
        while (end != std::string_view::npos && !endsSection(end))
            end = m_text.find_first_of(kClosing, end + 1);
        const std::string_view section =
            m_text.substr(0, end == std::string_view::npos ? end : end + 1);
        m_text.remove_prefix(section.size());
        return section;
    }
    bool atEnd() const { return m_text.empty(); }

  private:
    bool endsSection(std::size_t at) const {
        if (m_text[at] == ' ')
            return at > 0 && m_text[at - 1] != ':'; // "background: url"
        if (m_text[at] != '"' && m_text[at] != '\'')
            return true;
        const std::string_view before = m_text.substr(0, at);
        return std::ranges::none_of(m_beforeQuote, [before](const std::string &text) {
            return before.size() >= text.size() &&
                   equalsNoCase(before.substr(before.size() - text.size()), text);
        });
    }

    std::string_view m_text;
    std::vector<std::string> m_beforeQuote;
};

bool isFound(const Replacement &replacement) {
    return !replacement.old.empty() &&
           replacement.old.find_first_of(kClosing) == std::string::npos &&
           std::ranges::any_of(urlTagDefs(), [&replacement](const URLTagDef &rule) {
               return trim(rule.tagDefinition) == replacement.rule;
           });
}

void checkGrowth(std::size_t from, std::size_t to) {
    if (to > from + kMostGrowth)
        throw std::length_error("the rebuilt page grows beyond all measure");
}

/// One section, in which the replacements that can change it are found one by one. One that was
/// made and left the section as it stands can be passed over until another one has changed it.
std::string inSection(std::string section, std::span<const Replacement> replacements,
                      const ReplacementIndex &index, std::vector<bool> &made) {
    const std::size_t size = section.size();
    std::set<const ReplacementIndex::Same *> settled;
    std::size_t from = 0;
    while (const auto found = index.firstIn(section, from, settled)) {
        std::string replaced = replacedEverywhere(section, replacements[found->number]);
        checkGrowth(size, replaced.size());
        if (replaced == section) {
            settled.insert(found->same);
        } else {
            settled.clear();
            made[found->number] = true;
        }
        section = std::move(replaced);
        from = found->number + 1;
    }
    return section;
}

ReplacedText inWhole(std::string_view text, std::span<const Replacement> replacements) {
    ReplacedText page{std::string(text), {}};
    for (const Replacement &replacement : replacements) {
        std::string replaced = replacedEverywhere(page.text, replacement);
        checkGrowth(text.size(), replaced.size());
        page.made.push_back(replaced != page.text);
        page.text = std::move(replaced);
    }
    return page;
}

} // namespace

// The same value written twice is replaced once for all. The rules for styles that end in "url"
// find nothing, since a "(" follows there; earlier cases were rebuilt that way. So do the two with
// line breaks, which a page's text has lost.
std::string replacedEverywhere(std::string_view text, const Replacement &replacement) {
    const std::string &rule = replacement.rule;
    std::string page(text);
    for (const std::string_view opening : {"\"", "'"})
        page = replaceAllText(page, fmt::format("{}{}{}", rule, opening, replacement.old),
                              fmt::format("{}{}{}", rule, opening, replacement.newValue));
    for (const std::string_view between : {"", "\n", "\r"})
        page = replaceAllText(page, fmt::format("{}{}{}", rule, between, replacement.old),
                              fmt::format("{}{}", rule, replacement.newValue));
    return page;
}

ReplacedText replacedInOrder(std::string_view text, std::span<const Replacement> replacements) {
    const bool hasBreaks = text.find_first_of("\r\n") != std::string_view::npos;
    if (hasBreaks || !std::ranges::all_of(replacements, isFound)) // not as a search found them
        return inWhole(text, replacements);
    const ReplacementIndex index(replacements);
    ReplacedText page{{}, std::vector<bool>(replacements.size(), false)};
    page.text.reserve(text.size());
    for (Sections sections(text); !sections.atEnd();) {
        page.text += inSection(std::string(sections.next()), replacements, index, page.made);
        checkGrowth(text.size(), page.text.size());
    }
    return page;
}

} // namespace nv
