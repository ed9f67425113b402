#include "app/cli/Cli.h"

#include "app/Version.h"
#include "app/cli/Commands.h"
#include "base/Files.h"
#include "db/SqlTokens.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <functional>
#include <map>
#include <optional>

namespace nv::cli {

namespace {

constexpr const char *kExamples = R"(Examples:
  norvelane-cli import case.nvp /mnt/seized            import all that is found below a folder
  norvelane-cli import case.nvp History --zone 15      one file, dates shown in the zone 15
  norvelane-cli list case.nvp --host example.com       the rows of a host as a table
  norvelane-cli list case.nvp --format csv > rows.csv  all rows for a spreadsheet
  norvelane-cli query case.nvp "SELECT TOP 5 URL FROM URLs WHERE ActionDateUTC > #1/15/2009#"
  norvelane-cli show case.nvp 17                       everything about one row
  norvelane-cli dump index.dat --format jsonl          the records of one file, without a project
Exit codes: 0 done, 1 wrong usage, 2 an artefact is damaged, 3 the project can't be used,
130 interrupted: what was written is kept.)";

const std::map<std::string, Format> kFormats = {
    {"table", Format::table}, {"csv", Format::csv}, {"tsv", Format::tsv}, {"jsonl", Format::jsonl}};

using Run = std::function<Exit(Session &)>;

/// The parser with what each command fills in; `chosen` is the one that was called.
class Grammar {
  public:
    Grammar() {
        app.require_subcommand(1);
        app.footer(kExamples);
        app.set_version_flag("--version", fmt::format("norvelane-cli {}.{}.{}", version::kMajor,
                                                      version::kMinor, version::kRevision));
        addImport();
        addList();
        addQueries();
        addShow();
        addFiles();
    }

    CLI::App app{"Norvelane: forensic examination of browser caches and histories",
                 "norvelane-cli"};
    Run chosen;

  private:
    CLI::App *command(const char *name, const char *what, Run run) {
        CLI::App *added = app.add_subcommand(name, what);
        added->callback([this, run = std::move(run)] { chosen = run; });
        return added;
    }

    void addProject(CLI::App *to, std::string &project) {
        to->add_option("PROJECT", project, "Project file (*.nvp)")->required();
    }

    void addFormat(CLI::App *to) {
        to->add_option("--format", m_format, "table, csv, tsv or jsonl")
            ->transform(CLI::CheckedTransformer(kFormats, CLI::ignore_case).description(""))
            ->default_str("table");
    }

    void addImport() {
        CLI::App *c =
            command("import", "Import artefacts into a project, which is made when needed",
                    [this](Session &s) { return importCommand(s, m_import); });
        addProject(c, m_import.project);
        c->add_option("PATH", m_import.paths, "Folders or files of evidence")->required();
        c->add_option("--base", m_import.base, "Base folder of the evidence (default: the PATH)");
        c->add_option("--zone", m_import.zone, "Time zone of the project, see the command zones");
        c->add_option("--kinds", m_import.kinds, "Only these readers, by key, separated by commas")
            ->delimiter(',');
        c->add_flag("--no-metadata", m_import.noMetadata, "Don't read cached pages' contents");
        c->add_flag("--no-signatures", m_import.noSignatures, "Recognise files by name alone");
        c->add_flag("--thumbnails", m_import.thumbnails, "Make thumbnails while importing");
        c->add_option("--format", m_importFormat, "text or json")
            ->check(CLI::IsMember({"text", "json"}))
            ->default_str("text");
        c->final_callback([this] { m_import.json = m_importFormat == "json"; });
    }

    void addList() {
        CLI::App *c = command("list", "The rows of the table view", [this](Session &s) {
            m_list.format = m_format;
            return listCommand(s, m_list);
        });
        addProject(c, m_list.project);
        c->add_option("--query", m_list.query, "Name of a stored query (default: _DEFAULT)");
        c->add_option("--host", m_list.host, "Only hosts that contain this text");
        c->add_option("--columns", m_list.columns, "Column keys, separated by commas")
            ->delimiter(',');
        c->add_flag_callback(
            "--dates-as-shown", [this] { m_list.dates = Dates::asShown; },
            "Dates of csv and jsonl as the window shows them, not ISO 8601");
        addFormat(c);
    }

    void addQueries() {
        CLI::App *query =
            command("query", "Run a SELECT in the project's dialect, reading only",
                    [this](Session &s) { return queryCommand(s, m_project, m_sql, m_format); });
        addProject(query, m_project);
        query->add_option("SQL", m_sql, "The statement")->required();
        addFormat(query);
        CLI::App *queries =
            command("queries", "The stored queries of a project",
                    [this](Session &s) { return queriesCommand(s, m_project, m_format); });
        addProject(queries, m_project);
        addFormat(queries);
    }

    void addShow() {
        CLI::App *c = command("show", "All properties of a row", [this](Session &s) {
            return showCommand(s, m_project, m_urlId, m_format);
        });
        addProject(c, m_project);
        c->add_option("URL_ID", m_urlId, "Key of the row")->required();
        addFormat(c);
    }

    void addFiles() {
        CLI::App *dump = command("dump", "The records of one artefact, without a project",
                                 [this](Session &s) { return dumpCommand(s, m_file, m_format); });
        dump->add_option("FILE", m_file, "The artefact")->required();
        addFormat(dump);
        CLI::App *zones = command("zones", "The time zones and their ids",
                                  [this](Session &s) { return zonesCommand(s, m_format); });
        addFormat(zones);
    }

    ImportArguments m_import;
    ListArguments m_list;
    Format m_format = Format::table;
    std::string m_importFormat = "text";
    std::string m_project;
    std::string m_sql;
    std::string m_file;
    std::int64_t m_urlId = 0;
};

/// Parses the words; the exit code where there is nothing to run.
std::optional<int> parse(Grammar &grammar, std::vector<std::string> words, std::ostream &out,
                         std::ostream &err) {
    std::reverse(words.begin(), words.end()); // the parser takes them from the back
    try {
        grammar.app.parse(std::move(words));
        return std::nullopt;
    } catch (const CLI::ParseError &problem) {
        const int code = grammar.app.exit(problem, out, err);
        return code == 0 ? 0 : static_cast<int>(Exit::usage);
    }
}

int fail(std::ostream &err, const std::exception &failure, Exit code) {
    err << "norvelane-cli: " << printable(failure.what()) << '\n';
    return static_cast<int>(code);
}

} // namespace

int run(const std::string &executable, const std::vector<std::string> &arguments, std::ostream &out,
        std::ostream &err) {
    Grammar grammar;
    if (const auto ended = parse(grammar, arguments, out, err))
        return *ended;
    try {
        Session session(executable, out, err);
        return static_cast<int>(grammar.chosen(session));
    } catch (const UsageError &failure) {
        return fail(err, failure, Exit::usage);
    } catch (const DialectError &failure) {
        return fail(err, failure, Exit::usage);
    } catch (const std::exception &failure) {
        return fail(err, failure, Exit::projectUnusable);
    }
}

} // namespace nv::cli
