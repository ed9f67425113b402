#include "ui/parts/ReportPart.h"

#include "app/jobs/RebuildJob.h"
#include "app/jobs/ReportTags.h"
#include "app/jobs/Trail.h"
#include "app/messages/Messages.h"
#include "app/messages/ReportMessages.h"
#include "app/settings/Settings.h"
#include "base/Files.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "platform/qt/QtText.h"
#include "reports/case/RedactionNotes.h"
#include "time/DateFormat.h"
#include "ui/frame/WorkProgress.h"
#include "ui/reports/ReportForm.h"
#include "ui/reports/ReportPreview.h"
#include "ui/viewers/BrowserPane.h"
#include "ui/viewers/ReportPane.h"

#include <QAction>
#include <QApplication>
#include <QMainWindow>
#include <QStatusBar>
#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <utility>

namespace nv {

namespace fs = std::filesystem;

namespace {

/// Between two looks whether the task that has the project is at its end.
constexpr int kWhileBusy = 200; ///< milliseconds

/// Which rows the report holds, for its cover.
std::string contentOf(const UrlTable &table, bool isAll, const std::vector<std::string> &tags) {
    std::string text = isAll ? "the rows of the table" : "the ticked rows of the table";
    if (!tags.empty())
        text += " with " + tagsText(tags);
    if (!table.choice.activeQueryName.empty())
        text += fmt::format(", the query \"{}\"", table.choice.activeQueryName);
    if (table.choice.filterByHostEnabled)
        text += fmt::format(", the host \"{}\"", table.choice.filterByHostValue);
    if (table.time)
        text += fmt::format(", from {} up to {}", isoUtc(table.time->from), isoUtc(table.time->to));
    if (table.hiddenCount() > 0)
        text += fmt::format(" ({} hidden by the filters or by the time)",
                            counted(table.hiddenCount(), "row"));
    return text;
}

/// Those of `ids` that are among `tagged`, which are ascending, in their order.
void leaveTagged(RowIds &ids, const RowIds &tagged) {
    std::erase_if(ids,
                  [&tagged](std::int32_t id) { return !std::ranges::binary_search(tagged, id); });
}

} // namespace

ReportPart::ReportPart(Workbench &bench) : m_bench(bench) {
    connect(bench.actions.createReport, &QAction::triggered, this,
            [this] { m_bench.run("ReportForm.OkBtn_Click()", [this] { create(); }); });
    connect(bench.actions.publishReport, &QAction::triggered, this,
            [this] { m_bench.run("MainForm.PublishReport()", [this] { publishReport(); }); });
    connect(bench.actions.openReportFolder, &QAction::triggered, this, &ReportPart::openFolder);
    connect(&bench, &Workbench::projectOpened, this, &ReportPart::findReport);
    bench.askBeforeClosing = [this] { return askBeforeClosing(); };
    connect(bench.viewers->findChild<ReportPane *>(), &ReportPane::largeWanted, this,
            &ReportPart::showLarge);
    tellOfFailures();
    addProgress();
    m_end.setSingleShot(true);
    connect(&m_end, &QTimer::timeout, this, &ReportPart::endSoon);
    connect(&bench, &Workbench::projectClosing, this, &ReportPart::giveUp);
}

void ReportPart::addProgress() {
    m_progress = new WorkProgress({"ReportProgress", tr("Making the report"), tr("Stop"),
                                   tr("Stop making the report"),
                                   tr("Nothing is left of a report that isn't finished")},
                                  &m_bench.window);
    if (auto *window = qobject_cast<QMainWindow *>(&m_bench.window))
        window->statusBar()->addPermanentWidget(m_progress);
    m_progress->hide();
    connect(m_progress, &WorkProgress::cancelled, this, [this] {
        if (m_work)
            m_work->stop();
    });
}

void ReportPart::showLarge() {
    if (const fs::path page = lastReport(); !page.empty())
        ReportPreview(page, &m_bench.window).exec();
}

/// Whatever comes later than the command that shows it: the engine loads by itself.
void ReportPart::tellOfFailures() {
    const BrowserPane &browser = m_bench.viewers->findChild<ReportPane *>()->browser();
    connect(&browser, &BrowserPane::pageFailed, this, [this](const QString &reason) {
        m_bench.program.log.write({fromQt(reason), "ReportForm.OkBtn_Click()", Severity::Warning,
                                   std::string(kContactSupport)});
        m_bench.examiner().tell(messages::reportNotLoaded(fromQt(reason)));
    });
}

void ReportPart::create() {
    if (!m_bench.table->table())
        return;
    auto work = std::make_unique<ReportWork>(m_bench.program);
    RowIds rows = m_bench.table->table()->ids();
    if (chooseOptions(work->report(), rows))
        start(std::move(work), std::move(rows));
}

void ReportPart::start(std::unique_ptr<ReportWork> work, RowIds rows) {
    withdrawReport();
    m_readAtStart = whatIsRead();
    m_work = std::move(work);
    m_bench.actions.setReportInMaking(true);
    const auto show = [this](double fraction) {
        m_progress->showFraction(fraction);
        emit m_bench.workProgressed(tr("Report"), fraction);
    };
    connect(m_work.get(), &ReportWork::advanced, this, [show](int percent) {
        constexpr double kHundred = 100;
        show(percent / kHundred);
    });
    connect(m_work.get(), &ReportWork::ended, this, [this](bool finished, const QString &failure) {
        // Later, so that the work isn't gone while it tells.
        m_ending = [this, finished, failure] { end(finished, fromQt(failure)); };
        m_end.start(0);
    });
    show(0);
    m_work->start(std::move(rows));
}

/// Not while a task has the project, when the command doesn't run, nor behind a dialog.
void ReportPart::endSoon() {
    m_end.start(kWhileBusy);
    if (QApplication::activeModalWidget())
        return;
    m_bench.run("ReportForm.OkBtn_Click()", [this] {
        m_end.stop();
        if (m_work)
            std::exchange(m_ending, nullptr)();
    });
}

void ReportPart::end(bool finished, const std::string &failure) {
    const std::unique_ptr<ReportWork> work = std::move(m_work);
    giveUp();
    if (finished)
        noteReport(m_bench.program, work->report(), work->rows());
    else
        findReport(); // an earlier one of the other type is still there
    if (!failure.empty())
        m_bench.examiner().tell(messages::reportingError(failure));
    else
        tellOf(work->report(), finished);
    if (finished && m_publishes)
        publishReport();
}

void ReportPart::giveUp() {
    m_work.reset();
    m_ending = nullptr;
    m_end.stop();
    m_progress->hide();
    emit m_bench.workEnded(tr("Report"));
    m_bench.actions.setReportInMaking(false);
}

/// The pages lie in the folder for scratch, where others may take their place.
bool ReportPart::isThere(const Made &made) const {
    std::error_code none;
    return made.project == m_bench.program.state.projectDBPath &&
           fs::is_regular_file(made.page, none);
}

fs::path ReportPart::lastReport() const {
    const auto last = std::find_if(m_made.rbegin(), m_made.rend(),
                                   [this](const Made &made) { return isThere(made); });
    return last == m_made.rend() ? fs::path() : last->page;
}

std::optional<bool> ReportPart::askBeforeClosing() {
    if (m_work && m_bench.examiner().ask(messages::reportInMaking()) != Answer::Yes)
        return false;
    const bool isAsked = m_work != nullptr;
    if (isAsked) {
        giveUp();
        findReport();
    }
    std::vector<Made> lost;
    for (const Made &made : m_made)
        if (m_bench.isProjectOpen() && !made.isSettled && isThere(made))
            lost.push_back(made);
    if (lost.empty())
        return isAsked ? std::optional(true) : std::nullopt;
    const Answer answer = m_bench.examiner().ask(
        messages::reportNotPublished(lost.size(), textOf(lost.front().page)));
    if (answer != Answer::Yes && answer != Answer::No)
        return false;
    for (const Made &made : lost) {
        if (answer == Answer::Yes && !publish(made.type))
            return false;
        settle(made.type);
    }
    return true;
}

/// A report of a type takes the place of the one before.
void ReportPart::settle(int type) {
    for (Made &made : m_made)
        made.isSettled |= made.type == type && isThere(made);
}

/// The pane shows the report again of a project that is opened again: it lies in the folder for
/// scratch until the program ends, or until another one takes its name.
void ReportPart::findReport() {
    m_bench.program.state.viewer.reportURL = lastReport().string();
    m_bench.viewers->findChild<ReportPane *>()->refresh();
}

/// False when the examiner thinks better of it.
bool ReportPart::chooseOptions(ReportWriter &report, RowIds &ids) {
    Program &program = m_bench.program;
    readReportOptions(program.settings, report);
    // Those of another case, which an earlier version of the program kept with its settings.
    report.caseNumber.clear();
    report.reportedBy.clear();
    readProjectReportOptions(program, report);
    UnreadRows unread; // the report names them
    const auto tagged = taggedIds(program, unread);
    const auto shown = static_cast<std::size_t>(std::ranges::count_if(
        ids, [&tagged](auto id) { return std::ranges::binary_search(tagged, UrlId{id}); }));
    report.includeAll = shown == 0;
    const std::vector<ReportTag> tags = reportTags(program, ids);
    ReportForm form(report, {ids.size(), shown, tags, keptReportTags(program), adviser()},
                    m_bench.examiner(), &m_bench.window);
    const int answer = form.exec();
    m_look.stop();
    if (answer != QDialog::Accepted)
        return false;
    form.apply(report);
    m_publishes = form.publishes();
    const std::vector<std::string> names = form.chosenTags();
    if (!names.empty())
        leaveTagged(ids, rowsWithOneOf(tags, names));
    report.caseOptions.content = contentOf(*m_bench.table->table(), report.includeAll, names);
    if (!writeProjectReportOptions(program, report) || !keepReportTags(program, names))
        m_bench.examiner().tell(messages::reportingError(
            "The choices could not be kept with the project; the log of the program says why."));
    if (!writeReportOptions(report, program.settings))
        m_bench.examiner().tell(messages::settingsNotWritten(program.settings.path()));
    return true;
}

RedactionAdviser ReportPart::adviser() {
    return [this](const RedactionRules &rules,
                  const std::function<void(std::vector<std::string>)> &answer) {
        const auto notes = std::make_shared<std::vector<std::string>>();
        m_look.start(
            m_bench.program.state.projectDB.filePath,
            [rules, notes](SQLite::Database &project, TaskMonitor &task) {
                return notesOnRedactions(project, rules, NotedThings::all, task, *notes);
            },
            [notes, answer](const QString &failure) {
                answer(failure.isEmpty() ? *notes : std::vector<std::string>());
            });
    };
}

void ReportPart::tellOf(const ReportWriter &report, bool finished) {
    if (finished) {
        m_bench.actions.openReportFolder->setEnabled(true);
        showReport(report);
        const RedactionRules &unmet = report.unmetRedactions;
        m_bench.showNotice(
            unmet.empty()
                ? tr("The report is ready; Publish Report keeps it when the program ends. %1")
                      .arg(pathToQt(report.reportFilePath))
                : tr("The report is ready, but %1").arg(toQt(unmetText(unmet))));
        if (const auto notes = notesOf(report); !notes.empty())
            m_bench.examiner().tell(messages::reportingError(
                fmt::format("{}\n\nThe log \"{}\" says why.", fmt::join(notes, "\n"),
                            textOf(m_bench.program.log.path()))));
    } else if (report.cancel) {
        m_bench.showNotice(tr("The report was cancelled."));
    } else {
        m_bench.examiner().tell(messages::reportingError(fmt::format(
            "The report could not be made; see \"{}\".", textOf(m_bench.program.log.path()))));
    }
}

ReportPart::Read ReportPart::whatIsRead() const {
    return {m_bench.viewers->record(), m_bench.viewers->currentWidget()};
}

/// The finished report comes to the front of the viewers, unless the examiner has gone on to read
/// something else meanwhile.
void ReportPart::showReport(const ReportWriter &report) {
    const fs::path &page = report.reportFilePath;
    const auto failure = failureOf(m_bench.program.log, "ReportForm.OkBtn_Click()", [&] {
        std::erase_if(m_made, [&page](const Made &each) { return each.page == page; });
        m_made.push_back({m_bench.program.state.projectDBPath, page,
                          readNumber(m_bench.program.settings, "ReportType"),
                          report.unmetRedactions});
        m_bench.program.state.viewer.reportURL = page.string();
        auto *pane = m_bench.viewers->findChild<ReportPane *>();
        pane->refresh();
        if (whatIsRead() == m_readAtStart)
            m_bench.viewers->showOnce(*pane);
        m_bench.viewers->refresh();
    });
    if (failure)
        m_bench.examiner().tell(messages::reportNotLoaded(*failure));
}

/// The one that is shown is about to be written over, under the same name.
void ReportPart::withdrawReport() {
    m_bench.program.state.viewer.reportURL.clear();
    m_bench.viewers->findChild<ReportPane *>()->refresh();
}

} // namespace nv
