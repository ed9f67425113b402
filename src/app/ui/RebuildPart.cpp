#include "app/ui/RebuildPart.h"

#include "app/Messages.h"
#include "app/RebuildJob.h"
#include "app/RebuildText.h"
#include "app/SettingsInForce.h"
#include "app/Trail.h"
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

std::vector<std::int64_t> shownTagged(Workbench &bench) {
    std::vector<std::int64_t> shown;
    if (!bench.table->table())
        return shown;
    UnreadRows logged;
    const std::vector<std::int64_t> tagged = taggedIds(bench.program, logged);
    for (const std::int64_t id : bench.table->table()->ids())
        if (std::binary_search(tagged.begin(), tagged.end(), id))
            shown.push_back(id);
    return shown;
}

void RebuildPart::rebuild() {
    if (!m_bench.table->table())
        return;
    const std::vector<std::int64_t> tagged = shownTagged(m_bench);
    if (!tagged.empty())
        RebuildTaggedPages(tagged);
    else
        rebuildCurrent();
}

void RebuildPart::rebuildCurrent() {
    if (const auto current = m_bench.table->grid().currentUrl())
        rebuildOne(number(*current));
}

void RebuildPart::RebuildTaggedPages(const std::vector<std::int64_t> &ids) {
    Program &program = m_bench.program;
    RebuildReport report;
    report.asked = ids.size();
    m_bench.runTask(
        {"REBUILDING WEB PAGES", "Rebuilding Web Pages ", "", ""}, [&](TaskMonitor &task) {
            RecordTools tools(program, task, program.thisClass.TempFolderPath);
            report.cancelled = !rebuildPages(program, tools, ids, [&](const RebuiltPage &page) {
                report.pages.push_back(page);
            });
        });
    showRebuilt(report);
}

void RebuildPart::rebuildOne(std::int64_t id) {
    if (!m_bench.mayWrite())
        return;
    Program &program = m_bench.program;
    RebuildReport report;
    report.asked = 1;
    m_bench.runTask({"Rebuilding", "", "", ""}, [&](TaskMonitor &task) {
        RecordTools tools(program, task, program.thisClass.TempFolderPath);
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
    ThisClass &state = m_bench.program.thisClass;
    if (m_toldOfWideIds || state.WideRecordIds || !m_bench.isProjectOpen())
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
