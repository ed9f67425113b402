#include "app/RecordContent.h"
#include "app/cli/Commands.h"
#include "app/cli/OutputPath.h"
#include "app/cli/RowCheck.h"
#include "base/Files.h"
#include "base/Md5.h"
#include "base/Text.h"
#include "db/RecordStore.h"
#include "readers/CachedBody.h"
#include "reports/ExportFile.h"

#include <fmt/format.h>

namespace nv::cli {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kStandardOutput = "-";

RecordStore storeOf(Program &program) {
    ThisClass &state = program.thisClass;
    return {program.thisClass.ProjectDB.connection(),
            {state.GMTZone, state.EnableDSTChanges},
            program.around.clock,
            program.log};
}

/// Throws UsageError when writing to `file` would cost something.
void checkTarget(const fs::path &file, ThisClass &state, IfThere ifThere) {
    refuseUntouchable(file, state);
    if (fs::exists(file) && ifThere == IfThere::refuse)
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

} // namespace

Exit extractCommand(Session &session, const std::string &project, std::int64_t urlId,
                    const std::string &file, IfThere ifThere) {
    session.openForReading(project);
    Program &program = session.program;
    if (file != kStandardOutput)
        checkTarget(file, program.thisClass, ifThere);
    checkRow(program.thisClass.ProjectDB.connection(), urlId);
    auto stored = storeOf(program).GetURL(UrlId{urlId});
    if (!stored)
        throw StorageFailure(
            fmt::format("row {} can't be read; see \"{}\"", urlId, textOf(program.log.path())));
    URLClass &record = *stored;
    const Evidence evidence(program.thisClass.RootPath);
    const auto content = contentOf(record, {evidence, session.scratch(), program.log});
    if (!content) {
        session.err << fmt::format("row {}: {}\n", urlId, printable(missingContent(record)));
        return Exit::damagedEvidence;
    }
    writeContent(session, *content, file);
    session.err << fmt::format("{}, MD5 {}{}\n", counted(fs::file_size(*content), "byte"),
                               FileMD5(*content).value_or(""),
                               record.GZipEncoded ? ", unpacked" : "");
    return Exit::ok;
}

} // namespace nv::cli
