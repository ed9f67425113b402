#include "maintenance/SourceCheck.h"

#include "base/Digest.h"
#include "base/Files.h"
#include "base/Md5.h"
#include "base/Paths.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "db/sql/SideFiles.h"
#include "db/trail/CaseTrail.h"
#include "import/ArtefactHash.h"
#include "import/ImportTrail.h"
#include "readers/Evidence.h"

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <functional>
#include <optional>
#include <set>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace nv {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view kProcedure = "MainBAS.verifySources()";

CheckedSource sourceOf(const TrailEntry &entry) {
    CheckedSource source;
    source.path = entry.filePath;
    source.sizeThen = entry.fileSize;
    source.md5Then = entry.md5Hash;
    source.sha256Then = entry.sha256Hash;
    return source;
}

/// What the case trail tells, which knows each file of the same content, and then what only table
/// `SourceFiles` does, as in projects of earlier versions. A file that was imported again after it
/// had changed is there twice.
class Sources {
  public:
    explicit Sources(SQLite::Database &project) {
        for (const TrailEntry &entry : CaseTrail(project).entries())
            take(entry);
        besideUnhashed += m_ofThisImport.size();
        const std::size_t told = all.size();
        SQLite::Statement row(project, "SELECT FilePath, ifnull(FileSize, 0), ifnull(MD5Hash, '') "
                                       "FROM SourceFiles ORDER BY SourceFile_ID");
        while (row.executeStep()) {
            CheckedSource source;
            source.path = row.getColumn(0).getString();
            source.sizeThen = row.getColumn(1).getInt64();
            source.md5Then = row.getColumn(2).getString();
            add(std::move(source));
        }
        besideUnhashed += all.size() - told;
    }

    std::vector<CheckedSource> all;
    UnendedImports unended;
    std::size_t besideUnhashed = 0;

    /// Logs and journals that lie beside the file, which the import would have hashed. Each once.
    std::vector<fs::path> takeNewBeside(const Evidence &evidence, const std::string &file) {
        std::vector<fs::path> found;
        if (!m_besideHashed.contains(file))
            return found;
        const fs::path path = pathFromText(file).value_or(file);
        for (const std::string_view suffix : kRowSuffixes)
            if (const auto log =
                    evidence.find(path.parent_path(), textOf(path.filename()).append(suffix));
                log && m_paths.insert(textOf(*log)).second)
                found.push_back(*log);
        return found;
    }

  private:
    void take(const TrailEntry &entry) {
        unended.take(entry);
        if (entry.action == kImportAction || entry.action == kBesideAction)
            add(sourceOf(entry));
        if (entry.action == kImportAction)
            m_ofThisImport.push_back(entry.filePath);
        if (const auto end = importEndOf(entry)) {
            if (end->hashedBeside)
                m_besideHashed.insert(m_ofThisImport.begin(), m_ofThisImport.end());
            else
                besideUnhashed += m_ofThisImport.size();
            m_ofThisImport.clear();
        }
    }

    void add(CheckedSource source) {
        m_paths.insert(source.path);
        if (m_seen.emplace(source.path, source.md5Then).second)
            all.push_back(std::move(source));
    }

    std::set<std::pair<std::string, std::string>> m_seen; ///< path and MD5
    std::set<std::string> m_paths;
    std::vector<std::string> m_ofThisImport; ///< or of those before whose ends aren't told
    std::set<std::string> m_besideHashed;    ///< artefacts of imports that did
};

SourceState stateOf(const CheckedSource &source) {
    if (source.md5Then.empty())
        return SourceState::unknown;
    const bool same = source.md5Now == source.md5Then &&
                      (source.sha256Then.empty() || source.sha256Now == source.sha256Then);
    return same ? SourceState::same : SourceState::changed;
}

std::runtime_error notPlain(const fs::path &path) {
    return std::runtime_error(fmt::format("\"{}\" is no plain file any more", textOf(path)));
}

/// Nothing when it is gone. Only plain files are imported, so nothing else is opened: a pipe would
/// never end. Throws FileFailure.
std::optional<FileReader> opened(const fs::path &path) {
    std::error_code failed;
    const fs::file_status status = fs::symlink_status(path, failed);
    if (status.type() == fs::file_type::not_found)
        return std::nullopt;
    if (status.type() == fs::file_type::none)
        throw FileFailure("cannot open", path, failed.value());
    if (!fs::is_regular_file(status))
        throw notPlain(path);
    return FileReader(path);
}

/// A file that has grown has changed: what lies after its former end needs no reading, however
/// long it is.
bool hasGrown(const CheckedSource &source) {
    const bool sizeIsKnown = source.sizeThen > 0 || source.md5Then == md5Hex({});
    return sizeIsKnown && source.sizeNow > source.sizeThen;
}

void compareHashes(CheckedSource &source, const FileHashes &now) {
    source.sizeNow = static_cast<std::int64_t>(now.size);
    source.md5Now = now.md5;
    source.sha256Now = now.sha256;
    source.state = stateOf(source);
}

/// False when cancelled.
bool compare(CheckedSource &source, const FileReader &file, const std::function<bool()> &goOn) {
    source.sizeNow = static_cast<std::int64_t>(file.size());
    if (hasGrown(source)) {
        source.state = SourceState::changed;
        return true;
    }
    const auto now = hashesOfFile(file, [&goOn](std::uint64_t) { return goOn(); });
    if (!now)
        return false;
    compareHashes(source, *now);
    return true;
}

/// Of a cache that is a folder. False when cancelled.
bool compareFolder(CheckedSource &source, const fs::path &folder,
                   const std::function<bool()> &goOn) {
    const Evidence evidence(folder);
    bool goesOn = true;
    const auto now = hashesOfArtefact(evidence, folder, [&](std::uint64_t readSoFar) {
        source.sizeNow = static_cast<std::int64_t>(readSoFar);
        goesOn = goOn();
        return goesOn && !hasGrown(source);
    });
    if (!goesOn)
        return false;
    if (!now)
        source.state = SourceState::changed;
    else if (now->md5 == md5Hex({})) // no file in it: it can't be what was imported
        throw notPlain(folder);
    else
        compareHashes(source, *now);
    return true;
}

/// False when cancelled.
bool check(CheckedSource &source, FailureLog &log, const std::function<bool()> &goOn) {
    bool whole = true;
    source.state = SourceState::unreadable;
    const auto failure = failureOf(log, kProcedure, [&] {
        const fs::path path = pathFromText(source.path).value_or(source.path);
        std::error_code unknown;
        if (fs::symlink_status(path, unknown).type() == fs::file_type::directory)
            whole = compareFolder(source, path, goOn);
        else if (const auto file = opened(path))
            whole = compare(source, *file, goOn);
        else
            source.state = SourceState::gone;
    });
    if (failure)
        source.sizeNow = 0;
    return whole;
}

/// Of a file that wasn't imported. False when cancelled.
bool hashNew(CheckedSource &source, const fs::path &path, FailureLog &log,
             const std::function<bool()> &goOn) {
    bool whole = true;
    source.path = textOf(path);
    logFailureOf(log, kProcedure, [&] {
        const auto now = hashesOfFile(FileReader(path), [&goOn](std::uint64_t) { return goOn(); });
        whole = now.has_value();
        if (now)
            compareHashes(source, *now);
    });
    source.state = SourceState::appeared;
    return whole;
}

} // namespace

std::string_view stateWord(SourceState state) {
    constexpr std::array<std::string_view, 6> kWords = {"same",       "changed", "gone",
                                                        "unreadable", "no hash", "new"};
    return kWords.at(static_cast<std::size_t>(state));
}

std::size_t SourceCheck::count(SourceState state) const {
    return static_cast<std::size_t>(std::ranges::count(sources, state, &CheckedSource::state));
}

std::string summaryText(const SourceCheck &check) {
    const std::size_t same = check.count(SourceState::same);
    const std::size_t added = check.count(SourceState::appeared);
    std::string text =
        check.cancelled
            ? fmt::format("{} of {} imported files checked, {} as they were",
                          check.sources.size() - added, check.total, same)
            : fmt::format("{} of {} imported files are as they were", same, check.total);
    for (const SourceState state :
         {SourceState::changed, SourceState::gone, SourceState::unreadable, SourceState::unknown})
        if (const std::size_t count = check.count(state); count > 0)
            text += fmt::format(", {} {}", count, stateWord(state));
    if (added > 0)
        text += fmt::format(", {} new beside them (not read at the import)", added);
    text += check.cancelled ? "; cancelled before the end." : ".";
    if (check.besideUnhashed > 0)
        text += fmt::format(" What lies beside {} (logs of databases, blocks and bodies of caches) "
                            "wasn't hashed at the import and isn't compared.",
                            counted(check.besideUnhashed, "imported file"));
    for (const UnendedImport &import : check.unended)
        text += fmt::format(" An import {}.", reasonOf(import));
    return text;
}

SourceCheck verifySources(SQLite::Database &project, FailureLog &log, TaskMonitor &task,
                          const std::set<fs::path> *only) {
    SourceCheck result;
    Sources imported(project);
    result.unended = imported.unended.found();
    result.besideUnhashed = imported.besideUnhashed;
    const Evidence evidence({});
    std::vector<CheckedSource> sources = std::move(imported.all);
    if (only)
        std::erase_if(sources, [only](const CheckedSource &source) {
            return !only->contains(pathFromText(source.path).value_or(source.path));
        });
    result.total = sources.size();
    for (std::size_t i = 0; i < sources.size() && !result.cancelled; ++i) {
        const double done = static_cast<double>(i) / static_cast<double>(sources.size());
        const auto goOn = [&task, done] { return task.advance(done); };
        if (goOn() && check(sources[i], log, goOn))
            result.sources.push_back(sources[i]);
        else
            result.cancelled = true;
        for (const fs::path &file : imported.takeNewBeside(evidence, sources[i].path)) {
            CheckedSource added;
            if (!result.cancelled && hashNew(added, file, log, goOn))
                result.sources.push_back(std::move(added));
            else
                result.cancelled = true;
        }
    }
    return result;
}

} // namespace nv
