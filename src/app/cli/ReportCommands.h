#pragma once

#include "app/cli/Exit.h"

#include <optional>
#include <string>
#include <vector>

namespace nv::cli {

class Session;

/// What isn't said is as in the settings, which the window keeps from its last report.
struct ReportArguments {
    std::string project;
    std::string out; ///< folder that becomes the report
    std::string query;
    std::string host;
    std::vector<std::string> filter;
    std::optional<std::string> type; ///< graphical or tabular
    std::optional<std::string> title;
    std::optional<std::string> caseNumber;
    std::optional<std::string> organization;
    std::optional<std::string> reportedBy;
    std::optional<std::string> logo;
    std::string thumbnail; ///< shown where there is no picture
    bool tagged = false;
    bool all = false;
    std::optional<bool> notes;
    std::optional<bool> audit;
    std::optional<bool> links;
    std::optional<bool> timeRebuilt;
    std::optional<bool> dataSource;
    std::optional<bool> user;
    std::optional<bool> trail;
    bool noHeader = false;
    bool noScripts = false;
    bool wideIds = false;
    bool descending = false;
    bool overwrite = false;
    int urlWidth = 0;
};
/// Makes a report and publishes it to a folder.
Exit reportCommand(Session &session, const ReportArguments &arguments);

} // namespace nv::cli
