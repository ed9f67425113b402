#pragma once

#include "cli/Exit.h"
#include "search/KeywordList.h"
#include "search/KeywordTexts.h"
#include "search/RowMatch.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <set>
#include <string>

namespace nv::cli {

class Session;

/// What was typed, ready to be compared. Throws UsageError that says what of it can't be read.
RowMatch searchAsked(Session &session, const std::string &text, SearchScope scope);

/// A list of keywords, ready to be looked for.
struct ListAsked {
    KeywordList list;
    std::optional<KeywordTexts> terms;
};
/// Throws UsageError that names the line that can't be read.
std::unique_ptr<ListAsked> listAsked(Session &session, const std::filesystem::path &file,
                                     PlainTerms plain);

/// Throws UsageError when what is found can't be kept under this name.
void checkResultName(Session &session, const std::string &name);

/// Names rows of which nobody can tell, and gives the exit code that tells so. `outside` is the
/// number of those whose ids no list can hold.
Exit tellUnsearched(Session &session, const std::set<std::int32_t> &unread, std::int64_t outside);

} // namespace nv::cli
