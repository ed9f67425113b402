#pragma once

#include "base/Grouped.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace nv {

/// Letters of one value that a page shows; the lists beside it have it whole.
inline constexpr std::size_t kShownValue = 2000;

/// How a value, of which nothing needs to be redacted any more, enters a page: as text, cut where
/// it is huge.
std::string caseText(std::string_view value, std::size_t mostChars = kShownValue);
/// An address as text; what is cut has no button to copy it.
std::string caseAddress(std::string_view address);
/// "12.3 MB".
std::string caseSize(std::int64_t bytes);

/// A dot in the colour of a tag, "#rrggbb"; empty without one. Styles of a page's own elements
/// aren't allowed, so it is drawn.
std::string caseSwatch(std::string_view color);

/// A line of a list of names and values; `value` is HTML. Empty for an empty value.
std::string caseField(std::string_view name, std::string_view value);
/// A cell; `heading` is shown before it where the table is too narrow for columns.
std::string caseCell(std::string_view heading, std::string_view value, std::string_view kind = {});

} // namespace nv
