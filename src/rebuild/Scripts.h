#pragma once

#include "base/FailureLog.h"

#include <string>
#include <string_view>

namespace nv {

/// The page with its scripts turned into comments; their text stays readable. Meant for a page that
/// it has not run on: a second run comments twice.
std::string striptScriptTags(std::string_view text);

/// The page with the attributes disabled that run scripts when it opens, closes or is pointed at.
std::string neutraliseEventHandlers(std::string_view text);

} // namespace nv
