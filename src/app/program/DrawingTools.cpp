#include "app/program/DrawingTools.h"

#include "base/Files.h"
#include "platform/ChildProcess.h"
#include "platform/posix/DrawProgram.h"

#include <fmt/format.h>

#include <utility>

namespace nv {

namespace {

constexpr std::string_view kProgram = "norvelane-draw";

std::filesystem::path drawingProgram() {
    const auto program = companionProgram(kProgram);
    if (!program)
        throw StorageFailure(whyNoDrawing());
    return *program;
}

} // namespace

bool canDraw() {
    return companionProgram(kProgram).has_value();
}

std::string whyNoDrawing() {
    std::string places;
    for (const std::filesystem::path &folder : companionFolders())
        places += fmt::format("{}\"{}\"", places.empty() ? "" : ", ", textOf(folder));
    return fmt::format(
        "pictures and pages can't be drawn: {}, which comes with the window, was not "
        "found in {}; the variable NORVELANE_PROGRAMS may name another folder",
        kProgram, places);
}

std::unique_ptr<Drawing> makeDrawing(const std::filesystem::path &scratch) {
    return std::make_unique<DrawProgram>(drawingProgram(), scratch);
}

std::unique_ptr<DrawService> makeDrawService(const std::filesystem::path &scratch,
                                             std::chrono::seconds timeout, DrawService::Done done) {
    return std::make_unique<DrawService>(drawingProgram(), scratch, timeout, std::move(done));
}

} // namespace nv
