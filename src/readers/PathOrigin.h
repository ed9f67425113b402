#pragma once

#include "db/records/HistoryFile.h"
#include "readers/BrowserPlaces.h"

#include <string_view>

namespace nv {

/// What the folders of a path tell of whose file lies there. Nothing is looked at on the disk.
Origin originOfPath(std::string_view path, Engine engine);

/// Whether Chromium gives this name to the folder of a profile: "Default", "Profile 2".
bool isChromiumProfileName(std::string_view folder);

} // namespace nv
