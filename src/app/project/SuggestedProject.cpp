#include "app/project/SuggestedProject.h"

#include "app/project/EvidenceFolders.h"
#include "app/settings/Settings.h"
#include "base/DisplayText.h"
#include "base/Files.h"
#include "base/Text.h"
#include "readers/Evidence.h"
#include "time/DateFormat.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>
#include <optional>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace nv {

namespace fs = std::filesystem;

namespace {

/// A file's name has room for 255 bytes; side files get longer ones.
constexpr std::size_t kMostLetters = 40;

fs::path folderOf(const fs::path &place) {
    std::error_code notThere;
    return fs::is_directory(place, notThere) ? place : place.parent_path();
}

/// Letters that a name of evidence may have and one that is typed and printed shouldn't.
std::string plainName(std::string_view name) {
    std::string plain;
    for (const char c : std::string(charSub(displayText(name, kMostLetters), 0, kMostLetters)))
        plain += c == '/' || c == '\\' || c == '"' || c == '<' || c == '>' ? '_' : c;
    plain = std::string(trim(plain));
    while (!plain.empty() && plain.front() == '.') // hidden otherwise
        plain.erase(0, 1);
    return plain.empty() ? "Evidence" : plain;
}

std::string nameOf(const std::vector<fs::path> &evidence) {
    const std::string first = plainName(textOf(folderOf(evidence.front()).filename()));
    return evidence.size() == 1 ? first : fmt::format("{} and {} more", first, evidence.size() - 1);
}

std::string today(const Program &program) {
    const Clock &clock = program.around.clock;
    const Date now = Date::fromTimePoint(clock.now() + clock.localOffset());
    return isoUtc(now).substr(0, std::string_view("2026-11-22").size());
}

std::optional<dev_t> diskOf(const fs::path &path) {
    struct stat facts {};
    return ::stat(path.c_str(), &facts) == 0 ? std::optional(facts.st_dev) : std::nullopt;
}

bool canHold(const fs::path &folder, const std::vector<fs::path> &evidence) {
    const fs::path project = folder / "Case.nvp";
    return !folder.empty() && ::access(folder.c_str(), W_OK | X_OK) == 0 &&
           std::ranges::none_of(evidence, [&project](const fs::path &place) {
               return liesInEvidence(project, folderOf(place));
           });
}

fs::path folderFor(const Program &program, const std::vector<fs::path> &evidence) {
    const fs::path common = commonFolder(evidence);
    const fs::path beside = common.parent_path();
    if (beside != common && canHold(beside, evidence) &&
        diskOf(beside) == diskOf(program.paths.home))
        return beside;
    for (const fs::path &folder : {folderOfProjects(program), program.paths.home})
        if (canHold(folder, evidence))
            return folder;
    return {};
}

} // namespace

fs::path folderOfProjects(const Program &program) {
    const IniFile &settings = program.settings;
    const fs::path last = readText(settings, "LastProjectDBPath");
    const char *home = std::getenv("HOME");
    const fs::path user = home ? home : "";
    std::error_code notThere;
    for (const fs::path &folder :
         {fs::path(readText(settings, "Project")), last.parent_path(), user / "Documents", user}) {
        if (folder.is_absolute() && fs::is_directory(folder, notThere))
            return folder;
    }
    return program.paths.home;
}

fs::path suggestedProject(const Program &program, const std::vector<fs::path> &evidence) {
    const bool areThere = std::ranges::all_of(evidence, [](const fs::path &place) {
        std::error_code notThere;
        return fs::exists(place, notThere);
    });
    if (evidence.empty() || !areThere)
        return {};
    const fs::path folder = folderFor(program, evidence);
    if (folder.empty())
        return {};
    const std::string name = nameOf(evidence) + ' ' + today(program);
    fs::path project = folder / (name + ".nvp");
    for (int number = 2; fs::exists(project); ++number)
        project = folder / fmt::format("{} ({}).nvp", name, number);
    return project;
}

} // namespace nv
