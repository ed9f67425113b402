#include "readers/PathOrigin.h"

#include "base/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <vector>

namespace nv {

namespace {

using Words = std::span<const std::string_view>;

bool isOneOf(std::string_view word, Words words) {
    return std::ranges::find(words, word) != words.end();
}

bool isNumber(std::string_view text) {
    return !text.empty() && std::ranges::all_of(text, [](char c) { return c >= '0' && c <= '9'; });
}

/// Where folders of accounts lie.
constexpr auto kAccounts = std::to_array<std::string_view>(
    {"users", "documents and settings", "dokumente und einstellungen", "home", "serviceprofiles"});
/// What lies in the folder of an account and nowhere else. Whoever copies a profile into his own
/// home hasn't used it: only these make the folder above them the person's. Hidden folders do when
/// the path shows a browser's place below them.
constexpr auto kInAccount = std::to_array<std::string_view>(
    {"appdata", "local settings", "application data", "cookies", "favorites",
     "lokale einstellungen", "anwendungsdaten", "favoriten", "library"});

enum class Place { known, unknown };

bool liesInAccount(std::string_view folder, Place place) {
    return isOneOf(folder, kInAccount) ||
           (place == Place::known && (folder.starts_with('.') || folder == "snap"));
}

constexpr std::size_t kNone = static_cast<std::size_t>(-1);

/// The folders of a path, from the root on.
class Folders {
  public:
    explicit Folders(std::string_view path) : m_path(replaceAll(path, "\\", "/")) {
        for (const std::string_view part : split(m_path, '/'))
            if (!part.empty())
                m_names.push_back(part);
        if (!m_names.empty())
            m_names.pop_back(); // the file
        for (const std::string_view name : m_names)
            m_lower.push_back(toLower(name));
    }

    std::size_t size() const { return m_names.size(); }
    /// Empty beyond the last.
    std::string_view lower(std::size_t at) const {
        return at < size() ? std::string_view(m_lower[at]) : std::string_view();
    }
    std::string name(std::size_t at) const {
        return at < size() ? std::string(m_names[at]) : std::string();
    }
    /// What stands before a folder: "/pc1" before "home" of "/pc1/home/ada".
    std::string above(std::size_t at) const {
        const auto end = static_cast<std::size_t>(m_names.at(at).data() - m_path.data());
        return m_path.substr(0, end > 1 ? end - 1 : end);
    }
    std::size_t find(std::string_view folder) const {
        const auto found = std::ranges::find(m_lower, folder);
        return found == m_lower.end() ? kNone : static_cast<std::size_t>(found - m_lower.begin());
    }

  private:
    std::string m_path;
    std::vector<std::string_view> m_names; ///< lie in it
    std::vector<std::string> m_lower;
};

/// A browser's own folder among those of a path.
struct Found {
    const BrowserPlace *place = nullptr;
    std::size_t behind = 0; ///< the first folder below it
    std::size_t length = 0;
};

bool standsAt(const Folders &folders, std::size_t at, const BrowserPlace &place, Words parts) {
    if (place.needsDataFolder && (at == 0 || !isDataFolder(folders.lower(at - 1))))
        return false;
    for (std::size_t i = 0; i < parts.size(); ++i)
        if (folders.lower(at + i) != parts[i])
            return false;
    return true;
}

/// The deepest one; of two that end together, the longer.
Found placeIn(const Folders &folders) {
    Found best;
    for (const BrowserPlace &place : browserPlaces()) {
        const std::vector<std::string_view> parts = split(place.folders, '/');
        for (std::size_t at = 0; at + parts.size() <= folders.size(); ++at) {
            const std::size_t behind = at + parts.size();
            const bool isBetter =
                behind > best.behind || (behind == best.behind && parts.size() > best.length);
            if (isBetter && standsAt(folders, at, place, parts))
                best = {&place, behind, parts.size()};
        }
    }
    return best;
}

std::string chromiumProfile(const Folders &folders, const Found &found) {
    for (std::size_t at = found.behind; at < folders.size(); ++at)
        if (isChromiumProfileName(folders.lower(at)))
            return folders.name(at);
    return found.place->isProfile ? folders.name(found.behind - 1) : std::string();
}

std::string geckoProfile(const Folders &folders, const Found &found) {
    constexpr auto kAbove = std::to_array<std::string_view>({"profiles", "files", "mozilla"});
    constexpr auto kOthers = std::to_array<std::string_view>(
        {"crash reports", "pending pings", "profile groups", "extensions", "caches", "cache"});
    std::size_t at = found.behind;
    while (isOneOf(folders.lower(at), kAbove))
        ++at;
    return isOneOf(folders.lower(at), kOthers) ? std::string() : folders.name(at);
}

std::string profileIn(const Folders &folders, const Found &found, Engine engine) {
    if (engine == Engine::chromium)
        return chromiumProfile(folders, found);
    if (engine == Engine::gecko)
        return geckoProfile(folders, found);
    const bool hasProfiles = folders.lower(found.behind) == "profiles"; // Falkon's
    return hasProfiles ? folders.name(found.behind + 1) : std::string();
}

/// "Mail_8wekyb3d8bbwe" and "Mail.exe.WebView2" are of "Mail".
std::string programName(std::string name) {
    for (const std::string_view end : {".webview2", ".exe"})
        if (toLower(name).ends_with(end))
            name.resize(name.size() - end.size());
    return name;
}

/// The program that has WebView2 in its folder; of packaged ones the package.
std::string hostOf(const Folders &folders, std::size_t view) {
    constexpr auto kOfPackages = std::to_array<std::string_view>(
        {"localstate", "localcache", "tempstate", "roamingstate", "local"});
    if (!isOneOf(folders.lower(view - 1), kOfPackages))
        return programName(folders.name(view - 1));
    const std::size_t packages = folders.find("packages");
    if (packages == kNone || packages + 1 >= view)
        return {};
    const std::string package = folders.name(packages + 1);
    return package.substr(0, package.find('_'));
}

/// Programs that show pages with the engine of a browser.
struct Embedding {
    std::string_view folder;
    std::string_view engine;
};
constexpr std::array<Embedding, 3> kEmbeddings = {{{"ebwebview", "WebView2"},
                                                   {"qtwebengine", "Qt WebEngine"},
                                                   {"app_webview", "Android WebView"}}};

std::optional<Origin> embeddedIn(const Folders &folders) {
    for (const auto &[folder, engine] : kEmbeddings) {
        const std::size_t at = folders.find(folder);
        if (at == kNone || at == 0)
            continue;
        const std::string host = hostOf(folders, at);
        Origin origin;
        origin.browser = host.empty() ? std::string(engine) : fmt::format("{} ({})", engine, host);
        if (isChromiumProfileName(folders.lower(at + 1)))
            origin.profile = folders.name(at + 1);
        return origin;
    }
    return std::nullopt;
}

/// Electron programs have the folders of a profile directly in their own.
std::string electronProgram(const Folders &folders) {
    constexpr auto kOfProfile = std::to_array<std::string_view>(
        {"cache", "code cache", "gpucache", "local storage", "session storage", "indexeddb",
         "network", "service worker", "partitions", "blob_storage"});
    constexpr auto kRoots = std::to_array<std::string_view>(
        {"roaming", ".config", "application support", "application data"});
    constexpr std::size_t kDeepest = 2; // a maker's folder may stand between
    for (std::size_t root = 0; root < folders.size(); ++root) {
        if (!isOneOf(folders.lower(root), kRoots))
            continue;
        for (std::size_t at = root + 2; at <= root + 1 + kDeepest; ++at)
            if (isOneOf(folders.lower(at), kOfProfile) &&
                !isChromiumProfileName(folders.lower(at - 1)))
                return folders.name(at - 1);
    }
    return {};
}

struct Account {
    std::string person;
    std::size_t first = 0; ///< the folder above which all accounts of the machine lie
};

std::optional<Account> accountIn(const Folders &folders, Place place) {
    // From the file upwards: the image may itself lie in somebody's home.
    for (std::size_t at = folders.size(); at-- > 1;) {
        const std::string_view person = folders.lower(at - 1);
        if (at >= 2 && liesInAccount(folders.lower(at), place) &&
            isOneOf(folders.lower(at - 2), kAccounts))
            return Account{folders.name(at - 1), at - 2};
        const bool isRoot =
            person == "root" && place == Place::known && folders.lower(at).starts_with('.');
        const bool isSystem = person == "systemprofile" && folders.lower(at) == "appdata";
        if (isRoot || isSystem)
            return Account{folders.name(at - 1), at - 1};
        // Android: data/user/10/PACKAGE
        if (at >= 2 && folders.lower(at - 2) == "user" && isNumber(person) &&
            folders.lower(at).find('.') != std::string_view::npos)
            return Account{fmt::format("user {}", person), at - 2};
    }
    return std::nullopt;
}

/// The first of the folders in which a browser keeps what is one account's.
std::size_t dataFolderOf(const Folders &folders, const Found &found) {
    std::size_t first = found.behind - found.length;
    while (first > 0 && (isDataFolder(folders.lower(first - 1)) ||
                         liesInAccount(folders.lower(first - 1), Place::known)))
        --first;
    return first;
}

} // namespace

bool isChromiumProfileName(std::string_view folder) {
    constexpr std::string_view kNumbered = "profile ";
    const std::string lower = toLower(folder);
    return lower == "default" || lower == "guest profile" || lower == "system profile" ||
           (lower.starts_with(kNumbered) &&
            isNumber(std::string_view(lower).substr(kNumbered.size())));
}

Origin originOfPath(std::string_view path, Engine engine) {
    const Folders folders(path);
    Origin origin;
    if (const Found found = placeIn(folders); found.place) {
        origin.browser = found.place->browser;
        origin.profile =
            profileIn(folders, found, engine == Engine::unknown ? found.place->engine : engine);
    } else if (auto embedded = embeddedIn(folders)) {
        origin = std::move(*embedded);
    } else if (engine == Engine::chromium) {
        if (const std::string program = electronProgram(folders); !program.empty())
            origin.browser = fmt::format("{} (Electron)", program);
    }
    const Place place = origin.browser.empty() ? Place::unknown : Place::known;
    if (auto account = accountIn(folders, place))
        origin.person = std::move(account->person);
    return origin;
}

std::string treeOfPath(std::string_view path) {
    const Folders folders(path);
    const Found found = placeIn(folders);
    const bool isKnown = found.place || embeddedIn(folders) || !electronProgram(folders).empty();
    if (const auto account = accountIn(folders, isKnown ? Place::known : Place::unknown))
        return folders.above(account->first);
    if (found.place)
        return folders.above(dataFolderOf(folders, found));
    for (std::size_t at = folders.size(); at-- > 0;)
        if (isChromiumProfileName(folders.lower(at)))
            return folders.above(at);
    return {};
}

const std::string &TreesOfPaths::operator()(std::string_view path) {
    constexpr std::size_t kMost = 10'000;
    const std::size_t name = path.find_last_of("/\\");
    const std::string_view folder = path.substr(0, name == std::string_view::npos ? 0 : name);
    if (const auto known = m_known.find(folder); known != m_known.end())
        return known->second;
    if (m_known.size() == kMost)
        m_known.clear();
    return m_known.emplace(std::string(folder), treeOfPath(path)).first->second;
}

} // namespace nv
