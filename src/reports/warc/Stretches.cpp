#include "reports/warc/Stretches.h"

#include "base/Files.h"
#include "base/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <limits>
#include <optional>

namespace nv {

namespace {

/// Bytes that are held at once.
constexpr std::uint64_t kLongest = std::uint64_t{32} << 20;

std::optional<std::uint64_t> numberIn(std::string_view text) {
    std::uint64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    const bool isOne = !text.empty() && error == std::errc() && end == text.data() + text.size();
    return isOne ? std::optional(number) : std::nullopt;
}

std::optional<WarcStretch> stretchIn(std::string_view text) {
    const std::size_t dash = text.find('-');
    if (dash == std::string_view::npos)
        return std::nullopt;
    const auto first = numberIn(trim(text.substr(0, dash)));
    const auto last = numberIn(trim(text.substr(dash + 1)));
    if (!first || !last || *last < *first || *last == std::numeric_limits<std::uint64_t>::max())
        return std::nullopt;
    return WarcStretch{*first, *last - *first + 1};
}

void addParted(std::vector<WarcStretch> &stretches, WarcStretch whole) {
    while (whole.size > kLongest) {
        stretches.push_back({whole.first, kLongest});
        whole.first += kLongest;
        whole.size -= kLongest;
    }
    stretches.push_back(whole);
}

} // namespace

std::vector<WarcStretch> stretchesIn(std::string_view fact, std::uint64_t size) {
    std::vector<WarcStretch> plain;
    std::uint64_t left = size;
    for (const std::string_view each : split(fact.substr(0, fact.find(';')), ',')) {
        const auto stretch = stretchIn(each);
        if (!stretch || stretch->size > left)
            return {};
        left -= stretch->size;
        plain.push_back(*stretch);
    }
    if (left > 0 || plain.size() < 2)
        return left > 0 ? std::vector<WarcStretch>() : plain;
    std::vector<WarcStretch> stretches;
    stretches.reserve(plain.size() + static_cast<std::size_t>(size / kLongest));
    for (const WarcStretch &each : plain)
        addParted(stretches, each);
    return stretches;
}

namespace {

Bytes bytesOf(const Body &content, std::uint64_t offset, std::uint64_t size) {
    if (!content.isInMemory)
        return FileReader(content.file).read(offset, size);
    std::string_view bytes = content.raw();
    bytes.remove_prefix(std::min<std::uint64_t>(offset, bytes.size()));
    const std::string_view taken = bytes.substr(0, size);
    return {taken.begin(), taken.end()};
}

} // namespace

Body partOf(const Body &content, std::uint64_t offset, std::uint64_t size) {
    Body part;
    part.isInMemory = true;
    part.bytes = bytesOf(content, offset, size);
    if (part.bytes.size() != size)
        throw StorageFailure(fmt::format("\"{}\" has less than the {} bytes that it had",
                                         textOf(content.file), offset + size));
    return part;
}

} // namespace nv
