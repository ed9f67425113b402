#pragma once

#include "db/records/HistoryFile.h"
#include "readers/BrowserPlaces.h"

#include <functional>
#include <map>
#include <string>
#include <string_view>

namespace nv {

/// What the folders of a path tell of whose file lies there. Nothing is looked at on the disk.
Origin originOfPath(std::string_view path, Engine engine);

/// The folder that a machine's accounts lie below, else that an account's browsers or profiles do:
/// what bears one name in several of them isn't the same. Empty where the path shows none.
std::string treeOfPath(std::string_view path);

/// The same for many paths.
class TreesOfPaths {
  public:
    /// Valid until the next call.
    const std::string &operator()(std::string_view path);

  private:
    std::map<std::string, std::string, std::less<>> m_known; ///< by the folder of the file
};

/// Whether Chromium gives this name to the folder of a profile: "Default", "Profile 2".
bool isChromiumProfileName(std::string_view folder);

} // namespace nv
