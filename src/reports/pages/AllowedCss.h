#pragma once

#include <string_view>

namespace nv {

// What a guarded style may hold. Names are in lower case; those that makers of browsers put their
// mark in front of ("-webkit-") are the same without it.

/// At-rules; "@import" has rules of its own.
bool isAllowedRule(std::string_view name);
/// Functions of values and selectors, but for "url" and "src".
bool isAllowedFunction(std::string_view name);
/// Functions whose texts are never addresses.
bool takesText(std::string_view function);
/// Properties that show a picture, a font or a shape by its address.
bool mayHoldAddress(std::string_view property);
/// Properties whose texts are never addresses.
bool mayHoldText(std::string_view property);

} // namespace nv
