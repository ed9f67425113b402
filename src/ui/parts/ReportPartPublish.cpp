#include "app/jobs/Trail.h"
#include "app/messages/Messages.h"
#include "app/messages/ReportMessages.h"
#include "app/project/EvidenceFolders.h"
#include "app/settings/Settings.h"
#include "base/Trap.h"
#include "platform/qt/QtText.h"
#include "reports/case/RedactionNotes.h"
#include "reports/report/PublishReport.h"
#include "ui/parts/ReportPart.h"

#include <QDesktopServices>
#include <QUrl>

#include <algorithm>

namespace nv {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kChooseFolder =
    "Publish Report: Select an output folder for the published report:";

/// Nothing is ever written beside evidence.
void refuseEvidence(const fs::path &target, ProgramState &state) {
    if (const auto folder = evidenceAround(target, state))
        throw StorageFailure(messages::liesInEvidence(target, *folder).text);
}

} // namespace

void ReportPart::publishReport() {
    publish(readNumber(m_bench.program.settings, "ReportType"));
}

bool ReportPart::publish(int type) {
    const ProgramState &state = m_bench.program.state;
    if (!isReportThere(ReportFolder::of(state.tempFolderPath, type), type)) {
        m_bench.examiner().tell(messages::nothingToPublish());
        return false;
    }
    if (!mayShowAll(type))
        return false;
    const auto target =
        m_bench.dialogs.chooseFolder(std::string(kChooseFolder), state.publishTempFolder);
    if (!target || !fs::is_directory(*target))
        return false;
    refuseEvidence(*target, m_bench.program.state);
    return m_bench.examiner().ask(messages::readyToPublish()) == Answer::Yes &&
           mayReplace(*target, type) && publishTo(*target, type);
}

/// A redaction that nothing fits may be misspelt, and then all is handed over.
bool ReportPart::mayShowAll(int type) const {
    const auto made = std::find_if(m_made.rbegin(), m_made.rend(), [&](const Made &each) {
        return each.type == type && isThere(each);
    });
    if (made == m_made.rend() || made->unmet.empty())
        return true;
    return m_bench.examiner().ask(messages::redactionsUnmet(linesOf(made->unmet))) == Answer::Yes;
}

/// What an earlier report held and this one doesn't would be handed over with it. False when the
/// examiner thinks better of it.
bool ReportPart::mayReplace(const fs::path &target, int type) const {
    if (!isReportThere(ReportFolder::at(target), type))
        return true;
    return m_bench.examiner().ask(messages::replacePublished(textOf(target))) == Answer::Yes;
}

bool ReportPart::publishTo(const fs::path &target, int type) {
    Published published;
    std::optional<std::string> failure;
    m_bench.runTask({"PUBLISHING REPORT", "Copying report contents to output folder...", "", ""},
                    [&](TaskMonitor &task) {
                        failure = failureOf(m_bench.program.log, "MainForm.PublishReport()", [&] {
                            const ReportFolder report =
                                ReportFolder::of(m_bench.program.state.tempFolderPath, type);
                            removePublished(target, type);
                            published = nv::publishReport(report, type, target, task);
                            if (!published.cancelled)
                                notePublish(m_bench.program, ReportFolder::at(target).index(type),
                                            published);
                        });
                    });
    if (failure) {
        m_bench.examiner().tell(messages::commandFailed(*failure));
        return false;
    }
    if (published.cancelled) {
        m_bench.showNotice(tr("Publishing was cancelled after %L1 files.").arg(published.files));
        return false;
    }
    settle(type);
    m_bench.examiner().tell(messages::reportPublished());
    return true;
}

void ReportPart::openFolder() const {
    const fs::path last = lastReport();
    const ReportFolder report(m_bench.program.state.tempFolderPath);
    QDesktopServices::openUrl(
        QUrl::fromLocalFile(pathToQt(last.empty() ? report.path : last.parent_path())));
}

} // namespace nv
