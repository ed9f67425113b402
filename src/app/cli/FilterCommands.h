#pragma once

#include "app/cli/Exit.h"
#include "app/cli/RowWriter.h"
#include "app/cli/Session.h"
#include "views/FiltersClass.h"
#include "views/Hosts.h"

#include <string>
#include <vector>

namespace nv::cli {

/// Filters that are on with these flags, by their names in any case with or without "show"; off
/// when there are none. "browser=Chromium", "profile=..." and "person=..." choose whose records;
/// alone they hide no kind. Throws UsageError for a name that is none, and when no data source is
/// among them, as the window's dialog asks for one too.
FiltersClass filtersFrom(const std::vector<std::string> &names);

struct HostsArguments {
    std::string project;
    HostSort sort = HostSort::ByName;
};
/// The hosts of a project with their visits and records.
Exit hostsCommand(Session &session, const HostsArguments &arguments, Format format);

} // namespace nv::cli
