#include "platform/posix/DrawProcess.h"

#include "base/Storage.h"
#include "base/Text.h"

#include <fmt/format.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>

namespace nv {

namespace fs = std::filesystem;

using End = ChildResult::End;

DrawFolder::DrawFolder(const fs::path &scratch) {
    std::string name = (scratch / "draw-XXXXXX").native();
    if (::mkdtemp(name.data()) == nullptr) // which lets its owner in only
        failStorage("cannot make a folder for drawing in", scratch, errno);
    m_path = name;
}

DrawFolder::~DrawFolder() {
    std::error_code none;
    fs::remove_all(m_path, none);
}

ChildCommand drawCommand(const fs::path &program, const DrawFolder &folder, const fs::path &jobs) {
    const std::string &home = folder.path().native();
    ChildCommand command;
    command.program = program;
    command.arguments = {jobs.native()};
    command.environment = {"HOME=" + home, "TMPDIR=" + home, "XDG_RUNTIME_DIR=" + home};
    return command;
}

std::string whyNothingWasDrawn(const ChildResult &result) {
    if (result.end == End::notStarted)
        return fmt::format("The program norvelane-draw can't be started (error {}).", result.code);
    return fmt::format("The program norvelane-draw ended before it drew anything. {}",
                       decodeText(trim(std::string_view(result.errors))));
}

std::string whatEndedTheDrawing(const ChildResult &result) {
    // The signal is that of the limit on the processor's time.
    if (result.end == End::silent || (result.end == End::crashed && result.code == SIGXCPU))
        return "The drawing got stuck and was stopped.";
    return result.end == End::crashed
               ? fmt::format("The drawing crashed (signal {}).", result.code)
               : fmt::format("The drawing ended early (code {}).", result.code);
}

} // namespace nv
