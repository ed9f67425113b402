#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace nv {

/// What a page may cost at most. Pages that people wrote stay far below: the limits stop pages that
/// are built to fill memory, to overflow the stack, or to take hours.
struct HtmlLimits {
    /// Elements open at once. The parser frees its tree by recursion: 40,000 levels overflow a
    /// stack of 1 MB, and the parts of tables that it adds by itself may treble our count.
    std::size_t depth = 4'000;
    /// Of one tag; the parser compares each with all before it.
    std::size_t attributes = 500;
    /// Tags, and copies that the parser makes of formatting tags left open; up to 600 bytes each.
    std::uint64_t nodes = 1'000'000;
    /// Elements looked at when the parser searches those that are open, at each tag.
    std::uint64_t steps = 200'000'000;
};

/// An estimate from above of what a page costs the parser, found in one pass that builds no tree.
/// Where it can't be told which end tag ends what, an element counts as open.
struct HtmlCost {
    std::size_t depth = 0;
    std::size_t attributes = 0;
    std::uint64_t nodes = 0;
    std::uint64_t steps = 0;

    /// Which limit the page is beyond, in words; empty for none.
    std::string beyond(const HtmlLimits &limits) const;
};

/// Ends as soon as a limit is passed.
HtmlCost costOf(std::string_view html, const HtmlLimits &limits);

} // namespace nv
