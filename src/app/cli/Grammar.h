#pragma once

#include "app/cli/Commands.h"
#include "app/cli/ExportCommands.h"
#include "app/cli/FilterCommands.h"
#include "app/cli/LinkCommands.h"
#include "app/cli/OptionsCommands.h"
#include "app/cli/QueryCommands.h"
#include "app/cli/ReportCommands.h"
#include "app/cli/ViewerCommands.h"

#include <CLI/CLI.hpp>

#include <functional>

namespace nv::cli {

/// The command line: what can be said, and what it calls. After `app` has parsed the words,
/// `chosen` runs the command with its arguments; the grammar must outlive that run.
class Grammar {
  public:
    Grammar();
    ~Grammar() = default;
    Grammar(const Grammar &) = delete;
    Grammar &operator=(const Grammar &) = delete;

    CLI::App app;
    std::function<Exit(Session &)> chosen;

  private:
    using Run = std::function<Exit(Session &)>;
    CLI::App *command(const char *name, const char *what, Run run);
    void addProject(CLI::App *to, std::string &project);
    void addFormat(CLI::App *to);
    void addFilter(CLI::App *to, std::vector<std::string> &filter);
    void addImport();
    void addList();
    void addQueries();
    void addStoredQueries();
    void addShow();
    void addFiles();
    void addRebuilding();
    void addTemplates();
    void addPictures();
    void addTrail();
    void addLinks();
    void addViewers();
    void addHosts();
    void addReport();
    void addExport();
    void addUpgrade();
    void addOptions();

    ImportArguments m_import;
    ListArguments m_list;
    RebuildArguments m_rebuild;
    TagArguments m_tag;
    ThumbnailArguments m_thumbnails;
    GalleryArguments m_gallery;
    TemplateArguments m_template;
    LinkArguments m_links;
    NoteArguments m_note;
    HexArguments m_hex;
    RowArguments m_row;
    HostsArguments m_hosts;
    StoredQueryArguments m_storedQuery;
    ReportArguments m_report;
    ExportArguments m_export;
    UpgradeArguments m_upgrade;
    OptionsArguments m_options;
    bool m_wideIds = false;
    bool m_exactZones = false;
    Format m_format = Format::table;
    std::string m_importFormat = "text";
    std::string m_project;
    std::string m_sql;
    std::string m_file;
    std::string m_as;
    bool m_overwrite = false;
    std::int64_t m_urlId = 0;
};

} // namespace nv::cli
