#include "readers/ProfileFolder.h"

#include "base/Files.h"
#include "base/Text.h"
#include "readers/PathOrigin.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <span>
#include <string>
#include <string_view>

namespace nv {

namespace fs = std::filesystem;

namespace {

using Names = std::span<const std::string_view>;

constexpr auto kOfChromium = std::to_array<std::string_view>(
    {"History", "Cookies", "Web Data", "Login Data", "Favicons", "Top Sites", "Shortcuts",
     "Bookmarks", "Preferences", "Secure Preferences", "Network Action Predictor", "Visited Links",
     "Local State", "Last Session", "Last Tabs", "DIPS", "Trust Tokens", "TransportSecurity"});
constexpr auto kOfGecko = std::to_array<std::string_view>(
    {"places.sqlite", "cookies.sqlite", "formhistory.sqlite", "permissions.sqlite",
     "favicons.sqlite", "webappsstore.sqlite", "content-prefs.sqlite", "prefs.js",
     "compatibility.ini", "cert8.db", "cert9.db", "key3.db", "key4.db", "times.json",
     "sessionstore.jsonlz4"});

/// A single one may be anybody's: "Bookmarks" is a word.
constexpr std::ptrdiff_t kEnough = 2;

/// What an engine's profiles are known by.
struct Marks {
    Names files;
    /// How far above a file its profile's folder may lie: two in Chromium ("Service
    /// Worker/Database"), since extensions bring files of their own in "Extensions/ID/VERSION";
    /// four in Firefox ("storage/default/SITE/idb").
    int levels = 0;
};

Marks marksOf(Engine engine) {
    if (engine == Engine::chromium)
        return {kOfChromium, 2};
    if (engine == Engine::gecko)
        return {kOfGecko, 4};
    return {};
}

std::string nameOf(const fs::path &folder) {
    return toLower(textOf(folder.filename()));
}

/// Windows has a person of that name: "Users/Default".
bool isAccount(const fs::path &folder) {
    const std::string above = nameOf(folder.parent_path());
    return above == "users" || above == "home" || above == "documents and settings";
}

bool isNamedAsProfile(const fs::path &folder, Engine engine) {
    const std::string name = textOf(folder.filename());
    const std::string above = nameOf(folder.parent_path());
    if (engine == Engine::chromium && (isChromiumProfileName(name) || above == "user data"))
        return !isAccount(folder);
    if (engine == Engine::gecko && above == "profiles" && name.find('.') != std::string::npos)
        return true;
    return !name.empty() && originOfPath(textOf(folder / name), engine).profile == name;
}

bool holdsProfile(const Candidate &file, const fs::path &folder, Names names) {
    const bool isOwn = folder == file.file.parent_path();
    return std::ranges::count_if(names, [&](std::string_view name) {
               return !(isOwn && equalsNoCase(file.name, name)) &&
                      file.evidence->find(folder, name).has_value();
           }) >= kEnough;
}

/// Where Chromium has its profiles, and beside them a file for all.
bool isAboveProfiles(const Candidate &file, const fs::path &folder) {
    return file.name == "local state" &&
           (nameOf(folder) == "user data" || file.evidence->isPlainFolder(folder / "Default"));
}

} // namespace

bool liesInProfile(const Candidate &file, Engine engine) {
    const Marks marks = marksOf(engine);
    fs::path folder = file.file.parent_path();
    if (marks.files.empty())
        return !originOfPath(textOf(file.file), engine).browser.empty();
    if (engine == Engine::chromium && isAboveProfiles(file, folder))
        return true;
    for (int level = 0; level <= marks.levels && folder.has_relative_path(); ++level) {
        if (isNamedAsProfile(folder, engine) || holdsProfile(file, folder, marks.files))
            return true;
        folder = folder.parent_path();
    }
    return false;
}

} // namespace nv
