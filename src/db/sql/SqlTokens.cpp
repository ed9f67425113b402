#include "db/sql/SqlTokens.h"

#include <fmt/format.h>

namespace nv {

namespace {

bool isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\f';
}

bool isWordCharacter(char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' ||
           (c & 0x80) != 0;
}

std::size_t endOfBlank(std::string_view sql, std::size_t at) {
    while (at < sql.size() && isBlank(sql[at]))
        ++at;
    return at;
}

std::size_t endOfWord(std::string_view sql, std::size_t at) {
    while (at < sql.size() && isWordCharacter(sql[at]))
        ++at;
    return at;
}

/// After the closing quote; a doubled one stands for itself.
std::size_t endOfQuoted(std::string_view sql, std::size_t at, char close) {
    for (std::size_t i = at + 1; i < sql.size(); ++i) {
        if (sql[i] != close)
            continue;
        if (close == ']' || close == '#' || i + 1 == sql.size() || sql[i + 1] != close)
            return i + 1;
        ++i;
    }
    throw DialectError(
        fmt::format("character {}: what opens here with {} is never closed", at + 1, sql[at]));
}

std::size_t endOfComment(std::string_view sql, std::size_t at) {
    const bool line = sql[at] == '-';
    const std::size_t end = line ? sql.find('\n', at) : sql.find("*/", at + 2);
    if (end == std::string_view::npos)
        return sql.size();
    return line ? end : end + 2;
}

Token quoted(TokenKind kind, std::string_view sql, std::size_t at, char close) {
    const std::size_t end = endOfQuoted(sql, at, close);
    return {kind, sql.substr(at, end - at), sql.substr(at + 1, end - at - 2)};
}

Token plain(TokenKind kind, std::string_view sql, std::size_t at, std::size_t end) {
    return {kind, sql.substr(at, end - at), sql.substr(at, end - at)};
}

Token tokenAt(std::string_view sql, std::size_t at) {
    const char c = sql[at];
    const std::string_view two = sql.substr(at, 2);
    if (isBlank(c))
        return plain(TokenKind::blank, sql, at, endOfBlank(sql, at));
    if (two == "--" || two == "/*")
        return plain(TokenKind::blank, sql, at, endOfComment(sql, at));
    if (c == '\'' || c == '"')
        return quoted(TokenKind::text, sql, at, c);
    if (c == '[' || c == '`')
        return quoted(TokenKind::name, sql, at, c == '[' ? ']' : '`');
    if (c == '#')
        return quoted(TokenKind::date, sql, at, '#');
    if (isWordCharacter(c))
        return plain(TokenKind::word, sql, at, endOfWord(sql, at));
    return plain(TokenKind::symbol, sql, at, at + 1);
}

} // namespace

std::vector<Token> tokensOf(std::string_view sql) {
    std::vector<Token> tokens;
    for (std::size_t at = 0; at < sql.size(); at += tokens.back().source.size())
        tokens.push_back(tokenAt(sql, at));
    return tokens;
}

} // namespace nv
