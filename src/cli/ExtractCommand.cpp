#include "app/jobs/RecordContent.h"
#include "base/Files.h"
#include "base/Md5.h"
#include "base/Text.h"
#include "cli/Commands.h"
#include "cli/OutputPath.h"
#include "cli/RowCheck.h"
#include "cli/Session.h"
#include "cli/SharedArguments.h"
#include "db/RecordStore.h"
#include "readers/CachedBody.h"
#include "reports/ExportFile.h"

#include <fmt/format.h>

namespace nv::cli {

namespace fs = std::filesystem;

namespace {

struct Arguments {
    std::string project;
    std::int64_t urlId = 0;
    std::string file; ///< "-" for the standard output
    bool overwrite = false;
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
    const auto content = contentOf(record, {evidence, session.scratch(), program.log});
    if (!content) {
        session.err << fmt::format("row {}: {}\n", urlId, printable(missingContent(record)));
        return Exit::damagedEvidence;
    }
    writeContent(session, *content, arguments.file);
    session.err << fmt::format("{}, MD5 {}{}\n", counted(fs::file_size(*content), "byte"),
                               fileMD5(*content).value_or(""),
                               record.GZipEncoded ? ", unpacked" : "");
    return Exit::ok;
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
                          flag("--overwrite", given->overwrite, "Replace FILE when it is there")},
            .run = [given](Session &session) { return run(session, *given); }};
}

} // namespace nv::cli
