// What the Options dialog shows at first; Options.cpp applies it.
#include "app/IniSections.h"
#include "app/Options.h"
#include "time/ExactZone.h"

#include <fmt/format.h>

#include <cstdlib>

namespace nv {

namespace fs = std::filesystem;

namespace {

fs::path firstOf(const fs::path &inForce, const IniFile &settings, std::string_view key) {
    return inForce.empty() ? fs::path(settings.ReadIniValue(kPathsSection, key, "")) : inForce;
}

void readPaths(const Program &program, Options &options) {
    const ThisClass &state = program.thisClass;
    options.ProjectDBPath = state.ProjectDBPath;
    options.RootPath = state.RootPath;
    options.TempFolderPath = firstOf(state.TempFolderRoot, program.settings, "Temp");
    options.TemplatesPath = state.TemplatesPath;
    options.PublishTempFolder = firstOf(state.PublishTempFolder, program.settings, "Publish");
    options.AgencyLogoPath = firstOf(state.AgencyLogoPath, program.settings, "AgencyLogo");
}

/// The folder of the settings, that of the last project, or the user's own.
fs::path folderOfProjects(const Program &program) {
    const IniFile &settings = program.settings;
    const fs::path last = settings.ReadIniValue(kPathsSection, "LastProjectDBPath", "");
    const char *home = std::getenv("HOME");
    const fs::path user = home ? home : "";
    std::error_code notThere;
    for (const fs::path &folder : {fs::path(settings.ReadIniValue(kPathsSection, "Project", "")),
                                   last.parent_path(), user / "Documents", user}) {
        if (folder.is_absolute() && fs::is_directory(folder, notThere))
            return folder;
    }
    return program.paths.home;
}

} // namespace

Options readOptions(const Program &program, const std::vector<ZoneRow> &zones) {
    const ThisClass &state = program.thisClass;
    const IniFile &settings = program.settings;
    Options options;
    readPaths(program, options);
    options.DateFormat = settings.ReadIniValue(kOptionsSection, "DateFormat", kOptionsDateFormat);
    options.TimeFormat = settings.ReadIniValue(kOptionsSection, "TimeFormat", kOptionsTimeFormat);
    if (state.GMTZone.exact)
        options.exactZone = state.GMTZone.exact->name();
    else if (const auto place = placeInList(zones, state.GMTZone))
        options.Time_Zone_ID = zones[*place].Time_Zone_ID;
    options.EnableDSTChanges = state.EnableDSTChanges;
    options.GalleryIncludeHTML = state.GalleryIncludeHTML;
    options.GalleryIncludePictures = state.GalleryIncludePictures;
    options.GalleryRecordsPerPage = state.GalleryRecordsPerPage;
    options.RedrawThumbIfPageRebuilt = state.RedrawThumbIfPageRebuilt;
    // Not the time-out of the start, which stands in another section.
    options.ThumbnailRedrawTimeout =
        settings.ReadIniValue(kOptionsSection, "ThumbnailRedrawTimeout", 15);
    options.EnablePARD = state.PARD.EnablePARD;
    options.PARDFrom = state.PARD.FromValue;
    options.PARDTo = state.PARD.ToValue;
    options.ViewerThumbnailWidth = state.ViewerThumbnailWidth;
    options.ReportThumbnailWidth =
        settings.ReadIniValue(kThumbnailsSection, "ReportThumbnailWidth", 200);
    options.DisableScriptTags = state.DisableScriptTags;
    options.VerifyFileSignatures = state.VerifyFileSignatures;
    options.DisableFileVersionCheck = state.DisableFileVersionCheck;
    options.NetworkConnectionName = state.NetworkConnectionName;
    options.ProgressBarRefreshRate = state.ProgressBarRefreshRate;
    options.WideRecordIds = state.WideRecordIds;
    options.ThumbnailsWhileImporting = program.import.MakeThumbnails;
    options.TemplateMatchByTitle = state.TemplateMatchByTitle;
    options.KeepAllOptions = settings.ReadIniValue(kBeyondSection, "KeepAllOptions", false);
    return options;
}

Options readNewProjectOptions(const Program &program, const std::vector<ZoneRow> &zones) {
    Options options = readOptions(program, zones);
    options.RootPath.clear();
    const fs::path folder = folderOfProjects(program);
    options.ProjectDBPath = folder / "Case.nvp";
    for (int number = 2; fs::exists(options.ProjectDBPath); ++number)
        options.ProjectDBPath = folder / fmt::format("Case {}.nvp", number);
    return options;
}

} // namespace nv
