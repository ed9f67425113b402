#include "app/program/ProgramPaths.h"

#include <cstdlib>
#include <stdexcept>
#include <unistd.h>

namespace nv {

namespace fs = std::filesystem;

namespace {

fs::path shippedFiles(const fs::path &folder) {
    const fs::path installed = folder.parent_path() / "share" / "norvelane";
    return fs::exists(folder / "nvTZ.dat") || !fs::exists(installed) ? folder : installed;
}

fs::path namedFolder(const char *variable) {
    const char *named = std::getenv(variable);
    return named ? named : "";
}

/// A relative path in such a variable counts as none.
fs::path userFolder(const char *variable, const fs::path &byDefault) {
    if (const fs::path named = namedFolder(variable); named.is_absolute())
        return named / "norvelane";
    const fs::path home = namedFolder("HOME");
    if (!home.is_absolute())
        throw std::runtime_error("There is no folder for settings and logs: the environment has "
                                 "neither HOME nor NORVELANE_HOME.");
    return home / byDefault / "norvelane";
}

ProgramPaths allIn(const fs::path &shipped, const fs::path &home) {
    return {.program = shipped, .home = fs::absolute(home)};
}

ProgramPaths chosenPaths(const fs::path &folder) {
    const fs::path shipped = shippedFiles(folder);
    if (const fs::path named = namedFolder("NORVELANE_HOME"); !named.empty())
        return allIn(shipped, named);
    // The superuser could write into the folders of the system.
    const bool isInstalled = shipped != folder || folder.filename() == "bin";
    if (!isInstalled && ::access(folder.c_str(), W_OK) == 0)
        return allIn(shipped, folder);
    return {.program = shipped,
            .home = userFolder("XDG_DATA_HOME", ".local/share"),
            .config = userFolder("XDG_CONFIG_HOME", ".config"),
            .state = userFolder("XDG_STATE_HOME", ".local/state")};
}

/// Logs and scratch files quote evidence.
void make(const fs::path &folder) {
    if (fs::create_directories(folder))
        fs::permissions(folder, fs::perms::owner_all);
}

} // namespace

ProgramPaths findProgramPaths(const fs::path &executable) {
    ProgramPaths paths = chosenPaths(fs::absolute(executable).parent_path());
    for (const fs::path &folder : {paths.home, paths.config, paths.state})
        make(folder);
    return paths;
}

} // namespace nv
