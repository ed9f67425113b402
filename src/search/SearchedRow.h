#pragma once

#include "time/Date.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace nv {

/// Where a text can stand. Those before `page` are values: they are looked through whole, and a
/// part of a word is found in them; pages and headers are looked through by words.
enum class SearchField : std::uint8_t {
    address,
    title,
    host,
    user,
    notes,
    referrer,
    terms, ///< what an address, a referrer or a cookie says when its coding is undone
    facts, ///< a line each
    page,
    headers,
};
inline constexpr std::size_t kSearchFields = 10;
inline constexpr std::size_t kWholeValues = static_cast<std::size_t>(SearchField::page);

/// "Address", "Title", ...
std::string_view fieldWord(SearchField field);

/// A row of table URLs, as far as it is searched.
struct SearchedRow {
    std::int32_t id = 0;
    std::array<std::string, kSearchFields> texts; ///< by SearchField
    std::string browser;
    std::string cacheType;
    Date actionDateUTC;

    std::string &at(SearchField field) { return texts.at(static_cast<std::size_t>(field)); }
    const std::string &at(SearchField field) const {
        return texts.at(static_cast<std::size_t>(field));
    }
};

/// All values of a row, a line each.
void joinValues(const SearchedRow &row, std::string &into);

/// What all of it comes to: rows that differ have another one, but for one in 2 to the 64.
std::uint64_t printOf(const SearchedRow &row);

} // namespace nv
