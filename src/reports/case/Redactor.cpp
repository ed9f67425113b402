#include "reports/case/Redactor.h"

#include "base/Base64.h"
#include "base/Text.h"
#include "markup/Utf8.h"
#include "reports/case/CodedText.h"
#include "reports/case/PackedTexts.h"

#include <algorithm>
#include <functional>
#include <map>
#include <utility>

namespace nv {

namespace {

constexpr int kCodings = 3; ///< one over the other

std::string lowered(std::string_view word) {
    return PlainStream(word, PlainStream::Codes::keep).plain;
}

std::string wideOf(std::string_view word, bool isBigEndian) {
    std::string wide;
    for (std::size_t at = 0; at < word.size();) {
        const std::uint32_t code = nextCode(word, at);
        if (code > 0xFFFF)
            return {}; // of two units each: looked for in UTF-8 alone
        const auto high = static_cast<char>(code >> 8);
        const auto low = static_cast<char>(code & 0xFF);
        wide += isBigEndian ? high : low;
        wide += isBigEndian ? low : high;
    }
    return wide;
}

/// Whether so many bytes of text stand beside each other. Most of what is read as base64 isn't, and
/// has none. Zeros are part of UTF-16.
bool hasReadable(std::string_view bytes, std::size_t fewest) {
    std::size_t readable = 0;
    for (std::size_t at = 0; at < bytes.size() && readable < fewest;) {
        const std::size_t begin = at;
        const std::uint32_t letter = nextCode(bytes, at);
        const bool isControl = letter < ' ' && !(letter >= '\t' && letter <= '\r');
        if (letter != 0)
            readable = isControl || letter == 0x7F || letter == 0xFFFD ? 0 : readable + at - begin;
    }
    return readable >= fewest;
}

/// The filling at the end of base64, where nothing but the end of a value follows.
std::size_t fillingAt(std::string_view text, std::size_t at) {
    std::size_t end = at;
    while (end < text.size() && end < at + 2 && text[end] == '=')
        ++end;
    const bool isEnd =
        end == text.size() ||
        std::string_view("&;/?#,)\"' <>\r\n").find(text[end]) != std::string_view::npos;
    return isEnd ? end - at : 0;
}

} // namespace

std::vector<std::string> embeddedData(std::string_view text) {
    std::vector<std::string> found;
    constexpr std::string_view kBegin = "data:";
    constexpr std::size_t kLongestHead = 200;
    for (std::size_t at = findNoCase(text, kBegin); at != std::string_view::npos;
         at = findNoCase(text, kBegin, at)) {
        const std::string_view head = text.substr(at, kLongestHead);
        const std::size_t comma = head.find(',');
        if (comma == std::string_view::npos) {
            at += kBegin.size();
            continue;
        }
        const std::size_t begin = at + comma + 1;
        at = std::min(text.find_first_of("\"'<>) \t\r\n", begin), text.size());
        const std::string_view body = text.substr(begin, at - begin);
        found.push_back(containsNoCase(head.substr(0, comma), "base64") ? fromBase64(body)
                                                                        : percentDecode(body));
    }
    return found;
}

Redactor::Redactor(RedactionRules rules) : m_rules(std::move(rules)), m_met(m_rules.size()) {
    for (const RedactionRule &rule : m_rules) {
        if (rule.thing == RedactedThing::picture)
            continue;
        for (const bool isBigEndian : {false, true})
            if (std::string wide = wideOf(rule.what, isBigEndian); !wide.empty())
                m_wide.push_back(std::move(wide));
    }
    takeWords();
    for (const auto &[word, met] : m_words) {
        m_begins.at(static_cast<unsigned char>(word.front())) = true;
        m_areAscii &= std::ranges::all_of(word, [](char c) { return c >= 0; });
        m_fewest = m_fewest == 0 ? charCount(word) : std::min(m_fewest, charCount(word));
    }
}

void Redactor::takeWords() {
    std::map<std::string, std::vector<std::size_t>> words;
    for (std::size_t rule = 0; rule < m_rules.size(); ++rule)
        if (m_rules[rule].thing != RedactedThing::picture)
            words[lowered(m_rules[rule].what)].push_back(rule);
    words.erase(std::string());
    for (const auto &[text, rules] : words) {
        Word &word = m_words.emplace_back();
        word.text = text;
        for (const auto &[part, met] : words)
            if (text.find(part) != std::string::npos)
                word.rules.insert(word.rules.end(), met.begin(), met.end());
    }
    std::ranges::stable_sort(m_words, std::greater(),
                             [](const Word &word) { return word.text.size(); });
}

/// Each place once, the longest word first. What coded a letter goes whole.
std::string Redactor::withMarks(std::string_view value, PlainStream::Codes codes) {
    const PlainStream stream(value, codes);
    std::string marked;
    std::size_t done = 0; ///< of the value
    for (std::size_t at = 0; at < stream.plain.size();) {
        if (!m_begins.at(static_cast<unsigned char>(stream.plain[at]))) {
            ++at;
            continue;
        }
        const auto word = std::ranges::find_if(m_words, [&](const Word &each) {
            return std::string_view(stream.plain).substr(at).starts_with(each.text);
        });
        if (word == m_words.end()) {
            ++at;
            continue;
        }
        const std::size_t begin = stream.origin[at];
        at += word->text.size();
        std::ranges::for_each(word->rules, [this](std::size_t rule) { meet(rule); });
        const std::size_t end = stream.origin[at];
        if (begin < done) // one letter that was two of the stream
            continue;
        marked += value.substr(done, begin - done);
        marked += kRedacted;
        done = std::max(end, begin + 1);
        ++counts.placesBlurred;
    }
    return marked += value.substr(std::min(done, value.size()));
}

std::string Redactor::text(std::string_view value) {
    if (m_words.empty() || value.empty())
        return std::string(value);
    std::string seen = decodeText(value);
    for (const auto codes :
         {PlainStream::Codes::keep, PlainStream::Codes::undo, PlainStream::Codes::undoOctal})
        if (codes != PlainStream::Codes::undoOctal || mayHaveOctal(seen))
            seen = withMarks(seen, codes);
    const std::string marked = withoutCodedRuns(seen);
    const bool isLeft = holdsPlain(marked) || holdsCoded(marked);
    if (isLeft || marked != seen)
        meetCoded(seen);
    if (!isLeft)
        return marked;
    ++counts.placesBlurred;
    return std::string(kRedacted);
}

bool Redactor::isIn(const PlainStream &stream) const {
    return std::ranges::any_of(m_words, [&stream](const Word &word) {
        return stream.plain.find(word.text) != std::string::npos;
    });
}

bool Redactor::holdsPlain(std::string_view text) const {
    return isIn(PlainStream(text, PlainStream::Codes::keep)) ||
           holdsUndone(text, PlainStream::Codes::undo) ||
           (mayHaveOctal(text) && holdsUndone(text, PlainStream::Codes::undoOctal));
}

/// Coding after coding is undone.
bool Redactor::holdsUndone(std::string_view text, PlainStream::Codes codes) const {
    std::string layer(text);
    for (int coding = 0; coding < kCodings; ++coding) {
        PlainStream stream(layer, codes);
        if (isIn(stream))
            return true;
        if (!stream.hadCodes)
            break;
        layer = std::move(stream.plain);
    }
    return false;
}

/// Of a run that a path is part of only the piece that holds the word goes.
std::string Redactor::withoutCodedRuns(std::string_view text) {
    const auto holdsWord = [this](std::string_view run) {
        return anyReading(run, m_fewest,
                          [this](std::string_view bytes) { return holdsDecoded(bytes, kCodings); });
    };
    std::string marked;
    std::size_t done = 0; ///< of the text
    for (const std::string_view run : codedRuns(text, m_fewest)) {
        if (!holdsWord(run))
            continue;
        std::string left;
        std::uint64_t places = 0;
        for (const std::string_view piece : split(run, '/')) {
            const bool isOut = holdsWord(piece);
            left.append(left.empty() && piece.data() == run.data() ? "" : "/")
                .append(isOut ? kRedacted : piece);
            places += isOut ? 1 : 0;
        }
        if (places == 0 || holdsCoded(left)) {
            left = kRedacted;
            places = 1;
        }
        const auto begin = static_cast<std::size_t>(run.data() - text.data());
        marked.append(text.substr(done, begin - done)).append(left);
        done = begin + run.size();
        done += left.ends_with(kRedacted) ? fillingAt(text, done) : 0;
        counts.placesBlurred += places;
    }
    return marked.append(text.substr(done));
}

bool Redactor::holdsCoded(std::string_view text) const {
    return !m_words.empty() && holdsCoded(text, kCodings);
}

/// The codes themselves may be written by other codes.
bool Redactor::holdsCoded(std::string_view text, int codings) const {
    const auto isWord = [this, codings](std::string_view bytes) {
        return holdsDecoded(bytes, codings);
    };
    if (anyCoded(text, m_fewest, isWord))
        return true;
    std::string layer(text);
    for (int coding = 0; coding < kCodings && layer.find_first_of("%&\\") != std::string::npos;
         ++coding) {
        std::string next = withoutCodes(layer);
        if (next == layer)
            break;
        layer = std::move(next);
        if (anyCoded(layer, m_fewest, isWord))
            return true;
    }
    return false;
}

/// What base64 or hexadecimal digits stand for: text in any code, or such a code again.
bool Redactor::holdsDecoded(std::string_view bytes, int codings) const {
    if (m_areAscii && !hasReadable(bytes, m_fewest))
        return false;
    if (holdsUncoded(bytes) || (!m_areAscii && !isUtf8(bytes) && holdsPlain(fromAnsi(bytes))))
        return true;
    return codings > 1 && holdsCoded(bytes, codings - 1);
}

bool Redactor::holds(std::string_view bytes) const {
    const bool isThere = holdsAny(bytes);
    if (isThere)
        meetCoded(bytes);
    return isThere;
}

bool Redactor::holdsAny(std::string_view bytes) const {
    return !m_words.empty() && (holdsUncoded(bytes) || holdsCoded(bytes));
}

/// Which of the words it is that these hold in some code.
void Redactor::meetCoded(std::string_view bytes) const {
    for (std::size_t rule = 0; rule < m_rules.size(); ++rule)
        if (!m_met[rule] && m_rules[rule].thing != RedactedThing::picture &&
            Redactor({m_rules[rule]}).holdsAny(bytes))
            meet(rule);
}

bool Redactor::holdsUncoded(std::string_view bytes) const {
    if (holdsLetters(bytes) || holdsPacked(bytes))
        return true;
    if (bytes.find('<') != std::string_view::npos && holdsPlain(withoutMarkup(bytes)))
        return true;
    return std::ranges::any_of(embeddedData(bytes), [this](const std::string &data) {
        return holdsPlain(data) || holdsPacked(data);
    });
}

/// In UTF-8 or UTF-16.
bool Redactor::holdsLetters(std::string_view bytes) const {
    for (const std::string &wide : m_wide)
        if (bytes.find(wide) != std::string_view::npos)
            return true;
    std::string narrow(bytes);
    std::erase(narrow, '\0'); // of UTF-16 in another case
    return holdsPlain(bytes) || (narrow.size() != bytes.size() && holdsPlain(narrow));
}

/// Of what can't be unpacked whole nobody can say that it holds none.
bool Redactor::holdsPacked(std::string_view picture) const {
    const PackedTexts packed = packedTextsOf(picture);
    return !packed.areWhole || std::ranges::any_of(packed.texts, [this](const std::string &text) {
        return holdsLetters(text) || (!isUtf8(text) && holdsPlain(fromAnsi(text)));
    });
}

} // namespace nv
