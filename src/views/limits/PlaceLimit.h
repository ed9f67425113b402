#pragma once

#include "views/rows/IdLoader.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace nv {

/// What places are told apart by.
enum class PlaceField : std::uint8_t {
    Evidence, ///< the folder that was chosen for the import: evidenceExpression()
    Person,
    Browser,
    Profile,
    Group,       ///< groupWord() of the record's kind
    Kind,        ///< typeWord() of it
    Domain,      ///< registeredDomain() of the host
    Host,        ///< in small letters
    HashMeaning, ///< wordOf() the meaning of a hash set that its file is in
    HashSet,     ///< the name of one
    Tag,         ///< the name of a tag; empty for rows without any
};

/// An empty value stands for rows that have none.
struct PlaceTerm {
    PlaceField field = PlaceField::Evidence;
    std::string value;
    /// Of a name that stands in several trees of the evidence: treeOfPath() of the one that is
    /// meant, which is empty for rows of none.
    std::optional<std::string> tree = std::nullopt;
    std::string treeLabel = {}; ///< what tells it from the others, for people

    friend bool operator==(const PlaceTerm &one, const PlaceTerm &other) {
        return one.field == other.field && one.value == other.value && one.tree == other.tree;
    }
};

/// One line that can be shown: the value, or what stands for none: "(no host)"; "ada (pc3)" for
/// that of one tree among several.
std::string placeName(const PlaceTerm &term);
/// The same, but empty for none.
std::string placeValue(const PlaceTerm &term);

/// The rows of which all of its terms are true; without terms all rows.
struct PlaceLimit {
    std::vector<PlaceTerm> terms;

    friend bool operator==(const PlaceLimit &, const PlaceLimit &) = default;
};

/// One line: "ada / Edge / Default / Cache".
std::string placeText(const PlaceLimit &limit);

/// The rows that are in one of `only` (in any, while there are none) and in none of `without`.
struct PlaceChoice {
    std::vector<PlaceLimit> only;
    std::vector<PlaceLimit> without;

    bool isEmpty() const { return only.empty() && without.empty(); }
    friend bool operator==(const PlaceChoice &, const PlaceChoice &) = default;
};

/// Of what is chosen, one line: "ada / Edge or ada / Firefox, without forum.example".
std::string placeText(const PlaceChoice &choice);

/// The rows of a choice that isn't empty, in no order, for statements of this connection alone.
/// Throws what the database says.
IdQuery placeQuery(SQLite::Database &project, const PlaceChoice &choice);

/// Takes the other rows out of `ids`, but for those of which nobody can tell since the project is
/// damaged; a cancel leaves all. Throws what the database says.
Walk keepIn(SQLite::Database &project, const PlaceChoice &choice, TaskMonitor &task, RowIds &ids);

/// The rows of a choice, ascending, however the project is damaged: `unread` are those of which
/// nobody can tell. Throws what the database says.
Walk placeRows(SQLite::Database &project, const PlaceChoice &choice, TaskMonitor &task, RowIds &ids,
               UnreadRows &unread);

/// Whether table `URLs` says of browser, profile and person: that of an earlier build doesn't.
bool hasOriginColumns(SQLite::Database &project);

} // namespace nv
