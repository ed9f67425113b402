#pragma once

#include "cli/Argument.h"
#include "views/table/UrlTable.h"

#include <string>
#include <vector>

namespace nv::cli {

class Session;

/// Which rows a command is about, by the hash sets that their files were found in.
struct HashSetsAsked {
    std::vector<std::string> sets;
    bool notable = false;
    bool withoutKnown = false;
};

/// Behind the other options of a command.
void addHashSetOptions(std::vector<Argument> &arguments, HashSetsAsked &asked);

/// Makes the next load of the table, which is of the open project, leave only these rows. Throws
/// UsageError for a set in which nothing of the project was found: it may never have been asked.
void limitToHashSets(Session &session, const HashSetsAsked &asked, UrlTable &table);

/// For people: "the hash set \"cases\"", "without known files". Empty for all rows.
std::vector<std::string> contentOf(const HashSetsAsked &asked);

} // namespace nv::cli
