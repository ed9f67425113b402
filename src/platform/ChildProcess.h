#pragma once

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace nv {

// The seam to other programs. Libraries that damaged evidence can crash run in a program of their
// own, so that a crash costs one file and not the import.

struct ChildCommand {
    std::filesystem::path program;
    std::vector<std::string> arguments; ///< without the program's own name
    /// "NAME=value": all that it gets besides the locale.
    std::vector<std::string> environment{};
    /// A child that writes nothing for so long is killed.
    std::chrono::milliseconds longestSilence{60'000};
    /// In bytes; a child that writes a longer line is killed.
    std::size_t longestLine = std::size_t{1} << 20;
};

struct ChildResult {
    enum class End {
        exited,  ///< `code` is its exit code
        crashed, ///< `code` is the number of the signal that ended it
        stopped, ///< by the caller
        silent,
        lineTooLong,
        notStarted, ///< `code` is the system's error number
    };
    End end = End::exited;
    int code = 0;
    std::string errors; ///< the first 4096 bytes that it wrote to its standard error
};

/// Runs a program and hands on each line of its standard output, without the line break; a last
/// line that no line break ends is not handed on. It gets no input, no environment but what the
/// command names and no open file of ours, and no shell is involved. `take` stops it with false; so
/// does `goOn`, which is asked several times a second, also while the child is busy. The child is
/// gone when this returns or throws, and so is what it started.
ChildResult runChild(const ChildCommand &command,
                     const std::function<bool(std::string_view line)> &take,
                     const std::function<bool()> &goOn);

/// A program that belongs to this one: in its own folder; once installed, in ../libexec/norvelane;
/// otherwise in the folder that the environment's NORVELANE_PROGRAMS names. Nothing when it is in
/// none of them.
std::optional<std::filesystem::path> companionProgram(std::string_view name);
/// Where it looks.
std::vector<std::filesystem::path> companionFolders();

} // namespace nv
