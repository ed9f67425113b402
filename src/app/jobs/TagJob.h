#pragma once

#include "app/program/Program.h"
#include "base/TaskMonitor.h"
#include "db/marks/RecordTags.h"
#include "views/tags/TagHistory.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace nv {

// All that the program does with named tags of the open project goes through here, from the command
// line and from the window. Each throws StorageFailure when the project can't be written.

/// What is done to which rows.
struct TagOrder {
    NamedTag tag;
    bool isSet = true; ///< otherwise it is taken away
    std::string note;  ///< of rows that get the tag; empty keeps what is noted
};

/// Gives rows a tag or takes it away. Nothing after a cancel, which leaves all as it was.
std::optional<TagChange> tagRows(Program &program, const TagOrder &order,
                                 std::span<const std::int32_t> ids, TaskMonitor &task);
/// Takes the last change back, or does it again. False after a cancel, or when there is none.
bool undoTagging(Program &program, TagHistory &history, TaskMonitor &task);
bool redoTagging(Program &program, TagHistory &history, TaskMonitor &task);

/// Makes or changes a tag. Both throw std::invalid_argument that says why not.
NamedTag makeTag(Program &program, const NamedTag &tag);
void changeTag(Program &program, const NamedTag &tag);
/// Puts the tags into this order; those that aren't named come after.
void orderTags(Program &program, const std::vector<std::int64_t> &tagIDs);
/// The rows stay.
void deleteTag(Program &program, const NamedTag &tag);

/// "3 rows tagged \"Important\"", for people.
std::string taggedText(const TagOrder &order, const TagChange &change);

} // namespace nv
