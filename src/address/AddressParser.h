#pragma once

#include "address/AddressParts.h"

#include <optional>
#include <string_view>

namespace nv {

/// The URL standard's basic parser; nothing where it fails. `base` may be null, `charset` is for
/// the query. Time and memory grow with the text.
std::optional<AddressParts> parsedAddress(std::string_view text, const AddressParts *base,
                                          std::string_view charset);

} // namespace nv
