#pragma once

#include "app/program/Program.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace nv {

/// A value that a project keeps for itself, in `DefaultSettings`.
struct ProjectValue {
    std::string name;
    std::string value;
};

/// The names in use, with what they are for.
struct ProjectValueFacts {
    std::string_view name;
    std::string_view what;
    bool settable = false; ///< the project goes by it when it is opened
};
std::span<const ProjectValueFacts> projectValueTable();

/// The settings in force as the open project keeps them.
std::vector<ProjectValue> projectValuesInForce(const Program &program);

enum class TrailNote { no, yes };

/// Writes the values that differ from what the open project holds, and notes them in its trail.
/// Nothing in a project that is open for reading only: they hold until it is closed. The names of
/// those that couldn't be written.
[[nodiscard]] std::vector<std::string>
storeProjectValues(Program &program, const std::vector<ProjectValue> &values, TrailNote note);

} // namespace nv
