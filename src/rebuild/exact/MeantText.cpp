#include "rebuild/exact/MeantText.h"

#include "base/Text.h"
#include "markup/HtmlDocument.h"
#include "markup/Utf8.h"

#include <algorithm>
#include <mutex>
#include <unordered_map>

namespace nv {

namespace {

constexpr std::uint32_t kReplacement = 0xFFFD;
/// Of a reference's name; the longest has 31 letters.
constexpr std::size_t kLongestName = 32;

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

bool isHex(char c) {
    return isDigit(c) || ((c | 0x20) >= 'a' && (c | 0x20) <= 'f');
}

bool isNamePart(char c) {
    return isDigit(c) || ((c | 0x20) >= 'a' && (c | 0x20) <= 'z');
}

/// What the parser makes of "&name;" or "&name", which stand in no list of ours; the text itself
/// for a name that it doesn't know.
class NamedReferences {
  public:
    std::string meaningOf(const std::string &written) {
        const std::lock_guard lock(m_mutex);
        if (const auto known = m_known.find(written); known != m_known.end())
            return known->second;
        std::string meaning = parsed(written);
        if (meaning != written)
            m_known.emplace(written, meaning);
        return meaning;
    }

  private:
    static std::string parsed(const std::string &written) {
        const std::string page = "<body title=\"" + written + "\">";
        const auto document = HtmlDocument::within(page);
        if (document)
            for (const auto *child : HtmlDocument::childrenOf(document->root()))
                if (HtmlDocument::isElement(*child))
                    if (const auto title = HtmlDocument::valueOf(*child, "title"))
                        return std::string(*title);
        return written;
    }

    std::mutex m_mutex;
    std::unordered_map<std::string, std::string> m_known;
};

NamedReferences &namedReferences() {
    static NamedReferences references;
    return references;
}

struct Length {
    std::size_t written = 0; ///< 0 for no reference
    std::size_t meant = 0;
};

std::size_t characterAt(std::string_view text, std::size_t at) {
    const std::size_t begin = at;
    if (at < text.size())
        nextCode(text, at);
    return at - begin;
}

Length numericReference(std::string_view written, std::string_view meant) {
    std::size_t at = 2;
    const bool isHexadecimal = at < written.size() && (written[at] | 0x20) == 'x';
    at += isHexadecimal ? 1 : 0;
    const std::size_t digits = at;
    while (at < written.size() && (isHexadecimal ? isHex(written[at]) : isDigit(written[at])))
        ++at;
    if (at == digits)
        return {};
    at += at < written.size() && written[at] == ';' ? 1 : 0;
    return {at, characterAt(meant, 0)};
}

/// Of a name a part is never read in an attribute: all of it or nothing.
Length namedReference(std::string_view written, std::string_view meant) {
    std::size_t end = 1;
    while (end < written.size() && end <= kLongestName && isNamePart(written[end]))
        ++end;
    const std::string_view name = written.substr(1, end - 1);
    const bool isEnded = end < written.size() && written[end] == ';';
    const bool isValue = end < written.size() && written[end] == '=';
    const bool isAmpersand = name == "amp" || name == "AMP";
    // Only these two mean a "&", so that any other one that is there means itself.
    if (name.empty() || end > kLongestName || (isValue && !isEnded) ||
        (meant.starts_with('&') && !isAmpersand))
        return {};
    end += isEnded ? 1 : 0;
    const std::string reference(written.substr(0, end));
    const std::string meaning = namedReferences().meaningOf(reference);
    if (meaning == reference || !meant.starts_with(meaning))
        return {};
    return {end, meaning.size()};
}

Length referenceAt(std::string_view written, std::string_view meant) {
    if (!written.starts_with('&') || meant.empty())
        return {};
    return written.substr(1).starts_with('#') ? numericReference(written, meant)
                                              : namedReference(written, meant);
}

} // namespace

void MeantText::addRun(std::size_t meant, std::size_t written) {
    if (!m_runs.empty() && m_runs.back().meant == meant)
        m_runs.back().written = written;
    else
        m_runs.push_back({meant, written});
}

bool MeantText::align(std::string_view written, Kind kind) {
    const std::string_view meant = m_text;
    std::size_t from = 0;
    std::size_t to = 0;
    while (from < written.size()) {
        const std::size_t begin = from;
        const Length length = kind == Kind::attribute
                                  ? referenceAt(written.substr(from), meant.substr(to))
                                  : Length();
        if (length.written > 0) {
            addRun(to, from);
            from += length.written;
            to += length.meant;
            addRun(to, from);
            continue;
        }
        if (to >= meant.size())
            return false;
        const std::size_t was = to;
        const std::uint32_t read = nextCode(meant, to);
        std::uint32_t code = nextCode(written, from);
        if (code == '\r') { // the parser's line breaks are all alike
            code = '\n';
            from += from < written.size() && written[from] == '\n' ? 1 : 0;
        }
        if (code != read && read != kReplacement)
            return false;
        if (to - was != from - begin)
            addRun(to, from);
    }
    return to == meant.size();
}

std::optional<MeantText> MeantText::of(std::string_view written, std::string_view meant,
                                       std::size_t at, Kind kind) {
    MeantText text;
    text.m_text = meant;
    text.m_at = at;
    if (written != meant && !text.align(written, kind))
        return std::nullopt;
    return text;
}

std::size_t MeantText::placeOf(std::size_t meant) const {
    const auto after = std::ranges::upper_bound(m_runs, meant, {}, &Run::meant);
    if (after == m_runs.begin())
        return m_at + meant;
    const Run &run = *std::prev(after);
    return m_at + run.written + (meant - run.meant);
}

SourceSpan MeantText::inPage(SourceSpan part) const {
    return {placeOf(part.begin), placeOf(part.end)};
}

} // namespace nv
