#include "views/explain/ContentCheck.h"

#include "base/Digest.h"
#include "base/Files.h"
#include "base/Trap.h"
#include "db/records/RecordFacts.h"
#include "import/OpenedFiles.h"

namespace nv {

namespace {

constexpr std::string_view kProcedure = "MainForm.Explain()";

} // namespace

std::string contentHashThen(SQLite::Database &project, UrlId id) {
    for (const RecordFact &fact : RecordFacts(project).of(id))
        if (fact.name == "content_sha256")
            return factText(fact.value);
    return {};
}

ContentCheck checkContent(SQLite::Database &project, UrlRecord record,
                          const std::filesystem::path &scratch, FailureLog &log) {
    ContentCheck check;
    check.then = contentHashThen(project, record.URLID);
    OpenedFiles opened;
    const Evidence evidence(record.RootPath, &opened);
    record.RunTimeTempFilePath.clear(); // the evidence is asked, not what was fetched before
    logFailureOf(log, kProcedure, [&] {
        const auto content = bodyOf(record, {evidence, scratch, log}, 0);
        if (!content)
            return;
        if (content->file != record.RunTimeTempFilePath)
            static_cast<void>(evidence.open(content->file)); // is noted
        if (const auto hashes = hashesOfFile(content->file))
            check.now = hashes->sha256;
    });
    check.files = opened.take();
    return check;
}

} // namespace nv
