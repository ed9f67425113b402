#include "readers/BrowserOf.h"

#include "base/Files.h"
#include "base/NoLog.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "readers/EvidenceGaps.h"
#include "readers/PathOrigin.h"
#include "readers/SourceOption.h"

#include <fmt/format.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

namespace nv {

namespace fs = std::filesystem;

namespace {

/// More of a settings file isn't looked at: they have 30 to 500 KB.
constexpr std::size_t kSettingsBytes = std::size_t{4} << 20;
/// How far above a file its profile's folder may lie: Service Worker/CacheStorage/<origin>/<cache>
/// is the deepest.
constexpr int kLevels = 6;

/// What lies beside a file of the evidence. Names have the case in which browsers write them.
class Beside {
  public:
    Beside(const Evidence &evidence, const fs::path &file, FailureLog *log)
        : m_evidence(evidence), m_file(file), m_log(log) {}

    /// The next folder above the file, or its own, that holds the file `name`; empty for none.
    fs::path folderWith(std::string_view name) const {
        fs::path folder = m_file.parent_path();
        for (int level = 0; level < kLevels && folder.has_relative_path(); ++level) {
            if (m_evidence.isPlainFile(folder / name))
                return folder;
            folder = folder.parent_path();
        }
        return {};
    }

    /// Empty when there is no such file, or when it can't be read, which is logged.
    std::string beginOf(const fs::path &file) const {
        NoLog unheard;
        FailureLog &log = m_log ? *m_log : unheard;
        if (!m_evidence.isPlainFile(file))
            return {};
        return trapped(log, Severity::Low, "BrowserOf()", kContactSupport, std::string(), [&] {
            const Bytes head =
                tellingGaps(log, [&] { return m_evidence.head(file, kSettingsBytes); });
            return std::string(ByteView(head).raw());
        });
    }

  private:
    const Evidence &m_evidence;
    const fs::path &m_file;
    FailureLog *m_log; ///< null for none
};

/// As the table of places writes it: "C:\\Program Files\\" of JSON is "c:/program files/".
std::string pathsIn(const std::string &text) {
    return replaceAll(replaceAll(toLower(text), "\\\\", "/"), "\\", "/");
}

std::string installedAs(const std::string &text, Engine engine) {
    const std::string paths = pathsIn(text);
    for (const InstallPlace &place : installPlaces(engine))
        if (paths.find(place.part) != std::string::npos)
            return std::string(place.browser);
    return {};
}

/// Figures and points, and what else a version may hold; nothing when it is anything else.
std::string versionIn(std::string_view text) {
    constexpr std::size_t kLongest = 40;
    text = trim(text.substr(0, text.find_first_of("\r\n")));
    const bool isVersion =
        !text.empty() && text.size() <= kLongest && std::ranges::all_of(text, [](char c) {
            return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
                   c == '.' || c == '-' || c == '+';
        });
    return isVersion ? std::string(text) : std::string();
}

/// The value of "key=value"; empty when there is none.
std::string valueOf(std::string_view key, const std::string &text) {
    for (std::string_view line : split(text, '\n')) {
        line = trim(line);
        if (line.starts_with(key) && line.substr(key.size()).starts_with('='))
            return std::string(line.substr(key.size() + 1));
    }
    return {};
}

void lookBesideChromium(const Beside &beside, Origin &origin) {
    const fs::path profile = beside.folderWith("Preferences");
    const fs::path userData = beside.folderWith("Local State");
    if (origin.browserVersion.empty() && !userData.empty())
        origin.browserVersion = versionIn(beside.beginOf(userData / "Last Version"));
    const bool isInOne = !profile.empty() && profile == userData; // no browser, but a program
    if (origin.profile.empty() && !profile.empty() && !isInOne)
        origin.profile = textOf(profile.filename());
    if (!origin.browser.empty())
        return;
    const fs::path first = profile.empty() && !userData.empty() ? userData / "Default" : profile;
    for (const auto &[folder, name] :
         {std::pair(first, "Preferences"), std::pair(first, "Secure Preferences"),
          std::pair(userData, "Local State")})
        if (origin.browser.empty() && !folder.empty())
            origin.browser = installedAs(beside.beginOf(folder / name), Engine::chromium);
    if (origin.browser.empty() && isInOne)
        origin.browser = fmt::format("{} (Electron)", textOf(profile.filename()));
}

void lookBesideGecko(const Beside &beside, Origin &origin) {
    fs::path profile;
    for (const std::string_view name : {"compatibility.ini", "prefs.js", "places.sqlite"})
        if (profile.empty())
            profile = beside.folderWith(name);
    if (profile.empty())
        return;
    if (origin.profile.empty())
        origin.profile = textOf(profile.filename());
    const std::string notes = beside.beginOf(profile / "compatibility.ini");
    const std::string version = valueOf("LastVersion", notes); // "153.0_20260101/20260101"
    origin.browserVersion = versionIn(version.substr(0, version.find('_')));
    if (origin.browser.empty())
        origin.browser = installedAs(valueOf("LastPlatformDir", notes), Engine::gecko);
}

std::string browserOfName(const fs::path &file) {
    const std::string name = toLower(textOf(file.filename()));
    for (const BrowserFile &known : browserFiles())
        if (known.name == name)
            return std::string(known.browser);
    return {};
}

Origin look(const Evidence &evidence, const fs::path &file, Engine engine, FailureLog *log) {
    const Beside beside(evidence, file, log);
    Origin origin = originOfPath(textOf(file), engine);
    if (engine == Engine::chromium)
        lookBesideChromium(beside, origin);
    else if (engine == Engine::gecko)
        lookBesideGecko(beside, origin);
    if (origin.browser.empty())
        origin.browser = familyName(engine);
    return origin;
}

} // namespace

Engine engineOf(const Reader *reader) {
    if (!reader)
        return Engine::unknown;
    const BrowserFamily *family = reader->option          ? reader->option->family
                                  : reader->kinds.empty() ? nullptr
                                                          : reader->kinds.front()->family;
    return family ? family->engine : Engine::unknown;
}

Origin BrowserOf::operator()(const fs::path &file, Engine engine) {
    if (std::string browser = browserOfName(file); !browser.empty()) {
        Origin origin = look(m_evidence, file, Engine::unknown, m_log);
        origin.browser = std::move(browser);
        return origin;
    }
    const auto key = std::pair(file.parent_path(), engine);
    const auto known = m_known.find(key);
    return known != m_known.end()
               ? known->second
               : m_known.emplace(key, look(m_evidence, file, engine, m_log)).first->second;
}

} // namespace nv
