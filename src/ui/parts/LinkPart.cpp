#include "ui/parts/LinkPart.h"

#include "app/jobs/LinkJob.h"
#include "app/messages/Messages.h"
#include "base/Trap.h"
#include "ui/parts/RecordJump.h"
#include "ui/viewers/LinksPane.h"

#include <QAction>

namespace nv {

LinkPart::LinkPart(Workbench &bench) : m_bench(bench) {
    auto *pane = new LinksPane({[&bench](UrlId id) { return linksOf(bench.program, id); },
                                [&bench] { return hasLinkAnalysis(bench.project()); }});
    bench.viewers->addPane(*pane, *pane, tr("Links"), "MainForm.LoadLinks()");
    connect(bench.actions.linkAnalysis, &QAction::triggered, this,
            [this] { m_bench.run("MainForm.RunLinkAnalysis()", [this] { analyse(); }); });
    connect(pane, &LinksPane::analysisWanted, this, [this] {
        if (m_bench.mayWrite())
            m_bench.actions.linkAnalysis->trigger();
    });
    connect(pane, &LinksPane::recordWanted, this, [this](qint64 id) {
        jumpToRecord(m_bench, UrlId{id}, messages::linkRecordUnavailable(),
                     "MainForm.PopupMenuLinks()");
    });
}

/// The table is loaded anew even after a failure: the pairs of earlier runs are gone then.
void LinkPart::analyse() {
    if (!m_bench.isProjectOpen() ||
        m_bench.examiner().ask(messages::useLinkAnalysis()) != Answer::Yes)
        return;
    Program &program = m_bench.program;
    LinkTotals totals;
    std::optional<std::string> failure;
    m_bench.runTask({"RUNNING LINK ANALYSIS", "Comparing History data to Cache data...", "", ""},
                    [&](TaskMonitor &task) {
                        failure = failureOf(program.log, "MainForm.RunLinkAnalysis()", [&] {
                            totals = analyseLinks(program, task, program.state.tempFolderPath);
                        });
                    });
    m_bench.examiner().tell(failure
                                ? messages::linkAnalysisFailed(*failure)
                                : messages::linkAnalysisResults(totals.matches, notesOn(totals)));
    m_bench.reload();
}

} // namespace nv
