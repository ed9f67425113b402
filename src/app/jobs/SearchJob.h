#pragma once

#include "app/program/Program.h"
#include "search/KeywordList.h"
#include "search/KeywordRun.h"
#include "search/Search.h"

#include <filesystem>
#include <string>
#include <string_view>

namespace nv {

/// Reads what was typed; before: and after: go by the clock of the open project's zone. Throws
/// SearchFailure.
SearchQuery projectSearch(const Program &program, std::string_view text);
/// The name of the zone by which a search goes; empty for one without dates or that can't be read.
std::string zoneOfSearch(const Program &program, std::string_view text);
/// A search as it is told later: with that zone.
std::string toldSearch(const Program &program, const std::string &text);

/// Searches the open project by the index beside it. `scratch` is an existing folder of the
/// program's own for an index that can't lie there. Throws StorageFailure.
SearchFound searchProject(Program &program, RowMatch &match, TaskMonitor &task,
                          const std::filesystem::path &scratch);

/// Why no result of this name can be kept in the open project; empty when one can.
std::string faultOfResultName(Program &program, const std::string &name);

/// Keeps what a search has found, and notes it in the trail. Throws StorageFailure.
void keepSearch(Program &program, const std::string &name, const std::string &text,
                const FoundIds &ids);

/// The same of a list of keywords, with a hit for each row, term and field.
void keepKeywords(Program &program, const std::string &name, const KeywordList &list,
                  const KeywordFound &found);

// For people.

/// What became of the index: empty when nothing did.
std::string indexText(const IndexNews &news);
/// "12 rows: 8 Chrome Cache, 4 Chrome History; of 2 hosts: 9 a.example, 3 b.example".
std::string countsText(const SearchFound &found);

} // namespace nv
