#include "app/DrawingTools.h"

#include "base/Files.h"
#include "platform/ChildProcess.h"
#include "platform/posix/DrawProgram.h"

namespace nv {

namespace {

constexpr std::string_view kProgram = "norvelane-draw";

} // namespace

bool canDraw() {
    return companionProgram(kProgram).has_value();
}

std::unique_ptr<Drawing> makeDrawing(const std::filesystem::path &scratch) {
    const auto program = companionProgram(kProgram);
    if (!program)
        throw StorageFailure("pictures and pages can't be drawn: norvelane-draw, which comes with "
                             "the window, was not found");
    return std::make_unique<DrawProgram>(program, scratch);
}

} // namespace nv
