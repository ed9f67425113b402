#include "app/project/DroppedPaths.h"

#include "app/project/Project.h"
#include "base/DisplayText.h"
#include "base/Files.h"

#include <fmt/format.h>

#include <algorithm>
#include <system_error>

namespace nv {

namespace fs = std::filesystem;

namespace {

/// Why it can't be evidence; empty when it can.
std::string refusalOf(const fs::file_status &status, const std::error_code &failed) {
    if (status.type() == fs::file_type::not_found)
        return "is no longer there";
    if (status.type() == fs::file_type::none)
        return fmt::format("can't be looked at: {}", failed.message());
    if (!fs::is_directory(status) && !fs::is_regular_file(status))
        return "is no plain file and no folder"; // reading it could wait for ever
    return {};
}

void take(DroppedPaths &dropped, const fs::path &path) {
    std::error_code failed;
    const fs::file_status status = fs::status(path, failed);
    if (const std::string why = refusalOf(status, failed); !why.empty()) {
        dropped.notTaken.push_back({textOf(path), why});
        return;
    }
    const fs::path whole = fs::canonical(path, failed);
    const fs::path &known = failed ? path : whole;
    if (fs::is_regular_file(status) && isProjectName(path)) {
        if (!dropped.project)
            dropped.project = known;
        else if (known != *dropped.project)
            dropped.notTaken.push_back(
                {textOf(path), "is another project: one is opened at a time"});
    } else if (std::ranges::find(dropped.evidence, known) == dropped.evidence.end()) {
        dropped.evidence.push_back(known);
    }
}

} // namespace

DroppedPaths sortDropped(const std::vector<fs::path> &paths) {
    DroppedPaths dropped;
    for (const fs::path &path : paths)
        take(dropped, path);
    return dropped;
}

std::string notTakenText(const std::vector<NotTaken> &things) {
    constexpr std::size_t kTold = 8;
    std::string text;
    for (std::size_t i = 0; i < std::min(things.size(), kTold); ++i)
        text += fmt::format("\"{}\" {}\n", displayText(things[i].what), things[i].why);
    if (things.size() > kTold)
        text += fmt::format("and {} more\n", things.size() - kTold);
    return text;
}

} // namespace nv
