#pragma once

#include "markup/CssTokens.h"

#include <cstdint>
#include <string>
#include <vector>

namespace nv {

/// A part of a token list: places from 0, `end` after the last.
struct CssRange {
    std::size_t begin = 0;
    std::size_t end = 0;

    bool isEmpty() const { return begin == end; }
};

/// What a style is made of, above its tokens. Nothing knows here which names mean something.
struct CssItem {
    enum class Kind : std::uint8_t {
        declaration,
        atRule,
        qualifiedRule, ///< of a selector, or of a percentage in "@keyframes"
        invalid,       ///< tokens that browsers pass over
    };
    Kind kind = Kind::invalid;
    std::string name; ///< of a declaration and an at-rule, as it stands
    /// A declaration's value, blanks at its ends included, without "!important"; what stands in
    /// front of a rule's block.
    CssRange value;
    bool isImportant = false;
    bool hasBlock = false;
    CssRange block; ///< within the curly brackets
};

// Each reads a part of a list: a whole style sheet, the declarations of a "style" attribute, and
// what a block may hold, which is declarations and rules. Time is in proportion to the part.
std::vector<CssItem> cssStyleSheet(const std::vector<CssToken> &tokens, CssRange part);
std::vector<CssItem> cssDeclarations(const std::vector<CssToken> &tokens, CssRange part);
std::vector<CssItem> cssBlock(const std::vector<CssToken> &tokens, CssRange part);

/// One declaration that fills the part; of the kind "invalid" when it is none.
CssItem cssDeclaration(const std::vector<CssToken> &tokens, CssRange part);

/// The place after the component value at `at`: after a bracket's partner, else the next token.
std::size_t behindValue(const std::vector<CssToken> &tokens, std::size_t at, CssRange part);

} // namespace nv
