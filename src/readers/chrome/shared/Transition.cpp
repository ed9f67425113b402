#include "readers/chrome/shared/Transition.h"

#include <fmt/format.h>

#include <array>
#include <limits>
#include <optional>
#include <string_view>

namespace nv {

namespace {

// Transition = kind:8 qualifiers:24
constexpr std::uint32_t kKindMask = 0xFF;
constexpr std::uint32_t kTyped = 1;

constexpr auto kKinds = std::to_array<std::string_view>(
    {"link", "typed", "bookmark", "auto subframe", "manual subframe", "generated", "start page",
     "form", "reload", "keyword", "keyword generated"});

struct Qualifier {
    std::uint32_t bit;
    std::string_view words;
    bool standsInStatus = false;
};

constexpr auto kQualifiers = std::to_array<Qualifier>({
    {0x0080'0000, "blocked", true},
    {0x0100'0000, "back or forward", true},
    {0x0200'0000, "from the address bar"},
    {0x0400'0000, "home page"},
    {0x0800'0000, "from another program"},
    {0x1000'0000, "chain start"},
    {0x2000'0000, "chain end"},
    {0x4000'0000, "client redirect", true},
    {0x8000'0000, "server redirect", true},
});

/// Nothing for what is neither a signed nor an unsigned number of 32 bits.
std::optional<std::uint32_t> bitsOf(std::int64_t stored) {
    if (stored < std::numeric_limits<std::int32_t>::min() ||
        stored > std::numeric_limits<std::uint32_t>::max())
        return std::nullopt;
    return static_cast<std::uint32_t>(stored & 0xFFFF'FFFF);
}

std::string words(std::int64_t stored, bool inShort) {
    const auto bits = bitsOf(stored);
    if (!bits)
        return {};
    const std::uint32_t kind = *bits & kKindMask;
    std::string text =
        kind < kKinds.size() ? std::string(kKinds.at(kind)) : fmt::format("kind {}", kind);
    for (const Qualifier &each : kQualifiers)
        if ((*bits & each.bit) != 0 && (each.standsInStatus || !inShort))
            text += fmt::format(", {}", each.words);
    return text;
}

} // namespace

std::string transitionText(std::int64_t stored) {
    return words(stored, false);
}

std::string transitionStatus(std::int64_t stored) {
    return words(stored, true);
}

bool isTypedTransition(std::int64_t stored) {
    const auto bits = bitsOf(stored);
    return bits && (*bits & kKindMask) == kTyped;
}

} // namespace nv
