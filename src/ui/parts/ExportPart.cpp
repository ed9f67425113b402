#include "ui/parts/ExportPart.h"

#include "app/jobs/ArchiveSource.h"
#include "app/jobs/RecordTools.h"
#include "app/jobs/Trail.h"
#include "app/messages/Messages.h"
#include "app/project/EvidenceFolders.h"
#include "base/Files.h"
#include "base/Trap.h"
#include "platform/qt/QtText.h"
#include "reports/exports/ExportRows.h"
#include "ui/reports/ExportForm.h"

#include <QAction>
#include <QDesktopServices>
#include <QUrl>

namespace nv {

ExportPart::ExportPart(Workbench &bench)
    : openFile([](const std::filesystem::path &path) {
          QDesktopServices::openUrl(QUrl::fromLocalFile(pathToQt(path)));
      }),
      m_bench(bench) {
    connect(bench.actions.exportRows, &QAction::triggered, this,
            [this] { m_bench.run("MainForm.ExportColumns()", [this] { exportColumns(); }); });
}

void ExportPart::exportColumns() {
    UrlTable *table = m_bench.table->table();
    if (!table)
        return;
    ProgramState &state = m_bench.program.state;
    Export job;
    job.columnsAsString = columnsAsString(m_bench.table->grid().tableLayout().shownColumns());
    selectTagged(job, *table, m_bench.project());
    ExportForm form(job, table->rowCount(), {state.projectDBPath, evidenceFolders(state)},
                    m_bench.examiner(), &m_bench.window);
    form.exec();
    if (form.result() == QDialog::Accepted && !job.cancel)
        run(job);
}

void ExportPart::run(Export &job) {
    UrlTable &table = *m_bench.table->table();
    ExportEnd end = ExportEnd::cancelled;
    std::optional<std::string> failure;
    m_bench.runTask({"EXPORTING URLS", "Collecting row data...", "", ""}, [&](TaskMonitor &task) {
        failure = failureOf(m_bench.program.log, "MainForm.ExportColumns()", [&] {
            const RecordTools tools(m_bench.program, task, m_bench.program.state.tempFolderPath);
            const WarcSource contents = warcSource(m_bench.program, tools);
            job.contents = &contents;
            end = exportRows(job, table, m_bench.program.state.tempFolderPath, task);
            if (end == ExportEnd::exported)
                noteExport(m_bench.program, job);
            job.contents = nullptr;
        });
    });
    job.abandon();
    table.showColumns(m_bench.table->grid().tableLayout().shownColumns());
    if (failure)
        m_bench.examiner().tell(messages::exportFailed(*failure));
    else if (end == ExportEnd::cancelled)
        m_bench.showNotice(tr("The export was cancelled: nothing was written."));
    else
        tell(job);
}

void ExportPart::tell(const Export &job) {
    std::string notes;
    for (const std::string &note : notesOf(job))
        notes += "\n" + note;
    m_bench.showNotice(
        tr("%L1 rows exported to %2").arg(job.counts.rows).arg(toQt(textOf(job.outputFilePath))));
    if (m_bench.examiner().ask(messages::columnsExported(notes)) == Answer::Yes)
        openFile(job.outputFilePath);
}

} // namespace nv
