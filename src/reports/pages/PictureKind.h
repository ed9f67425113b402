#pragma once

#include <filesystem>
#include <string>

namespace nv {

/// The extension of a picture by its first bytes, in lower case; empty for what is none that a
/// browser or an examiner's viewer shows. Throws FileFailure.
std::string pictureKindOf(const std::filesystem::path &file);

/// Whether browsers show pictures of this extension.
bool isShownByBrowsers(const std::string &kind);

} // namespace nv
