#include "app/Options.h"

#include "app/EvidenceFolders.h"
#include "app/IniSections.h"
#include "app/Messages.h"
#include "app/NetworkMessages.h"
#include "app/NetworkSwitch.h"
#include "app/Project.h"
#include "app/ProjectOptions.h"
#include "app/Zones.h"
#include "base/Files.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "readers/Evidence.h"
#include "time/DateFormat.h"

#include <fmt/format.h>

#include <utility>

namespace nv {

namespace fs = std::filesystem;

namespace {

struct Refusal {
    OptionsField field;
    Message message;
};

/// A path that can't be looked at, such as one that is too long, is none.
bool isFolder(const fs::path &path) {
    std::error_code notThere;
    return fs::is_directory(path, notThere);
}

/// One press of Okay.
class Application {
  public:
    Application(Program &program, const Options &options, const OptionsOccasion &occasion)
        : m_program(program), m_state(program.thisClass), m_settings(program.settings),
          m_options(options), m_occasion(occasion) {}

    OptionsOutcome run();

  private:
    bool mayOverwrite() const;
    void takeFormats();
    bool takeZone();
    std::optional<Refusal> refusalOfPaths() const;
    std::optional<Refusal> refusalBeside(const fs::path &base) const;
    void takePaths();
    void takeGallery();
    void takeSafety();
    void takeThumbnailsAndStatus();
    void takeBeyond();
    void keepTheRest();
    void toProject();

    OptionsOutcome stay(const Message &message, OptionsField field) {
        m_program.around.examiner.tell(message);
        return {false, field};
    }
    void take(std::string_view section, std::string_view key, bool &inForce, bool chosen) {
        inForce = chosen;
        m_settings.WriteIniValue(section, key, chosen);
    }
    void write(std::string_view section, std::string_view key, int number) {
        m_settings.WriteIniValue(section, key, fmt::format("{}", number));
    }

    Program &m_program;
    ThisClass &m_state;
    IniFile &m_settings;
    const Options &m_options;
    const OptionsOccasion &m_occasion;
};

/// The order is that of the steps: an examiner who is sent back keeps what came before.
OptionsOutcome Application::run() {
    if (!mayOverwrite())
        return {false, OptionsField::project};
    take(kOptionsSection, "VerifyFileSignatures", m_state.VerifyFileSignatures,
         m_options.VerifyFileSignatures);
    m_program.import.VerifyFileSignatures = m_options.VerifyFileSignatures;
    takeFormats();
    m_state.EnableDSTChanges = m_options.EnableDSTChanges;
    if (!m_options.Time_Zone_ID && m_options.exactZone.empty())
        return stay(messages::zoneNotSelected(), OptionsField::zone);
    // What follows belongs to the new project and must not reach the one that is still open.
    const auto refusal = refusalOfPaths();
    if (m_occasion.newProject && m_state.ProjectDB.isOpen() && m_occasion.closeOpenProject &&
        !refusal)
        m_occasion.closeOpenProject();
    if (!takeZone())
        return {false, OptionsField::zone};
    if (refusal)
        return stay(refusal->message, refusal->field);
    takePaths();
    takeGallery();
    takeSafety();
    takeThumbnailsAndStatus();
    takeBeyond();
    keepTheRest();
    toProject();
    if (m_settings.hasUnwritten())
        m_program.around.examiner.tell(messages::settingsNotWritten(m_settings.path()));
    return {true, OptionsField::none};
}

bool Application::mayOverwrite() const {
    const fs::path &path = m_options.ProjectDBPath;
    if (!m_occasion.newProject || path == m_occasion.overwriteAgreed)
        return true;
    std::error_code notThere;
    if (!fs::is_regular_file(path, notThere))
        return true;
    return m_program.around.examiner.ask(messages::overwriteProject(textOf(path))) == Answer::Yes;
}

void Application::takeFormats() {
    // Not the format that the program starts with: whoever empties the box has always got this one.
    m_state.DateFormat = m_options.DateFormat.empty() ? "MM/DD/YY" : m_options.DateFormat;
    m_settings.WriteIniValue(kOptionsSection, "DateFormat", m_state.DateFormat);
    m_state.TimeFormat = m_options.TimeFormat.empty() ? "Hh:Nn:Ss" : m_options.TimeFormat;
    m_settings.WriteIniValue(kOptionsSection, "TimeFormat", m_state.TimeFormat);
    m_state.DateTimeFormat = m_state.DateFormat + " " + m_state.TimeFormat;
}

bool Application::takeZone() {
    // A new project with a wrong path doesn't change the zone of the one that is open.
    if (m_occasion.newProject && m_state.ProjectDB.isOpen())
        return true;
    const std::string key = m_options.exactZone.empty() ? fmt::format("{}", *m_options.Time_Zone_ID)
                                                        : m_options.exactZone;
    if (!changeZone(m_program, key, m_program.thread))
        return false;
    const TimeZoneClass &zone = m_state.GMTZone;
    write(kOptionsSection, "TimeZoneBias", zone.tzBias);
    m_settings.WriteIniValue(kOptionsSection, "TimeZoneName", zone.tzName);
    m_settings.WriteIniValue(kOptionsSection, "TimeZoneID", zoneKey(zone));
    if (m_state.ProjectDB.isOpen())
        storeProjectValues(m_program,
                           {{"TimeZoneBias", fmt::format("{}", zone.tzBias)},
                            {"TimeZoneName", zone.tzName},
                            {"TimeZoneID", zoneKey(zone)}},
                           TrailNote::yes);
    return true;
}

/// The base folder of an open project may be gone, as evidence is unplugged: only a new choice is
/// tested.
std::optional<Refusal> Application::refusalOfPaths() const {
    const fs::path &project = m_options.ProjectDBPath;
    const bool isNew = m_occasion.newProject;
    if (isNew && (!isProjectName(project) || isFolder(project) ||
                  !isFolder(fs::absolute(project).parent_path())))
        return Refusal{OptionsField::project, messages::invalidProjectPath()};
    if (!isUsableTempFolder(m_program, m_options.TempFolderPath))
        return Refusal{OptionsField::temp, messages::invalidTempFolder()};
    const fs::path &base = m_options.RootPath;
    const bool asItWas = !m_state.ProjectDB.isOpen() || base == m_state.RootPath;
    if (!(isNew ? base.empty() : asItWas) && !isFolder(base))
        return Refusal{OptionsField::base, messages::invalidBaseFolder()};
    if (auto refusal = refusalBeside(base))
        return refusal;
    for (const fs::path &folder : evidenceFolders(m_state))
        if (auto refusal = refusalBeside(folder))
            return refusal;
    return std::nullopt;
}

/// Nothing is written beside evidence. What was there before the examiner chose anything new stays:
/// a machine that is examined by itself has the program's own folders among its evidence.
std::optional<Refusal> Application::refusalBeside(const fs::path &base) const {
    struct Place {
        OptionsField field;
        const fs::path &path;
        const fs::path &before;
    };
    const Place places[] = {
        {OptionsField::project, m_options.ProjectDBPath, m_state.ProjectDBPath},
        {OptionsField::temp, m_options.TempFolderPath, m_state.TempFolderRoot},
        {OptionsField::templates, m_options.TemplatesPath, m_state.TemplatesPath},
        {OptionsField::publish, m_options.PublishTempFolder, m_state.PublishTempFolder}};
    const bool isChosen = base == m_options.RootPath && base != m_state.RootPath;
    for (const Place &place : places) {
        const bool ofOpenProject = place.field == OptionsField::project && !m_occasion.newProject;
        const bool asItWas = place.path == place.before && !isChosen;
        if (place.path.empty() || base.empty() || ofOpenProject || asItWas)
            continue;
        if (liesInEvidence(place.path, base))
            return Refusal{place.field, messages::liesInEvidence(place.path, base)};
        if (place.field == OptionsField::temp && liesInEvidence(base, place.path))
            return Refusal{place.field, messages::tempFolderHoldsEvidence(base)};
    }
    return std::nullopt;
}

void Application::takePaths() {
    m_state.PublishTempFolder = m_options.PublishTempFolder;
    takeTempFolder(m_program, m_options.TempFolderPath);
    m_state.TempFolderOfRun = m_options.TempFolderPath;
    m_state.AgencyLogoPath = m_options.AgencyLogoPath;
    m_state.TemplatesPath = m_options.TemplatesPath;
    m_settings.WriteIniValue(kPathsSection, "TempFolder", textOf(m_options.TempFolderPath));
    m_settings.WriteIniValue(kPathsSection, "LastProjectDBPath", textOf(m_options.ProjectDBPath));
    m_settings.WriteIniValue(kPathsSection, "AgencyLogoPath", textOf(m_options.AgencyLogoPath));
    m_settings.WriteIniValue(kPathsSection, "PublishFolder", textOf(m_options.PublishTempFolder));
    m_settings.WriteIniValue(kBeyondSection, "TemplatesPath", textOf(m_options.TemplatesPath));
}

void Application::takeGallery() {
    take(kOptionsSection, "DisableScriptTags", m_state.DisableScriptTags,
         m_options.DisableScriptTags);
    take(kOptionsSection, "GalleryIncludeHTML", m_state.GalleryIncludeHTML,
         m_options.GalleryIncludeHTML);
    take(kOptionsSection, "GalleryIncludePictures", m_state.GalleryIncludePictures,
         m_options.GalleryIncludePictures);
    take(kOptionsSection, "RedrawThumbIfPageRebuilt", m_state.RedrawThumbIfPageRebuilt,
         m_options.RedrawThumbIfPageRebuilt);
    m_state.GalleryRecordsPerPage = m_options.GalleryRecordsPerPage;
    m_state.ThumbnailRedrawTimeout = m_options.ThumbnailRedrawTimeout;
    m_state.PARD.EnablePARD = m_options.EnablePARD;
    m_state.PARD.FromValue = static_cast<std::int16_t>(m_options.PARDFrom);
    m_state.PARD.ToValue = static_cast<std::int16_t>(m_options.PARDTo);
}

void Application::takeSafety() {
    if (m_options.ConnectionOffline)
        m_state.ConnectionOffline = *m_options.ConnectionOffline;
    m_state.DisableFileVersionCheck = m_options.DisableFileVersionCheck;
    m_state.NetworkConnectionName = m_options.NetworkConnectionName.empty()
                                        ? std::string(kDefaultConnection)
                                        : m_options.NetworkConnectionName;
}

void Application::takeThumbnailsAndStatus() {
    m_state.ViewerThumbnailWidth = m_options.ViewerThumbnailWidth;
    m_state.ProgressBarRefreshRate = m_options.ProgressBarRefreshRate;
    m_program.thread.ProgressBarRefreshRate = m_options.ProgressBarRefreshRate;
    write(kThumbnailsSection, "ViewerThumbnailWidth", m_options.ViewerThumbnailWidth);
    write(kThumbnailsSection, "ReportThumbnailWidth", m_options.ReportThumbnailWidth);
    write(kOptionsSection, "ProgressBarRefreshRate", m_options.ProgressBarRefreshRate);
}

void Application::takeBeyond() {
    take(kBeyondSection, "WideRecordIds", m_state.WideRecordIds, m_options.WideRecordIds);
    take(kBeyondSection, "TemplateMatchByTitle", m_state.TemplateMatchByTitle,
         m_options.TemplateMatchByTitle);
    take(kBeyondSection, "ThumbnailsWhileImporting", m_program.import.MakeThumbnails,
         m_options.ThumbnailsWhileImporting);
    m_settings.WriteIniValue(kBeyondSection, "KeepAllOptions", m_options.KeepAllOptions);
}

/// These have always held until the program ends; a switch of ours keeps them.
void Application::keepTheRest() {
    if (!m_options.KeepAllOptions)
        return;
    write(kOptionsSection, "GalleryRecordsPerPage", m_options.GalleryRecordsPerPage);
    write(kOptionsSection, "ThumbnailRedrawTimeout", m_options.ThumbnailRedrawTimeout);
    write(kThumbnailsSection, "ThumbnailRedrawTimeout", m_options.ThumbnailRedrawTimeout);
    m_settings.WriteIniValue(kOptionsSection, "DisableFileVersionCheck",
                             m_options.DisableFileVersionCheck);
    m_settings.WriteIniValue(kOptionsSection, "NetworkConnectionName",
                             m_state.NetworkConnectionName);
}

void Application::toProject() {
    if (!m_state.ProjectDB.isOpen())
        return;
    if (!m_options.RootPath.empty() && m_options.RootPath != m_state.RootPath)
        m_state.RootPath = fs::canonical(m_options.RootPath);
    storeProjectValues(m_program, projectValuesInForce(m_program), TrailNote::yes);
}

} // namespace

OptionsOutcome applyOptions(Program &program, const Options &options,
                            const OptionsOccasion &occasion) {
    return Application(program, options, occasion).run();
}

std::string sampleOf(const Program &program, std::string_view format) {
    const Clock &clock = program.around.clock;
    return formatDate(Date::fromTimePoint(clock.now() + clock.localOffset()), format);
}

std::string chooseDateFormat(Program &program, std::string_view format) {
    program.settings.WriteIniValue(kOptionsSection, "DateFormat", format);
    return sampleOf(program, format);
}

std::string chooseTimeFormat(Program &program, std::string_view format) {
    program.settings.WriteIniValue(kOptionsSection, "TimeFormat", format);
    return sampleOf(program, format);
}

std::vector<ZoneRow> InitTimeZone(Program &program) {
    std::vector<ZoneRow> zones = ZoneDatabase(program.paths.zones(), program.log).listZones();
    if (zones.empty())
        program.around.examiner.tell(messages::zonesNotRead());
    return zones;
}

std::string connectionStatus(Program &program, const std::string &name) {
    std::string &inForce = program.thisClass.NetworkConnectionName;
    const std::string kept = std::exchange(inForce, name);
    const std::string status = NetworkConnectionStatus(program);
    inForce = kept;
    return status;
}

std::string switchConnectionOver(Program &program, const std::string &name) {
    const bool isUp = connectionStatus(program, name) == "ENABLED";
    std::string &inForce = program.thisClass.NetworkConnectionName;
    const std::string kept = std::exchange(inForce, name);
    const bool done = ToggleNetworkConnection(
        program, isUp ? ConnectionState::disabled : ConnectionState::enabled, Quiet::no);
    inForce = kept;
    if (done && isUp)
        program.around.examiner.tell(messages::networkDisabled());
    return connectionStatus(program, name);
}

} // namespace nv
