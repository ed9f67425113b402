#pragma once

#include "markup/SourceSpan.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace nv {

/// The tokens of CSS Syntax level 3. "match" is "~=", "|=", "^=", "$=", "*=" or "||".
enum class CssKind : std::uint8_t {
    ident,
    function, ///< with its "("
    atKeyword,
    hash,
    string,
    badString,
    url, ///< "url(...)" without quotation marks; with them it is a function and a string
    badUrl,
    delim,
    match,
    number,
    percentage,
    dimension,
    unicodeRange,
    blank, ///< one or more
    cdo,
    cdc,
    colon,
    semicolon,
    comma,
    openSquare,
    closeSquare,
    openRound,
    closeRound,
    openCurly,
    closeCurly,
};

struct CssToken {
    CssKind kind = CssKind::blank;
    SourceSpan at;
    /// What it means once escapes are read: a name without its sign, a string without its quotation
    /// marks, an address. Of numbers and the rest, the characters themselves.
    std::string text;
    std::string unit;       ///< of a dimension
    bool isInteger = false; ///< of numbers
    bool isId = false;      ///< of a hash: its name could be an identifier
    bool isClosed = true;   ///< of strings and addresses: false where the text ended first
    /// Of a function and an opening bracket: the place in the list of what closes it, or the size
    /// of the list.
    std::size_t partner = 0;
};

/// The tokens of a style in UTF-8, in their order; comments are no tokens. Never fails: whatever
/// the text is, it has tokens. Takes time and memory in proportion to the text.
std::vector<CssToken> cssTokens(std::string_view css);

/// Whether the token begins what another one closes.
bool opensBlock(CssKind kind);

} // namespace nv
