#include "app/jobs/RecordContent.h"
#include "base/Files.h"
#include "base/Md5.h"
#include "base/Text.h"
#include "cli/Commands.h"
#include "cli/OutputPath.h"
#include "cli/RowCheck.h"
#include "cli/Session.h"
#include "cli/SharedArguments.h"
#include "db/records/RecordStore.h"
#include "maintenance/SourceCheck.h"
#include "readers/CachedBody.h"
#include "reports/exports/ExportFile.h"
#include "views/explain/ContentCheck.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <set>
#include <vector>

namespace nv::cli {

namespace fs = std::filesystem;

namespace {

struct Arguments {
    std::string project;
    std::int64_t urlId = 0;
    std::string file; ///< "-" for the standard output
    bool overwrite = false;
    bool raw = false;
};

constexpr std::string_view kStandardOutput = "-";

RecordStore storeOf(Program &program) {
    ProgramState &state = program.state;
    return {program.state.projectDB.connection(),
            {state.gmtZone, state.enableDSTChanges},
            program.around.clock,
            program.log};
}

/// Throws UsageError when writing to the file would cost something.
void checkTarget(const Arguments &arguments, ProgramState &state) {
    const fs::path file = arguments.file;
    refuseUntouchable(file, state);
    if (fs::exists(file) && !arguments.overwrite)
        throw UsageError(
            fmt::format("\"{}\" is there already; --overwrite replaces it", textOf(file)));
}

void writeContent(Session &session, const fs::path &content, const std::string &file) {
    if (file != kStandardOutput) {
        ExportFile whole(file);
        copyToScratch(content, whole.aside());
        return whole.finish();
    }
    readInBlocks(content, [&session](std::string_view block, std::uint64_t) {
        session.out.write(block.data(), static_cast<std::streamsize>(block.size()));
        return session.out.good();
    });
}

std::string packingOf(const Body &content) {
    std::string text;
    if (!content.unpackedFrom.empty())
        text += fmt::format(", unpacked ({})", printable(content.unpackedFrom));
    if (!content.doubt.empty())
        text += fmt::format("; {}", printable(content.doubt));
    return text;
}

std::string namesOf(const std::set<fs::path> &files) {
    std::vector<std::string> names;
    for (const fs::path &file : files)
        names.push_back(fmt::format("\"{}\"", textOf(file)));
    return fmt::format("{}", fmt::join(names, ", "));
}

/// Those of the files that aren't as the import found them; all where none of them tells.
std::string changedOf(Session &session, const std::set<fs::path> &files) {
    Program &program = session.program;
    const SourceCheck check =
        verifySources(program.state.projectDB.connection(), program.log, session.task, &files);
    session.task.clear();
    std::set<fs::path> changed;
    for (const CheckedSource &source : check.sources)
        if (source.state == SourceState::changed || source.state == SourceState::appeared)
            changed.insert(source.path);
    return changed.empty() ? fmt::format("read from {}", namesOf(files))
                           : fmt::format("changed: {}", namesOf(changed));
}

/// Whether what was handed out is what was imported. Both hashes are of the content unpacked.
Exit compared(Session &session, UrlId urlId, const UrlRecord &record) {
    const ContentCheck content = checkContent(session.program.state.projectDB.connection(), record,
                                              session.scratch(), session.program.log);
    if (content.then.empty()) {
        session.err << fmt::format("row {}: the content wasn't hashed at the import, so nobody can "
                                   "say whether it is the same\n",
                                   urlId);
        return Exit::ok;
    }
    if (!content.differs())
        return Exit::ok;
    session.err << printable(fmt::format("row {}: the content is NOT what was imported: SHA-256 {} "
                                         "then, {} now; {}",
                                         urlId, content.then, content.now,
                                         changedOf(session, content.files)))
                << '\n';
    return Exit::damagedEvidence;
}

Exit run(Session &session, const Arguments &arguments) {
    session.openForReading(arguments.project);
    Program &program = session.program;
    if (arguments.file != kStandardOutput)
        checkTarget(arguments, program.state);
    const UrlId urlId = checkedRow(program.state.projectDB.connection(), arguments.urlId);
    auto stored = storeOf(program).getURL(urlId);
    if (!stored)
        throw StorageFailure(
            fmt::format("row {} can't be read; see \"{}\"", urlId, textOf(program.log.path())));
    UrlRecord &record = *stored;
    const Evidence evidence(program.state.rootPath);
    const Extraction extraction = {.evidence = evidence,
                                   .folder = session.scratch(),
                                   .log = program.log,
                                   .isAsStored = arguments.raw};
    const auto content = bodyOf(record, extraction, 0);
    if (!content) {
        session.err << fmt::format("row {}: {}\n", urlId, printable(missingContent(record)));
        return Exit::damagedEvidence;
    }
    writeContent(session, content->file, arguments.file);
    const std::uint64_t size = fs::file_size(content->file);
    const std::string md5 = fileMD5(content->file).value_or("");
    session.err << fmt::format("{}, MD5 {}{}\n", counted(size, "byte"), md5, packingOf(*content));
    return compared(session, urlId, record);
}

} // namespace

Command extractCommand() {
    const auto given = std::make_shared<Arguments>();
    return {.name = "extract",
            .what = "Write the cached content of a row to a file",
            .readme = {"`extract PROJECT ID FILE`", "writes the cached content of a row"},
            .examples = {{"extract case.nvp 17 page.html", "unpacked; its size and MD5 are told"},
                         {"extract case.nvp 17 - | strings", "to another program"}},
            .arguments = {projectWord(given->project), rowWord(given->urlId),
                          value("FILE", given->file, "Where to write it; - is the standard output")
                              .required(),
                          flag("--raw", given->raw, "As the cache keeps it, packed or not"),
                          flag("--overwrite", given->overwrite, "Replace FILE when it is there")},
            .run = [given](Session &session) { return run(session, *given); }};
}

} // namespace nv::cli
