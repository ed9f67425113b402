#pragma once

#include "base/TaskMonitor.h"
#include "rebuild/ReplaceableTags.h"
#include "rebuild/Tags.h"

#include <optional>
#include <string_view>

namespace nv {

/// The settings that say which references can be replaced: extensions, each followed by ";".
struct ReplaceableLists {
    std::string_view pictures = kHTMLReplaceablePictureTags;
    std::string_view hrefs = kHTMLReplaceableHREFTags;
};

/// Finds the references in a page without line breaks. This is a text search, no HTML parser:
/// every rule goes through the whole text, so one place can give tags of several rules. Blank tags,
/// of hits whose value was not found, are in the result; reconcileTags() removes them. Nothing when
/// cancelled.
std::optional<URLTags> scanTags(std::string_view text, const ReplaceableLists &lists,
                                TaskMonitor &task);

/// Removes doubles and blanks, at most one for each place of the list: three equal tags leave two,
/// and a blank one may stay. The counts of earlier cases rest on just that.
URLTags reconcileTags(const URLTags &tags);

} // namespace nv
