#include "app/cli/Grammar.h"

#include "app/Version.h"
#include "app/cli/CommandHints.h"
#include "app/cli/Examples.h"

#include <fmt/format.h>

namespace nv::cli {

namespace {

constexpr const char *kExitCodes = R"(
Exit codes: 0 done, 1 wrong usage, 2 an artefact is damaged or a project's schema differs, 3 the project can't be used,
130 interrupted: what was written is kept.)";

/// Each command's own examples; a command that only stands before others shows theirs.
void addExamples(CLI::App &command, const std::string &words) {
    std::string text = examplesText(words);
    for (CLI::App *each : command.get_subcommands([](CLI::App *) { return true; })) {
        const std::string name = words + " " + each->get_name();
        addExamples(*each, name);
        text += (text.empty() ? "" : "\n") + examplesText(name);
    }
    command.footer(text);
}

} // namespace

Grammar::Grammar()
    : app("Norvelane: forensic examination of browser caches and histories", "norvelane-cli") {
    app.require_subcommand(1);
    app.set_version_flag("--version", fmt::format("norvelane-cli {}.{}.{}", version::kMajor,
                                                  version::kMinor, version::kRevision));
    addImport();
    addList();
    addQueries();
    addStoredQueries();
    addShow();
    addFiles();
    addRebuilding();
    addTemplates();
    addPictures();
    addTrail();
    addLinks();
    addViewers();
    addHosts();
    addReport();
    addExport();
    addUpgrade();
    addOptions();
    for (CLI::App *each : app.get_subcommands([](CLI::App *) { return true; }))
        addExamples(*each, each->get_name());
    app.footer(examplesText({}) + kExitCodes);
    app.failure_message(
        [](const CLI::App *all, const CLI::Error &error) { return explained(*all, error); });
}

CLI::App *Grammar::command(const char *name, const char *what, Run run) {
    CLI::App *added = app.add_subcommand(name, what);
    added->callback([this, run = std::move(run)] { chosen = run; });
    return added;
}

void Grammar::addProject(CLI::App *to, std::string &project) {
    to->add_option("PROJECT", project, "Project file (*.nvp)")->required();
}

void Grammar::addFormat(CLI::App *to) {
    to->add_option("--format", m_format, "table, csv, tsv or jsonl")
        ->transform(numberOf({{"table", static_cast<int>(Format::table)},
                              {"csv", static_cast<int>(Format::csv)},
                              {"tsv", static_cast<int>(Format::tsv)},
                              {"jsonl", static_cast<int>(Format::jsonl)}}))
        ->default_str("table");
}

void Grammar::addImport() {
    CLI::App *c = command("import", "Import artefacts into a project, which is made when needed",
                          [this](Session &s) {
                              m_import.json = m_importFormat == "json";
                              return importCommand(s, m_import);
                          });
    addProject(c, m_import.project);
    c->add_option("PATH", m_import.paths, "Folders or files of evidence")->required();
    c->add_option("--base", m_import.base, "Base folder of the evidence (default: the PATH)");
    c->add_option(
        "--zone", m_import.zone,
        "Time zone of the project: a name such as Europe/Berlin, or a number; the command "
        "zones lists them");
    c->add_option("--kinds", m_import.kinds, "Only these readers, by key, separated by commas")
        ->delimiter(',');
    c->add_option("--as", m_import.as,
                  "Take each PATH, a file, as the artefact of this reader, whatever it is called");
    c->add_flag("--no-metadata", m_import.noMetadata, "Don't read cached pages' contents");
    c->add_flag("--no-signatures", m_import.noSignatures, "Recognise files by name alone");
    c->add_flag("--thumbnails", m_import.thumbnails, "Make thumbnails while importing");
    c->add_option("--format", m_importFormat, "text or json")
        ->transform(oneOf({"text", "json"}))
        ->default_str("text");
}

void Grammar::addList() {
    CLI::App *c = command("list", "The rows of the table view", [this](Session &s) {
        m_list.format = m_format;
        return listCommand(s, m_list);
    });
    addProject(c, m_list.project);
    c->add_option("--query", m_list.query, "Name of a stored query (default: _DEFAULT)");
    c->add_option("--host", m_list.host, "Only hosts that contain this text");
    addFilter(c, m_list.filter);
    c->add_option("--columns", m_list.columns, "Column keys, separated by commas")->delimiter(',');
    c->add_flag_callback(
        "--dates-as-shown", [this] { m_list.dates = Dates::asShown; },
        "Dates of csv and jsonl as the window shows them, not ISO 8601");
    addFormat(c);
}

void Grammar::addShow() {
    CLI::App *c = command("show", "All properties of a row", [this](Session &s) {
        return showCommand(s, m_project, m_urlId, m_format);
    });
    addProject(c, m_project);
    c->add_option("URL_ID", m_urlId, "Key of the row")->required();
    addFormat(c);
}

void Grammar::addFiles() {
    CLI::App *dump = command("dump", "The records of one artefact, without a project",
                             [this](Session &s) { return dumpCommand(s, m_file, m_as, m_format); });
    dump->add_option("FILE", m_file, "The artefact")->required();
    dump->add_option("--as", m_as, "Key of the reader to use (default: the one that knows it)");
    addFormat(dump);
    CLI::App *extract =
        command("extract", "Write the cached content of a row to a file", [this](Session &s) {
            return extractCommand(s, m_project, m_urlId, m_file,
                                  m_overwrite ? IfThere::overwrite : IfThere::refuse);
        });
    addProject(extract, m_project);
    extract->add_option("URL_ID", m_urlId, "Key of the row")->required();
    extract->add_option("FILE", m_file, "Where to write it; - is the standard output")->required();
    extract->add_flag("--overwrite", m_overwrite, "Replace FILE when it is there");
    CLI::App *zones = command("zones", "The time zones and their ids", [this](Session &s) {
        return m_exactZones ? exactZonesCommand(s, m_format) : zonesCommand(s, m_format);
    });
    zones->add_flag("--exact", m_exactZones,
                    "The zones of the system's zoneinfo, which go by the law of each date");
    addFormat(zones);
}

void Grammar::addRebuilding() {
    CLI::App *rebuild = command("rebuild", "Rebuild cached pages for viewing offline",
                                [this](Session &s) { return rebuildCommand(s, m_rebuild); });
    addProject(rebuild, m_rebuild.project);
    rebuild->add_option("URL_ID", m_rebuild.ids, "Keys of the pages' rows");
    rebuild->add_flag("--tagged", m_rebuild.tagged, "The rows with the tick");
    rebuild->add_flag("--all-pages", m_rebuild.allPages, "Every cached page");
    rebuild->add_option("--out", m_rebuild.out, "Folder that gets a folder a page")->required();
    rebuild->add_flag("--overwrite", m_rebuild.overwrite, "Replace folders of such pages");
    rebuild->add_flag("--no-scripts", m_rebuild.noScripts, "Turn scripts into comments");
    rebuild->add_flag("--wide-ids", m_rebuild.wideIds, "Parts may have ids above 32767");
    rebuild->add_flag("--no-thumbnails", m_rebuild.noThumbnails,
                      "Leave the pages' thumbnails as they are");

    CLI::App *audit =
        command("audit", "What stands for each reference of a rebuilt page", [this](Session &s) {
            return auditCommand(s, m_project, m_urlId, m_wideIds, m_format);
        });
    addProject(audit, m_project);
    audit->add_option("URL_ID", m_urlId, "Key of the page's row")->required();
    audit->add_flag("--wide-ids", m_wideIds, "Parts may have ids above 32767");
    addFormat(audit);

    CLI::App *tag = command("tag", "Set or take away the tick of rows",
                            [this](Session &s) { return tagCommand(s, m_tag); });
    addProject(tag, m_tag.project);
    tag->add_option("URL_ID", m_tag.ids, "Keys of the rows");
    tag->add_option("--where", m_tag.where, "A condition on URLs, such as \"Visits > 5\"");
    tag->add_flag("--off", m_tag.off, "Take the tick away");
}

void Grammar::addTemplates() {
    CLI::App *all = app.add_subcommand("template", "Templates made of rebuilt pages");
    all->require_subcommand(1);
    const auto add = [this, all](const char *name, const char *what, Run run) {
        CLI::App *added = all->add_subcommand(name, what);
        added->callback([this, run = std::move(run)] { chosen = run; });
        added->add_option("--folder", m_template.folder, "Folder of templates");
        return added;
    };
    CLI::App *create = add("create", "Make templates of rebuilt pages",
                           [this](Session &s) { return templateCreateCommand(s, m_template); });
    addProject(create, m_template.project);
    create->add_option("URL_ID", m_template.ids, "Keys of the pages' rows")->required();
    create->add_flag("--overwrite", m_template.overwrite, "Replace templates of the same name");
    create->add_flag("--wide-ids", m_template.wideIds, "Parts may have ids above 32767");
    addFormat(add("list", "The templates of the folder",
                  [this](Session &s) { return templateListCommand(s, m_template, m_format); }));
    CLI::App *apply = add("apply", "Lay a template over pages",
                          [this](Session &s) { return templateApplyCommand(s, m_template); });
    addProject(apply, m_template.project);
    apply->add_option("TEMPLATE", m_template.file, "Name of a template in the folder, or its file")
        ->required();
    apply->add_option("URL_ID", m_template.ids, "Keys of the pages' rows")->required();
    apply->add_option("--out", m_template.out, "Folder that gets a folder a page");
    apply->add_flag("--overwrite", m_template.overwrite, "Replace folders of such pages");
    apply->add_flag("--any-title", m_template.anyTitle, "Pages of another title too");
}

void Grammar::addPictures() {
    CLI::App *thumbnails =
        command("thumbnails", "Draw cached pictures and pages small",
                [this](Session &s) { return thumbnailsCommand(s, m_thumbnails); });
    addProject(thumbnails, m_thumbnails.project);
    thumbnails->add_option("URL_ID", m_thumbnails.ids, "Keys of the rows");
    thumbnails->add_flag("--all", m_thumbnails.all, "Every cached picture and page");
    thumbnails->add_flag("--redo", m_thumbnails.redo, "Rows that have a thumbnail too");

    CLI::App *gallery = command("gallery", "Write a page of thumbnails as one HTML file or picture",
                                [this](Session &s) { return galleryCommand(s, m_gallery); });
    addProject(gallery, m_gallery.project);
    gallery->add_option("--query", m_gallery.query, "Name of a stored query (default: _DEFAULT)");
    gallery->add_option("--host", m_gallery.host, "Only hosts that contain this text");
    addFilter(gallery, m_gallery.filter);
    gallery->add_option("--pard", m_gallery.pard, "Only P.A.R.D. values FROM-TO, best 15-40");
    gallery->add_option("--sizes", m_gallery.sizes, "Only these sizes: xs,s,m,l,xl")
        ->delimiter(',');
    gallery->add_option("--page", m_gallery.page, "Number of the page, from 1");
    gallery->add_option("--per-page", m_gallery.perPage, "Tiles a page (default: the settings')")
        ->check(atLeastOne());
    gallery->add_option("--out", m_gallery.out, "The file to write, *.html or *.png")->required();
    gallery->add_flag("--overwrite", m_gallery.overwrite, "Replace the file when it is there");
}

} // namespace nv::cli
