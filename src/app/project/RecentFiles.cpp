#include "app/project/RecentFiles.h"

#include "app/settings/Settings.h"
#include "base/Files.h"
#include "base/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

namespace nv {

namespace {

constexpr std::array<TextKey, 6> kFiles = {"File1", "File2", "File3", "File4", "File5", "File6"};
constexpr std::size_t kWritten = 4;
constexpr std::size_t kLongestShown = 60; // characters

std::vector<std::string> storedPaths(const IniFile &settings, std::size_t count) {
    std::vector<std::string> paths;
    for (std::size_t i = 0; i < count; ++i)
        if (std::string path = readText(settings, kFiles.at(i)); !path.empty())
            paths.push_back(std::move(path));
    return paths;
}

std::string shortened(const std::string &path) {
    if (charCount(path) <= kLongestShown)
        return path;
    const std::string_view name = getFilenameFromPath(path);
    const std::size_t left =
        kLongestShown > charCount(name) + 5 ? kLongestShown - charCount(name) - 4 : 1;
    return fmt::format("{}.../{}", charSub(path, 0, left), name);
}

} // namespace

void storeFilenameINI(IniFile &settings, const std::filesystem::path &project) {
    std::vector<std::string> paths = storedPaths(settings, kWritten);
    const std::string path = textOf(project);
    std::erase(paths, path);
    paths.insert(paths.begin(), path);
    paths.resize(kWritten);
    for (std::size_t i = 0; i < kWritten; ++i)
        rememberText(settings, kFiles.at(i), paths[i]);
}

void forgetFilenameINI(IniFile &settings, const std::filesystem::path &project) {
    std::vector<std::string> paths = storedPaths(settings, kFiles.size());
    std::erase(paths, textOf(project));
    // The keys of earlier builds are written where they hold something.
    for (std::size_t i = 0; i < kFiles.size(); ++i)
        if (i < kWritten || !readText(settings, kFiles.at(i)).empty())
            rememberText(settings, kFiles.at(i), i < paths.size() ? paths[i] : std::string());
}

std::vector<RecentFile> configLastFilesOpened(const IniFile &settings) {
    std::vector<RecentFile> files;
    for (const std::string &path : storedPaths(settings, kFiles.size()))
        files.push_back({path, shortened(path)});
    return files;
}

} // namespace nv
