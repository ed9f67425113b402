#pragma once

#include <cstddef>
#include <string_view>

namespace nv {

/// Where something stands in the text that was read: byte positions from 0, `end` after it.
struct SourceSpan {
    std::size_t begin = 0;
    std::size_t end = 0;

    std::string_view in(std::string_view text) const { return text.substr(begin, end - begin); }
    friend bool operator==(const SourceSpan &, const SourceSpan &) = default;
};

} // namespace nv
