#pragma once

#include <filesystem>

namespace nv {

/// Where the program's own files lie.
struct ProgramPaths {
    std::filesystem::path program;       ///< shipped files: images, nvTZ.dat, dailytips.txt
    std::filesystem::path home;          ///< what the examiner adds: templates, keywords, hash sets
    std::filesystem::path config = home; ///< settings
    std::filesystem::path state = home;  ///< logs and the default Temp folder
    /// Where the system has the exact time zones.
    std::filesystem::path zoneinfo = "/usr/share/zoneinfo";

    std::filesystem::path settings() const { return config / "Norvelane.ini"; }
    /// Each program has a log of its own: the headless one may run beside the window.
    std::filesystem::path errorLog(bool headless) const {
        return state / (headless ? "error-cli.log" : "error.log");
    }
    std::filesystem::path zones() const { return program / "nvTZ.dat"; }
    std::filesystem::path tips() const { return program / "dailytips.txt"; }
    std::filesystem::path keywords() const { return program / "keywords"; }
    std::filesystem::path hashSets() const { return home / "hashsets"; }
    std::filesystem::path guide() const { return program / "docs" / "guide"; }
    std::filesystem::path images() const { return program / "images"; }
};

/// `executable` is the running program. Shipped files lie beside it or, once installed, in
/// ../share/norvelane.
/// The other folders are one and the same where the environment's NORVELANE_HOME names it, or where
/// the program runs from the folder that it was built in. Otherwise they are the user's:
/// "norvelane" below XDG_DATA_HOME, XDG_CONFIG_HOME and XDG_STATE_HOME. Those that aren't there are
/// made, for the user's eyes only. Throws std::runtime_error when the environment names no home at
/// all.
ProgramPaths findProgramPaths(const std::filesystem::path &executable);

} // namespace nv
