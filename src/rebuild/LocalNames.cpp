#include "rebuild/LocalNames.h"

#include <fmt/format.h>

#include <algorithm>

namespace nv {

namespace {

constexpr std::size_t kDigits = 7;
constexpr std::size_t kLongestExtension = 4;

bool isLetterOrDigit(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9');
}

} // namespace

std::string sidOf(UrlId id) {
    const std::string padded = fmt::format("{:0>7}", id);
    return padded.substr(padded.size() - kDigits);
}

std::string pageNameOf(UrlId id) {
    return sidOf(id) + ".htm";
}

std::string folderNameOf(UrlId id) {
    return sidOf(id) + ".NVR";
}

std::string localNameOf(UrlId id, std::string_view extension) {
    const bool isTaken = !extension.empty() && extension.size() <= kLongestExtension &&
                         std::ranges::all_of(extension, isLetterOrDigit);
    return isTaken ? fmt::format("{}.{}", sidOf(id), extension) : sidOf(id);
}

} // namespace nv
