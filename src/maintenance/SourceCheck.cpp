#include "maintenance/SourceCheck.h"

#include "base/Digest.h"
#include "base/Trap.h"
#include "db/CaseTrail.h"

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <functional>
#include <optional>
#include <set>
#include <utility>

namespace nv {

namespace {

namespace fs = std::filesystem;

CheckedSource sourceOf(const TrailEntry &entry) {
    CheckedSource source;
    source.path = entry.FilePath;
    source.sizeThen = entry.FileSize;
    source.MD5Then = entry.MD5Hash;
    source.SHA256Then = entry.SHA256Hash;
    return source;
}

/// What the case trail tells, which knows each file of the same content, and then what only table
/// `SourceFiles` does, as in projects of earlier versions. A file that was imported again after it
/// had changed is there twice.
std::vector<CheckedSource> sourcesOf(SQLite::Database &project) {
    std::vector<CheckedSource> sources;
    std::set<std::pair<std::string, std::string>> seen; ///< path and MD5
    const auto add = [&](CheckedSource source) {
        if (seen.emplace(source.path, source.MD5Then).second)
            sources.push_back(std::move(source));
    };
    for (const TrailEntry &entry : CaseTrail(project).entries())
        if (entry.Action == "Import")
            add(sourceOf(entry));
    SQLite::Statement row(project, "SELECT FilePath, ifnull(FileSize, 0), ifnull(MD5Hash, '') "
                                   "FROM SourceFiles ORDER BY SourceFile_ID");
    while (row.executeStep()) {
        CheckedSource source;
        source.path = row.getColumn(0).getString();
        source.sizeThen = row.getColumn(1).getInt64();
        source.MD5Then = row.getColumn(2).getString();
        add(std::move(source));
    }
    return sources;
}

SourceState stateOf(const CheckedSource &source) {
    if (source.MD5Then.empty())
        return SourceState::unknown;
    const bool same = source.MD5Now == source.MD5Then &&
                      (source.SHA256Then.empty() || source.SHA256Now == source.SHA256Then);
    return same ? SourceState::same : SourceState::changed;
}

/// False when cancelled.
bool check(CheckedSource &source, FailureLog &log, const std::function<bool()> &goOn) {
    if (!fs::exists(source.path)) {
        source.state = SourceState::gone;
        return true;
    }
    std::optional<FileHashes> now;
    const auto failure = failureOf(log, "MainBAS.verifySources()", [&] {
        now = hashesOfFile(source.path, [&](std::uint64_t) { return goOn(); });
    });
    source.state = SourceState::unreadable;
    if (now) {
        source.sizeNow = static_cast<std::int64_t>(now->size);
        source.MD5Now = now->MD5;
        source.SHA256Now = now->SHA256;
        source.state = stateOf(source);
    }
    return now || failure;
}

} // namespace

std::string_view stateWord(SourceState state) {
    constexpr std::array<std::string_view, 5> kWords = {"same", "changed", "gone", "unreadable",
                                                        "no hash"};
    return kWords.at(static_cast<std::size_t>(state));
}

std::size_t SourceCheck::count(SourceState state) const {
    return static_cast<std::size_t>(std::ranges::count(sources, state, &CheckedSource::state));
}

std::string summaryText(const SourceCheck &check) {
    std::string text = fmt::format("{} of {} imported files are as they were",
                                   check.count(SourceState::same), check.sources.size());
    for (const SourceState state :
         {SourceState::changed, SourceState::gone, SourceState::unreadable, SourceState::unknown})
        if (const std::size_t count = check.count(state); count > 0)
            text += fmt::format(", {} {}", count, stateWord(state));
    return text + (check.cancelled ? "; cancelled before the end." : ".");
}

SourceCheck verifySources(SQLite::Database &project, FailureLog &log, TaskMonitor &task) {
    SourceCheck result;
    const std::vector<CheckedSource> sources = sourcesOf(project);
    for (const CheckedSource &source : sources) {
        const double done =
            static_cast<double>(result.sources.size()) / static_cast<double>(sources.size());
        const auto goOn = [&task, done] { return task.advance(done); };
        CheckedSource checked = source;
        result.cancelled = !goOn() || !check(checked, log, goOn);
        if (result.cancelled)
            break;
        result.sources.push_back(std::move(checked));
    }
    return result;
}

} // namespace nv
