#include "reports/warc/WarcHead.h"

#include "base/Text.h"
#include "readers/Coding.h"
#include "readers/HttpHeaders.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <charconv>
#include <optional>
#include <utility>
#include <vector>

namespace nv {

namespace {

constexpr std::string_view kLineBreak = "\r\n";

struct HeaderLine {
    std::string_view name;
    std::string value; ///< folded lines are joined with a blank
};

bool isNameLetter(char c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') ||
           std::string_view("!#$%&'*+-.^_`|~").find(c) != std::string_view::npos;
}

/// Nothing in a value may end its line.
std::string plainValue(std::string_view value) {
    std::string plain(trim(value));
    std::ranges::replace_if(
        plain,
        [](char c) { return (static_cast<unsigned char>(c) < ' ' && c != '\t') || c == 0x7F; },
        ' ');
    return plain;
}

/// The line that `rest` begins with, which is moved on.
std::string_view nextLine(std::string_view &rest) {
    const std::size_t end = std::min(rest.find('\n'), rest.size());
    std::string_view line = rest.substr(0, end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    while (line.ends_with('\r'))
        line.remove_suffix(1);
    return line;
}

/// Up to the blank line: caches put notes of their own behind it.
std::vector<HeaderLine> headerLines(std::string_view rest) {
    std::vector<HeaderLine> lines;
    while (!rest.empty()) {
        const std::string_view line = nextLine(rest);
        if (line.empty())
            break;
        if (line.front() == ' ' || line.front() == '\t') {
            if (!lines.empty())
                lines.back().value += ' ' + plainValue(line);
            continue;
        }
        const std::size_t colon = line.find(':');
        if (colon == std::string_view::npos || colon == 0)
            continue;
        const std::string_view name = line.substr(0, colon);
        if (std::ranges::all_of(name, isNameLetter))
            lines.push_back({name, plainValue(line.substr(colon + 1))});
    }
    return lines;
}

/// Protocols later than 1.1 have no status line: what caches write for one is a form of their own.
std::string statusLine(std::string_view line, bool isWhole) {
    const std::size_t blank = std::min(line.find(' '), line.size());
    const std::string_view version =
        startsWithNoCase(line, "HTTP/1.0") ? std::string_view("HTTP/1.0") : "HTTP/1.1";
    constexpr std::size_t kDigits = 3;
    const std::string_view code = line.substr(std::min(blank + 1, line.size()), kDigits);
    const std::size_t after = std::min(blank + 1 + kDigits, line.size());
    return isWhole ? fmt::format("{} 200 OK", version)
                   : fmt::format("{} {} {}", version, code, plainValue(line.substr(after)));
}

/// The codings in which the content still lies.
std::vector<std::string> codingsLeft(std::vector<std::string> left, const HeldContent &content) {
    std::vector<std::string_view> undone;
    if (!content.unpackedFrom.empty())
        for (const std::string_view word : split(content.unpackedFrom, ','))
            undone.push_back(trim(word));
    while (!left.empty()) {
        // Some caches keep unpacked what the server had packed.
        const bool wasNever = left.back() == "gzip" && undone.empty() && !content.isGZip;
        const bool wasUndone = !undone.empty() && undone.back() == left.back();
        if (!wasNever && !wasUndone)
            break;
        if (wasUndone)
            undone.pop_back();
        left.pop_back();
    }
    return left;
}

std::optional<std::uint64_t> numberIn(std::string_view text) {
    std::uint64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size() ? std::optional(number)
                                                                    : std::nullopt;
}

struct ByteRange {
    std::uint64_t first = 0; ///< 0-based
    std::uint64_t last = 0;
    std::uint64_t all = 0; ///< bytes of the whole; 0 where it isn't said
    bool isThere = false;

    bool isOf(std::uint64_t size) const {
        return isThere && last >= first && last - first + 1 == size;
    }
    bool isWhole() const { return isThere && first == 0 && all > 0 && last == all - 1; }
};

/// "bytes 0-99/1000", the last number of which may be "*".
ByteRange rangeIn(std::string_view value) {
    constexpr std::string_view kUnit = "bytes ";
    const std::size_t dash = value.find('-');
    const std::size_t slash = value.find('/');
    if (!startsWithNoCase(value, kUnit) || dash == std::string_view::npos ||
        slash == std::string_view::npos || slash < dash)
        return {};
    const auto first = numberIn(trim(value.substr(kUnit.size(), dash - kUnit.size())));
    const auto last = numberIn(trim(value.substr(dash + 1, slash - dash - 1)));
    if (!first || !last)
        return {};
    return {*first, *last, numberIn(trim(value.substr(slash + 1))).value_or(0), true};
}

bool hasNoContent(int status) {
    constexpr int kFirstFinal = 200;
    constexpr int kNoContent = 204;
    constexpr int kNotModified = 304;
    return status < kFirstFinal || status == kNoContent || status == kNotModified;
}

class Mending {
  public:
    Mending(std::string_view head, const HeldContent &content)
        : m_head(head), m_content(content), m_left(codingsOf(head)) {
        const std::size_t named = m_left.size();
        m_left = codingsLeft(std::move(m_left), content);
        m_isPackedLess = m_left.size() < named;
        m_isWhole = isWhole();
        m_range = trueRange();
    }

    std::string text() {
        std::string_view rest = m_head;
        m_text = statusLine(nextLine(rest), m_isWhole) + std::string(kLineBreak);
        for (const HeaderLine &line : headerLines(rest))
            add(line);
        if (m_isPackedLess && !m_left.empty())
            put("Content-Encoding", fmt::format("{}", fmt::join(m_left, ", ")));
        if (!m_range.empty())
            put("Content-Range", m_range);
        if (!m_hasLength && m_content.isThere && !hasNoContent(statusOf(m_head)))
            put("Content-Length", std::to_string(m_content.size));
        return m_text.append(kLineBreak);
    }

  private:
    /// Players ask for films in ranges: one that lies there whole is the answer to who asks for it.
    bool isWhole() const {
        constexpr int kPartial = 206;
        const auto ranges = headerValues(m_head, "content-range");
        if (statusOf(m_head) != kPartial || !m_content.isThere)
            return false;
        if (m_content.first)
            return *m_content.first == 0 && m_content.size > 0 && wholeSize() == m_content.size;
        if (ranges.empty())
            return false;
        const ByteRange range = rangeIn(ranges.front());
        return range.isWhole() && range.isOf(m_content.size);
    }

    /// Of which the content is a part; 0 where it isn't said. Without a range, browsers keep the
    /// length of the whole with what they put together from parts.
    std::uint64_t wholeSize() const {
        if (const auto ranges = headerValues(m_head, "content-range"); !ranges.empty())
            return rangeIn(ranges.front()).all;
        const auto lengths = headerValues(m_head, "content-length");
        return lengths.empty() ? 0 : numberIn(lengths.front()).value_or(0);
    }

    /// Of what was put together from several answers none tells the range.
    std::string trueRange() const {
        constexpr int kPartial = 206;
        if (!m_content.first || !m_content.isThere || m_content.size == 0 || m_isWhole ||
            statusOf(m_head) != kPartial)
            return {};
        const std::uint64_t last = *m_content.first + m_content.size - 1;
        const std::uint64_t all = wholeSize();
        return fmt::format("bytes {}-{}/{}", *m_content.first, last,
                           all > last ? std::to_string(all) : "*");
    }

    void put(std::string_view name, std::string_view value) {
        m_text.append(name).append(": ").append(value).append(kLineBreak);
    }

    void add(const HeaderLine &line) {
        if (isTrue(line))
            return put(line.name, line.value);
        put("X-Archive-Orig-" + std::string(line.name), line.value);
    }

    bool isTrue(const HeaderLine &line) {
        if (equalsNoCase(line.name, "transfer-encoding"))
            return false;
        if (equalsNoCase(line.name, "content-encoding"))
            return !m_isPackedLess;
        if (equalsNoCase(line.name, "content-range"))
            return !m_isWhole && m_range.empty() && rangeIn(line.value).isOf(m_content.size);
        if (!equalsNoCase(line.name, "content-length"))
            return true;
        const bool isRight =
            m_content.isThere && !m_hasLength && numberIn(line.value) == m_content.size;
        m_hasLength |= isRight;
        return isRight;
    }

    std::string_view m_head;
    const HeldContent &m_content;
    std::vector<std::string> m_left;
    std::string m_text;
    bool m_hasLength = false;
    bool m_isPackedLess = false;
    bool m_isWhole = false; ///< the part that was answered is all
    std::string m_range;    ///< put in place of the stored one; empty for that
};

} // namespace

std::string mendedHead(std::string_view head, const HeldContent &content) {
    return Mending(head, content).text();
}

} // namespace nv
