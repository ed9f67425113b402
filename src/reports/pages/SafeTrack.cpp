#include "reports/pages/SafeTrack.h"

#include "base/Text.h"
#include "markup/PageText.h"

#include <algorithm>
#include <array>
#include <vector>

namespace nv {

namespace {

constexpr std::string_view kSign = "WEBVTT";
constexpr std::string_view kArrow = "-->";
constexpr std::array<std::string_view, 8> kMarks = {"b", "i", "u", "c", "ruby", "rt", "v", "lang"};

/// Of times and settings: "00:00:01.000 --> 00:00:04.000 line:0 align:start".
bool isTiming(std::string_view line) {
    return !line.empty() && line.front() >= '0' && line.front() <= '9' &&
           line.find(kArrow) != std::string_view::npos && std::ranges::all_of(line, [](char c) {
               return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
                      std::string_view(" \t:.,%->_").find(c) != std::string_view::npos;
           });
}

/// What stands between the brackets of a tag: "b", "/b", "c.loud", "v Anna", "00:00:02.000".
bool isMark(std::string_view tag) {
    if (tag.starts_with('/'))
        tag.remove_prefix(1);
    if (tag.find_first_of("&=\"'`") != std::string_view::npos)
        return false;
    if (!tag.empty() && tag.find_first_not_of("0123456789:.") == std::string_view::npos)
        return true;
    const std::string_view name = tag.substr(0, tag.find_first_of(". \t"));
    return tag.empty() || std::ranges::find(kMarks, name) != kMarks.end();
}

/// Tags of other names go; what they hold stays.
std::string wordsOf(std::string_view line) {
    std::string words;
    words.reserve(line.size());
    while (!line.empty()) {
        if (line.front() != '<') {
            const std::size_t open = std::min(line.find('<'), line.size());
            words += replaceAll(line.substr(0, open), ">", "&gt;");
            line.remove_prefix(open);
            continue;
        }
        const std::size_t next = line.find_first_of("<>", 1);
        const bool isTag = next != std::string_view::npos && line[next] == '>';
        if (isTag && isMark(line.substr(1, next - 1)))
            words += line.substr(0, next + 1);
        else if (!isTag)
            words += "&lt;";
        line.remove_prefix(isTag ? next + 1 : 1);
    }
    return words;
}

/// A cue, or nothing for another block.
std::string cueOf(const std::vector<std::string_view> &block) {
    const std::size_t timing = block.size() > 1 && !isTiming(block[0]) ? 1 : 0;
    if (block.empty() || !isTiming(block[timing]) || block[0].starts_with("NOTE") ||
        block[0].starts_with("STYLE") || block[0].starts_with("REGION"))
        return {};
    std::string cue = "\n" + std::string(block[timing]) + "\n";
    for (std::size_t at = timing + 1; at < block.size(); ++at)
        if (const std::string words = wordsOf(block[at]); !words.empty())
            cue += words + "\n";
    return cue;
}

} // namespace

std::string guardedTrack(std::string_view text) {
    if (text.starts_with(kUtf8Mark))
        text.remove_prefix(kUtf8Mark.size());
    if (!text.starts_with(kSign) || text.find('\0') != std::string_view::npos)
        return {};
    const std::string lines = replaceAll(replaceAll(text, "\r\n", "\n"), "\r", "\n");
    std::string made = std::string(kSign) + "\n";
    std::vector<std::string_view> block;
    bool isHead = true;
    for (const std::string_view line : split(lines, '\n')) {
        if (!line.empty()) {
            block.push_back(line);
            continue;
        }
        made += isHead ? std::string() : cueOf(block);
        isHead = false;
        block.clear();
    }
    return made + (isHead ? std::string() : cueOf(block));
}

} // namespace nv
