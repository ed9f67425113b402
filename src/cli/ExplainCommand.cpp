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

std::string_view stateWord(const FurtherFile &file) {
    if (file.sha256Then.empty())
        return stateWord(SourceNow::unhashed);
    if (file.sha256.empty())
        return stateWord(SourceNow::gone);
    return stateWord(file.hasChanged() ? SourceNow::changed : SourceNow::same);
}

/// Nobody can check what the evidence doesn't give again. A row whose content alone is missing is
/// told with that value.
Exit exitOf(Session &session, const RecordOrigin &record) {
    Exit exit = Exit::ok;
    const auto fail = [&](const std::string &why) {
        session.err << printable(why) << '\n';
        exit = Exit::damagedEvidence;
    };
    if (record.state == SourceNow::gone)
        fail(fmt::format("row {}: the evidence isn't there: \"{}\" can't be found, so nothing "
                         "could be compared",
                         record.id, record.file));
    else if (record.state == SourceNow::changed)
        fail(fmt::format("row {}: \"{}\" has changed since the import", record.id, record.file));
    for (const FurtherFile &file : record.further)
        if (file.hasChanged())
            fail(fmt::format("row {}: \"{}\" {} since the import", record.id, file.name,
                             file.sha256.empty() ? "can't be read or is gone" : "has changed"));
    for (const ValueOrigin &value : record.values)
        if (value.check == OriginCheck::differs)
            fail(fmt::format("row {}: the evidence gives another {}", record.id, value.field));
    return exit;
}

/// Marks of direction and the like, which would turn the lines of a terminal around, stand in JSON
/// as "\u202e". They only come in texts.
std::string unmasked(const std::string &json) {
    std::string plain;
    plain.reserve(json.size());
    for (std::size_t at = 0; at < json.size(); ++at) {
        const auto byte = [&](std::size_t place) {
            return static_cast<std::uint8_t>(place < json.size() ? json[place] : 0);
        };
        const std::uint32_t code =
            (byte(at) & 0x0FU) << 12U | (byte(at + 1) & 0x3FU) << 6U | (byte(at + 2) & 0x3FU);
        const bool isMark = byte(at) == 0xE2 && ((code >= 0x200B && code <= 0x200F) ||
                                                 (code >= 0x2028 && code <= 0x202E) ||
                                                 (code >= 0x2060 && code <= 0x206F));
        const bool isControl =
            byte(at) == 0x7F || (byte(at) == 0xC2 && (byte(at + 1) < 0xA0 || byte(at + 1) == 0xAD));
        if (isMark)
            plain += fmt::format("\\u{:04x}", code);
        else if (isControl)
            plain += fmt::format("\\u{:04x}", byte(at) == 0x7F ? 0x7F : byte(at + 1));
        else
            plain.push_back(json[at]);
        at += isMark ? 2 : isControl && byte(at) == 0xC2 ? 1 : 0;
    }
    return plain;
}

/// Programs get more than people are shown, but no megabytes.
std::string bounded(const std::string &text) {
    constexpr std::size_t kMost = 65536; // bytes
    std::size_t end = std::min(text.size(), kMost);
    while (end > 0 && end < text.size() && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U)
        --end; // not amid a character
    return text.substr(0, end);
}

void writeJson(Session &session, const RecordOrigin &record) {
    using Json = nlohmann::ordered_json;
    Json values = Json::array();
    for (const ValueOrigin &value : record.values) {
        Json one = {{"field", value.field},
                    {"value", bounded(value.value)},
                    {"check", checkWord(value.check)}};
        if (bounded(value.value).size() < value.value.size())
            one["value_bytes"] = value.value.size();
        for (const auto &[name, text] :
             {std::pair("place", &value.place), std::pair("stored", &value.stored),
              std::pair("rule", &value.rule), std::pair("zone", &value.zone),
              std::pair("note", &value.note)})
            if (!text->empty())
                one[name] = bounded(*text);
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
        further.push_back({{"file", file.name},
                           {"sha256", file.sha256},
                           {"sha256_then", file.sha256Then},
                           {"today", stateWord(file)}});
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
    session.out << unmasked(all.dump(1, ' ', false, Json::error_handler_t::replace)) << '\n';
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
        exit = exitOf(session, *record);
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
