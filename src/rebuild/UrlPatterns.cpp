#include "rebuild/UrlPatterns.h"

#include "base/Text.h"

#include <algorithm>

namespace nv {

namespace {

constexpr std::size_t kKeyLength = sizeof(std::uint64_t);
/// A reference's last characters are its extension, which most have in common.
constexpr std::size_t kExtension = 4;

bool isPlain(std::string_view text) {
    return std::ranges::all_of(
        text, [](char c) { return (c & 0x80) == 0 && c != '%' && c != '_' && c != '['; });
}

std::uint64_t keyAt(std::string_view text, std::size_t at) {
    std::uint64_t key = 0;
    for (std::size_t i = 0; i < kKeyLength; ++i)
        key = key << 8 | static_cast<unsigned char>(text[at + i]);
    return key;
}

} // namespace

std::optional<std::size_t> UrlPatterns::add(std::string_view text) {
    if (isPlain(text) && text.size() >= kKeyLength) {
        const std::size_t behindKey =
            text.size() >= kKeyLength + kExtension ? text.size() - kExtension : text.size();
        const std::size_t at = behindKey - kKeyLength;
        std::string lower = toLower(text);
        const std::uint64_t key = keyAt(lower, at);
        m_plain[key].push_back({std::move(lower), m_count, at});
    } else {
        auto pattern = LikePattern::compile("%" + std::string(text) + "%");
        if (!pattern)
            return std::nullopt;
        m_others.emplace_back(std::move(*pattern), m_count);
    }
    m_seenIn.push_back(0);
    return m_count++;
}

void UrlPatterns::report(std::size_t number, const std::function<void(std::size_t)> &found) {
    if (m_seenIn[number] == m_url)
        return;
    m_seenIn[number] = m_url;
    found(number);
}

void UrlPatterns::find(std::string_view url, const std::function<void(std::size_t number)> &found) {
    ++m_url;
    const std::string lower = toLower(url);
    for (std::size_t at = 0; at + kKeyLength <= lower.size(); ++at) {
        const auto group = m_plain.find(keyAt(lower, at));
        if (group == m_plain.end())
            continue;
        for (const Plain &plain : group->second)
            if (at >= plain.keyAt &&
                lower.compare(at - plain.keyAt, plain.text.size(), plain.text) == 0)
                report(plain.number, found);
    }
    for (const auto &[pattern, number] : m_others)
        if (pattern.matches(url))
            report(number, found);
}

} // namespace nv
