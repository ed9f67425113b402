#include "ui/window/RebuildPart.h"

#include "app/jobs/RebuildJob.h"
#include "app/jobs/RebuildText.h"
#include "app/jobs/Trail.h"
#include "app/messages/Messages.h"
#include "app/options/SettingsInForce.h"
#include "platform/qt/QtText.h"
#include "rebuild/Harvest.h"

#include <QAction>
#include <SQLiteCpp/Database.h>

#include <algorithm>

namespace nv {

RebuildPart::RebuildPart(Workbench &bench) : m_bench(bench) {
    connect(bench.actions.rebuild, &QAction::triggered, this,
            [this] { m_bench.run("MainForm.RebuildTaggedPages()", [this] { rebuild(); }); });
    connect(bench.actions.rebuildPage, &QAction::triggered, this,
            [this] { m_bench.run("MainForm.RebuildWebPage()", [this] { rebuildCurrent(); }); });
    connect(bench.table, &TableTab::statusChanged, this, &RebuildPart::sayWhatRebuildDoes);
    connect(&bench, &Workbench::projectClosing, this, &RebuildPart::sayWhatRebuildDoes);
}

void RebuildPart::sayWhatRebuildDoes() const {
    const qint64 count = m_bench.table->shownTaggedCount();
    m_bench.actions.rebuild->setText(count > 0 ? tr("&Rebuild %L1 Tagged").arg(count)
                                               : tr("&Rebuild"));
}

std::vector<UrlId> shownTagged(Workbench &bench) {
    std::vector<UrlId> shown;
    if (!bench.table->table())
        return shown;
    UnreadRows logged;
    const std::vector<UrlId> tagged = taggedIds(bench.program, logged);
    for (const auto id : bench.table->table()->ids())
        if (std::ranges::binary_search(tagged, UrlId{id}))
            shown.push_back(UrlId{id});
    return shown;
}

void RebuildPart::rebuild() {
    if (!m_bench.table->table())
        return;
    const std::vector<UrlId> tagged = shownTagged(m_bench);
    if (!tagged.empty())
        rebuildTaggedPages(tagged);
    else
        rebuildCurrent();
}

void RebuildPart::rebuildCurrent() {
    if (const auto current = m_bench.table->grid().currentUrl())
        rebuildOne(*current);
}

void RebuildPart::rebuildTaggedPages(const std::vector<UrlId> &ids) {
    Program &program = m_bench.program;
    RebuildReport report;
    report.asked = ids.size();
    m_bench.runTask(
        {"REBUILDING WEB PAGES", "Rebuilding Web Pages ", "", ""}, [&](TaskMonitor &task) {
            RecordTools tools(program, task, program.state.tempFolderPath);
            report.cancelled = !rebuildPages(program, tools, ids, [&](const RebuiltPage &page) {
                report.pages.push_back(page);
            });
        });
    showRebuilt(report);
}

void RebuildPart::rebuildOne(UrlId id) {
    if (!m_bench.mayWrite())
        return;
    Program &program = m_bench.program;
    RebuildReport report;
    report.asked = 1;
    m_bench.runTask({"Rebuilding", "", "", ""}, [&](TaskMonitor &task) {
        RecordTools tools(program, task, program.state.tempFolderPath);
        if (const auto page = rebuildPage(program, tools, id))
            report.pages.push_back(*page);
        const auto rebuilt = std::ranges::count(report.pages, true, &RebuiltPage::rebuilt);
        const bool whole = rebuilt > 0 || task.advance(1);
        noteRebuild(program, static_cast<std::size_t>(rebuilt), 1,
                    whole ? TaskEnd::whole : TaskEnd::cancelled);
    });
    showRebuilt(report);
}

void RebuildPart::showRebuilt(const RebuildReport &report) {
    m_bench.refreshRows();
    if (std::ranges::count(report.pages, Redrawn::yes, &RebuiltPage::thumbnail) > 0)
        emit m_bench.thumbnailsChanged();
    m_bench.showNotice(toQt(reportText(report)));
}

void RebuildPart::tellOfWideIds() {
    ProgramState &state = m_bench.program.state;
    if (m_toldOfWideIds || state.wideRecordIds || !m_bench.isProjectOpen())
        return;
    const std::int64_t largest =
        m_bench.project().execAndGet("SELECT max(URL_ID) FROM URLs").getInt64();
    if (largest <= kLargestNarrowId)
        return;
    m_toldOfWideIds = true;
    if (m_bench.examiner().ask(messages::idsBeyondNarrow(largest)) != Answer::Yes)
        return;
    keepFlag(m_bench.program, "WideRecordIds", true);
}

} // namespace nv
