#include "app/project/EvidenceFolders.h"

#include "base/Files.h"
#include "base/Paths.h"
#include "db/project/KeptEvidence.h"
#include "db/project/ProjectFields.h"
#include "readers/Evidence.h"

#include <fmt/format.h>

#include <algorithm>

namespace nv {

namespace fs = std::filesystem;

namespace {

std::vector<fs::path> keptFolders(SQLite::Database &project) {
    std::vector<fs::path> folders;
    for (const std::string &text : keptEvidenceFolders(project))
        folders.push_back(pathFromText(text).value_or(text));
    return folders;
}

std::optional<fs::path> firstAround(const fs::path &path, const std::vector<fs::path> &folders) {
    const auto first = std::ranges::find_if(
        folders, [&path](const fs::path &folder) { return liesInEvidence(path, folder); });
    return first == folders.end() ? std::nullopt : std::optional(*first);
}

} // namespace

std::vector<fs::path> evidenceFolders(ProgramState &state) {
    std::vector<fs::path> folders;
    if (state.projectDB.isOpen())
        folders = keptFolders(state.projectDB.connection());
    folders.insert(folders.begin(), state.rootPath);
    return folders;
}

std::optional<fs::path> evidenceAround(const fs::path &path, ProgramState &state) {
    return firstAround(path, evidenceFolders(state));
}

void keepEvidenceFolder(Program &program, const fs::path &source) {
    const fs::path whole = wholePath(source);
    const fs::path folder = fs::is_directory(whole) ? whole : whole.parent_path();
    SQLite::Database &project = program.state.projectDB.connection();
    const std::vector<fs::path> kept = keptFolders(project);
    if (!liesInEvidence(folder, folder) || firstAround(folder, kept) ||
        liesInEvidence(program.state.projectDBPath, folder))
        return;
    const std::string name = fmt::format("{}{}", kEvidenceFolderSetting, kept.size() + 1);
    if (!ProjectFields(project, program.log).saveDefaultSetting(name, textOf(folder)))
        throw StorageFailure(
            fmt::format("the project can't keep that \"{}\" is evidence; see \"{}\"",
                        textOf(folder), textOf(program.log.path())));
}

fs::path commonFolder(const std::vector<fs::path> &places) {
    fs::path common;
    for (const fs::path &place : places) {
        const fs::path path = fs::canonical(place);
        const fs::path folder = fs::is_directory(path) ? path : path.parent_path();
        if (common.empty()) {
            common = folder;
            continue;
        }
        const auto [end, ignored] =
            std::mismatch(common.begin(), common.end(), folder.begin(), folder.end());
        fs::path shared;
        for (auto part = common.begin(); part != end; ++part)
            shared /= *part;
        common = shared;
    }
    return common;
}

} // namespace nv
