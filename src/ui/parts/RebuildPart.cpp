#include "ui/parts/RebuildPart.h"

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

namespace {

void showRebuilt(Workbench &bench, const RebuildReport &report) {
    bench.refreshRows();
    if (std::ranges::count(report.pages, Redrawn::yes, &RebuiltPage::thumbnail) > 0)
        emit bench.thumbnailsChanged();
    bench.showNotice(toQt(reportText(report)));
}

/// A command with the number of tagged pages that it takes.
QString commandText(qint64 count, const QString &ofOne, const QString &ofTagged) {
    return count > 0 ? ofTagged.arg(count) : ofOne;
}

} // namespace

RebuildPart::RebuildPart(Workbench &bench) : m_bench(bench) {
    const auto connectTo = [this](const QAction *action, const char *procedure, auto command) {
        connect(action, &QAction::triggered, this,
                [this, procedure, command] { m_bench.run(procedure, command); });
    };
    connectTo(bench.actions.rebuild, "MainForm.RebuildTaggedPages()", [this] { rebuild({}); });
    connectTo(bench.actions.rebuildExactly, "MainForm.RebuildTaggedPages()",
              [this] { rebuild(MethodChoice::exact); });
    connectTo(bench.actions.rebuildByClassic, "MainForm.RebuildTaggedPages()",
              [this] { rebuild(MethodChoice::classic); });
    connectTo(bench.actions.rebuildPage, "MainForm.RebuildWebPage()",
              [this] { rebuildCurrent({}); });
    connect(bench.table, &TableTab::statusChanged, this, &RebuildPart::sayWhatRebuildDoes);
    connect(&bench, &Workbench::projectClosing, this, &RebuildPart::sayWhatRebuildDoes);
}

void RebuildPart::sayWhatRebuildDoes() const {
    const qint64 count = m_bench.table->shownTaggedCount();
    const MainActions &actions = m_bench.actions;
    actions.rebuild->setText(commandText(count, tr("&Rebuild"), tr("&Rebuild %L1 Ticked")));
    actions.rebuildExactly->setText(
        commandText(count, tr("Rebuild E&xactly"), tr("Rebuild %L1 Ticked E&xactly")));
    actions.rebuildByClassic->setText(commandText(count, tr("Rebuild by Cla&ssic Rules"),
                                                  tr("Rebuild %L1 Ticked by Cla&ssic Rules")));
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

void RebuildPart::rebuild(std::optional<MethodChoice> method) {
    if (!m_bench.table->table())
        return;
    const std::vector<UrlId> tagged = shownTagged(m_bench);
    if (!tagged.empty())
        rebuildTaggedPages(tagged, method);
    else
        rebuildCurrent(method);
}

void RebuildPart::rebuildCurrent(std::optional<MethodChoice> method) {
    if (const auto current = m_bench.table->grid().currentUrl())
        rebuildNow(m_bench, *current, method);
}

void RebuildPart::rebuildTaggedPages(const std::vector<UrlId> &ids,
                                     std::optional<MethodChoice> method) {
    Program &program = m_bench.program;
    RebuildReport report;
    report.asked = ids.size();
    const auto keep = [&](const RebuiltPage &page) { report.pages.push_back(page); };
    m_bench.runTask({"REBUILDING WEB PAGES", "Rebuilding Web Pages ", "", ""},
                    [&](TaskMonitor &task) {
                        RecordTools tools(program, task, program.state.tempFolderPath);
                        report.cancelled = !rebuildPages(program, tools, ids, keep, method);
                    });
    showRebuilt(m_bench, report);
}

void rebuildNow(Workbench &bench, UrlId id, std::optional<MethodChoice> method) {
    if (!bench.mayWrite())
        return;
    Program &program = bench.program;
    RebuildReport report;
    report.asked = 1;
    bench.runTask({"Rebuilding", "", "", ""}, [&](TaskMonitor &task) {
        RecordTools tools(program, task, program.state.tempFolderPath);
        if (const auto page = rebuildPage(program, tools, id, method))
            report.pages.push_back(*page);
        const auto rebuilt = std::ranges::count(report.pages, true, &RebuiltPage::rebuilt);
        const bool whole = rebuilt > 0 || task.advance(1);
        noteRebuild(program, static_cast<std::size_t>(rebuilt), 1,
                    whole ? TaskEnd::whole : TaskEnd::cancelled);
    });
    showRebuilt(bench, report);
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
