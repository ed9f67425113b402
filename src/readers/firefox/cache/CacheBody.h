#pragma once

#include "readers/CachedBody.h"
#include "readers/Reader.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace nv {

/// The file `name`, which may hold folders, in the record's cache folder, case set right.
std::optional<std::filesystem::path>
inFirefoxCacheFolder(const UrlRecord &record, const Evidence &evidence, const std::string &name);

/// Writes the body of a record of the Firefox cache to `target`, as it is stored.
bool fetchFirefoxCacheBody(const UrlRecord &record, const Evidence &evidence, BodyTarget &target);

} // namespace nv
