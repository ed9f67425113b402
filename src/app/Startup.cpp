#include "app/Messages.h"
#include "app/Program.h"
#include "app/TempFolder.h"
#include "app/Version.h"
#include "base/Files.h"
#include "base/Paths.h"
#include "base/Trap.h"
#include "time/ZoneDatabase.h"

#include <fmt/format.h>

#include <cstdlib>
#include <unistd.h>

namespace nv {

namespace fs = std::filesystem;

namespace {

constexpr int kSmallestThumbnail = 100;
constexpr int kMendedThumbnail = 160;
constexpr int kMendedRedrawTimeout = 15;

void takeVersion(ThisClass &state) {
    state.AppTitle = "Norvelane";
    state.AppBuildMajor = version::kMajor;
    state.AppBuildMinor = version::kMinor;
    state.AppBuildRevision = version::kRevision;
    state.AppVersion =
        fmt::format("{}.{}.{}", version::kMajor, version::kMinor, version::kRevision);
}

void findCompanionTool(Program &program) {
    const fs::path beside = program.paths.program / "Ostermoor.exe";
    ThisClass &state = program.thisClass;
    if (fs::exists(beside))
        state.OstermoorEXEPath = beside;
    const fs::path named = program.settings.ReadIniValue("OPTIONS", "OstermoorEXEPath",
                                                         textOf(state.OstermoorEXEPath));
    if (fs::exists(named))
        state.OstermoorEXEPath = named;
}

void readFormats(const IniFile &settings, ThisClass &state) {
    state.DateFormat = settings.ReadIniValue("OPTIONS", "DateFormat", "yyyy-mm-dd");
    state.TimeFormat = settings.ReadIniValue("OPTIONS", "TimeFormat", "Hh:Nn:Ss");
    state.DateTimeFormat = state.DateFormat + " " + state.TimeFormat;
}

void readPaths(const Program &program, ThisClass &state) {
    const IniFile &settings = program.settings;
    state.LocalFavoritesPath = settings.ReadIniValue("OPTIONS", "LocalFavoritesPath",
                                                     textOf(program.paths.home / "favorites.ini"));
    state.SharedFavoritesPath = settings.ReadIniValue("OPTIONS", "SharedFavoritesPath", "");
    state.AgencyLogoPath = settings.ReadIniValue("FILE PATHS", "AgencyLogoPath", "");
    state.TemplateMatchByTitle = settings.ReadIniValue("BEYOND", "TemplateMatchByTitle", true);
    state.TemplatesPath =
        settings.ReadIniValue("BEYOND", "TemplatesPath", textOf(program.paths.home / "Templates"));
    state.PublishTempFolder = settings.ReadIniValue("FILE PATHS", "PublishFolder", "");
}

void readThumbnails(const IniFile &settings, ThisClass &state) {
    state.ViewerThumbnailWidth = settings.ReadIniValue("THUMBNAILS", "ViewerThumbnailWidth", 120);
    state.ThumbnailRedrawTimeout = settings.ReadIniValue("THUMBNAILS", "ThumbnailRedrawTimeout", 5);
    if (state.ThumbnailRedrawTimeout < 1)
        state.ThumbnailRedrawTimeout = kMendedRedrawTimeout;
    if (state.ViewerThumbnailWidth < kSmallestThumbnail)
        state.ViewerThumbnailWidth = kMendedThumbnail;
}

void readOptions(const IniFile &settings, ThisClass &state) {
    const auto flag = [&settings](std::string_view key, bool byDefault) {
        return settings.ReadIniValue("OPTIONS", key, byDefault);
    };
    state.DisableAutoRebuildInHTMLGallery = flag("DisableAutoRebuildInHTMLGallery", false);
    state.DisableFileVersionCheck = flag("DisableFileVersionCheck", false);
    state.GalleryIncludeHTML = flag("GalleryIncludeHTML", true);
    state.GalleryIncludePictures = flag("GalleryIncludePictures", true);
    state.VerifyFileSignatures = flag("VerifyFileSignatures", true);
    state.RedrawThumbIfPageRebuilt = flag("RedrawThumbIfPageRebuilt", true);
    state.GalleryRecordsPerPage = settings.ReadIniValue("OPTIONS", "GalleryRecordsPerPage", 300);
    state.ProgressBarRefreshRate = settings.ReadIniValue("OPTIONS", "ProgressBarRefreshRate", 5);
    state.NetworkConnectionName =
        settings.ReadIniValue("OPTIONS", "NetworkConnectionName", "Local Area Connection");
    state.ConnectionOffline = settings.ReadIniValue("DEFAULT", "ConnectionOffline", true);
    state.WideRecordIds = settings.ReadIniValue("BEYOND", "WideRecordIds", true);
    state.HTMLReplaceableHREFTags = settings.ReadIniValue("DEFAULT", "HTMLReplaceableHREFTags",
                                                          "js;css;php;txt;asp;aspx;htm;html;");
    state.HTMLReplaceablePictureTags = settings.ReadIniValue(
        "DEFAULT", "HTMLReplaceablePictureTags", "jpe;jpeg;jpg;gif;bmp;png;tif;");
}

void readSettings(Program &program) {
    ThisClass &state = program.thisClass;
    readFormats(program.settings, state);
    readPaths(program, state);
    readThumbnails(program.settings, state);
    readOptions(program.settings, state);
    program.thread.ProgressBarRefreshRate = state.ProgressBarRefreshRate;
    program.import.ParseAdvancedMetadata =
        program.settings.ReadIniValue("OPTIONS", "ParseAdvancedMetaData", true);
    program.import.VerifyFileSignatures = state.VerifyFileSignatures;
    // Some seven pages a second would make an import of a large cache a matter of hours; the
    // gallery's button draws them when they are wanted.
    program.import.MakeThumbnails =
        program.settings.ReadIniValue("BEYOND", "ThumbnailsWhileImporting", false);
}

/// The machine's zone without its daylight shift until a project sets one: see ZoneDatabase.
void takeMachineZone(Program &program) {
    const Clock &clock = program.around.clock;
    TimeZoneClass &zone = program.thisClass.GMTZone;
    zone = ZoneDatabase(program.paths.zones(), program.log)
               .GetSystemTimeZone(zone, program.around.systemTime.zone(),
                                  Date::fromTimePoint(clock.now() + clock.localOffset()));
}

void emptyTempFolder(Program &program, const fs::path &tempFolder) {
    const bool isWindow = program.front == Front::window;
    const auto failure = failureOf(program.log, "Main()", [&] {
        if (!isWindow) {
            Unwatched nobody;
            return EmptyTempFolder(tempFolder, program.front, nobody);
        }
        const OpenTask task(program.thread, {});
        EmptyTempFolder(tempFolder, program.front, program.thread);
    });
    if (failure && isWindow)
        program.around.examiner.tell(messages::tempFolderNotCleared(*failure));
}

bool holds(const fs::path &folder, const fs::path &inner) {
    const fs::path relative = wholePath(inner).lexically_relative(wholePath(folder));
    return !relative.empty() && *relative.begin() != "..";
}

} // namespace

Program::Program(ProgramPaths where, Front whichFront, const Surroundings &surroundings)
    : paths(std::move(where)), front(whichFront), around(surroundings),
      log(paths.errorLog(whichFront == Front::headless), around.clock),
      settings(paths.settings(), log), thread(around.status), thisClass(log, around.clock) {}

/// The shapes of photographs.
void resetPardRange(ThisClass &state) {
    state.PARD.FromValue = 15;
    state.PARD.ToValue = 40;
}

void takeTempFolder(Program &program, const fs::path &tempFolder) {
    ThisClass &state = program.thisClass;
    state.TempFolderRoot = tempFolder;
    for (const auto &folder : program.scratch) {
        if (folder->tempFolder() == tempFolder) {
            state.TempFolderPath = folder->path();
            return;
        }
    }
    emptyTempFolder(program, tempFolder);
    program.scratch.push_back(std::make_unique<ScratchFolder>(tempFolder, program.front));
    state.TempFolderPath = program.scratch.back()->path();
    if (program.front == Front::window)
        WriteScratchPages(tempFileNames(state.TempFolderPath));
}

bool isUsableTempFolder(const Program &program, const fs::path &folder) {
    const fs::path &project = program.thisClass.ProjectDBPath;
    const fs::path &scratch = program.thisClass.TempFolderPath;
    const bool isScratchProject = !project.empty() && !scratch.empty() && holds(scratch, project);
    const char *home = std::getenv("HOME");
    std::error_code notThere;
    return fs::is_directory(folder, notThere) && ::access(folder.c_str(), W_OK) == 0 &&
           !holds(folder, program.paths.program) && !holds(folder, program.paths.home) &&
           !holds(folder, program.paths.config) && !holds(folder, program.paths.state) &&
           !(home && *home && holds(folder, home)) &&
           (project.empty() || isScratchProject || !holds(folder, project));
}

fs::path tempFolderFrom(const Program &program) {
    const fs::path byDefault = program.paths.defaultTemp();
    const fs::path &ofRun = program.thisClass.TempFolderOfRun;
    if (!ofRun.empty() && isUsableTempFolder(program, ofRun))
        return ofRun;
    const fs::path named =
        program.settings.ReadIniValue("DEFAULT", "TempFolderPath", textOf(byDefault));
    if (isUsableTempFolder(program, named))
        return named;
    fs::create_directories(byDefault);
    return byDefault;
}

void startUp(Program &program, Front front) {
    ThisClass &state = program.thisClass;
    takeVersion(state);
    if (front == Front::window)
        program.log.remove();
    findCompanionTool(program);
    state.TempFolderRoot = tempFolderFrom(program);
    resetPardRange(state);
    readSettings(program);
    takeMachineZone(program);
    state.DebugMain = program.settings.ReadIniValue("OPTIONS", "DebugMain", false);
    if (front == Front::window)
        takeTempFolder(program, state.TempFolderRoot);
}

} // namespace nv
