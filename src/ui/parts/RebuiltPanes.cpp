#include "ui/parts/RebuiltPanes.h"

#include "app/jobs/PartChoiceJob.h"
#include "app/jobs/RebuildText.h"
#include "app/jobs/ShownPage.h"
#include "app/messages/RebuildMessages.h"
#include "base/Files.h"
#include "platform/qt/QtText.h"
#include "rebuild/Harvest.h"
#include "rebuild/RebuildMethod.h"
#include "ui/gallery/GalleryTab.h"
#include "ui/parts/RebuildPart.h"
#include "ui/parts/RecordJump.h"
#include "ui/viewers/AuditPane.h"
#include "ui/viewers/BrowserPane.h"
#include "ui/viewers/PartChoiceForm.h"
#include "views/record/Audit.h"
#include "views/record/PartAlternatives.h"

#include <QTabWidget>

#include <utility>

namespace nv {

namespace {

/// The error log has the reason, but for a switch that the examiner can turn.
QString auditFailure(const UrlRecord &page, const RebuildSettings &settings) {
    const QString failure = RebuiltPanes::tr("Error Loading Audit");
    return needsWideIds(page.IngredientIDs, settings)
               ? failure + QStringLiteral(": ") + toQt(reasonText(NotRebuilt::wideIds))
               : failure;
}

QString notBroughtBack(const UrlRecord &page, const RebuildSettings &settings) {
    const bool ids = needsWideIds(page.IngredientIDs, settings);
    return RebuiltPanes::tr("The rebuilt page can't be brought back: %1.")
        .arg(toQt(reasonText(ids ? NotRebuilt::wideIds : NotRebuilt::failed)));
}

} // namespace

class RebuiltPanes::Browser final : public QObject, public RecordPane {
  public:
    Browser(RebuiltPanes &panes, BrowserPane &pane)
        : QObject(&pane), m_panes(panes), m_pane(pane) {}
    void showRecord(UrlId id) override { m_panes.showPage(m_pane, id); }
    void clear() override { m_pane.clear(); }

  private:
    RebuiltPanes &m_panes;
    BrowserPane &m_pane;
};

class RebuiltPanes::Audit final : public QObject, public RecordPane {
  public:
    Audit(RebuiltPanes &panes, AuditPane &pane) : QObject(&pane), m_panes(panes), m_pane(pane) {}
    void showRecord(UrlId id) override { m_panes.showAudit(m_pane, id); }
    void clear() override { m_pane.clear(); }

  private:
    RebuiltPanes &m_panes;
    AuditPane &m_pane;
};

RebuiltPanes::RebuiltPanes(Workbench &bench) : m_bench(bench) {
    auto *browser = new BrowserPane;
    auto *audit = new AuditPane;
    bench.viewers->addPane(*browser, *new Browser(*this, *browser), tr("Browser"),
                           "MainForm.showPage()");
    bench.viewers->addPane(*audit, *new Audit(*this, *audit), tr("Audit"), "MainForm.LoadAudit()");
    connect(browser, &BrowserPane::navigationBlocked, &bench, &Workbench::showNotice);
    connect(audit, &AuditPane::recordWanted, this, [this](qint64 id) {
        jumpToRecord(m_bench, UrlId{id}, messages::partRecordUnavailable(), "MainForm.ShowPart()");
    });
    connect(audit, &AuditPane::otherPartWanted, this, [this](const AuditRow &row) {
        m_bench.run("MainForm.ChoosePart()", [&] { chooseOther(row); });
    });
    connect(bench.dataTabs, &QTabWidget::currentChanged, this, [this] {
        if (m_bench.program.state.disableAutoRebuildInHTMLGallery)
            m_bench.viewers->refresh();
    });
}

/// Whether the setting keeps a page that a tile leads to from being brought back.
bool RebuiltPanes::isLeftInGallery(UrlRecord &page) {
    Program &program = m_bench.program;
    if (!page.CacheFileRebuilt || !program.state.disableAutoRebuildInHTMLGallery ||
        !qobject_cast<GalleryTab *>(m_bench.dataTabs->currentWidget()))
        return false;
    Unwatched nobody;
    const RecordTools tools(program, nobody, program.state.tempFolderPath);
    return !hasFolder(tools, page);
}

/// The folder of a page that was rebuilt in an earlier run of the program is made anew.
bool RebuiltPanes::bringBack(UrlRecord &page) {
    Program &program = m_bench.program;
    Unwatched nobody;
    RecordTools tools(program, nobody, program.state.tempFolderPath);
    if (hasFolder(tools, page))
        return true;
    bool whole = false;
    m_bench.runTask({"HARVESTING ITEMS FOR SELECTED FILE", "Please standby...", "", ""},
                    [&](TaskMonitor &task) {
                        RecordTools watched(program, task, program.state.tempFolderPath);
                        whole = bringBackFolder(watched, page);
                    });
    return whole;
}

void RebuiltPanes::showAudit(AuditPane &pane, UrlId id) {
    Program &program = m_bench.program;
    Unwatched nobody;
    RecordTools tools(program, nobody, program.state.tempFolderPath);
    const RebuildContext &ctx = tools.context();
    auto page = tools.record(id);
    if (!page || !page->CacheFileRebuilt)
        return pane.showReason(tr("This record was not rebuilt, so nothing in it was replaced."));
    if (isLeftInGallery(*page))
        return pane.showReason(tr("The gallery doesn't bring rebuilt pages back, as the setting "
                                  "DisableAutoRebuildInHTMLGallery says: the table does."));
    std::optional<std::vector<AuditRow>> rows;
    if (bringBack(*page))
        rows = loadAudit(*page, rebuildFolderOf(page->URLID, ctx), ctx);
    m_audited = id;
    if (rows && rows->empty() && isRebuiltExactly(*page))
        pane.showReason(tr("The page was rebuilt exactly. It names no parts."));
    else if (!rows || rows->empty())
        pane.showReason(auditFailure(*page, ctx.settings));
    else
        pane.showAudit(std::move(*rows));
}

/// What the examiner chooses shows only in the page that is rebuilt with it.
void RebuiltPanes::chooseOther(const AuditRow &row) {
    if (!row.note || !m_bench.mayWrite())
        return;
    SQLite::Database &project = m_bench.project();
    std::optional<UrlRecord> page;
    {
        Unwatched nobody;
        RecordTools tools(m_bench.program, nobody, m_bench.program.state.tempFolderPath);
        page = tools.record(m_audited);
    }
    if (!page)
        return;
    const PartQuestion question = partQuestion(*page, *row.note, project);
    PartChoiceForm form(
        question, [&project](UrlId id) { return whyNoPart(id, project); }, &m_bench.window);
    if (form.exec() != QDialog::Accepted)
        return;
    keepPartChoice(m_bench.program, m_audited, question.address, form.answer());
    rebuildNow(m_bench, m_audited, MethodChoice::exact);
}

/// A rebuilt page that can't be brought back is shown as it was cached, and the examiner learns it.
void RebuiltPanes::showPage(BrowserPane &pane, UrlId id) {
    if (m_shown.id != id)
        pane.clear();
    Program &program = m_bench.program;
    Unwatched nobody;
    RecordTools tools(program, nobody, program.state.tempFolderPath);
    auto record = tools.record(id);
    if (!record)
        return pane.clear();
    const bool isLeft = isLeftInGallery(*record);
    if (record->CacheFileRebuilt && (isLeft || !bringBack(*record))) {
        record->CacheFileRebuilt = false;
        if (!isLeft)
            m_bench.showNotice(notBroughtBack(*record, tools.context().settings));
    }
    const ShownPage shown = pageToShow(tools, *record);
    program.state.viewer.browserURL = textOf(shown.file);
    std::error_code none;
    Shown now{id, shown.file, {}};
    if (shown.rebuilt)
        now.rebuilt = std::filesystem::last_write_time(shown.file, none);
    const bool isSame = std::exchange(m_shown, now) == now && pane.page();
    if (shown.file.empty())
        pane.showReason(toQt(shown.reason));
    else if (!isSame) // what is read stays where it is
        pane.showPage(shown.file,
                      !shown.rebuilt              ? tr("Cached content")
                      : isRebuiltExactly(*record) ? tr("Page rebuilt exactly")
                      : record->RebuiltMethod == kExactTemplateMethod
                          ? tr("Page of a template that was rebuilt exactly")
                          : tr("Rebuilt page"),
                      record->URL);
}

} // namespace nv
