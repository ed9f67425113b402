#include "rebuild/TagScan.h"

#include "base/Text.h"
#include "rebuild/PageText.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <unordered_map>
#include <vector>

namespace nv {

namespace {

/// A value that doesn't end within this length is given up, and the search goes on after it.
constexpr std::size_t kLongestValue = 1920;
/// A form field's value is no reference: "<input" this close before it ends the rule.
constexpr std::size_t kInputBefore = 75;

enum Rule : std::int16_t { kHref = 3, kInlineValue = 7, kScriptedHref = 8, kBackgroundImage = 9 };

bool opensOrCloses(char c) {
    return c == '"' || c == '\'' || c == '(' || c == ')' || c == '>' || c == ' ' || c == '/' ||
           c == '.' || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

bool standsBeforeValue(char c) {
    return c == '"' || c == '\'' || c == '>' || c == '(';
}

bool closes(char c) {
    return c == '"' || c == '\'' || c == ')' || c == ' ' || c == '>';
}

std::string without(std::string_view text, std::string_view what) {
    return replaceAll(text, what, "");
}

/// One rule's way through the text. Positions are 1-based, as tags hold them.
class RuleScan {
  public:
    RuleScan(std::string_view text, const URLTagDef &rule, const ReplaceableLists &lists,
             URLTags &tags)
        : m_text(text), m_rule(rule), m_lists(lists), m_tags(tags) {}

    /// False when cancelled.
    bool run(TaskMonitor &task, double from, double to) {
        const auto length = static_cast<double>(m_text.size()) + 1;
        while (m_pos > 0) {
            if (!task.advance(from + (to - from) * static_cast<double>(m_pos) / length))
                return false;
            m_pos = findTextFrom(m_pos, m_text, m_rule.tagDefinition);
            if (m_pos == 0 || isFormField())
                return true;
            takeHit();
        }
        return true;
    }

  private:
    bool isFormField() const {
        if (m_rule.collectionIndex != kInlineValue || m_pos <= kInputBefore)
            return false;
        return findTextFrom(m_pos - kInputBefore, m_text.substr(0, m_pos - 1), "<input") > 0;
    }

    char at(std::size_t position) const { return m_text[position - 1]; }

    void takeHit() {
        URLTag &tag = m_tags.add({});
        for (std::size_t idx = m_pos + m_rule.tagDefinition.size();; ++idx) {
            if (idx >= m_text.size()) {
                m_pos = 0;
                return;
            }
            if (idx - m_pos > kLongestValue && idx + kLongestValue < m_text.size()) {
                m_pos += kLongestValue;
                return;
            }
            if (!opensOrCloses(at(idx)))
                continue; // digits too, before a value and in it
            if (tag.fileOffset == 0)
                tag.fileOffset = standsBeforeValue(at(idx)) ? idx + 1 : idx;
            else if (closes(at(idx)))
                return takeValue(tag, idx);
        }
    }

    void takeValue(URLTag &tag, std::size_t end) {
        const std::size_t begin = tag.fileOffset;
        const std::string_view raw = m_text.substr(begin - 1, end - begin);
        const bool mustBeStyleSheet =
            m_rule.collectionIndex == kHref || m_rule.collectionIndex == kScriptedHref;
        if (mustBeStyleSheet && getFileExtension(fromAnsi(raw)) != "css") {
            m_pos = begin;
            return dropLast();
        }
        tag.pathLength = end - begin;
        tag.tagType = m_rule.tagType;
        tag.tagDefinition = m_rule.tagDefinition;
        m_pos = begin + tag.pathLength;
        describe(tag, raw);
    }

    void describe(URLTag &tag, std::string_view raw) {
        tag.originalTag = fromAnsi(without(without(without(raw, "\n"), "\r"), ")"));
        tag.tagSansParentPaths = without(without(tag.originalTag, "../"), "./");
        tag.isPicture = isReplaceablePicture(tag.originalTag, m_lists.pictures);
        tag.isReplaceableHREFTag = isReplaceableHREF(tag.originalTag, m_lists.hrefs);
        const bool wantsStyleSheet = m_rule.collectionIndex == kHref ||
                                     m_rule.collectionIndex == kScriptedHref ||
                                     m_rule.collectionIndex == kBackgroundImage;
        const bool drop = wantsStyleSheet && !containsNoCase(tag.originalTag, ".css");
        if (tag.isPicture || (tag.isReplaceableHREFTag && !drop))
            tag.tagFileName = tag.originalTag.substr(tag.originalTag.rfind('/') + 1);
        else if (drop)
            dropLast();
    }

    void dropLast() { m_tags.remove(m_tags.count()); }

    std::string_view m_text;
    const URLTagDef &m_rule;
    const ReplaceableLists &m_lists;
    URLTags &m_tags;
    std::size_t m_pos = 1; ///< 0 ends the rule
};

bool isBlank(const URLTag &tag) {
    return trim(tag.originalTag).empty();
}

/// The tags by what makes them equal, so that the last one of a kind is found without a walk.
class Kinds {
  public:
    explicit Kinds(const URLTags &tags) {
        std::size_t place = 0;
        for (const URLTag &tag : tags) {
            m_kindOf.push_back(&m_places[tag.tagType + '\n' + tag.originalTag]);
            m_kindOf.back()->push_back(place);
            if (isBlank(tag))
                m_blank.push_back(place);
            ++place;
        }
        m_there.assign(place, true);
    }

    bool isThere(std::size_t place) const { return m_there[place]; }

    /// Removes the last tag after `place` that equals the one there, or the last blank one at or
    /// after it, whichever is later. Returns its place.
    std::optional<std::size_t> removeFor(std::size_t place) {
        const auto equal = lastOf(*m_kindOf[place], place + 1);
        const auto blank = lastOf(m_blank, place);
        const auto last = std::max(equal, blank);
        if (last)
            m_there[*last] = false;
        return last;
    }

  private:
    std::optional<std::size_t> lastOf(std::vector<std::size_t> &places, std::size_t from) const {
        while (!places.empty() && !m_there[places.back()])
            places.pop_back();
        if (places.empty() || places.back() < from)
            return std::nullopt;
        return places.back();
    }

    std::unordered_map<std::string, std::vector<std::size_t>> m_places;
    std::vector<std::vector<std::size_t> *> m_kindOf;
    std::vector<std::size_t> m_blank;
    std::vector<bool> m_there;
};

} // namespace

std::optional<URLTags> scanTags(std::string_view text, const ReplaceableLists &lists,
                                TaskMonitor &task) {
    URLTags tags;
    const URLTagDefs rules = urlTagDefs();
    const auto count = static_cast<double>(rules.count());
    double done = 0;
    for (const URLTagDef &rule : rules) {
        if (!RuleScan(text, rule, lists, tags).run(task, done / count, (done + 1) / count))
            return std::nullopt;
        ++done;
    }
    return tags;
}

URLTags reconcileTags(const URLTags &tags) {
    Kinds kinds(tags);
    std::size_t left = tags.count();
    std::size_t place = 0;
    const auto toNext = [&] {
        while (place < tags.count() && !kinds.isThere(place))
            ++place;
    };
    for (std::size_t i = 1; i < left; ++i, ++place) {
        toNext();
        const auto removed = kinds.removeFor(place);
        left -= removed ? 1 : 0;
        toNext(); // a tag that removed itself gives its place to the next one, which isn't looked
                  // at
    }
    URLTags reconciled;
    for (std::size_t at = 0; at < tags.count(); ++at)
        if (kinds.isThere(at))
            reconciled.add(tags.item(at + 1));
    return reconciled;
}

} // namespace nv
