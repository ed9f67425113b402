#pragma once

#include "app/cli/Exit.h"
#include "app/cli/RowWriter.h"
#include "app/cli/Session.h"
#include "reports/ExportClass.h"

#include <optional>
#include <string>
#include <vector>

namespace nv::cli {

struct ExportArguments {
    std::string project;
    std::string file;
    std::optional<ExportFormat> format; ///< nothing: by the file's extension
    std::string delimiter = "|";        ///< or "," ";" "tab"
    std::vector<std::string> columns;   ///< keys; empty for all
    std::string query;
    std::string host;
    std::vector<std::string> filter;
    bool tagged = false;
    bool guardFormulas = false;
    bool overwrite = false;
};
/// Writes the rows of the table to a file.
Exit exportCommand(Session &session, const ExportArguments &arguments);

struct UpgradeArguments {
    std::string project;
    bool fix = false;
};
/// Compares a project with the schema of this build and, if asked, moves its data into a new file.
Exit upgradeCommand(Session &session, const UpgradeArguments &arguments, Format format);

} // namespace nv::cli
