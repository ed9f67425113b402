#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace nv {

/// A LIKE pattern, compiled once and then matched against many texts: % for any text, _ for any
/// character, [abc], [a-z] and [!a-z] for one of a list. Letters match in either case. "*" and "?"
/// stand for themselves.
class LikePattern {
  public:
    /// Nothing for a "[" that isn't closed and for a range that runs backwards.
    static std::optional<LikePattern> compile(std::string_view pattern);
    /// Throws DialectError "Invalid pattern string" for what can't be compiled.
    static void check(std::string_view pattern);

    bool matches(std::string_view text) const;

  private:
    enum class Kind { letter, anyText, anyLetter, list };
    struct Range {
        char32_t first;
        char32_t last;
    };
    struct Step {
        Kind kind;
        char32_t letter = 0;
        bool negated = false;
        std::vector<Range> ranges;
    };

    bool addSteps(std::u32string_view letters);
    static std::optional<Step> listStep(std::u32string_view list);
    bool matchesSteps(std::string_view text) const;
    static bool matchesStep(const Step &step, char32_t letter);

    std::vector<Step> m_steps;
    /// Patterns of one plain ASCII text with % at one end or both, the most of all, need no steps.
    bool m_isPlain = false;
    bool m_openBegin = false;
    bool m_openEnd = false;
    std::string m_plain; ///< lower-case
};

inline constexpr std::string_view kInvalidPattern = "Invalid pattern string";

/// `text` with the pattern's own characters made plain, for a LIKE that the program builds.
std::string escapedForLike(std::string_view text);

} // namespace nv
