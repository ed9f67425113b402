#include "app/jobs/ExplainJob.h"
#include "base/Text.h"
#include "base/TextRows.h"
#include "cli/Commands.h"
#include "cli/RowCheck.h"
#include "cli/Session.h"
#include "cli/SharedArguments.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>

namespace nv::cli {

namespace {

enum class ExplainFormat { text, json };

struct Arguments {
    std::string project;
    std::int64_t urlId = 0;
    std::string field;
    ExplainFormat format = ExplainFormat::text;
};

void writeText(Session &session, const RecordOrigin &record) {
    const auto write = [&session](const auto &lines, std::string_view indent) {
        for (const auto &[name, words] : lines)
            session.out << fmt::format("{}{:<14}{}\n", indent, name, printable(words));
    };
    write(linesOf(record), "");
    for (const ValueOrigin &value : record.values) {
        session.out << '\n' << printable(value.field) << '\n';
        write(linesOf(value), "  ");
    }
}

std::string_view stateWord(SourceNow state) {
    switch (state) {
    case SourceNow::same:
        return "same";
    case SourceNow::changed:
        return "changed";
    case SourceNow::gone:
        return "gone";
    case SourceNow::unhashed:
        return "no hash";
    }
    return {};
}

void writeJson(Session &session, const RecordOrigin &record) {
    using Json = nlohmann::ordered_json;
    Json values = Json::array();
    for (const ValueOrigin &value : record.values) {
        Json one = {
            {"field", value.field}, {"value", value.value}, {"check", checkWord(value.check)}};
        for (const auto &[name, text] :
             {std::pair("place", &value.place), std::pair("stored", &value.stored),
              std::pair("rule", &value.rule), std::pair("zone", &value.zone),
              std::pair("note", &value.note)})
            if (!text->empty())
                one[name] = *text;
        if (value.offset) {
            one["offset"] = *value.offset;
            one["length"] = value.length;
        }
        if (!value.file.empty())
            one["file"] = textOf(value.file.filename());
        values.push_back(std::move(one));
    }
    Json further = Json::array();
    for (const FurtherFile &file : record.further)
        further.push_back({{"file", file.name}, {"sha256", file.sha256}});
    const Json all = {{"id", record.id},
                      {"kind", record.kind},
                      {"version", record.version},
                      {"format_page", record.page},
                      {"source",
                       {{"file", record.file},
                        {"size", record.fileSize},
                        {"md5", record.md5},
                        {"sha256", record.sha256},
                        {"today", stateWord(record.state)}}},
                      {"further_files", further},
                      {"values", values}};
    session.out << all.dump(1, ' ', false, Json::error_handler_t::replace) << '\n';
}

Exit run(Session &session, const Arguments &arguments) {
    session.openForReading(arguments.project);
    Program &program = session.program;
    const UrlId id = checkedRow(program.state.projectDB.connection(), arguments.urlId);
    Exit exit = Exit::ok;
    {
        const RecordTools tools(program, session.task, session.scratch());
        const auto record = explainInProject(program, tools, id, arguments.field);
        if (!record)
            throw StorageFailure(fmt::format("row {} can't be read", arguments.urlId));
        if (!arguments.field.empty() && record->values.empty())
            throw UsageError(fmt::format("row {} has no field \"{}\"; show lists them",
                                         arguments.urlId, arguments.field));
        if (arguments.format == ExplainFormat::json)
            writeJson(session, *record);
        else
            writeText(session, *record);
        const bool differs = std::ranges::any_of(record->values, [](const ValueOrigin &value) {
            return value.check == OriginCheck::differs;
        });
        if (differs || record->state == SourceNow::changed)
            exit = Exit::damagedEvidence;
    }
    closeProject(program);
    return exit;
}

} // namespace

Command explainCommand() {
    const auto given = std::make_shared<Arguments>();
    return {
        .name = "explain",
        .what = "Where the values of a row come from, and whether the evidence still says so",
        .readme = {"`explain PROJECT ID`",
                   "tells where each value of a row comes from: file, hash, place, stored form, "
                   "rule, zone; `--field`"},
        .examples = {{"explain case.nvp 17", "all values"},
                     {"explain case.nvp 17 --field ActionDateUTC", "one of them"},
                     {"explain case.nvp 17 --format json", ""}},
        .arguments = {projectWord(given->project), rowWord(given->urlId),
                      value("--field", given->field, "A column of the row or the name of a fact"),
                      choice<ExplainFormat>(
                          "--format", given->format,
                          {{"text", ExplainFormat::text}, {"json", ExplainFormat::json}},
                          "text or json")},
        .run = [given](Session &session) { return run(session, *given); }};
}

} // namespace nv::cli
