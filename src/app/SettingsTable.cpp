#include "app/SettingsTable.h"

#include "app/Messages.h"
#include "app/Zones.h"
#include "base/Files.h"
#include "base/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>

namespace nv {

namespace fs = std::filesystem;

namespace {

using K = SettingKind;

constexpr int kMost = 32767;                // what earlier builds could hold
constexpr std::size_t kLongestValue = 4000; // bytes; what earlier builds could read

// clang-format off
constexpr auto kSettings = std::to_array<SettingFacts>({
    {"OPTIONS", "DebugMain", K::flag, "False", 0, 0, "A message at the start of the program"},
    {"OPTIONS", "OstermoorEXEPath", K::file, "<program>/Ostermoor.exe", 0, 0, "The companion tool"},
    {"OPTIONS", "ParseAdvancedMetaData", K::flag, "True", 0, 0, "Imports read title, text and links of cached pages"},
    {"OPTIONS", "DisableAutoRebuildInHTMLGallery", K::flag, "False", 0, 0, "A tile of the gallery doesn't bring its rebuilt page back"},
    {"OPTIONS", "DisableFileVersionCheck", K::flag, "False", 0, 0, "Projects of earlier builds open without a question"},
    {"OPTIONS", "LocalFavoritesPath", K::text, "<home>/favorites.ini", 0, 0, "The examiner's favourites"},
    {"OPTIONS", "SharedFavoritesPath", K::text, "", 0, 0, "Favourites shared with others"},
    {"OPTIONS", "NetworkConnectionName", K::text, "Local Area Connection", 0, 0, "The connection that the network switch takes down"},
    {"OPTIONS", "DateFormat", K::text, "yyyy-mm-dd", 0, 0, "How dates are shown"},
    {"OPTIONS", "TimeFormat", K::text, "Hh:Nn:Ss", 0, 0, "How times are shown"},
    {"OPTIONS", "GalleryIncludeHTML", K::flag, "True", 0, 0, "The gallery shows web pages"},
    {"OPTIONS", "GalleryIncludePictures", K::flag, "True", 0, 0, "The gallery shows pictures"},
    {"OPTIONS", "GalleryRecordsPerPage", K::number, "300", 1, kMost, "Thumbnails on a page of the gallery"},
    {"OPTIONS", "ProgressBarRefreshRate", K::number, "5", 0, 3600, "Seconds between two changes of the status window"},
    {"OPTIONS", "VerifyFileSignatures", K::flag, "True", 0, 0, "Files are recognised by content, not by name alone"},
    {"OPTIONS", "RedrawThumbIfPageRebuilt", K::flag, "True", 0, 0, "A rebuilt page gets a new thumbnail"},
    {"OPTIONS", "ShowTipsAtStartup", K::flag, "True", 0, 0, "The tip of the day at the start"},
    {"OPTIONS", "DisableScriptTags", K::flag, "False", 0, 0, "Scripts of rebuilt pages become comments; written by Options, not read at the start"},
    {"OPTIONS", "TimeZoneBias", K::text, "", 0, 0, "The zone last chosen in Options"},
    {"OPTIONS", "TimeZoneName", K::text, "", 0, 0, "The zone last chosen in Options"},
    {"OPTIONS", "TimeZoneID", K::zone, "", 0, 0, "The zone last chosen in Options"},
    {"OPTIONS", "ThumbnailRedrawTimeout", K::number, "15", 1, 600, "Seconds for drawing a page, as Options offers it"},
    {"THUMBNAILS", "ViewerThumbnailWidth", K::number, "120", 100, kMost, "Pixels of the gallery's thumbnails"},
    {"THUMBNAILS", "ThumbnailRedrawTimeout", K::number, "5", 1, 600, "Seconds for drawing a page, from the start on"},
    {"THUMBNAILS", "ReportThumbnailWidth", K::number, "200", 1, kMost, "Pixels of the thumbnails of reports"},
    {"FILE PATHS", "AgencyLogoPath", K::file, "", 0, 0, "The picture at the head of reports"},
    {"FILE PATHS", "PublishFolder", K::folder, "", 0, 0, "The folder that is offered for publishing reports"},
    {"FILE PATHS", "TempFolder", K::folder, "", 0, 0, "The Temp folder last chosen in Options"},
    {"FILE PATHS", "LastProjectDBPath", K::text, "", 0, 0, "The project that was open when Options was confirmed"},
    {"FILE PATHS", "AgencyLogo", K::file, "", 0, 0, "The logo that Options offers while there is none"},
    {"FILE PATHS", "Project", K::folder, "", 0, 0, "The folder that Options offers for new projects"},
    {"FILE PATHS", "Publish", K::folder, "", 0, 0, "The publish folder that Options offers while there is none"},
    {"FILE PATHS", "Temp", K::tempFolder, "", 0, 0, "The Temp folder that Options offers while there is none"},
    {"DEFAULT", "TempFolderPath", K::tempFolder, "<state>/Temp", 0, 0, "The Temp folder from the start on; each run works in a folder of its own in there"},
    {"DEFAULT", "ConnectionOffline", K::flag, "True", 0, 0, "The connection is taken to be down at the start"},
    {"DEFAULT", "HTMLReplaceableHREFTags", K::text, "js;css;php;txt;asp;aspx;htm;html;", 0, 0, "Kinds of links that a rebuild replaces"},
    {"DEFAULT", "HTMLReplaceablePictureTags", K::text, "jpe;jpeg;jpg;gif;bmp;png;tif;", 0, 0, "Kinds of pictures that a rebuild replaces"},
    {"FILES", "File1", K::text, "", 0, 0, "The project opened last; the File menu lists it"},
    {"FILES", "File2", K::text, "", 0, 0, "A project of the File menu"},
    {"FILES", "File3", K::text, "", 0, 0, "A project of the File menu"},
    {"FILES", "File4", K::text, "", 0, 0, "A project of the File menu"},
    {"FILES", "File5", K::text, "", 0, 0, "A project of the File menu, written by hand only"},
    {"FILES", "File6", K::text, "", 0, 0, "A project of the File menu, written by hand only"},
    {"REPORT", "CaseNumber", K::text, "", 0, 0, "Case number of reports"},
    {"REPORT", "ReportedBy", K::text, "", 0, 0, "Author of reports"},
    {"REPORT", "Organization", K::text, "", 0, 0, "Organization of reports"},
    {"REPORT", "DefaultThumbnailPath", K::file, "", 0, 0, "The picture of rows without a thumbnail"},
    {"REPORT", "ReportTitle", K::text, "Norvelane Internet Cache and History Analysis", 0, 0, "Title of reports"},
    {"REPORT", "ReportType", K::number, "0", 0, 9, "The kind of report made last"},
    {"REPORT", "UseDefaultThumbnailPath", K::flag, "False", 0, 0, "The report window's box at that picture when it was last confirmed"},
    {"REPORT", "UseCustomLogo", K::flag, "False", 0, 0, "Reports show the agency's logo"},
    {"REPORT", "IncludeAudit", K::flag, "False", 0, 0, "Reports hold what rebuilds replaced"},
    {"REPORT", "IncludeLinkAnalysis", K::flag, "False", 0, 0, "Reports hold the link analysis"},
    {"REPORT", "IncludeNotes", K::flag, "True", 0, 0, "Reports hold the examiner's notes"},
    {"REPORT", "IncludeTimeRebuilt", K::flag, "True", 0, 0, "Reports tell when a page was rebuilt"},
    {"REPORT", "IncludeDataSource", K::flag, "True", 0, 0, "Reports tell the file of each record"},
    {"REPORT", "IncludeUser", K::flag, "True", 0, 0, "Reports tell the user of each record"},
    {"BEYOND", "WideRecordIds", K::flag, "True", 0, 0, "Record ids above 32767 may be parts of rebuilt pages, which earlier builds can't open; False is their limit"},
    {"BEYOND", "ThumbnailsWhileImporting", K::flag, "False", 0, 0, "Imports draw thumbnails, which takes much longer"},
    {"BEYOND", "TemplateMatchByTitle", K::flag, "True", 0, 0, "A template is laid only over pages of its title"},
    {"BEYOND", "TemplatesPath", K::text, "<home>/Templates", 0, 0, "The folder of templates"},
    {"BEYOND", "KeepAllOptions", K::flag, "False", 0, 0, "Options also writes what otherwise holds until the program ends"},
    {"BEYOND", "ShowHosts", K::flag, "False", 0, 0, "The list of hosts stands beside the table"},
    {"BEYOND", "ShowViewers", K::flag, "True", 0, 0, "The viewers stand below the table"},
    {"BEYOND", "Theme", K::theme, "System", 0, 0, "Colours of the windows: System, Light or Dark"},
});
// clang-format on

CheckedValue refused(std::string reason) {
    return {{}, std::move(reason)};
}

CheckedValue checkFlag(std::string_view value) {
    if (equalsNoCase(value, "True"))
        return {"True", {}};
    if (equalsNoCase(value, "False"))
        return {"False", {}};
    return refused("True or False is expected");
}

CheckedValue checkNumber(const SettingFacts &facts, std::string_view value) {
    int number = 0;
    const auto end = value.data() + value.size();
    const auto [at, error] = std::from_chars(value.data(), end, number);
    if (error != std::errc() || at != end || number < facts.least || number > facts.most)
        return refused(
            fmt::format("a whole number from {} to {} is expected", facts.least, facts.most));
    return {fmt::format("{}", number), {}};
}

CheckedValue checkZone(Program &program, std::string_view value) {
    CheckedZone zone = checkedZone(program, value);
    return zone.refusal.empty() ? CheckedValue{std::move(zone.key), {}}
                                : refused(std::move(zone.refusal));
}

CheckedValue checkTheme(std::string_view value) {
    for (const char *name : {"System", "Light", "Dark"}) {
        if (equalsNoCase(value, name))
            return {name, {}};
    }
    return refused("System, Light or Dark is expected");
}

/// The folders that Options tests have its words.
std::string noSuchPath(SettingKind kind) {
    if (kind == K::tempFolder)
        return messages::invalidTempFolder().text;
    if (kind == K::baseFolder)
        return messages::invalidBaseFolder().text;
    return kind == K::file ? "there is no such file" : "there is no such folder";
}

CheckedValue checkPath(const Program &program, SettingKind kind, std::string_view value) {
    const fs::path path = fs::absolute(fs::path(value)).lexically_normal();
    std::error_code notThere;
    if (kind == K::file ? !fs::is_regular_file(path, notThere) : !fs::is_directory(path, notThere))
        return refused(noSuchPath(kind));
    if (kind == K::tempFolder && !isUsableTempFolder(program, path))
        return refused(
            "scratch files go there: this one can't be written to, or holds the program, "
            "its settings, the project or the user's home");
    return {textOf(path), {}};
}

} // namespace

std::span<const SettingFacts> settingsTable() {
    return kSettings;
}

std::string fullName(const SettingFacts &facts) {
    return fmt::format("{}/{}", facts.section, facts.key);
}

std::vector<const SettingFacts *> settingsNamed(std::string_view name) {
    std::vector<const SettingFacts *> found;
    for (const SettingFacts &facts : kSettings) {
        if (equalsNoCase(facts.key, name) || equalsNoCase(fullName(facts), name))
            found.push_back(&facts);
    }
    return found;
}

std::vector<std::string> nearestNames(std::string_view name,
                                      const std::vector<std::string> &names) {
    constexpr std::size_t kShown = 3;
    std::vector<std::pair<std::size_t, std::string>> ranked;
    const std::string wanted = toLower(name);
    for (const std::string &each : names) {
        const bool holds = !wanted.empty() && containsNoCase(each, wanted);
        ranked.emplace_back(holds ? 0 : editDistance(wanted, toLower(each)), each);
    }
    std::stable_sort(ranked.begin(), ranked.end(),
                     [](const auto &a, const auto &b) { return a.first < b.first; });
    std::vector<std::string> nearest;
    for (const auto &[distance, each] : ranked) {
        if (nearest.size() < kShown &&
            std::find(nearest.begin(), nearest.end(), each) == nearest.end())
            nearest.push_back(each);
    }
    return nearest;
}

std::string defaultOf(const Program &program, const SettingFacts &facts) {
    constexpr std::string_view home = "<home>/";
    constexpr std::string_view state = "<state>/";
    constexpr std::string_view beside = "<program>/";
    if (facts.byDefault.starts_with(home))
        return textOf(program.paths.home / facts.byDefault.substr(home.size()));
    if (facts.byDefault.starts_with(state))
        return textOf(program.paths.state / facts.byDefault.substr(state.size()));
    if (facts.byDefault.starts_with(beside))
        return textOf(program.paths.program / facts.byDefault.substr(beside.size()));
    return std::string(facts.byDefault);
}

std::string valueOf(const Program &program, const SettingFacts &facts) {
    const std::string byDefault = defaultOf(program, facts);
    if (facts.kind != SettingKind::flag)
        return program.settings.ReadIniValue(facts.section, facts.key, byDefault);
    const bool on =
        program.settings.ReadIniValue(facts.section, facts.key, facts.byDefault == "True");
    return on ? "True" : "False";
}

CheckedValue checkValue(Program &program, const SettingFacts &facts, std::string_view value) {
    value = trim(value);
    if (std::any_of(value.begin(), value.end(), [](unsigned char c) { return c < ' '; }))
        return refused("a value stands on one line and has no control characters");
    if (value.size() > kLongestValue)
        return refused(fmt::format("a value has at most {} bytes", kLongestValue));
    if (facts.kind == K::flag)
        return checkFlag(value);
    if (value.empty() || facts.kind == K::text)
        return {std::string(value), {}};
    switch (facts.kind) {
    case K::number:
        return checkNumber(facts, value);
    case K::zone:
        return checkZone(program, value);
    case K::theme:
        return checkTheme(value);
    default:
        return checkPath(program, facts.kind, value);
    }
}

} // namespace nv
