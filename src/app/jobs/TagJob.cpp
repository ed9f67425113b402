#include "app/jobs/TagJob.h"

#include "app/jobs/Trail.h"
#include "base/Text.h"

#include <SQLiteCpp/Database.h>
#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <map>
#include <utility>

namespace nv {

namespace {

SQLite::Database &projectOf(Program &program) {
    return program.state.projectDB.connection();
}

void noteChange(Program &program, const std::string &tag, bool isSet,
                std::span<const std::int32_t> ids) {
    if (!ids.empty())
        noteMarking(program, {.mark = fmt::format("tag \"{}\"", tag),
                              .isSet = isSet,
                              .rows = static_cast<std::int64_t>(ids.size()),
                              .which = idsInWords(ids)});
}

/// What differs; of a note its length and hash, not its words.
std::string changesOf(const NamedTag &before, const NamedTag &now) {
    std::vector<std::string> changes;
    if (now.name != before.name)
        changes.push_back(fmt::format("name \"{}\"", now.name));
    if (now.color != before.color)
        changes.push_back(fmt::format("colour {} instead of {}", now.color, before.color));
    if (now.note != before.note)
        changes.push_back(noteInWords(now.note));
    return fmt::format("{}", fmt::join(changes, ", "));
}

std::string namesInOrder(Program &program) {
    std::vector<std::string> names;
    for (const NamedTag &tag : NamedTags(projectOf(program)).list())
        names.push_back(fmt::format("\"{}\"", tag.name));
    return fmt::format("{}", fmt::join(names, ", "));
}

/// What rows have noted of a tag by now, where that has changed: texts with their rows.
using NotedRows = std::map<std::string, std::vector<std::int32_t>>;

/// After the change was done.
NotedRows notesAfter(const TagChange &change) {
    NotedRows noted;
    if (change.isSet && !change.note.empty())
        noted[change.note] = change.ids;
    for (const auto &[id, earlier] : change.earlierNotes)
        noted[change.note].push_back(id);
    return noted;
}

/// After it was taken back.
NotedRows notesBefore(const TagChange &change) {
    NotedRows noted;
    if (change.isSet && !change.note.empty())
        noted[""] = change.ids;
    for (const auto &[id, earlier] : change.earlierNotes)
        noted[earlier].push_back(id);
    return noted;
}

void noteTexts(Program &program, const std::string &tag, NotedRows noted) {
    for (auto &[text, ids] : noted) {
        std::ranges::sort(ids);
        if (!ids.empty())
            noteTagNote(program, tag, text, ids);
    }
}

/// A change that is taken back, or done again.
struct Repeated {
    std::string tag;
    bool isSet = true;
    std::vector<std::int32_t> ids;
    NotedRows noted;
};

Repeated repeated(Program &program, const TagChange *change, bool isDone) {
    if (!change)
        return {};
    const auto tag = NamedTags(projectOf(program)).find(change->tagID);
    return {tag ? tag->name : "", isDone == change->isSet, change->ids,
            isDone ? notesAfter(*change) : notesBefore(*change)};
}

void noteRepeated(Program &program, const Repeated &rows) {
    noteChange(program, rows.tag, rows.isSet, rows.ids);
    noteTexts(program, rows.tag, rows.noted);
}

} // namespace

std::optional<TagChange> tagRows(Program &program, const TagOrder &order,
                                 std::span<const std::int32_t> ids, TaskMonitor &task) {
    RecordTags rows(projectOf(program));
    auto change = order.isSet ? rows.set(order.tag.tagID, ids, order.note, task)
                              : rows.take(order.tag.tagID, ids, task);
    if (change) {
        noteChange(program, order.tag.name, order.isSet, change->ids);
        noteTexts(program, order.tag.name, notesAfter(*change));
    }
    return change;
}

bool undoTagging(Program &program, TagHistory &history, TaskMonitor &task) {
    const Repeated rows = repeated(program, history.next(), false);
    if (!history.undo(projectOf(program), task))
        return false;
    noteRepeated(program, rows);
    return true;
}

bool redoTagging(Program &program, TagHistory &history, TaskMonitor &task) {
    const Repeated rows = repeated(program, history.nextAgain(), true);
    if (!history.redo(projectOf(program), task))
        return false;
    noteRepeated(program, rows);
    return true;
}

NamedTag makeTag(Program &program, const NamedTag &tag) {
    return NamedTags(projectOf(program)).add(tag);
}

void changeTag(Program &program, const NamedTag &tag) {
    const auto before = NamedTags(projectOf(program)).find(tag.tagID);
    NamedTags(projectOf(program)).change(tag);
    if (!before)
        return;
    if (const std::string changes = changesOf(*before, tag); !changes.empty())
        noteTagChange(program, fmt::format("tag \"{}\" changed: {}", before->name, changes));
}

void orderTags(Program &program, const std::vector<std::int64_t> &tagIDs) {
    const std::string before = namesInOrder(program);
    NamedTags(projectOf(program)).reorder(tagIDs);
    if (const std::string after = namesInOrder(program); after != before)
        noteTagChange(program, "order of the tags changed: " + after);
}

void deleteTag(Program &program, const NamedTag &tag) {
    const std::int64_t rows = NamedTags(projectOf(program)).counts()[tag.tagID];
    NamedTags(projectOf(program)).remove(tag.tagID);
    noteTagChange(program,
                  fmt::format("tag \"{}\" deleted: {} had it", tag.name,
                              counted(static_cast<std::uint64_t>(rows), "row")),
                  rows);
}

std::string taggedText(const TagOrder &order, const TagChange &change) {
    std::string text = fmt::format("{} {} \"{}\"", counted(change.ids.size(), "row"),
                                   order.isSet ? "tagged" : "untagged", order.tag.name);
    if (order.isSet && !change.earlierNotes.empty())
        text += fmt::format(", {} with another note", counted(change.earlierNotes.size(), "row"));
    return text;
}

} // namespace nv
