#include "cli/HashSetRows.h"

#include "base/Text.h"
#include "cli/RowWriter.h"
#include "cli/Session.h"
#include "cli/UsageError.h"
#include "db/hashes/FoundHashSets.h"

#include <fmt/format.h>

#include <algorithm>

namespace nv::cli {

namespace {

/// A file system may have sets whose names differ in the case of letters only.
std::string nameAsFound(const std::vector<FoundHashSet> &found, const std::string &asked) {
    if (std::ranges::find(found, asked, &FoundHashSet::name) != found.end())
        return asked;
    const auto alike = std::ranges::find_if(
        found, [&](const FoundHashSet &set) { return equalsNoCase(set.name, asked); });
    if (alike == found.end())
        throw UsageError(fmt::format("no row of the project was found in a hash set \"{}\": "
                                     "`hashsets match` looks for it, `places --tree hash-sets` "
                                     "lists those in which rows were found",
                                     printable(asked)));
    return alike->name;
}

} // namespace

void addHashSetOptions(std::vector<Argument> &arguments, HashSetsAsked &asked) {
    arguments.push_back(
        value("--hash-set", asked.sets, "Only rows found in a hash set of this name"));
    arguments.push_back(flag("--notable", asked.notable, "Only rows found in a notable hash set"));
    arguments.push_back(flag("--without-known", asked.withoutKnown,
                             "No rows found in a known hash set, unless a notable one has them"));
}

void limitToHashSets(Session &session, const HashSetsAsked &asked, UrlTable &table) {
    table.hashSets = {
        .sets = {}, .notable = asked.notable, .known = false, .withoutKnown = asked.withoutKnown};
    if (asked.sets.empty())
        return;
    const auto found = foundHashSets(session.program.state.projectDB.connection());
    table.hashSets.sets.reserve(asked.sets.size());
    for (const std::string &set : asked.sets)
        table.hashSets.sets.push_back(nameAsFound(found, set));
}

std::vector<std::string> contentOf(const HashSetsAsked &asked) {
    std::vector<std::string> parts;
    parts.reserve(asked.sets.size() + 2);
    for (const std::string &set : asked.sets)
        parts.push_back(fmt::format("the hash set \"{}\"", set));
    if (asked.notable)
        parts.emplace_back("the notable hash sets");
    if (asked.withoutKnown)
        parts.emplace_back("no known files");
    return parts;
}

} // namespace nv::cli
