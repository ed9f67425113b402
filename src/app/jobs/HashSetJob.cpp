#include "app/jobs/HashSetJob.h"

#include "app/jobs/Trail.h"
#include "app/project/Project.h"
#include "base/Files.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "db/hashes/FoundHashSets.h"
#include "db/hashes/HashSets.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <utility>

namespace nv {

namespace {

/// The set's own file may be made anew: it is its lists that somebody else can compare.
void noteHashSet(Program &program, const HashSetFile &set, std::uint64_t rows) {
    const HashSetFacts &facts = set.facts();
    TrailEntry entry;
    entry.action = "Hash Set";
    entry.detail =
        fmt::format("{} in the {} set \"{}\" of {}, made {} of {}", counted(rows, "row"),
                    wordOf(facts.meaning), facts.name, counted(set.count(), "hash", "hashes"),
                    facts.added, counted(facts.sources.size(), "list"));
    entry.rowCount = static_cast<std::int64_t>(rows);
    if (!facts.sources.empty()) {
        const HashListSource &first = facts.sources.front();
        entry.filePath = first.file;
        entry.fileSize = static_cast<std::int64_t>(first.size);
        entry.md5Hash = first.md5;
        entry.sha256Hash = first.sha256;
    }
    noteInTrail(program, entry);
}

std::string madeOf(const HashSetFacts &facts) {
    std::vector<std::string> lists;
    lists.reserve(facts.sources.size());
    for (const HashListSource &source : facts.sources)
        lists.push_back(textOf(std::filesystem::path(source.file).filename()));
    return fmt::format("{} on {}", fmt::join(lists, ", "), facts.added.substr(0, 10));
}

ListedHashSet listed(Program &program, const std::filesystem::path &path) {
    ListedHashSet set;
    set.name = textOf(path.stem());
    set.fault = failureOf(program.log, "HashSets.Open()", [&] {
                    const HashSetFile file(path);
                    set.name = file.facts().name;
                    set.meaning = file.facts().meaning;
                    set.hashes = file.count();
                    set.madeOf = madeOf(file.facts());
                }).value_or(std::string());
    return set;
}

} // namespace

std::vector<ListedHashSet> listHashSets(Program &program) {
    std::vector<ListedHashSet> sets;
    const auto paths = hashSetPaths(program.paths.hashSets());
    sets.reserve(paths.size());
    for (const std::filesystem::path &path : paths)
        sets.push_back(listed(program, path));
    ProjectDatabase &project = program.state.projectDB;
    if (!project.isOpen())
        return sets;
    for (ListedHashSet &set : sets)
        set.rows = 0;
    for (const FoundHashSet &found : foundHashSets(project.connection())) {
        auto known = std::ranges::find(sets, found.name, &ListedHashSet::name);
        if (known == sets.end()) {
            sets.push_back({.name = found.name,
                            .meaning = found.meaning,
                            .fault = "the set was removed; what was found by it is left",
                            .isThere = false});
            known = std::prev(sets.end());
        }
        known->rows = known->rows.value_or(0) + found.rows;
    }
    std::ranges::sort(sets, {}, &ListedHashSet::name);
    return sets;
}

HashMatch matchOpenProject(Program &program, std::span<HashSetFile> sets, EarlierFindings earlier,
                           TaskMonitor &task) {
    requireSchema(program);
    const HashMatch match =
        matchHashSets(program.state.projectDB.connection(), sets, earlier, task);
    if (!match.cancelled)
        for (std::size_t at = 0; at < sets.size(); ++at)
            noteHashSet(program, sets[at], match.rows.at(at));
    return match;
}

std::unique_ptr<HashLookup> hashSetsForImport(const Program &program) {
    if (!program.import.hashSets)
        return nullptr;
    std::vector<HashSetFile> sets = openHashSets(program.paths.hashSets());
    if (sets.empty())
        throw StorageFailure(fmt::format("there is no hash set in \"{}\": hashsets add makes one",
                                         textOf(program.paths.hashSets())));
    return std::make_unique<HashLookup>(std::move(sets));
}

void noteHashSets(Program &program, const HashLookup &sets) {
    for (std::size_t at = 0; at < sets.sets().size(); ++at)
        noteHashSet(program, sets.sets()[at], sets.found()[at]);
}

} // namespace nv
