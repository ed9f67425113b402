#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace nv {

/// Something that an examiner dropped and that isn't taken.
struct NotTaken {
    std::string what; ///< path or address, as it was dropped
    std::string why;  ///< the rest of a sentence: "is no longer there"
};

/// What was dropped on a window together.
struct DroppedPaths {
    std::optional<std::filesystem::path> project; ///< the first one
    std::vector<std::filesystem::path> evidence;  ///< whole, links followed, each once
    std::vector<NotTaken> notTaken;
};

/// Sorts it. Nothing is opened; files are only asked what they are.
DroppedPaths sortDropped(const std::vector<std::filesystem::path> &paths);

/// A line each: "\"path\" is no longer there". Of many the first ones, and how many more there are.
std::string notTakenText(const std::vector<NotTaken> &things);

} // namespace nv
