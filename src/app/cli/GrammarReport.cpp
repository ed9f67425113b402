#include "app/cli/CommandHints.h"
#include "app/cli/Grammar.h"

namespace nv::cli {

void Grammar::addReport() {
    CLI::App *c = command("report", "Write a report of rows as a folder of pages and pictures",
                          [this](Session &s) { return reportCommand(s, m_report); });
    addProject(c, m_report.project);
    c->add_option("--type", m_report.type, "graphical (a card a row) or tabular (a line a row)")
        ->transform(oneOf({"graphical", "tabular"}));
    c->add_option("--out", m_report.out, "Folder that becomes the report")->required();
    c->add_flag("--overwrite", m_report.overwrite, "Replace the report in a folder");
    c->add_flag("--all", m_report.all, "All rows of the query (this is the default)");
    c->add_flag("--tagged", m_report.tagged, "Only rows with the tick");
    c->add_option("--query", m_report.query, "Name of a stored query (default: _DEFAULT)");
    c->add_option("--host", m_report.host, "Only hosts that contain this text");
    addFilter(c, m_report.filter);
    c->add_flag("--descending", m_report.descending, "Newest rows first");
    c->add_option("--title", m_report.title, "Title of the report");
    c->add_option("--case-number", m_report.caseNumber, "Case number");
    c->add_option("--organization", m_report.organization, "Organization");
    c->add_option("--reported-by", m_report.reportedBy, "Who prepared the report");
    c->add_option("--logo", m_report.logo, "Picture in the head of the report");
    c->add_option("--thumbnail", m_report.thumbnail, "Picture where a row has none");
    c->add_flag("--no-header", m_report.noHeader, "Leave the head out");
    c->add_flag("--notes,!--no-notes", m_report.notes, "Notes of rows");
    c->add_flag("--audit,!--no-audit", m_report.audit, "Replaced references of pages");
    c->add_flag("--links,!--no-links", m_report.links, "Visited links of pages");
    c->add_flag("--time-rebuilt,!--no-time-rebuilt", m_report.timeRebuilt,
                "When a page was rebuilt");
    c->add_flag("--data-source,!--no-data-source", m_report.dataSource,
                "Column of a tabular report");
    c->add_flag("--user,!--no-user", m_report.user, "Column of a tabular report");
    c->add_flag("--trail,!--no-trail", m_report.trail, "What was done with the case");
    c->add_option("--url-width", m_report.urlWidth, "Width of the URL column in pixels")
        ->check(atLeastOne());
    c->add_flag("--no-scripts", m_report.noScripts,
                "Changes nothing: no script leaves with a page");
    c->add_flag("--wide-ids", m_report.wideIds, "Parts of pages may have ids above 32767");
}

} // namespace nv::cli
