#include "cli/ImportSummaryFile.h"

#include "app/jobs/ImportPageJob.h"
#include "base/Files.h"
#include "base/Trap.h"
#include "cli/RowWriter.h"
#include "cli/Session.h"
#include "cli/UsageError.h"
#include "import/ImportSummary.h"

#include <fmt/format.h>

#include <utility>

namespace nv::cli {

namespace fs = std::filesystem;

void checkSummaryFile(Session &session, const fs::path &file, bool overwrite) {
    if (const auto refusal = refusalOfImportPage(file, session.program.state))
        throw UsageError(*refusal);
    if (fs::exists(file) && !overwrite)
        throw UsageError(fmt::format("\"{}\" is there already", textOf(file)));
}

SummaryPage::SummaryPage(Session &session, fs::path file)
    : m_session(session), m_file(std::move(file)) {
    if (m_file.empty())
        return;
    checkSummaryFile(session, m_file, false);
    keepMissing({});
}

SummaryPage::~SummaryPage() {
    m_session.err << m_missing;
}

void SummaryPage::keepMissing(const std::string &reason) {
    m_missing = fmt::format("No summary was written to \"{}\"{}{}\n", printable(textOf(m_file)),
                            reason.empty() ? "" : ": ", printable(reason));
}

bool SummaryPage::write(const ImportSummary &summary) {
    if (m_file.empty())
        return true;
    // Without entries of its own the trail would tell of the import before.
    if (!summary.isNoted) {
        keepMissing(summary.cancelled ? "it was cancelled before anything was imported"
                                      : "the case trail doesn't tell of this import");
        return false;
    }
    const auto failure = failureOf(m_session.program.log, "ImportForm.Summary()", [&] {
        ImportOverview overview;
        // Whoever cancelled the import gets its rows counted: a further Ctrl+C ends that too.
        Unwatched nobody;
        TaskMonitor &task = summary.cancelled ? static_cast<TaskMonitor &>(nobody) : m_session.task;
        static_cast<void>(loadImportOverview(m_session.program.state.projectDB.connection(),
                                             summary, task, overview));
        saveImportPage(m_session.program, overview, m_file);
    });
    m_session.task.clear();
    if (failure)
        keepMissing(*failure);
    else
        m_missing.clear();
    return !failure;
}

} // namespace nv::cli
