#pragma once

#include "search/Expression.h"
#include "time/Date.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace nv {

/// Where a text can stand. Those before `page` are values: they are looked through whole, and a
/// part of a word is found in them; pages and headers are looked through by words.
enum class SearchField : std::uint8_t {
    address,
    rawAddress, ///< as the artefact has it; empty where it is the address
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
inline constexpr std::size_t kSearchFields = 11;
inline constexpr std::size_t kWholeValues = static_cast<std::size_t>(SearchField::page);

/// "Address", "Title", ...
std::string_view fieldWord(SearchField field);

/// A row of table URLs, as far as it is searched.
struct SearchedRow {
    std::int32_t id = 0;
    std::array<std::string, kSearchFields> texts; ///< by SearchField
    /// Where the values lie in the text of a field that holds several.
    std::vector<TextSpan> termSpans;
    std::vector<TextSpan> factSpans;
    std::string browser;
    std::string cacheType;
    Date actionDateUTC;

    std::string &at(SearchField field) { return texts.at(static_cast<std::size_t>(field)); }
    const std::string &at(SearchField field) const {
        return texts.at(static_cast<std::size_t>(field));
    }
    /// The values of a field: what "^" and "$" of an expression hold for.
    std::vector<TextSpan> valuesOf(SearchField field) const;
};

/// All values of a row, a line each. The address is left out where the raw one holds it: whatever
/// is found in it is found there.
void joinValues(const SearchedRow &row, std::string &into);

/// What all of it comes to: rows that differ have another one, but for one in 2 to the 64.
std::uint64_t printOf(const SearchedRow &row);

} // namespace nv
