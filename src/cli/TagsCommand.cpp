#include "app/jobs/TagJob.h"
#include "app/project/Project.h"
#include "base/Text.h"
#include "cli/Commands.h"
#include "cli/NamedTagRows.h"
#include "cli/ReadProject.h"
#include "cli/Session.h"
#include "cli/SharedArguments.h"

#include <SQLiteCpp/Database.h>
#include <fmt/format.h>

#include <algorithm>

namespace nv::cli {

namespace {

struct Arguments {
    std::string project;
    std::string name;
    std::optional<std::string> newName;
    std::optional<std::string> color;
    std::optional<std::string> note;
    std::optional<std::int64_t> place;
    Format format = Format::table;
};

Exit list(Session &session, const Arguments &arguments) {
    const auto project = readProject(arguments.project);
    const auto writer =
        makeRowWriter(arguments.format, session.out, {"Position", "Name", "Color", "Rows", "Note"});
    TagCounts counts = NamedTags(*project).counts();
    std::int64_t position = 0;
    for (const NamedTag &tag : NamedTags(*project).list())
        writer->row({++position, tag.name, tag.color, counts[tag.tagID], tag.note});
    writer->finish();
    return Exit::ok;
}

void moveTo(Program &program, const NamedTag &tag, std::int64_t place) {
    std::vector<std::int64_t> order;
    for (const NamedTag &each : NamedTags(program.state.projectDB.connection()).list())
        if (each.tagID != tag.tagID)
            order.push_back(each.tagID);
    const auto before = std::min(order.size(), static_cast<std::size_t>(place - 1));
    order.insert(order.begin() + static_cast<std::ptrdiff_t>(before), tag.tagID);
    orderTags(program, order);
}

Exit change(Session &session, const Arguments &arguments) {
    if (!arguments.newName && !arguments.color && !arguments.note && !arguments.place)
        throw UsageError("--name, --color, --note or --position was expected");
    session.open(arguments.project);
    SQLite::Database &project = session.program.state.projectDB.connection();
    NamedTag tag = namedTag(project, arguments.name);
    tag.name = arguments.newName.value_or(tag.name);
    tag.color = arguments.color.value_or(tag.color);
    tag.note = arguments.note.value_or(tag.note);
    if (const std::string fault = NamedTags(project).faultOf(tag); !fault.empty())
        throw UsageError(printable(fault));
    changeTag(session.program, tag);
    if (arguments.place)
        moveTo(session.program, tag, *arguments.place);
    session.out << fmt::format("\"{}\" changed\n", printable(tag.name));
    closeProject(session.program);
    return Exit::ok;
}

Exit remove(Session &session, const Arguments &arguments) {
    session.open(arguments.project);
    SQLite::Database &project = session.program.state.projectDB.connection();
    const NamedTag tag = namedTag(project, arguments.name);
    const auto rows = static_cast<std::uint64_t>(NamedTags(project).counts()[tag.tagID]);
    deleteTag(session.program, tag);
    session.out << fmt::format("\"{}\" deleted: {} had it\n", printable(tag.name),
                               counted(rows, "row"));
    closeProject(session.program);
    return Exit::ok;
}

Argument nameWord(Arguments &given) {
    return value("NAME", given.name, "Name of the tag").required();
}

} // namespace

Command tagsCommand() {
    const auto given = std::make_shared<Arguments>();
    return {.name = "tags",
            .what = "The tags of a project with their counts: list them, or change and delete one",
            .readme = {"`tags PROJECT`", "lists the tags with their colours, counts and notes; "
                                         "`tags change`, `delete`"},
            .examples = {{"tags case.nvp", "name, colour and how many rows have it"},
                         {"list case.nvp --tag Important", "the rows of one"}},
            .arguments = {projectWord(given->project), formatOption(given->format)},
            .run = [given](Session &session) { return list(session, *given); }};
}

Command changeTagCommand() {
    const auto given = std::make_shared<Arguments>();
    return {.name = "tags change",
            .what = "Give a tag another name, colour, note or place",
            .examples = {{"tags change case.nvp Important --name \"For the hearing\"", ""},
                         {"tags change case.nvp Important --color #0f6cbd --position 1", ""}},
            .arguments = {projectWord(given->project), nameWord(*given),
                          value("--name", given->newName, "The new name"),
                          value("--color", given->color, "Such as #d13438"),
                          value("--note", given->note, "What the tag is for"),
                          value("--position", given->place, "Its place among the tags").from1()},
            .run = [given](Session &session) { return change(session, *given); }};
}

Command deleteTagCommand() {
    const auto given = std::make_shared<Arguments>();
    return {.name = "tags delete",
            .what = "Delete a tag; the rows that have it stay",
            .examples = {{"tags delete case.nvp Important", ""},
                         {"tags delete case.nvp \"For the hearing\"", ""}},
            .arguments = {projectWord(given->project), nameWord(*given)},
            .run = [given](Session &session) { return remove(session, *given); }};
}

} // namespace nv::cli
