#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace nv {

/// A statement in the project's dialect that can't be read; the message says what and where.
class DialectError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

enum class TokenKind {
    blank,  ///< white space or a comment
    word,   ///< name, keyword or number
    text,   ///< 'text' or "text"
    name,   ///< [name] or `name`
    date,   ///< #date#
    symbol, ///< one character of anything else
};

struct Token {
    TokenKind kind;
    std::string_view source; ///< as it stands, with its quotes
    std::string_view inner;  ///< without quotes, quote pairs still doubled
};

/// The tokens lie in `sql`, which must outlive them. Throws DialectError on an open quote.
std::vector<Token> tokensOf(std::string_view sql);

} // namespace nv
