#include "app/cli/CommandHints.h"
#include "app/cli/Grammar.h"

namespace nv::cli {

void Grammar::addExport() {
    CLI::App *c = command("export", "Write the rows of the table to a file for other programs",
                          [this](Session &s) { return exportCommand(s, m_export); });
    addProject(c, m_export.project);
    c->add_option("FILE", m_export.file, "The file to write; - is the standard output")->required();
    c->add_option("--format", m_export.format,
                  "delimited, csv, jsonl or xlsx (default: by the extension of FILE)")
        ->transform(numberOf({{"delimited", static_cast<int>(ExportFormat::delimited)},
                              {"csv", static_cast<int>(ExportFormat::csv)},
                              {"jsonl", static_cast<int>(ExportFormat::jsonl)},
                              {"xlsx", static_cast<int>(ExportFormat::xlsx)}}));
    c->add_option("--delimiter", m_export.delimiter, "Of delimited: | , ; or tab")
        ->default_str("|");
    c->add_option("--columns", m_export.columns,
                  "Index or column keys, separated by commas (default: all)")
        ->delimiter(',');
    c->add_option("--query", m_export.query, "Name of a stored query (default: _DEFAULT)");
    c->add_option("--host", m_export.host, "Only hosts that contain this text");
    addFilter(c, m_export.filter);
    c->add_flag("--tagged", m_export.tagged, "Only rows with the tick");
    c->add_flag("--guard-formulas", m_export.guardFormulas,
                "Of csv: an apostrophe before texts that a spreadsheet takes for a formula");
    c->add_flag("--overwrite", m_export.overwrite, "Replace FILE when it is there");
}

void Grammar::addUpgrade() {
    CLI::App *c = command("upgrade", "Compare a project with the schema of this build",
                          [this](Session &s) { return upgradeCommand(s, m_upgrade, m_format); });
    addProject(c, m_upgrade.project);
    c->add_flag("--fix", m_upgrade.fix,
                "Move its data into a new file; the old one gets \".old\" behind its name");
    addFormat(c);
}

} // namespace nv::cli
