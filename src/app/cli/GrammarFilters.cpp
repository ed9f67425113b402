#include "app/cli/Grammar.h"

namespace nv::cli {

void Grammar::addFilter(CLI::App *to, std::vector<std::string> &filter) {
    to->add_option(
          "--filter", filter,
          "Only what these record filters show, separated by commas, such as "
          "CacheURLs,JPEG,Cookies; browser=NAME, profile=NAME and person=NAME choose whose "
          "records; a wrong one lists them all")
        ->delimiter(',');
}

void Grammar::addHosts() {
    CLI::App *c = command("hosts", "The hosts of a project with their visits and records",
                          [this](Session &s) { return hostsCommand(s, m_hosts, m_format); });
    addProject(c, m_hosts.project);
    c->add_flag_callback(
        "--by-visits", [this] { m_hosts.sort = HostSort::ByVisits; },
        "Most visited first, not by name");
    addFormat(c);
}

} // namespace nv::cli
