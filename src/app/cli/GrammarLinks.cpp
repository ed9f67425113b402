#include "app/cli/Grammar.h"

namespace nv::cli {

void Grammar::addLinks() {
    CLI::App *links = command("links", "Find the cached pages that link to each record",
                              [this](Session &s) { return linksCommand(s, m_links, m_format); });
    addProject(links, m_links.project);
    CLI::Option *url = links->add_option("--url", m_links.urlId,
                                         "List what the last run found for the row of this key");
    links->add_flag("--wide-ids", m_links.wideIds, "The row may have an id above 32767")
        ->needs(url);
    addFormat(links);
    links->get_option("--format")->needs(url);
}

} // namespace nv::cli
