#include "app/jobs/TagJob.h"

#include "base/Text.h"

#include <SQLiteCpp/Database.h>
#include <fmt/format.h>

namespace nv {

namespace {

SQLite::Database &projectOf(Program &program) {
    return program.state.projectDB.connection();
}

} // namespace

std::optional<TagChange> tagRows(Program &program, const TagOrder &order,
                                 std::span<const std::int32_t> ids, TaskMonitor &task) {
    RecordTags rows(projectOf(program));
    return order.isSet ? rows.set(order.tag.tagID, ids, order.note, task)
                       : rows.take(order.tag.tagID, ids, task);
}

bool undoTagging(Program &program, TagHistory &history, TaskMonitor &task) {
    return history.undo(projectOf(program), task);
}

bool redoTagging(Program &program, TagHistory &history, TaskMonitor &task) {
    return history.redo(projectOf(program), task);
}

NamedTag makeTag(Program &program, const NamedTag &tag) {
    return NamedTags(projectOf(program)).add(tag);
}

void changeTag(Program &program, const NamedTag &tag) {
    NamedTags(projectOf(program)).change(tag);
}

void orderTags(Program &program, const std::vector<std::int64_t> &tagIDs) {
    NamedTags(projectOf(program)).reorder(tagIDs);
}

void deleteTag(Program &program, const NamedTag &tag) {
    NamedTags(projectOf(program)).remove(tag.tagID);
}

std::string taggedText(const TagOrder &order, const TagChange &change) {
    std::string text = fmt::format("{} {} \"{}\"", counted(change.ids.size(), "row"),
                                   order.isSet ? "tagged" : "untagged", order.tag.name);
    if (order.isSet && !change.earlierNotes.empty())
        text += fmt::format(", {} with another note", counted(change.earlierNotes.size(), "row"));
    return text;
}

} // namespace nv
