#pragma once

#include "base/Examiner.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace nv::messages {

// What the program asks and tells about itself, its projects and its settings. Texts of one subject
// stand beside it: TrailMessages.h, NetworkMessages.h, ReportMessages.h, and in `views`
// QueryMessages.h and the headers of what they are about. Examiners' manuals quote all of them, so
// they stand as they are, misspellings included.

Message commandLineFileMissing();
Message commandLineFileUnknown();
/// `outcome` is what became of the artefact that the command line named.
Message commandLineFileImported(std::string_view outcome);
Message startupError(std::string_view reason);
Message groundZero();
Message tempFolderNotCleared(std::string_view reason);

Message notAProjectFile();
Message databaseNotCreated();
Message openingFailed(std::string_view reason);
Message closingFailed(std::string_view reason);
Message saveAsFailed(std::string_view reason);
Message overwriteProject(std::string_view path);
Message defaultQueryChanged();
Message olderProject();
Message runUpgradeWizard();
Message versionCheckCanBeTurnedOff();
Message fixFile();
Message scanError(std::string_view reason);
Message fixError(std::string_view reason);
Message upgradeClosesProject();
Message zoneNotSet(int errorNumber);
/// The project names a zone that the table doesn't hold.
Message zoneNotThere(std::int64_t id);
Message zoneNotSelected();
Message zonesNotRead();
Message invalidProjectPath();
/// Another program has it: reading only?
Message projectInUse(const std::filesystem::path &project, std::string_view holder);
Message projectNotWritable(const std::filesystem::path &project);
/// A command that would write, in a project that is open for reading only.
Message readingOnly();
Message invalidTempFolder();
Message invalidBaseFolder();
/// Of a place that was chosen for writing.
Message liesInEvidence(const std::filesystem::path &path, const std::filesystem::path &base);
Message tempFolderHoldsEvidence(const std::filesystem::path &base);
Message settingsNotWritten(const std::filesystem::path &file);
/// `names` as projectValueTable() has them.
Message projectValuesNotKept(const std::vector<std::string> &names);
Message showOnlyWebpages();
Message exitProgram();

Message exportPathMissing();
Message exportRefused(std::string_view reason);
Message overwriteExport(std::string_view path);
Message exportFailed(std::string_view reason);
/// `notes` are lines that follow the text.
Message columnsExported(std::string_view notes);

Message startingDirectoryMissing();
Message startingDirectoryGone();
Message nothingToImport();
/// `count` files could not be registered, the first one for this reason.
Message loggingFileFailed(const std::filesystem::path &file, std::string_view reason,
                          std::size_t count);
Message importFailed(std::string_view reason);
Message idsBeyondNarrow(std::int64_t largest);
Message useLinkAnalysis();
/// `notes` are lines that follow the number of matches; mostly none.
Message linkAnalysisResults(std::int64_t matches, std::string_view notes);
Message linkAnalysisFailed(std::string_view reason);
Message linkRecordUnavailable();
Message findingRecordFailed(std::string_view reason);
Message templateExists(std::string_view path);
Message templateMissing(std::string_view path);
Message deleteTemplate(std::string_view path);
Message loadingTemplateFailed(std::string_view reason);
Message templateRebuildFailed(std::string_view reason);
Message templatesFailed(std::string_view reason);
Message columnsFailed(std::string_view reason);
Message commandFailed(std::string_view reason);
Message about(std::string_view title, std::string_view version);

} // namespace nv::messages
