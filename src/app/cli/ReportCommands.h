#pragma once

#include "app/cli/Exit.h"

#include <string>

namespace nv::cli {

class Session;

struct ReportArguments {
    std::string project;
    std::string type; ///< graphical or tabular
    std::string out;  ///< folder that becomes the report
    std::string query;
    std::string title;
    std::string caseNumber;
    std::string organization;
    std::string reportedBy;
    std::string logo;
    std::string thumbnail; ///< shown where there is no picture
    bool tagged = false;
    bool all = false;
    bool notes = true;
    bool audit = false;
    bool links = false;
    bool timeRebuilt = true;
    bool dataSource = true;
    bool user = true;
    bool trail = false;
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
