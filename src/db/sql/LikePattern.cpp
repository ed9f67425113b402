#include "db/sql/LikePattern.h"

#include "base/Text.h"
#include "db/sql/SqlTokens.h"

#include <algorithm>

namespace nv {

namespace {

/// One character of UTF-8 and how many bytes it takes; a byte that is no UTF-8 stands for itself.
struct Letter {
    char32_t code;
    std::size_t bytes;
};

Letter letterAt(std::string_view text, std::size_t at) {
    const auto lead = static_cast<unsigned char>(text[at]);
    const std::size_t bytes = lead < 0xC0 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    if (bytes == 1 || text.size() - at < bytes)
        return {lead, 1};
    char32_t code = lead & (0x7Fu >> bytes);
    for (std::size_t i = 1; i < bytes; ++i) {
        const auto next = static_cast<unsigned char>(text[at + i]);
        if ((next & 0xC0) != 0x80)
            return {lead, 1};
        code = code << 6 | (next & 0x3Fu);
    }
    // A longer form than needed must not pass for one of the pattern's own characters.
    constexpr char32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
    if (code < kSmallest[bytes])
        return {lead, 1};
    return {code, bytes};
}

/// Lower case of the Latin, Greek and Cyrillic letters that differ by a fixed distance.
char32_t folded(char32_t c) {
    if ((c >= 'A' && c <= 'Z') || (c >= 0xC0 && c <= 0xDE && c != 0xD7) ||
        (c >= 0x391 && c <= 0x3A9) || (c >= 0x410 && c <= 0x42F))
        return c + 32;
    if (c >= 0x100 && c <= 0x17F && c != 0x130 && c != 0x131 && c != 0x178) {
        const bool upperIsOdd = (c >= 0x139 && c <= 0x148) || (c >= 0x179 && c <= 0x17E);
        return (c % 2 == 1) == upperIsOdd ? c + 1 : c;
    }
    return c;
}

std::u32string lettersOf(std::string_view text) {
    std::u32string letters;
    for (std::size_t at = 0; at < text.size();) {
        const Letter letter = letterAt(text, at);
        letters.push_back(letter.code);
        at += letter.bytes;
    }
    return letters;
}

bool isPlainText(std::string_view text) {
    return std::all_of(text.begin(), text.end(),
                       [](char c) { return (c & 0x80) == 0 && c != '%' && c != '_' && c != '['; });
}

char lowerAscii(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
}

bool sameLower(std::string_view text, std::size_t at, std::string_view lower) {
    for (std::size_t i = 0; i < lower.size(); ++i)
        if (lowerAscii(text[at + i]) != lower[i])
            return false;
    return true;
}

bool containsLower(std::string_view text, std::string_view lower) {
    if (lower.empty())
        return true;
    const char first[2] = {
        lower[0], static_cast<char>(lower[0] >= 'a' && lower[0] <= 'z' ? lower[0] - 32 : lower[0])};
    if (text.size() < lower.size())
        return false;
    const std::size_t last = text.size() - lower.size();
    for (std::size_t at = 0; at <= last; ++at)
        if ((text[at] == first[0] || text[at] == first[1]) && sameLower(text, at, lower))
            return true;
    return false;
}

} // namespace

std::optional<LikePattern> LikePattern::compile(std::string_view pattern) {
    LikePattern compiled;
    std::string_view core = pattern;
    compiled.m_openBegin = core.starts_with('%');
    core.remove_prefix(compiled.m_openBegin ? 1 : 0);
    compiled.m_openEnd = core.ends_with('%');
    core.remove_suffix(compiled.m_openEnd ? 1 : 0);
    compiled.m_isPlain = isPlainText(core);
    if (compiled.m_isPlain)
        compiled.m_plain = toLower(core);
    else if (!compiled.addSteps(lettersOf(pattern)))
        return std::nullopt;
    return compiled;
}

void LikePattern::check(std::string_view pattern) {
    if (!compile(pattern))
        throw DialectError(std::string(kInvalidPattern));
}

/// False for a list that isn't closed or a range that runs backwards. Of several "%" in a row one
/// is kept.
bool LikePattern::addSteps(std::u32string_view letters) {
    for (std::size_t at = 0; at < letters.size(); ++at) {
        if (letters[at] == U'[') {
            const std::size_t end = letters.find(U']', at + 1);
            if (end == std::u32string_view::npos)
                return false;
            const auto step = listStep(letters.substr(at + 1, end - at - 1));
            if (!step)
                return false;
            if (end > at + 1) // "[]" is no text
                m_steps.push_back(*step);
            at = end;
            continue;
        }
        const Kind kind = letters[at] == U'%'   ? Kind::anyText
                          : letters[at] == U'_' ? Kind::anyLetter
                                                : Kind::letter;
        if (kind != Kind::anyText || m_steps.empty() || m_steps.back().kind != Kind::anyText)
            m_steps.push_back({kind, folded(letters[at]), false, {}});
    }
    return true;
}

std::optional<LikePattern::Step> LikePattern::listStep(std::u32string_view list) {
    Step step{Kind::list, 0, false, {}};
    if (list.size() > 1 && list.front() == U'!') {
        step.negated = true;
        list.remove_prefix(1);
    }
    for (std::size_t at = 0; at < list.size(); ++at) {
        const bool isRange = at + 2 < list.size() && list[at + 1] == U'-';
        const Range range{list[at], list[isRange ? at + 2 : at]};
        if (range.first > range.last)
            return std::nullopt;
        step.ranges.push_back(range);
        step.ranges.push_back({folded(range.first), folded(range.last)});
        at += isRange ? 2 : 0;
    }
    return step;
}

bool LikePattern::matchesStep(const Step &step, char32_t letter) {
    const char32_t c = folded(letter);
    if (step.kind != Kind::list)
        return step.kind == Kind::anyLetter || step.letter == c;
    const bool found =
        std::any_of(step.ranges.begin(), step.ranges.end(), [letter, c](const Range &r) {
            return (c >= r.first && c <= r.last) || (letter >= r.first && letter <= r.last);
        });
    return found != step.negated;
}

bool LikePattern::matches(std::string_view text) const {
    if (!m_isPlain)
        return matchesSteps(text);
    if (m_openBegin && m_openEnd)
        return containsLower(text, m_plain);
    if (text.size() < m_plain.size() ||
        (!m_openBegin && !m_openEnd && text.size() != m_plain.size()))
        return false;
    return sameLower(text, m_openBegin ? text.size() - m_plain.size() : 0, m_plain);
}

/// Greedy with one place to come back to: the last % met. So the work stays within the product of
/// the lengths, whatever the pattern.
bool LikePattern::matchesSteps(std::string_view text) const {
    std::size_t at = 0;
    std::size_t step = 0;
    std::size_t retryAt = 0;
    std::size_t retryStep = m_steps.size() + 1;
    while (at < text.size()) {
        const Letter letter = letterAt(text, at);
        if (step < m_steps.size() && m_steps[step].kind == Kind::anyText) {
            retryStep = ++step;
            retryAt = at;
        } else if (step < m_steps.size() && matchesStep(m_steps[step], letter.code)) {
            ++step;
            at += letter.bytes;
        } else if (retryStep <= m_steps.size()) {
            retryAt += letterAt(text, retryAt).bytes;
            at = retryAt;
            step = retryStep;
        } else {
            return false;
        }
    }
    while (step < m_steps.size() && m_steps[step].kind == Kind::anyText)
        ++step;
    return step == m_steps.size();
}

std::string escapedForLike(std::string_view text) {
    std::string escaped;
    for (const char c : text)
        escaped += c == '%' || c == '_' || c == '[' ? std::string{'[', c, ']'} : std::string{c};
    return escaped;
}

} // namespace nv
