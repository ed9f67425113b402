#pragma once

#include "markup/SourceSpan.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace nv {

/// A text as an HTML parser understood it, whose character references are read, and where each part
/// of it is written in the page.
class MeantText {
  public:
    enum class Kind : std::uint8_t {
        attribute, ///< its character references are read
        plain,
    };

    /// `meant` is what the parser made of `written`, which begins at byte `at` of the page. Nothing
    /// where the one can't have come from the other.
    static std::optional<MeantText> of(std::string_view written, std::string_view meant,
                                       std::size_t at, Kind kind = Kind::attribute);

    const std::string &text() const { return m_text; }
    /// Where a part of text() stands in the page; its ends are ends of characters.
    SourceSpan inPage(SourceSpan part) const;

  private:
    /// From `meant` on, the text is written from `written` on, character by character.
    struct Run {
        std::size_t meant;
        std::size_t written;
    };

    bool align(std::string_view written, Kind kind);
    void addRun(std::size_t meant, std::size_t written);
    std::size_t placeOf(std::size_t meant) const;

    std::string m_text;
    std::vector<Run> m_runs;
    std::size_t m_at = 0;
};

} // namespace nv
