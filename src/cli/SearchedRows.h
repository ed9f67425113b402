#pragma once

#include "cli/Exit.h"
#include "search/KeywordList.h"
#include "search/KeywordTexts.h"
#include "search/RowMatch.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>

namespace nv::cli {

class Session;

/// What was typed, ready to be compared; dates go by the zone of the project that is open. Throws
/// UsageError that says what of it can't be read.
RowMatch searchAsked(Session &session, const std::string &text, SearchScope scope);

/// A list of keywords, ready to be looked for.
struct ListAsked {
    KeywordList list;
    std::optional<KeywordTexts> terms;
};
/// Throws UsageError that names the line that can't be read.
std::unique_ptr<ListAsked> listAsked(Session &session, const std::filesystem::path &file,
                                     PlainTerms plain);

/// What a search leaves in the project that it goes through: an entry of the trail, where one can
/// be written, and what it found, where a name was given for it.
class SearchTraces {
  public:
    /// Opens the project. Throws UsageError when nothing can be kept under that name.
    SearchTraces(Session &session, const std::filesystem::path &project,
                 std::optional<std::string> keptAs);

    /// Leaves them, unless the search was interrupted, and closes the project. Gives back `exit`.
    Exit leave(Exit exit, const std::function<void()> &note,
               const std::function<void(const std::string &name)> &keep);

  private:
    Session &m_session;
    std::optional<std::string> m_keptAs;
    bool m_isNoted = false;
};

/// Names rows of which nobody can tell, and gives the exit code that tells so. `outside` is the
/// number of those whose ids no list can hold.
Exit tellUnsearched(Session &session, const std::set<std::int32_t> &unread, std::int64_t outside);

} // namespace nv::cli
