#pragma once

#include "db/records/HistoryFile.h"
#include "readers/BrowserPlaces.h"

#include <string>
#include <string_view>

namespace nv {

/// What the folders of a path tell of whose file lies there. Nothing is looked at on the disk.
Origin originOfPath(std::string_view path, Engine engine);

/// The folder that a machine's accounts lie below, else that an account's browsers or profiles do:
/// what bears one name in several of them isn't the same. Empty where the path shows none.
std::string treeOfPath(std::string_view path);

/// The same for many paths, of which those in one folder follow each other.
class TreesOfPaths {
  public:
    const std::string &operator()(std::string_view path);

  private:
    std::string m_folder;
    std::string m_tree; ///< of all that lies in it
};

/// Whether Chromium gives this name to the folder of a profile: "Default", "Profile 2".
bool isChromiumProfileName(std::string_view folder);

} // namespace nv
