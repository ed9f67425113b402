#pragma once

#include <filesystem>

namespace nv {

/// Where the program's own files lie.
struct ProgramPaths {
    std::filesystem::path program; ///< shipped files: images, nvTZ.dat, dailytips.txt
    std::filesystem::path home;    ///< settings, log and the default Temp folder

    std::filesystem::path settings() const { return home / "Norvelane.ini"; }
    /// Each program has a log of its own: the headless one may run beside the window.
    std::filesystem::path errorLog(bool headless) const {
        return home / (headless ? "error-cli.log" : "error.log");
    }
    std::filesystem::path defaultTemp() const { return home / "Temp"; }
    std::filesystem::path zones() const { return program / "nvTZ.dat"; }
    std::filesystem::path tips() const { return program / "dailytips.txt"; }
    std::filesystem::path keywords() const { return program / "keywords"; }
    std::filesystem::path images() const { return program / "images"; }
};

/// `executable` is the running program. Shipped files lie beside it or, once installed, in
/// ../share/norvelane. The home is the folder that the environment's NORVELANE_HOME names, else the
/// program's folder where that can be written, else ~/.local/share/norvelane; it is made when it
/// isn't there.
ProgramPaths findProgramPaths(const std::filesystem::path &executable);

} // namespace nv
