// The main window's part of rebuilding, and the panes that show the current record.
#include "app/Messages.h"
#include "app/RebuildText.h"
#include "app/ShownPage.h"
#include "app/ui/MainForm.h"
#include "platform/qt/QtText.h"
#include "rebuild/Harvest.h"
#include "views/ui/AuditPane.h"
#include "views/ui/BrowserPane.h"
#include "views/ui/PropertiesPane.h"
#include "views/ui/TableTab.h"

#include <QLabel>
#include <QTabWidget>
#include <SQLiteCpp/Database.h>

#include <algorithm>

namespace nv {

namespace {

constexpr int kAgain = 50; ///< milliseconds after which a locked window is asked again

/// The error log has the reason, but for a switch that the examiner can turn.
QString auditFailure(const URLClass &page, const RebuildSettings &settings) {
    const QString failure = MainForm::tr("Error Loading Audit");
    return needsWideIds(page.IngredientIDs, settings)
               ? failure + QStringLiteral(": ") + toQt(reasonText(NotRebuilt::wideIds))
               : failure;
}

QString notBroughtBack(const URLClass &page, const RebuildSettings &settings) {
    const bool ids = needsWideIds(page.IngredientIDs, settings);
    return MainForm::tr("The rebuilt page can't be brought back: %1.")
        .arg(toQt(reasonText(ids ? NotRebuilt::wideIds : NotRebuilt::failed)));
}

} // namespace

/// In the order of the grid: ticked rows that it doesn't show are left alone.
std::vector<std::int64_t> MainForm::shownTagged() {
    const std::vector<std::int64_t> tagged = taggedIds(m_program);
    std::vector<std::int64_t> shown;
    for (const std::int64_t id : m_table->table()->ids())
        if (std::binary_search(tagged.begin(), tagged.end(), id))
            shown.push_back(id);
    return shown;
}

void MainForm::rebuild() {
    if (!m_table->table())
        return;
    const std::vector<std::int64_t> tagged = shownTagged();
    if (!tagged.empty())
        RebuildTaggedPages(tagged);
    else if (const auto current = m_table->grid().currentUrl())
        rebuildOne(number(*current));
}

void MainForm::RebuildTaggedPages(const std::vector<std::int64_t> &ids) {
    RebuildReport report;
    report.asked = ids.size();
    runTask({"REBUILDING WEB PAGES", "Rebuilding Web Pages ", "", ""}, [&](TaskMonitor &task) {
        RebuildTools tools(m_program, task, m_program.thisClass.TempFolderPath);
        report.cancelled = !rebuildPages(
            m_program, tools, ids, [&](const RebuiltPage &page) { report.pages.push_back(page); });
    });
    showRebuilt(report);
}

void MainForm::rebuildOne(std::int64_t id) {
    RebuildReport report;
    report.asked = 1;
    runTask({"Rebuilding", "", "", ""}, [&](TaskMonitor &task) {
        RebuildTools tools(m_program, task, m_program.thisClass.TempFolderPath);
        if (const auto page = rebuildPage(m_program, tools, id))
            report.pages.push_back(*page);
    });
    showRebuilt(report);
}

void MainForm::showRebuilt(const RebuildReport &report) {
    m_table->refreshRows();
    showViewers();
    showNotice(toQt(reportText(report)));
}

/// Stands in the status bar until the examiner goes to another row.
void MainForm::showNotice(const QString &text) {
    m_status.notice->setText(text);
    m_status.notice->setToolTip(Qt::convertFromPlainText(text));
    showStatusParts();
}

void MainForm::showStatusParts() {
    const bool open = isProjectOpen();
    const bool noticed = open && !m_status.notice->text().isEmpty();
    m_status.notice->setVisible(noticed);
    for (QLabel *label : {m_status.rows, m_status.tagged})
        label->setVisible(open);
    for (QLabel *label : {m_status.query, m_status.zone, m_status.base})
        label->setVisible(open && !noticed);
}

/// Parts of rebuilt pages are what these ids can't be, so it is told before the first rebuild.
void MainForm::tellOfWideIds() {
    ThisClass &state = m_program.thisClass;
    if (m_toldOfWideIds || state.WideRecordIds || !isProjectOpen())
        return;
    const std::int64_t largest =
        state.ProjectDB.connection().execAndGet("SELECT max(URL_ID) FROM URLs").getInt64();
    if (largest <= kLargestNarrowId)
        return;
    m_toldOfWideIds = true;
    if (m_program.around.examiner.ask(messages::idsBeyondNarrow(largest)) != Answer::Yes)
        return;
    state.WideRecordIds = true;
    m_program.settings.WriteIniValue("BEYOND", "WideRecordIds", true);
}

/// Only the pane in front is filled: the others may cost a while and are filled when they come up.
void MainForm::showViewers() {
    const QModelIndex current = m_table->grid().currentIndex();
    if (!m_table->table() || !m_table->grid().currentUrl()) {
        m_properties->clear();
        m_browser->clear();
        m_audit->clear();
    } else if (m_viewers->currentWidget() == m_properties) {
        m_properties->showRecord(*m_table->table(), static_cast<std::size_t>(current.row()));
    } else {
        m_showSoon.start(0);
    }
}

/// Comes after the click or key that chose the row is over: fetching parts runs as a task, which
/// locks the grid that the click is in.
void MainForm::showFrontPane() {
    if (m_locks > 0)
        return m_showSoon.start(kAgain);
    const auto id = m_table->grid().currentUrl();
    if (!id || !m_viewers->isVisibleTo(this))
        return;
    if (m_viewers->currentWidget() == m_audit)
        run("MainForm.LoadAudit()", [this, &id] { showAudit(*id); });
    else if (m_viewers->currentWidget() == m_browser)
        run("MainForm.showPage()", [this, &id] { showPage(*id); });
}

/// The folder of a page that was rebuilt in an earlier run of the program is made anew.
bool MainForm::bringBack(URLClass &page) {
    Unwatched nobody;
    RebuildTools tools(m_program, nobody, m_program.thisClass.TempFolderPath);
    if (hasFolder(tools, page))
        return true;
    bool whole = false;
    runTask({"HARVESTING ITEMS FOR SELECTED FILE", "Please standby...", "", ""},
            [&](TaskMonitor &task) {
                RebuildTools watched(m_program, task, m_program.thisClass.TempFolderPath);
                whole = bringBackFolder(watched, page);
            });
    return whole;
}

void MainForm::showAudit(UrlId id) {
    Unwatched nobody;
    RebuildTools tools(m_program, nobody, m_program.thisClass.TempFolderPath);
    const RebuildContext &ctx = tools.context();
    auto page = tools.record(number(id));
    if (!page || !page->CacheFileRebuilt)
        return m_audit->showReason(
            tr("This record was not rebuilt, so nothing in it was replaced."));
    std::vector<AuditRow> rows;
    if (bringBack(*page))
        rows = LoadAudit(*page, rebuildFolderOf(page->URLID, ctx), ctx);
    if (rows.empty())
        m_audit->showReason(auditFailure(*page, ctx.settings));
    else
        m_audit->showAudit(std::move(rows));
}

/// A rebuilt page that can't be brought back is shown as it was cached, and the examiner learns it.
void MainForm::showPage(UrlId id) {
    m_browser->clear();
    Unwatched nobody;
    RebuildTools tools(m_program, nobody, m_program.thisClass.TempFolderPath);
    auto record = tools.record(number(id));
    if (!record)
        return;
    if (record->CacheFileRebuilt && !bringBack(*record)) {
        record->CacheFileRebuilt = false;
        showNotice(notBroughtBack(*record, tools.context().settings));
    }
    const ShownPage shown = pageToShow(tools, *record);
    if (shown.file.empty())
        m_browser->showReason(toQt(shown.reason));
    else
        m_browser->showPage(shown.file, shown.rebuilt ? tr("Rebuilt page") : tr("Cached content"));
}

} // namespace nv
