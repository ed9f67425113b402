#include "ui/import/ImportSummaryPane.h"

#include "app/jobs/ImportPageJob.h"
#include "app/jobs/ImportText.h"
#include "app/jobs/ThumbnailJob.h"
#include "app/messages/Messages.h"
#include "app/program/DrawingTools.h"
#include "base/Trap.h"
#include "platform/qt/QtText.h"
#include "time/DateFormat.h"
#include "ui/import/ImportLightBox.h"
#include "ui/import/WizardParts.h"
#include "ui/widgets/GridCopy.h"
#include "views/rows/CellText.h"

#include <QBoxLayout>
#include <QFileDialog>
#include <QFontDatabase>
#include <QHeaderView>
#include <QPlainTextEdit>
#include <QTabWidget>
#include <QTreeWidget>

namespace nv {

namespace fs = std::filesystem;

namespace {

constexpr const char *kProcedure = "ImportForm.Summary()";
/// Of the list: nobody reads more in a window, and the page has them.
constexpr std::size_t kMostGaps = 5'000;
enum CountColumn { Name, Rows, First, Last };

QString shown(const std::string &text) {
    return toQt(displayText(text));
}

QTreeWidget *newList(const char *name, const QString &what, const QStringList &headings) {
    auto *list = new QTreeWidget;
    list->setObjectName(QLatin1String(name));
    list->setAccessibleName(what);
    list->setHeaderLabels(headings);
    list->setUniformRowHeights(true);
    list->setAlternatingRowColors(true);
    list->setSelectionMode(QAbstractItemView::ExtendedSelection);
    list->setTabKeyNavigation(false);
    letCopy(*list);
    return list;
}

QPlainTextEdit *newEveryFile() {
    auto *text = new QPlainTextEdit;
    text->setObjectName(QStringLiteral("txtSummary"));
    text->setAccessibleName(ImportSummaryPane::tr("Summary of the import"));
    text->setReadOnly(true);
    text->setLineWrapMode(QPlainTextEdit::NoWrap);
    text->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    text->setTabChangesFocus(true);
    return text;
}

QStringList cellsOf(const QString &name, const KindRows &rows) {
    return {name, QStringLiteral("%L1").arg(rows.rows), toQt(isoUtc(rows.first)),
            toQt(isoUtc(rows.last))};
}

void addGroup(QTreeWidget &list, const QString &title, const std::vector<ImportCount> &counts) {
    if (counts.empty() || (counts.size() == 1 && counts.front().name.empty()))
        return;
    auto *group = new QTreeWidgetItem(&list, {title});
    QFont bold = list.font();
    bold.setBold(true);
    group->setFont(Name, bold);
    for (const ImportCount &count : counts) {
        const QString name =
            count.name.empty() ? ImportSummaryPane::tr("(not known)") : shown(count.name);
        auto *item = new QTreeWidgetItem(group, cellsOf(name, count.rows));
        item->setTextAlignment(Rows, Qt::AlignRight | Qt::AlignVCenter);
        item->setToolTip(Name, Qt::convertFromPlainText(name));
    }
}

} // namespace

std::optional<fs::path> choosePageByDialog(const fs::path &offered) {
    const QString chosen = QFileDialog::getSaveFileName(
        nullptr, ImportSummaryPane::tr("Save as HTML"), pathToQt(offered),
        ImportSummaryPane::tr("Pages (*.html *.htm)"));
    return chosen.isEmpty() ? std::nullopt : std::optional(pathFromQt(chosen));
}

ImportSummaryPane::ImportSummaryPane(Program &program, ChoosePage choosePage, QWidget *parent)
    : QWidget(parent), m_program(program), m_choosePage(std::move(choosePage)),
      m_light(new ImportLightBox), m_span(newWizardLabel("labSpan")),
      m_notes(newWizardLabel("labNotes")), m_tabs(new QTabWidget),
      m_counts(
          newList("lstCounts", tr("Records by person, browser, profile and kind"),
                  {tr("From"), tr("Records"), tr("First event (UTC)"), tr("Last event (UTC)")})),
      m_gaps(newList("lstNotRead", tr("What was not read, or only in part"),
                     {tr("File"), tr("What"), tr("Why"), tr("Place")})),
      m_everyFile(newEveryFile()) {
    setObjectName(QStringLiteral("ImportSummaryPane"));
    m_gaps->setRootIsDecorated(false);
    m_tabs->setObjectName(QStringLiteral("tabsSummary"));
    setFocusProxy(m_tabs);
    m_tabs->addTab(m_counts, tr("Counts"));
    m_gapsTab = m_tabs->addTab(m_gaps, {});
    m_everyFileTab = m_tabs->addTab(m_everyFile, tr("Every file"));
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(m_light);
    column->addWidget(m_span);
    column->addWidget(m_notes);
    column->addWidget(m_tabs, 1);
    column->addWidget(newButtons());
}

QWidget *ImportSummaryPane::newButtons() {
    auto *buttons = new QWidget;
    auto *row = new QHBoxLayout(buttons);
    row->setContentsMargins(0, 0, 0, 0);
    const auto add = [row](const char *name, const QString &text, const QString &hint) {
        QPushButton *button = newWizardButton(name, text);
        button->setToolTip(hint);
        button->setAutoDefault(false);
        row->addWidget(button);
        return button;
    };
    m_notRead = add("btnNotRead", tr("What &Was Not Read"),
                    tr("Each file of which not all is in the project, and why"));
    QPushButton *save = add("btnSaveHtml", tr("&Save as HTML..."),
                            tr("The summary as one page that any browser opens"));
    row->addStretch();
    m_thumbnails = add("btnSummaryThumbnails", tr("Make &Thumbnails"),
                       tr("Draw the pictures and pages small, while you go on"));
    m_index = add("btnSummaryIndex", tr("&Index for Search"),
                  tr("Make the index for searches now and not at the first one"));
    QPushButton *table = add("btnSummaryTable", tr("Show the Tabl&e"), tr("Go to the rows"));
    connect(m_notRead, &QPushButton::clicked, this, &ImportSummaryPane::showNotRead);
    connect(save, &QPushButton::clicked, this, &ImportSummaryPane::save);
    const auto leaveFor = [this](QPushButton *button, AfterSummary what) {
        connect(button, &QPushButton::clicked, this, [this, what] { emit wanted(what); });
    };
    leaveFor(m_thumbnails, AfterSummary::thumbnails);
    leaveFor(m_index, AfterSummary::searchIndex);
    leaveFor(table, AfterSummary::table);
    return buttons;
}

void ImportSummaryPane::showNotRead() {
    if (m_overview.gaps.empty())
        return;
    m_tabs->setCurrentWidget(m_gaps);
    m_gaps->setFocus();
}

void ImportSummaryPane::load(ImportScope scope) {
    load(
        [this, scope](SQLite::Database &project, ImportOverview &overview) {
            return loadImportOverview(project, scope, m_program.task, overview);
        },
        {});
}

void ImportSummaryPane::load(const ImportSummary &summary) {
    load(
        [this, &summary](SQLite::Database &project, ImportOverview &overview) {
            return loadImportOverview(project, summary, m_program.task, overview);
        },
        summaryText(summary));
}

void ImportSummaryPane::load(const Load &load, const std::string &everyFile) {
    const auto failure = failureOf(m_program.log, kProcedure, [&] {
        const OpenTask task(m_program.task,
                            {"SUMMARIZING THE IMPORT", "Counting records...", "", ""});
        static_cast<void>(load(m_program.state.projectDB.connection(), m_overview));
    });
    if (failure)
        m_overview.isCounted = false; // and the log says why
    m_everyFile->setPlainText(toQt(everyFile));
    showOverview();
}

void ImportSummaryPane::showFailure(const std::string &reason) {
    m_overview = {};
    m_overview.end.failure = reason;
    m_everyFile->setPlainText(toQt(reason));
    showOverview();
}

void ImportSummaryPane::showOverview() {
    m_light->take(m_overview);
    const std::string span = spanText(m_overview.rows);
    m_span->setText(tr("Events from %1 (UTC)").arg(toQt(span)));
    m_span->setVisible(!span.empty());
    QStringList notes;
    for (const std::string &note : notesOf(m_overview))
        notes += shown(note);
    m_notes->setText(notes.join(u'\n'));
    m_notes->setVisible(!notes.isEmpty());
    m_tabs->setTabText(m_gapsTab, tr("Not read (%L1)").arg(m_overview.gaps.size()));
    m_tabs->setTabVisible(m_gapsTab, !m_overview.gaps.empty());
    m_tabs->setTabVisible(m_everyFileTab, !m_everyFile->document()->isEmpty());
    showCounts();
    showGaps();
    showNext();
}

void ImportSummaryPane::showCounts() {
    m_counts->clear();
    addGroup(*m_counts, tr("People"), m_overview.people);
    addGroup(*m_counts, tr("Browsers"), m_overview.browsers);
    addGroup(*m_counts, tr("Profiles"), m_overview.profiles);
    addGroup(*m_counts, tr("Kinds"), m_overview.kinds);
    m_counts->expandAll();
    for (const int column : {Rows, First, Last})
        m_counts->resizeColumnToContents(column);
    m_counts->header()->setStretchLastSection(false);
    m_counts->header()->setSectionResizeMode(Name, QHeaderView::Stretch);
}

void ImportSummaryPane::showGaps() {
    m_gaps->clear();
    for (std::size_t at = 0; at < m_overview.gaps.size() && at < kMostGaps; ++at) {
        const ImportGap &gap = m_overview.gaps[at];
        const QString what = toQt(std::string(lightSign(gap.light)) + ' ' + gap.state);
        auto *item = new QTreeWidgetItem(
            m_gaps, {shown(gap.file), what, shown(gap.reason), shown(gap.place)});
        for (int column = 0; column < item->columnCount(); ++column)
            item->setToolTip(column, Qt::convertFromPlainText(item->text(column)));
    }
    if (m_overview.gaps.size() > kMostGaps)
        new QTreeWidgetItem(
            m_gaps,
            {tr("%L1 more, which Save as HTML lists").arg(m_overview.gaps.size() - kMostGaps)});
    constexpr int kReason = 2;   // its column
    constexpr int kWidest = 200; // pixels
    constexpr int kWidestReason = 420;
    for (int column = 0; column < m_gaps->columnCount(); ++column) {
        m_gaps->resizeColumnToContents(column);
        m_gaps->setColumnWidth(column, std::min(m_gaps->columnWidth(column),
                                                column == kReason ? kWidestReason : kWidest));
    }
}

/// What there is nothing for isn't offered.
void ImportSummaryPane::showNext() {
    m_notRead->setVisible(!m_overview.gaps.empty());
    const bool canWrite =
        m_program.state.projectDB.isOpen() && !m_program.state.projectDB.isReadOnly();
    const bool hasPictures =
        canWrite && canDraw() &&
        trapped(m_program.log, Severity::Low, kProcedure, kNotSerious, false, [this] {
            const ThumbnailCount count = countThumbnails(m_program);
            return count.drawable > count.drawn;
        });
    m_thumbnails->setVisible(hasPictures);
    m_index->setVisible(m_overview.rows.rows > 0);
}

void ImportSummaryPane::save() {
    const fs::path project = m_program.state.projectDBPath;
    const auto file =
        m_choosePage(project.parent_path() / (project.stem().string() + "-import.html"));
    if (!file)
        return;
    const auto failure = failureOf(m_program.log, kProcedure, [&] {
        if (const auto refusal = refusalOfImportPage(*file, m_program.state))
            throw StorageFailure(*refusal);
        saveImportPage(m_program, m_overview, *file);
    });
    if (failure)
        m_program.around.examiner.tell(messages::commandFailed(*failure));
}

} // namespace nv
