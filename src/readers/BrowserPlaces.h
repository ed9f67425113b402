#pragma once

#include "readers/Engine.h"

#include <span>
#include <string_view>

namespace nv {

/// Folders by which a browser is known. All names of this header are lower-case.
struct BrowserPlace {
    std::string_view folders; ///< one inside of the other, "/" between
    std::string_view browser;
    Engine engine = Engine::chromium;
    /// The folder's name alone says little: it must stand where programs keep their data.
    bool needsDataFolder = false;
    /// Older versions keep the one profile in the folder itself.
    bool isProfile = false;
};
std::span<const BrowserPlace> browserPlaces();

/// Files whose names no other browser has.
struct BrowserFile {
    std::string_view name;
    std::string_view browser;
};
std::span<const BrowserFile> browserFiles();

/// Where a browser is installed, as it notes it in its own files.
struct InstallPlace {
    std::string_view part; ///< of the path, with "/"
    std::string_view browser;
};
std::span<const InstallPlace> installPlaces(Engine engine);

/// Where programs keep the data of an account, on any system.
bool isDataFolder(std::string_view folder);

/// Of files of that engine when nothing tells the browser; empty for none.
std::string_view familyName(Engine engine);

} // namespace nv
