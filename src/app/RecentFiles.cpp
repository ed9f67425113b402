#include "app/RecentFiles.h"

#include "base/Files.h"
#include "base/Text.h"

#include <fmt/format.h>

#include <algorithm>

namespace nv {

namespace {

constexpr std::size_t kWritten = 4;
constexpr std::size_t kRead = 6;
constexpr std::size_t kLongestShown = 60; // characters

std::vector<std::string> storedPaths(const IniFile &settings, std::size_t count) {
    std::vector<std::string> paths;
    for (std::size_t i = 1; i <= count; ++i)
        if (std::string path = settings.ReadIniValue("FILES", fmt::format("File{}", i), "");
            !path.empty())
            paths.push_back(std::move(path));
    return paths;
}

std::string shortened(const std::string &path) {
    if (charCount(path) <= kLongestShown)
        return path;
    const std::string_view name = GetFilenameFromPath(path);
    const std::size_t left =
        kLongestShown > charCount(name) + 5 ? kLongestShown - charCount(name) - 4 : 1;
    return fmt::format("{}.../{}", charSub(path, 0, left), name);
}

} // namespace

void StoreFilenameINI(IniFile &settings, const std::filesystem::path &project) {
    std::vector<std::string> paths = storedPaths(settings, kWritten);
    const std::string path = textOf(project);
    std::erase(paths, path);
    paths.insert(paths.begin(), path);
    paths.resize(kWritten);
    for (std::size_t i = 0; i < kWritten; ++i)
        settings.WriteIniValue("FILES", fmt::format("File{}", i + 1), paths[i]);
}

std::vector<RecentFile> ConfigLastFilesOpened(const IniFile &settings) {
    std::vector<RecentFile> files;
    for (const std::string &path : storedPaths(settings, kRead))
        files.push_back({path, shortened(path)});
    return files;
}

} // namespace nv
