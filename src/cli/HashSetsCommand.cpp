#include "app/jobs/HashSetJob.h"
#include "app/messages/HashSetMessages.h"
#include "app/project/Project.h"
#include "base/Files.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "cli/Commands.h"
#include "cli/Session.h"
#include "cli/SharedArguments.h"
#include "db/hashes/HashSets.h"
#include "time/DateFormat.h"

#include <fmt/format.h>

namespace nv::cli {

namespace fs = std::filesystem;

namespace {

struct Arguments {
    std::string project;
    std::vector<std::string> lists;
    std::vector<std::string> names;
    std::string name; ///< empty for that of the first list
    std::string meaning;
    std::string folder; ///< of sets; empty for the examiner's
    bool overwrite = false;
    Format format = Format::table;
};

fs::path folderOf(const Session &session, const Arguments &arguments) {
    return arguments.folder.empty() ? session.program.paths.hashSets() : fs::path(arguments.folder);
}

HashSetOrder orderOf(Session &session, const Arguments &arguments) {
    HashSetOrder order;
    order.folder = folderOf(session, arguments);
    order.scratch = session.scratch();
    for (const std::string &list : arguments.lists) {
        if (!fs::exists(list))
            throw UsageError(fmt::format("there is no list \"{}\"", list));
        order.lists.push_back(fs::absolute(list).lexically_normal());
    }
    order.facts.name = arguments.name.empty() ? textOf(order.lists.front().stem()) : arguments.name;
    order.facts.meaning = equalsNoCase(arguments.meaning, wordOf(HashMeaning::notable))
                              ? HashMeaning::notable
                              : HashMeaning::known;
    order.facts.added = isoUtc(Date::fromTimePoint(session.program.around.clock.now()));
    return order;
}

void checkOrder(const HashSetOrder &order, bool overwrite) {
    if (!isHashSetName(order.facts.name))
        throw UsageError(noSetNameText(order.facts.name) + "; --name gives one");
    const fs::path target = hashSetPath(order.folder, order.facts.name);
    if (fs::exists(target) && !overwrite)
        throw UsageError(fmt::format("there is a hash set \"{}\" already; --overwrite replaces it",
                                     order.facts.name));
}

Exit add(Session &session, const Arguments &arguments) {
    const HashSetOrder order = orderOf(session, arguments);
    checkOrder(order, arguments.overwrite);
    const auto made = makeHashSet(order, session.task);
    session.task.clear();
    if (!made)
        return Exit::interrupted;
    for (const std::string &line : made->refused)
        session.err << printable(line) << '\n';
    if (made->hashes == 0)
        throw UsageError(noHashText(*made));
    session.out << fmt::format("{} \"{}\": {} from {}, {} without one\n",
                               wordOf(order.facts.meaning), order.facts.name,
                               counted(made->hashes, "different hash", "different hashes"),
                               counted(made->lines, "line"), made->withoutHash);
    return Exit::ok;
}

std::string reasonOf(Session &session, const std::function<void()> &body) {
    return failureOf(session.program.log, "HashSets.Open()", body).value_or(std::string());
}

/// A set that can't be used is listed too: it would be missed by nobody otherwise.
Exit list(Session &session, const Arguments &arguments) {
    const auto writer = makeRowWriter(
        arguments.format, session.out,
        {"Name", "Meaning", "MD5", "SHA1", "SHA256", "Added", "Lists", "WithoutHash", "File"});
    Exit exit = Exit::ok;
    for (const fs::path &path : hashSetPaths(folderOf(session, arguments))) {
        const std::string reason = reasonOf(session, [&] {
            const HashSetFile set(path);
            std::vector<Cell> cells{set.facts().name, std::string(wordOf(set.facts().meaning))};
            for (const DigestAlgorithm algorithm : kHashAlgorithms)
                cells.emplace_back(static_cast<std::int64_t>(set.count(algorithm)));
            std::string lists;
            std::uint64_t without = 0;
            for (const HashListSource &source : set.facts().sources) {
                lists += (lists.empty() ? "" : "; ") + source.file;
                without += source.withoutHash;
            }
            cells.insert(cells.end(), {set.facts().added, lists, static_cast<std::int64_t>(without),
                                       textOf(path)});
            writer->row(cells);
        });
        if (reason.empty())
            continue;
        session.err << printable(reason) << '\n';
        exit = Exit::projectUnusable;
    }
    writer->finish();
    return exit;
}

Exit remove(Session &session, const Arguments &arguments) {
    const fs::path folder = folderOf(session, arguments);
    for (const std::string &name : arguments.names)
        if (!isHashSetName(name) || !fs::is_regular_file(hashSetPath(folder, name)))
            throw UsageError(fmt::format("there is no hash set \"{}\" in \"{}\": nothing was "
                                         "removed; hashsets list lists them",
                                         printable(name), textOf(folder)));
    for (const std::string &name : arguments.names) {
        removeHashSet(folder, name);
        session.out << fmt::format("\"{}\" removed\n", name);
    }
    return Exit::ok;
}

void tell(Session &session, std::span<const HashSetFile> sets, const HashMatch &match,
          Format format) {
    const auto writer = makeRowWriter(format, session.out, {"Set", "Meaning", "Hashes", "Rows"});
    for (std::size_t at = 0; at < sets.size(); ++at)
        writer->row({sets[at].facts().name, std::string(wordOf(sets[at].facts().meaning)),
                     static_cast<std::int64_t>(sets[at].count()),
                     static_cast<std::int64_t>(match.rows.at(at))});
    writer->finish();
    session.err << matchText(match, "Import it with --hash-sets into a new project to have "
                                    "it compared.")
                << '\n';
}

Exit match(Session &session, const Arguments &arguments) {
    std::vector<HashSetFile> sets = openHashSets(folderOf(session, arguments), arguments.names);
    if (sets.empty())
        throw UsageError("there is no hash set yet: hashsets add makes one");
    session.open(arguments.project);
    const HashMatch found = matchOpenProject(
        session.program, sets,
        arguments.names.empty() ? EarlierFindings::drop : EarlierFindings::keep, session.task);
    session.task.clear();
    closeProject(session.program);
    if (found.cancelled) {
        session.err << "interrupted: the project has what earlier matches found\n";
        return Exit::interrupted;
    }
    tell(session, sets, found, arguments.format);
    return Exit::ok;
}

Argument folderOption(Arguments &given) {
    return value("--folder", given.folder, "Folder of hash sets (default: the examiner's)");
}

} // namespace

Command hashSetsCommand() {
    return {.name = "hashsets",
            .what = "Sets of known and notable files, by their hashes",
            .readme = {"`hashsets add, list, remove, match`",
                       "tells which cached files and downloads are known or notable, by MD5, "
                       "SHA-1 or SHA-256"}};
}

Command addHashSetCommand() {
    const auto given = std::make_shared<Arguments>();
    return {
        .name = "hashsets add",
        .what = "Make a set of lists of hashes",
        .examples = {{"hashsets add NSRLFile.txt --meaning known --name \"reference library\"", ""},
                     {"hashsets add cases.md5 more.sha256 --meaning notable --name cases",
                      "one set of two lists"}},
        .arguments = {value("LIST", given->lists,
                            "Texts: hashes one a line, output of md5sum and its kin, or tables "
                            "with a column MD5, SHA-1 or SHA-256")
                          .required(),
                      value("--meaning", given->meaning,
                            "known: nobody needs to look at these files; notable: they are "
                            "looked for")
                          .oneOf({"known", "notable"})
                          .required(),
                      value("--name", given->name, "Of the set (default: that of the first list)"),
                      folderOption(*given),
                      flag("--overwrite", given->overwrite, "Replace a set of the same name")},
        .run = [given](Session &session) { return add(session, *given); }};
}

Command listHashSetsCommand() {
    const auto given = std::make_shared<Arguments>();
    return {.name = "hashsets list",
            .what = "The hash sets that are there",
            .examples = {{"hashsets list", ""}, {"hashsets list --format csv", ""}},
            .arguments = {folderOption(*given), formatOption(given->format)},
            .run = [given](Session &session) { return list(session, *given); }};
}

Command removeHashSetCommand() {
    const auto given = std::make_shared<Arguments>();
    return {
        .name = "hashsets remove",
        .what = "Remove hash sets; projects keep what was found by them",
        .examples = {{"hashsets remove cases", ""}, {"hashsets remove cases --folder mine", ""}},
        .arguments = {value("NAME", given->names, "Of a hash set").required(),
                      folderOption(*given)},
        .run = [given](Session &session) { return remove(session, *given); }};
}

Command matchHashSetsCommand() {
    const auto given = std::make_shared<Arguments>();
    return {.name = "hashsets match",
            .what = "Find the rows whose file is in a hash set",
            .examples = {{"hashsets match case.nvp", "with all sets, in place of earlier results"},
                         {"hashsets match case.nvp cases", "with one"}},
            .arguments = {projectWord(given->project),
                          value("NAME", given->names, "Only these hash sets"), folderOption(*given),
                          formatOption(given->format)},
            .run = [given](Session &session) { return match(session, *given); }};
}

} // namespace nv::cli
