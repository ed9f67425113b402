#pragma once

#include "rebuild/Replacement.h"

#include <cstddef>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace nv {

/// Tells which of many replacements is the next one to find something in a text, without trying
/// them all. Refers to nothing outside.
class ReplacementIndex {
  public:
    /// Replacements that are equal in all their texts.
    struct Same {
        std::vector<std::size_t> numbers; ///< rising
    };
    struct Found {
        std::size_t number; ///< place in the list, counted from 0
        const Same *same;
    };

    /// No `old` is empty.
    explicit ReplacementIndex(std::span<const Replacement> replacements);

    /// The first one from number `from` on that finds something in `text`, those of `without` left
    /// out.
    std::optional<Found> firstIn(std::string_view text, std::size_t from,
                                 const std::set<const Same *> &without) const;

  private:
    static constexpr std::size_t kNone = static_cast<std::size_t>(-1);
    struct Old {
        std::string text;            ///< lower-case
        std::size_t shorter = kNone; ///< the longest other one that this one begins with
        std::vector<Same> sames;
    };
    struct Rule {
        std::string definition; ///< lower-case
        std::vector<Old> olds;  ///< sorted by text
    };

    static void link(std::vector<Old> &olds);
    /// The longest one that `text` begins with, or kNone.
    static std::size_t longestIn(const std::vector<Old> &olds, std::string_view text);

    std::vector<Rule> m_rules;
};

} // namespace nv
