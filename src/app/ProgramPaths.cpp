#include "app/ProgramPaths.h"

#include <cstdlib>
#include <unistd.h>

namespace nv {

namespace fs = std::filesystem;

namespace {

fs::path shippedFiles(const fs::path &folder) {
    const fs::path installed = folder.parent_path() / "share" / "norvelane";
    return fs::exists(folder / "nvTZ.dat") || !fs::exists(installed) ? folder : installed;
}

fs::path userFolder() {
    if (const char *data = std::getenv("XDG_DATA_HOME"); data && *data)
        return fs::path(data) / "norvelane";
    const char *home = std::getenv("HOME");
    return fs::path(home && *home ? home : "/tmp") / ".local" / "share" / "norvelane";
}

fs::path homeFolder(const fs::path &folder) {
    if (const char *named = std::getenv("NORVELANE_HOME"); named && *named)
        return named;
    const bool installed = folder.filename() == "bin";
    return !installed && ::access(folder.c_str(), W_OK) == 0 ? folder : userFolder();
}

} // namespace

ProgramPaths findProgramPaths(const fs::path &executable) {
    const fs::path folder = fs::absolute(executable).parent_path();
    ProgramPaths paths{shippedFiles(folder), fs::absolute(homeFolder(folder))};
    fs::create_directories(paths.home);
    return paths;
}

} // namespace nv
