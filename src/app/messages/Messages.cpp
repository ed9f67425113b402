#include "app/messages/Messages.h"

#include "base/Files.h"
#include "base/MessageKinds.h"

#include <fmt/format.h>

namespace nv::messages {

Message commandLineFileMissing() {
    return notice("command-line-file-missing", "Invalid Command Line Argument",
                  "The file parameter specified does not exist.");
}

Message commandLineFileUnknown() {
    return notice("command-line-file-unknown", "Invalid File",
                  "The file specified is not a recognized history file.");
}

Message commandLineFileImported(std::string_view outcome) {
    return notice("command-line-file-imported", "Import", std::string(outcome), Tone::Information);
}

Message startupError(std::string_view reason) {
    return failure("startup-error", "Startup Error in Main()", reason);
}

Message groundZero() {
    return notice("ground-zero", "",
                  "This is Ground Zero in the function.\n"
                  "If we have an error here, then the \n"
                  "and we have some work to do...",
                  Tone::Information);
}

Message tempFolderNotCleared(std::string_view reason) {
    return notice(
        "temp-folder-not-cleared", "",
        fmt::format("An error occurred while trying to clear the Temp folder:\n{}", reason));
}

Message notAProjectFile() {
    return notice("not-a-project-file", "Unrecognized File Format",
                  "Selected file is not a valid Norvelane Project File.");
}

Message databaseNotCreated() {
    return notice("database-not-created", "File Error",
                  "Internal error encountered. Unable to create database.", Tone::Error);
}

Message openingFailed(std::string_view reason) {
    return failure("opening-failed", "Error Opening File", reason);
}

Message projectInUse(const std::filesystem::path &project, std::string_view holder) {
    return question("project-in-use", "Project In Use",
                    fmt::format("\"{}\" is open already:\n{}\n\n"
                                "Two programs that write to one project would write over each "
                                "other's work.\n\nDo you want to open it for reading only?",
                                textOf(project), holder),
                    Answer::No, Tone::Warning);
}

Message projectNotWritable(const std::filesystem::path &project) {
    return question("project-not-writable", "Project Write-Protected",
                    fmt::format("\"{}\" can't be written: the file or its folder is "
                                "write-protected.\n\nDo you want to open it for reading only?",
                                textOf(project)),
                    Answer::No, Tone::Warning);
}

Message readingOnly() {
    return notice("reading-only", "Reading Only",
                  "The project is open for reading only: nothing is written to it.",
                  Tone::Information);
}

Message closingFailed(std::string_view reason) {
    return failure("closing-failed", "Error Closing File", reason);
}

Message saveAsFailed(std::string_view reason) {
    return failure("save-as-failed", "File Error", reason);
}

Message overwriteProject(std::string_view path) {
    return question("overwrite-project", "File Already Exists",
                    fmt::format("The project file entered already exists.\n\n{}\n\n"
                                "Do you want to overwrite the file?",
                                path),
                    Answer::No);
}

Message defaultQueryChanged() {
    return notice("default-query-changed", "Important Information",
                  "The _DEFAULT query has been modified since this project (case) file was first "
                  "created. It is set back to its first form when the project is closed.",
                  Tone::Information);
}

Message olderProject() {
    return notice(
        "older-project", "Possible Version Conflict",
        "This project file was creatd with an earlier build of Norvelane. You may be able to "
        "continue working with this file, however some tables and/or fields may have been updated "
        "since it was first created.\n\n"
        "It is strongly recommended that you backup this file and then run the 'Upgrade Wizard...' "
        "option found under the File menu.\n\n"
        "This tool is designed to examine your project file schema and IF NECESSARY, add/repair "
        "any necessary internal data structures or relationships.");
}

Message runUpgradeWizard() {
    return question("run-upgrade-wizard", "File Version Conflict",
                    "Would you like to run the Upgrade Wizard utility now?", Answer::No);
}

Message fixFile() {
    return notice("fix-file", "Fix File",
                  "Norvelane can fix the existing problem(s) \n"
                  "by migrating all existing data into a new \n"
                  "file.\n\n"
                  "Your existing file will be automatically \n"
                  "backed up and renamed with an '.OLD' file \n"
                  "extension.\n\n"
                  "Click the 'Fix Now' button to proceed...",
                  Tone::Information);
}

Message scanError(std::string_view reason) {
    return failure("scan-error", "Scan Error", reason);
}

Message fixError(std::string_view reason) {
    return failure("fix-error", "Fix Error",
                   fmt::format("{}\n\nThe project file stays as it was.", reason));
}

Message upgradeClosesProject() {
    return question("upgrade-closes-project", "Upgrade Wizard",
                    "The Upgrade Wizard works on a closed project. Do you want to close the "
                    "project now?\n\nIt is opened again when the wizard is closed.",
                    Answer::No);
}

Message versionCheckCanBeTurnedOff() {
    return notice("version-check-can-be-turned-off", "Disable Notification",
                  "You can turn off File Version Conflict checking through the Options menu on the "
                  "main window.",
                  Tone::Information);
}

Message zoneNotSet(int errorNumber) {
    return failure("zone-not-set", "Error Setting Time Zone",
                   fmt::format("Error Setting Time Zone ({})", errorNumber));
}

Message zoneNotThere(std::int64_t id) {
    return failure("zone-not-there", "Error Setting Time Zone",
                   fmt::format("The table of time zones doesn't hold the project's zone, number "
                               "{}. Local dates are shown in another one; the project keeps its "
                               "number until a zone is chosen.",
                               id));
}

Message zoneNotSelected() {
    return notice("zone-not-selected", "Time Zone Not Selected",
                  "A time zone setting has not been defined.\n"
                  "Please select a time zone before continuing...");
}

Message zonesNotRead() {
    return failure("zones-not-read", "Error Loading Time Zones",
                   "The list of time zones can't be read; the error log tells why.");
}

Message invalidProjectPath() {
    return notice("invalid-project-path", "Invalid File Path",
                  "The selected PROJECT file path is invalid or does not exist.");
}

Message invalidTempFolder() {
    return notice("invalid-temp-folder", "Invalid Folder Path",
                  "The selected TEMP folder is invalid or does not exist.");
}

Message invalidBaseFolder() {
    return notice("invalid-base-folder", "Invalid Folder Path",
                  "The selected BASE folder is invalid or does not exist.");
}

Message liesInEvidence(const std::filesystem::path &path, const std::filesystem::path &base) {
    return notice("lies-in-evidence", "Invalid Path",
                  fmt::format("\"{}\" lies in the evidence folder {}: nothing is written there",
                              textOf(path), textOf(base)));
}

Message tempFolderHoldsEvidence(const std::filesystem::path &base) {
    return notice(
        "temp-folder-holds-evidence", "Invalid Folder Path",
        fmt::format("The selected TEMP folder holds the evidence folder {}: scratch files would "
                    "lie beside evidence.",
                    textOf(base)));
}

Message settingsNotWritten(const std::filesystem::path &file) {
    return notice(
        "settings-not-written", "File Write Error",
        fmt::format("The settings can't be written to \"{}\". What was chosen holds until "
                    "the program ends.",
                    textOf(file)));
}

Message projectValuesNotKept(const std::vector<std::string> &names) {
    return notice("project-values-not-kept", "File Write Error",
                  fmt::format("The project can't keep {}: what was chosen holds until it is "
                              "closed. The error log says why.",
                              fmt::join(names, ", ")));
}

Message showOnlyWebpages() {
    return question("show-only-webpages", "Quick Query",
                    "Would you like to Show Only Webpages now?", Answer::No);
}

Message exitProgram() {
    return question("exit-program", "Exit Program", "Are you sure?", Answer::Yes);
}

Message exportPathMissing() {
    return notice("export-path-missing", "Missing Path",
                  "No path has been specified for export file.");
}

Message exportRefused(std::string_view reason) {
    return notice("export-refused", "Invalid Path", std::string(reason));
}

Message overwriteExport(std::string_view path) {
    return question("overwrite-export", "File Already Exists",
                    fmt::format("{}\n\nDo you want to overwrite the file?", path), Answer::No);
}

Message exportFailed(std::string_view reason) {
    return failure("export-failed", "Error Exporting URLs", reason);
}

Message columnsExported(std::string_view notes) {
    return question("columns-exported", "Columns Exported",
                    fmt::format("The selected columns have been exported \n"
                                "to disk Successfully.\n{}\n"
                                "Would you like to view the file now?",
                                notes.empty() ? std::string() : fmt::format("{}\n", notes)),
                    Answer::No);
}

Message startingDirectoryMissing() {
    return notice("starting-directory-missing", "Invalid Path",
                  "The starting directory has not been selected.");
}

Message startingDirectoryGone() {
    return notice("starting-directory-gone", "Invalid Path",
                  "The starting directory does not exist.");
}

Message nothingToImport() {
    return notice("nothing-to-import", "Nothing To Import",
                  "No valid history or cache files found in the selected folder(s).",
                  Tone::Information);
}

Message loggingFileFailed(const std::filesystem::path &file, std::string_view reason,
                          std::size_t count) {
    return failure("logging-file-failed", "Error Logging File",
                   fmt::format("\"{}\": {}{}", textOf(file), reason,
                               count > 1 ? fmt::format("\n\nand {} more files", count - 1) : ""));
}

Message importFailed(std::string_view reason) {
    return failure("import-failed", "Error Importing Files", reason);
}

Message idsBeyondNarrow(std::int64_t largest) {
    return question(
        "ids-beyond-narrow", "Large Project",
        fmt::format("The record ids of this project go up to {}. Earlier versions could hold ids "
                    "up to 32767 only. Above that a page isn't rebuilt when a part of it has such "
                    "an id, and the links of such a record aren't listed.\n\n"
                    "Do you want to allow such ids from now on, in rebuilt pages and in links? "
                    "Earlier versions can't open the pages that are rebuilt with them. The switch "
                    "is WideRecordIds in the section [BEYOND] of the settings file.",
                    largest),
        Answer::No);
}

Message useLinkAnalysis() {
    return question("use-link-analysis", "*** Using Link Analysis ***",
                    "Norvelane will now scan the current project file for\n"
                    "matches between History URLs and hyperlinks found\n"
                    "embedded inside of cache web pages.\n\n"
                    "For each match that is made, a counter will increment\n"
                    "and the result will be displayed in the Links column,\n"
                    "for the related URL records.\n\n"
                    "NOTE:\n"
                    "If you did not choose the 'Parse Advanced Metadata'\n"
                    "option during the initial import process, then this \n"
                    "analysis will produce no results.\n\n"
                    "If you still wish to use this feature, then\n"
                    "you will need to create a new project file and \n"
                    "re-import the necessary files -- making sure this\n"
                    "time that the 'Parse Advanced Metadata' option\n"
                    "is selected.\n\n"
                    "Do you wish to continue with Link Analysis?",
                    Answer::Yes);
}

Message linkAnalysisResults(std::int64_t matches, std::string_view notes) {
    return notice("link-analysis-results", "Link Analysis Results",
                  fmt::format("A total of {} matches were made.{}{}", matches,
                              notes.empty() ? "" : "\n\n", notes),
                  notes.empty() ? Tone::Information : Tone::Warning);
}

Message linkAnalysisFailed(std::string_view reason) {
    return failure("link-analysis-failed", "Link Analysis Error", reason);
}

Message linkRecordUnavailable() {
    return notice("link-record-unavailable", "Link Record Unavailable",
                  "The selected URL entry could not be displayed because the existing query "
                  "statement has excluded it from the results in the Table View.\n\n"
                  "You may wish to modify or limit the selected Filters or change the SQL "
                  "statement manually.",
                  Tone::Information);
}

Message findingRecordFailed(std::string_view reason) {
    return failure("finding-record-failed", "Error Finding Record", reason);
}

Message templateExists(std::string_view path) {
    return question("template-exists", "Template Aleady Exists",
                    fmt::format("The following template already exists:\n\n{}\n\n"
                                "Do you wish to overwrite this file?",
                                path),
                    Answer::No);
}

Message templateMissing(std::string_view path) {
    return notice("template-missing", "Template Missing",
                  fmt::format("The selected template no longer exists:\n\n{}", path));
}

Message deleteTemplate(std::string_view path) {
    return question("delete-template", "Delete Template",
                    fmt::format("Delete the selected template?\n\n{}", path), Answer::No);
}

Message loadingTemplateFailed(std::string_view reason) {
    return failure("loading-template-failed", "Error Loading Template", reason);
}

Message templateRebuildFailed(std::string_view reason) {
    return failure("template-rebuild-failed", "Template Rebuild Error", reason);
}

Message templatesFailed(std::string_view reason) {
    return failure("templates-failed", "Error Managing Templates", reason);
}

Message columnsFailed(std::string_view reason) {
    return failure("columns-failed", "Error Formatting Columns", reason);
}

Message commandFailed(std::string_view reason) {
    return failure("command-failed", "Error", reason);
}

Message about(std::string_view title, std::string_view version) {
    return notice("about", fmt::format("About {}", title),
                  fmt::format("{} {}\n\nExamination of web-browser caches and histories.\n"
                              "Licensed under the Apache License 2.0.",
                              title, version),
                  Tone::Information);
}

} // namespace nv::messages
