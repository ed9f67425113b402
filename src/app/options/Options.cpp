#include "app/options/Options.h"

#include "app/jobs/ZoneJob.h"
#include "app/messages/Messages.h"
#include "app/messages/NetworkMessages.h"
#include "app/options/ProjectOptions.h"
#include "app/options/SettingsInForce.h"
#include "app/options/SettingsTable.h"
#include "app/program/NetworkSwitch.h"
#include "app/project/EvidenceFolders.h"
#include "app/project/Project.h"
#include "base/Files.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "readers/Evidence.h"
#include "time/DateFormat.h"
#include "time/ExactZone.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

namespace nv {

namespace fs = std::filesystem;

namespace {

// The order in which settings files have what Okay writes, after the zone and the paths. A setting
// that isn't named here follows those that are.
constexpr AnyKey kWritten[] = {
    "DisableScriptTags",        "GalleryIncludeHTML",   "GalleryIncludePictures",
    "RedrawThumbIfPageRebuilt", "ViewerThumbnailWidth", "ReportThumbnailWidth",
    "ProgressBarRefreshRate",   "WideRecordIds",        "TemplateMatchByTitle",
    "ThumbnailsWhileImporting", "KeepAllOptions"};
constexpr AnyKey kHeld[] = {"GalleryRecordsPerPage", "OPTIONS/ThumbnailRedrawTimeout",
                            "THUMBNAILS/ThumbnailRedrawTimeout", "DisableFileVersionCheck",
                            "NetworkConnectionName"};

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
    Application(Program &program, Options options, const OptionsOccasion &occasion)
        : m_program(program), m_state(program.state), m_settings(program.settings),
          m_options(std::move(options)), m_occasion(occasion) {}

    OptionsOutcome run() {
        const OptionsOutcome outcome = apply();
        tellUnkept();
        return outcome;
    }

  private:
    OptionsOutcome apply();
    void tellUnkept() const;
    bool mayOverwrite() const;
    bool takeZone();
    std::optional<Refusal> refusalOfPaths() const;
    std::optional<Refusal> refusalBeside(const fs::path &base) const;
    void takePaths();
    void takeRest();
    void takeHeld();
    void takeWhatIsNoSetting();
    void toProject();

    OptionsOutcome stay(const Message &message, OptionsField field) {
        m_program.around.examiner.tell(message);
        return {false, field};
    }
    void bring(const SettingFacts &row);
    void write(const SettingFacts &row);
    void write(TextKey key, std::string_view text) {
        m_isWritten = writeText(m_settings, key, text);
    }
    void toProject(const std::vector<ProjectValue> &values);
    void take(AnyKey key) {
        bring(key.row());
        write(key.row());
    }
    std::vector<const SettingFacts *> remaining(SettingOkay okay, std::span<const AnyKey> first);

    Program &m_program;
    ProgramState &m_state;
    IniFile &m_settings;
    Options m_options;
    const OptionsOccasion &m_occasion;
    std::vector<const SettingFacts *> m_written;
    bool m_isWritten = true;           ///< the settings: a write that succeeds brings earlier ones
    std::vector<std::string> m_unkept; ///< values of the project
};

/// The order is that of the steps: an examiner who is sent back keeps what came before.
OptionsOutcome Application::apply() {
    if (!mayOverwrite())
        return {false, OptionsField::project};
    take("VerifyFileSignatures");
    take("DateFormat");
    take("TimeFormat");
    m_state.enableDSTChanges = m_options.enableDSTChanges;
    if (!m_options.timeZoneID && m_options.exactZone.empty())
        return stay(messages::zoneNotSelected(), OptionsField::zone);
    // What follows belongs to the new project and must not reach the one that is still open.
    const auto refusal = refusalOfPaths();
    if (m_occasion.newProject && m_state.projectDB.isOpen() && m_occasion.closeOpenProject &&
        !refusal)
        m_occasion.closeOpenProject();
    if (!takeZone())
        return {false, OptionsField::zone};
    if (refusal)
        return stay(refusal->message, refusal->field);
    takePaths();
    takeWhatIsNoSetting();
    takeRest();
    takeHeld();
    toProject();
    return {true, OptionsField::none};
}

void Application::tellUnkept() const {
    if (!m_isWritten)
        m_program.around.examiner.tell(messages::settingsNotWritten(m_settings.path()));
    if (!m_unkept.empty())
        m_program.around.examiner.tell(messages::projectValuesNotKept(m_unkept));
}

bool Application::mayOverwrite() const {
    const fs::path &path = m_options.projectDBPath;
    if (!m_occasion.newProject || path == m_occasion.overwriteAgreed)
        return true;
    std::error_code notThere;
    if (!fs::is_regular_file(path, notThere))
        return true;
    return m_program.around.examiner.ask(messages::overwriteProject(textOf(path))) == Answer::Yes;
}

/// An emptied text is the default again. A folder that is emptied is none until the next start.
void Application::bring(const SettingFacts &row) {
    const bool isText = std::holds_alternative<std::string SettingValues::*>(row.member);
    if (isText && shownText(m_options, row).empty())
        chooseText(m_options, row,
                   row.whenEmptied.empty() ? defaultOf(m_program, row)
                                           : std::string(row.whenEmptied));
    bringIntoForce(m_program, row, m_options);
}

void Application::write(const SettingFacts &row) {
    m_isWritten = m_settings.writeIniValue(row.section, row.key, shownText(m_options, row));
    m_written.push_back(&row);
}

/// What Okay does that with and hasn't written yet, those of `first` before the others.
std::vector<const SettingFacts *> Application::remaining(SettingOkay okay,
                                                         std::span<const AnyKey> first) {
    std::vector<const SettingFacts *> rows;
    for (const AnyKey &key : first)
        rows.push_back(&key.row());
    for (const SettingFacts &row : settingsTable())
        if (row.okay == okay && std::find(rows.begin(), rows.end(), &row) == rows.end() &&
            std::find(m_written.begin(), m_written.end(), &row) == m_written.end())
            rows.push_back(&row);
    return rows;
}

bool Application::takeZone() {
    // A new project with a wrong path doesn't change the zone of the one that is open.
    if (m_occasion.newProject && m_state.projectDB.isOpen())
        return true;
    const std::string key = m_options.exactZone.empty() ? fmt::format("{}", *m_options.timeZoneID)
                                                        : m_options.exactZone;
    if (!changeZone(m_program, key, m_program.task))
        return false;
    const TimeZone &zone = m_state.gmtZone;
    write("TimeZoneBias", fmt::format("{}", zone.tzBias));
    write("TimeZoneName", zone.tzName);
    write("TimeZoneID", zoneKey(zone));
    if (m_state.projectDB.isOpen())
        toProject({{"TimeZoneBias", fmt::format("{}", zone.tzBias)},
                   {"TimeZoneName", zone.tzName},
                   {"TimeZoneID", zoneKey(zone)}});
    return true;
}

/// The base folder of an open project may be gone, as evidence is unplugged: only a new choice is
/// tested.
std::optional<Refusal> Application::refusalOfPaths() const {
    const fs::path &project = m_options.projectDBPath;
    const bool isNew = m_occasion.newProject;
    if (isNew && (!isProjectName(project) || isFolder(project) ||
                  !isFolder(fs::absolute(project).parent_path())))
        return Refusal{OptionsField::project, messages::invalidProjectPath()};
    if (!isUsableTempFolder(m_program, m_options.tempFolderPath))
        return Refusal{OptionsField::temp, messages::invalidTempFolder()};
    const fs::path &base = m_options.rootPath;
    const bool asItWas = !m_state.projectDB.isOpen() || base == m_state.rootPath;
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
        {OptionsField::project, m_options.projectDBPath, m_state.projectDBPath},
        {OptionsField::temp, m_options.tempFolderPath, m_state.tempFolderRoot},
        {OptionsField::templates, m_options.templatesPath, m_state.templatesPath},
        {OptionsField::publish, m_options.publishTempFolder, m_state.publishTempFolder}};
    const bool isChosen = base == m_options.rootPath && base != m_state.rootPath;
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
    bring(TextKey("PublishFolder").row());
    takeTempFolder(m_program, m_options.tempFolderPath);
    m_state.tempFolderOfRun = m_options.tempFolderPath;
    write("TempFolder", textOf(m_options.tempFolderPath));
    write("LastProjectDBPath", textOf(m_options.projectDBPath));
    take("AgencyLogoPath");
    take("PublishFolder");
    take("TemplatesPath");
}

void Application::takeWhatIsNoSetting() {
    m_state.pard.enablePARD = m_options.enablePARD;
    m_state.pard.fromValue = static_cast<std::int16_t>(m_options.pardFrom);
    m_state.pard.toValue = static_cast<std::int16_t>(m_options.pardTo);
    if (m_options.switchedOffline)
        m_state.connectionOffline = *m_options.switchedOffline;
}

void Application::takeRest() {
    for (const SettingFacts *row : remaining(SettingOkay::writes, kWritten)) {
        bring(*row);
        write(*row);
    }
}

/// These have always held until the program ends; a switch of ours keeps them.
void Application::takeHeld() {
    for (const SettingFacts *row : remaining(SettingOkay::holds, kHeld)) {
        bring(*row);
        if (m_options.keepAllOptions)
            write(*row);
    }
}

void Application::toProject() {
    if (!m_state.projectDB.isOpen())
        return;
    if (!m_options.rootPath.empty() && m_options.rootPath != m_state.rootPath)
        m_state.rootPath = fs::canonical(m_options.rootPath);
    toProject(projectValuesInForce(m_program));
}

/// The values in force hold those of the zone again: what fails twice is named once.
void Application::toProject(const std::vector<ProjectValue> &values) {
    for (std::string &name : storeProjectValues(m_program, values, TrailNote::yes))
        if (std::ranges::find(m_unkept, name) == m_unkept.end())
            m_unkept.push_back(std::move(name));
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
    keepText(program, "DateFormat", format);
    return sampleOf(program, format);
}

std::string chooseTimeFormat(Program &program, std::string_view format) {
    keepText(program, "TimeFormat", format);
    return sampleOf(program, format);
}

std::vector<ZoneRow> initTimeZone(Program &program) {
    std::vector<ZoneRow> zones = ZoneDatabase(program.paths.zones(), program.log).listZones();
    if (zones.empty())
        program.around.examiner.tell(messages::zonesNotRead());
    return zones;
}

std::string connectionStatus(Program &program, const std::string &name) {
    std::string &inForce = program.state.networkConnectionName;
    const std::string kept = std::exchange(inForce, name);
    const std::string status = networkConnectionStatus(program);
    inForce = kept;
    return status;
}

std::string switchConnectionOver(Program &program, const std::string &name) {
    const bool isUp = connectionStatus(program, name) == "ENABLED";
    std::string &inForce = program.state.networkConnectionName;
    const std::string kept = std::exchange(inForce, name);
    const bool done = toggleNetworkConnection(
        program, isUp ? ConnectionState::disabled : ConnectionState::enabled, Quiet::no);
    inForce = kept;
    if (done && isUp)
        program.around.examiner.tell(messages::networkDisabled());
    return connectionStatus(program, name);
}

} // namespace nv
