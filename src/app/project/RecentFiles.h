#pragma once

#include "app/settings/IniFile.h"

#include <filesystem>
#include <string>
#include <vector>

namespace nv {

struct RecentFile {
    std::filesystem::path path;
    std::string shownText; ///< the path, a long one shortened in its middle
};

/// Puts a project path at the head of the recent files: a path that is there already moves up, a
/// fifth one pushes the oldest out.
void storeFilenameINI(IniFile &settings, const std::filesystem::path &project);

/// Takes the path off the list; the file stays.
void forgetFilenameINI(IniFile &settings, const std::filesystem::path &project);

/// What the File menu and the first page show. Six keys are read though only four are written:
/// settings files of earlier builds hold more.
std::vector<RecentFile> configLastFilesOpened(const IniFile &settings);

} // namespace nv
