#include "reports/case/Redactor.h"

#include "base/Base64.h"
#include "base/Text.h"
#include "markup/Utf8.h"
#include "readers/Dissection.h"

#include <fmt/format.h>

#include <algorithm>
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

bool isBelow(std::string_view host, std::string_view domain) {
    return equalsNoCase(host, domain) ||
           (host.size() > domain.size() && host[host.size() - domain.size() - 1] == '.' &&
            equalsNoCase(host.substr(host.size() - domain.size()), domain));
}

} // namespace

std::string hostOf(const UrlRecord &record) {
    return record.host.empty() ? parseHost(record.URL) : record.host;
}

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

Redactor::Redactor(RedactionRules rules) : m_rules(std::move(rules)) {
    for (const RedactionRule &rule : m_rules) {
        if (rule.thing == RedactedThing::picture)
            continue;
        m_words.push_back(lowered(rule.what));
        for (const bool isBigEndian : {false, true})
            if (std::string wide = wideOf(rule.what, isBigEndian); !wide.empty())
                m_wide.push_back(std::move(wide));
    }
    std::erase(m_words, std::string());
    for (const std::string &word : m_words)
        m_begins.at(static_cast<unsigned char>(word.front())) = true;
    std::ranges::sort(m_words, [](const std::string &one, const std::string &other) {
        return one.size() > other.size();
    });
}

bool Redactor::leavesOutRows() const {
    return std::ranges::any_of(m_rules, [](const RedactionRule &rule) {
        return rule.way == RedactionWay::leaveOut && rule.thing != RedactedThing::picture;
    });
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
        const auto word = std::ranges::find_if(m_words, [&](const std::string &each) {
            return std::string_view(stream.plain).substr(at).starts_with(each);
        });
        if (word == m_words.end()) {
            ++at;
            continue;
        }
        const std::size_t begin = stream.origin[at];
        at += word->size();
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
    const std::string marked =
        withMarks(withMarks(decodeText(value), PlainStream::Codes::keep), PlainStream::Codes::undo);
    if (!holdsPlain(marked))
        return marked;
    ++counts.placesBlurred;
    return std::string(kRedacted);
}

bool Redactor::holdsPlain(std::string_view text) const {
    const auto isIn = [this](const PlainStream &stream) {
        return std::ranges::any_of(m_words, [&stream](const std::string &word) {
            return stream.plain.find(word) != std::string::npos;
        });
    };
    if (isIn(PlainStream(text, PlainStream::Codes::keep)))
        return true;
    std::string layer(text);
    for (int coding = 0; coding < kCodings; ++coding) {
        PlainStream stream(layer);
        if (isIn(stream))
            return true;
        if (!stream.hadCodes)
            break;
        layer = std::move(stream.plain);
    }
    return false;
}

bool Redactor::holds(std::string_view bytes) const {
    if (m_words.empty())
        return false;
    for (const std::string &wide : m_wide)
        if (bytes.find(wide) != std::string_view::npos)
            return true;
    std::string narrow(bytes);
    std::erase(narrow, '\0'); // of UTF-16 in another case
    if (holdsPlain(bytes) || (narrow.size() != bytes.size() && holdsPlain(narrow)))
        return true;
    if (bytes.find('<') != std::string_view::npos && holdsPlain(withoutMarkup(bytes)))
        return true;
    return std::ranges::any_of(embeddedData(bytes),
                               [this](const std::string &data) { return holdsPlain(data); });
}

bool Redactor::isOfHost(std::string_view host) const {
    return std::ranges::any_of(m_rules, [host](const RedactionRule &rule) {
        return rule.thing == RedactedThing::host && isBelow(host, rule.what);
    });
}

bool Redactor::hidesHost(std::string_view host) const {
    return std::ranges::any_of(m_rules, [host](const RedactionRule &rule) {
        return rule.thing == RedactedThing::host && rule.way == RedactionWay::blur &&
               isBelow(host, rule.what);
    });
}

bool Redactor::leavesOut(const UrlRecord &record,
                         const std::vector<std::string_view> &texts) const {
    const std::string host = hostOf(record);
    const auto isOf = [&](const RedactionRule &rule) {
        if (rule.way != RedactionWay::leaveOut)
            return false;
        switch (rule.thing) {
        case RedactedThing::host:
            return isBelow(host, rule.what);
        case RedactedThing::person:
            return lowered(record.Person) == lowered(rule.what) ||
                   lowered(record.User) == lowered(rule.what);
        case RedactedThing::value: {
            const Redactor alone({rule});
            return std::ranges::any_of(
                texts, [&alone](std::string_view text) { return alone.holds(text); });
        }
        case RedactedThing::picture:
            return false;
        }
        return false;
    };
    return std::ranges::any_of(m_rules, isOf);
}

std::optional<RedactionWay> Redactor::pictureOf(UrlId id) const {
    const std::string digits = std::to_string(number(id));
    for (const RedactionRule &rule : m_rules)
        if (rule.thing == RedactedThing::picture && rule.what == digits)
            return rule.way;
    return std::nullopt;
}

std::vector<UrlId> Redactor::pictureRows() const {
    std::vector<UrlId> rows;
    for (const RedactionRule &rule : m_rules)
        if (rule.thing == RedactedThing::picture)
            rows.push_back(UrlId{std::stoll(rule.what)});
    return rows;
}

} // namespace nv
