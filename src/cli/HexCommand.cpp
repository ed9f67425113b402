#include "app/jobs/ExplainJob.h"
#include "app/project/Project.h"
#include "base/Files.h"
#include "base/Text.h"
#include "cli/Commands.h"
#include "cli/RowCheck.h"
#include "cli/Session.h"
#include "cli/SharedArguments.h"
#include "views/hex/HexFind.h"
#include "views/hex/HexSource.h"

#include <fmt/format.h>

#include <algorithm>

namespace nv::cli {

namespace {

struct Arguments {
    std::string project;
    std::int64_t urlId = 0;
    std::string offset; ///< decimal, or hexadecimal with "0x"; empty for the start
    std::int64_t length = 512;
    bool source = false; ///< the artefact file at the record's offset, not the cached content
    std::string find;    ///< a text
    std::string findBytes;
    bool ignoreCase = false;
};

struct Place {
    std::filesystem::path file;
    std::uint64_t offset = 0; ///< where to begin when the call doesn't say
};

/// Of a row that is there and can't be read all the same.
std::nullopt_t tellUnread(Session &session, UrlId urlId) {
    session.err << fmt::format("row {}: it can't be read; see \"{}\"\n", urlId,
                               printable(textOf(session.program.log.path())));
    return std::nullopt;
}

/// Nothing when there are no bytes, which is told.
std::optional<Place> placeOf(Session &session, RecordTools &tools, UrlId urlId, bool ofSource) {
    if (ofSource) {
        const auto record = tools.record(urlId);
        if (!record)
            return tellUnread(session, urlId);
        if (const auto source = sourceInProject(session.program, tools, urlId, *record))
            return Place{source->file, source->offset};
        session.err << fmt::format("row {}: {}\n", urlId, printable(missingSource(*record)));
        return std::nullopt;
    }
    const auto content = contentOfRecord(tools, urlId);
    if (!content)
        return tellUnread(session, urlId);
    if (content->file)
        return Place{*content->file, 0};
    session.err << fmt::format("row {}: {}\n", urlId, printable(content->reason));
    return std::nullopt;
}

std::vector<HexNeedle> needlesOf(const Arguments &arguments) {
    if (!arguments.find.empty())
        return needlesOfText(arguments.find,
                             arguments.ignoreCase ? LetterCase::ignored : LetterCase::exact);
    const auto needle = needleOfBytes(arguments.findBytes);
    if (!needle)
        throw UsageError("bytes are given as \"4A 46 49 46\"");
    return {*needle};
}

std::uint64_t beginningOf(const Arguments &arguments, std::uint64_t otherwise) {
    if (arguments.offset.empty())
        return otherwise;
    const auto offset = offsetIn(arguments.offset);
    if (!offset)
        throw UsageError("an offset is a decimal number, or hexadecimal as 0x1F40");
    return *offset;
}

/// Nothing at all would look as though the bytes had been read.
void checkBeginning(const HexSource &source, std::uint64_t at) {
    if (source.size() == 0)
        throw UsageError("there is no byte to show: the file is empty");
    if (at >= source.size())
        throw UsageError(fmt::format("offset {0} (0x{0:X}) lies beyond the end: there are {1}", at,
                                     counted(source.size(), "byte")));
}

Exit writeRows(Session &session, const HexSource &source, std::uint64_t at, std::uint64_t length) {
    while (length > 0 && !interrupted) {
        const Bytes bytes = source.file().read(at, std::min(length, kHexRowBytes));
        if (bytes.empty())
            break;
        session.out << hexLine(ByteView(bytes, at), source.offsetDigits()) << '\n';
        at += bytes.size();
        length -= bytes.size();
    }
    return interrupted ? Exit::interrupted : Exit::ok;
}

/// Every match, with the row of bytes that begins there.
Exit writeMatches(Session &session, const HexSource &source, std::uint64_t at,
                  const std::vector<HexNeedle> &needles) {
    std::uint64_t matches = 0;
    for (;;) {
        const HexSearch search = findInFile(source.file(), needles, at, session.task);
        if (search.cancelled)
            return Exit::interrupted;
        if (!search.match)
            break;
        session.task.clear();
        writeRows(session, source, search.match->offset, kHexRowBytes);
        at = search.match->offset + 1;
        ++matches;
    }
    session.task.clear();
    session.err << counted(matches, "match", "matches") << '\n';
    return Exit::ok;
}

Exit run(Session &session, const Arguments &arguments) {
    const bool finds = !arguments.find.empty() || !arguments.findBytes.empty();
    if (!arguments.find.empty() && !arguments.findBytes.empty())
        throw UsageError("either --find or --find-bytes was expected");
    if (arguments.length < 1)
        throw UsageError(
            fmt::format("--length {}: at least 1 byte was expected", arguments.length));
    const auto needles = finds ? needlesOf(arguments) : std::vector<HexNeedle>();
    session.openForReading(arguments.project);
    const UrlId urlId = checkedRow(session.program.state.projectDB.connection(), arguments.urlId);
    Exit exit = Exit::damagedEvidence;
    {
        RecordTools tools(session.program, session.task, session.scratch());
        if (const auto place = placeOf(session, tools, urlId, arguments.source)) {
            const HexSource source(place->file);
            const std::uint64_t at = beginningOf(arguments, finds ? 0 : place->offset);
            checkBeginning(source, at);
            exit = finds ? writeMatches(session, source, at, needles)
                         : writeRows(session, source, at,
                                     static_cast<std::uint64_t>(arguments.length));
        }
    }
    closeProject(session.program);
    return exit;
}

} // namespace

Command hexCommand() {
    const auto given = std::make_shared<Arguments>();
    return {
        .name = "hex",
        .what = "The bytes of a row's cached content",
        .readme = {"`hex PROJECT ID`",
                   "shows its bytes; `--find`, `--source` for the artefact at the record"},
        .examples = {{"hex case.nvp 17 --length 64", "the first bytes of its content"},
                     {"hex case.nvp 17 --source", "the artefact where the record lies"},
                     {"hex case.nvp 17 --find password --ignore-case", "every place of a text"}},
        .arguments = {projectWord(given->project), rowWord(given->urlId),
                      flag("--source", given->source,
                           "The source file at the record's offset, not the cached content"),
                      value("--offset", given->offset, "Where to begin, decimal or as 0x1F40"),
                      value("--length", given->length, "How many bytes").showingDefault(),
                      value("--find", given->find,
                            "Every place of this text, in Windows-1252, UTF-8 and UTF-16"),
                      value("--find-bytes", given->findBytes,
                            "Every place of bytes as \"4A 46 49 46\""),
                      flag("--ignore-case", given->ignoreCase, "Letters of --find in either case")},
        .run = [given](Session &session) { return run(session, *given); }};
}

} // namespace nv::cli
