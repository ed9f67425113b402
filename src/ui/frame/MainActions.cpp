#include "ui/frame/MainActions.h"

#include "platform/qt/Icons.h"

#include <QAction>
#include <QKeySequence>

namespace nv {

namespace {

/// `text` holds the mnemonic; `picture` may be empty.
QAction *make(QObject *owner, const char *name, const QString &text, const char *picture = "",
              const QKeySequence &keys = {}) {
    auto *action = new QAction(icon(picture), text, owner);
    action->setObjectName(QLatin1String(name));
    action->setShortcut(keys);
    return action;
}

/// Toolbars show no keys, so the tooltips do.
void nameKeys(QAction &action) {
    const QString keys = action.shortcut().toString(QKeySequence::NativeText);
    if (!keys.isEmpty())
        action.setToolTip(QStringLiteral("%1 (%2)").arg(action.toolTip(), keys));
}

QString tr(const char *text) {
    return QObject::tr(text);
}

} // namespace

MainActions::MainActions(QObject *o)
    : newProject(make(o, "actNew", tr("&New..."), "new", QKeySequence::New)),
      openProject(make(o, "actOpen", tr("&Open..."), "open", QKeySequence::Open)),
      import(make(o, "actImport", tr("&Import..."), "import", Qt::CTRL | Qt::Key_I)),
      saveAs(make(o, "actSaveAs", tr("Save &As..."), "save-as", QKeySequence::SaveAs)),
      exportRows(
          make(o, "actExport", tr("&Export..."), "export", Qt::CTRL | Qt::SHIFT | Qt::Key_E)),
      closeProject(make(o, "actClose", tr("&Close"), "close", QKeySequence::Close)),
      exit(make(o, "actExit", tr("E&xit"), "", QKeySequence::Quit)),
      copyCell(make(o, "actCopyCell", tr("&Copy Cell"), "copy", QKeySequence::Copy)),
      copyRows(make(o, "actCopyRows", tr("Copy &Rows"), "", Qt::CTRL | Qt::SHIFT | Qt::Key_C)),
      copyCsv(make(o, "actCopyCsv", tr("Copy as &CSV"))),
      copyMarkdown(make(o, "actCopyMarkdown", tr("Copy as &Markdown"))),
      copyJson(make(o, "actCopyJson", tr("Copy as &JSON"))),
      copyDefanged(make(o, "actCopyDefanged", tr("Copy &Defanged Address"))),
      selectAll(make(o, "actSelectAll", tr("Select &All"), "", QKeySequence::SelectAll)),
      search(make(o, "actSearch", tr("&Search"), "find", QKeySequence::Find)),
      find(make(o, "actFind", tr("&Find in Columns..."), "", Qt::CTRL | Qt::ALT | Qt::Key_F)),
      findNext(make(o, "actFindNext", tr("Find &Next"), "", QKeySequence::FindNext)),
      tag(make(o, "actTag", tr("Tic&k or Untick"), "tag", Qt::CTRL | Qt::Key_T)),
      rebuild(make(o, "actRebuild", tr("&Rebuild"), "rebuild", Qt::CTRL | Qt::Key_B)),
      rebuildPage(make(o, "actRebuildPage", tr("Rebuild This Pa&ge"), "",
                       Qt::CTRL | Qt::SHIFT | Qt::Key_B)),
      rebuildExactly(make(o, "actRebuildExactly", tr("Rebuild E&xactly"))),
      rebuildByClassic(make(o, "actRebuildByClassic", tr("Rebuild by Cla&ssic Rules"))),
      linkAnalysis(make(o, "actLinkAnalysis", tr("Run &Link Analysis..."), "links",
                        Qt::CTRL | Qt::SHIFT | Qt::Key_L)),
      hashSets(make(o, "actHashSets", tr("&Hash Sets..."), "database")),
      filters(make(o, "actFilters", tr("&Filters..."), "filter", Qt::CTRL | Qt::SHIFT | Qt::Key_F)),
      places(make(o, "actPlaces", tr("&Places"), "hosts", Qt::CTRL | Qt::SHIFT | Qt::Key_H)),
      hosts(make(o, "actHosts", tr("&Hosts"), "hosts", Qt::CTRL | Qt::Key_H)),
      time(make(o, "actTime", tr("Ti&me"), "time", Qt::CTRL | Qt::SHIFT | Qt::Key_T)),
      hideKnown(make(o, "actHideKnown", tr("Hide &Known Files"))),
      columns(
          make(o, "actColumns", tr("&Columns..."), "columns", Qt::CTRL | Qt::SHIFT | Qt::Key_K)),
      viewers(make(o, "actViewers", tr("&Viewers"), "", Qt::Key_F4)),
      refresh(make(o, "actRefresh", tr("&Refresh"), "refresh", QKeySequence::Refresh)),
      baseFolder(make(o, "actBaseFolder", tr("&Base Folder..."), "folder")),
      timeZone(make(o, "actTimeZone", tr("&Time Zone..."), "history")),
      options(make(o, "actOptions", tr("&Options..."), "options", Qt::CTRL | Qt::Key_Comma)),
      importSummary(make(o, "actImportSummary", tr("&Import Summary..."), "import")),
      caseTrail(make(o, "actCaseTrail", tr("Case Tr&ail..."), "trail")),
      network(make(o, "actNetwork", tr("Disable &Network"), "network")),
      createReport(make(o, "actCreateReport", tr("&Create Report..."), "report",
                        Qt::CTRL | Qt::SHIFT | Qt::Key_R)),
      publishReport(make(o, "actPublishReport", tr("&Publish Report..."), "publish")),
      openReportFolder(make(o, "actOpenReportFolder", tr("Open Report &Folder"), "folder")),
      upgradeWizard(make(o, "actUpgradeWizard", tr("&Upgrade Wizard..."), "upgrade")),
      errorLog(make(o, "actErrorLog", tr("&Error Log..."), "text")),
      guide(make(o, "actGuide", tr("User's &Guide"), "help", QKeySequence::HelpContents)),
      tips(make(o, "actTips", tr("&Tip of the Day..."), "tip")),
      about(make(o, "actAbout", tr("&About Norvelane"), "norvelane-logo")) {
    describe();
    for (QAction *action : o->findChildren<QAction *>(Qt::FindDirectChildrenOnly))
        nameKeys(*action);
    network->setIconText(tr("Network"));
    createReport->setIconText(tr("Report"));
    openReportFolder->setEnabled(false);
    makeCheckable();
}

void MainActions::makeCheckable() const {
    for (QAction *action : {places, hosts, time, hideKnown, viewers})
        action->setCheckable(true);
    viewers->setChecked(true);
}

void MainActions::describe() const {
    newProject->setToolTip(tr("Make a project file for a case"));
    openProject->setToolTip(tr("Open a project file"));
    import->setToolTip(tr("Read the browser artefacts of a folder into the project"));
    saveAs->setToolTip(tr("Copy the project to another file and go on with that"));
    exportRows->setToolTip(tr("Write the rows of the table to a file"));
    closeProject->setToolTip(tr("Close the project; everything in it is stored already"));
    exit->setToolTip(tr("Leave the program"));
    copyCell->setToolTip(tr("Copy the current cell's whole text"));
    copyRows->setToolTip(tr("Copy the selected rows with their headings, divided by tabs"));
    selectAll->setToolTip(tr("Select all rows of the table"));
    search->setToolTip(tr("Go to the box that searches addresses, titles, notes and pages"));
    find->setToolTip(tr("Find a text in the columns that are shown"));
    findNext->setToolTip(tr("Go to the next row with the text"));
    tag->setToolTip(tr("Set or take the ticks of the selected rows"));
    rebuild->setToolTip(tr("Rebuild the ticked web pages, or the current one when none is ticked"));
    rebuildPage->setToolTip(tr("Rebuild the current web page, whatever is ticked"));
    rebuildExactly->setToolTip(tr("Rebuild the ticked web pages, or the current one, as a browser "
                                  "reads them, whatever the setting says"));
    rebuildByClassic->setToolTip(tr("Rebuild the ticked web pages, or the current one, by the "
                                    "rules of earlier versions, whatever the setting says"));
    linkAnalysis->setToolTip(tr("Find the cached pages that hold a link to each record"));
    filters->setToolTip(tr("Show only records of some sources, kinds and sites"));
    copyCsv->setToolTip(tr("Copy the selected rows as values that commas part, for spreadsheets"));
    copyMarkdown->setToolTip(tr("Copy the selected rows as a table for notes in Markdown"));
    copyJson->setToolTip(tr("Copy the selected rows as a list of objects, for other programs"));
    copyDefanged->setToolTip(
        tr("Copy the addresses of the selected rows so that no click follows them: hxxp, [.]"));
    places->setToolTip(tr("Where the rows come from: persons, browsers, hosts and kinds beside the "
                          "table"));
    hosts->setToolTip(tr("The list of all hosts beside the table, in place of the places"));
    time->setToolTip(tr("The bar of time above the table: when its rows happened"));
    hideKnown->setToolTip(tr("Hide rows whose file is in a known hash set, unless a notable one "
                             "has it too"));
    hashSets->setToolTip(tr("Sets of known and notable files: make and remove them, and find "
                            "the rows whose file they have"));
    columns->setToolTip(tr("Choose which columns are shown, and their order"));
    viewers->setToolTip(tr("Show or hide the panes of the current record"));
    refresh->setToolTip(tr("Load the rows of the query anew"));
    baseFolder->setToolTip(tr("Tell where the evidence lies now"));
    timeZone->setToolTip(tr("Choose the zone in which times are shown"));
    options->setToolTip(tr("Settings of the program and the project"));
    importSummary->setToolTip(tr("What the last import brought, and what it could not read"));
    caseTrail->setToolTip(tr("What was done with this project, when and on which file"));
    network->setToolTip(tr("Switch the computer's network connection"));
    createReport->setToolTip(tr("Make a report of ticked or tagged rows, or of all"));
    publishReport->setToolTip(tr("Copy a report to the folder that is handed over"));
    openReportFolder->setToolTip(tr("Open the folder of the last report"));
    upgradeWizard->setToolTip(tr("Bring a project of an earlier version up to date"));
    errorLog->setToolTip(tr("What went wrong since the start of the program"));
    guide->setToolTip(tr("How to work with the program, and what its figures mean"));
    tips->setToolTip(tr("Hints on working with the program"));
    about->setToolTip(tr("Version and licence of the program"));
}

void MainActions::setProjectOpen(bool open, bool readOnly) {
    for (QAction *action :
         {saveAs,        closeProject, copyCell,     copyRows,    selectAll,      find,
          search,        copyCsv,      copyMarkdown, copyJson,    copyDefanged,   places,
          findNext,      tag,          rebuild,      rebuildPage, rebuildExactly, rebuildByClassic,
          linkAnalysis,  columns,      refresh,      baseFolder,  timeZone,       caseTrail,
          importSummary, filters,      hideKnown,    hosts,       time,           createReport,
          publishReport, exportRows})
        action->setEnabled(open);
    for (QAction *action : {import, upgradeWizard})
        action->setEnabled(!readOnly);
    for (QAction *action : {saveAs, tag, rebuild, rebuildPage, rebuildExactly, rebuildByClassic,
                            linkAnalysis, baseFolder})
        action->setEnabled(open && !readOnly);
    m_isOpen = open;
    m_isReadOnly = readOnly;
    if (m_isReportInMaking)
        for (QAction *action : waitingForReport())
            action->setEnabled(false);
}

/// One report is made at a time, and published when it is whole. The others close the project for a
/// while.
std::array<QAction *, 4> MainActions::waitingForReport() const {
    return {createReport, publishReport, saveAs, upgradeWizard};
}

void MainActions::setReportInMaking(bool isMade) {
    constexpr const char *kHint = "hint"; // of other times
    if (isMade != m_isReportInMaking)
        for (QAction *action : waitingForReport()) {
            const QString hint = action->toolTip();
            action->setToolTip(isMade
                                   ? tr("A report is being made: the status bar says how far it is")
                                   : action->property(kHint).toString());
            action->setProperty(kHint, hint);
        }
    m_isReportInMaking = isMade;
    setProjectOpen(m_isOpen, m_isReadOnly);
}

} // namespace nv
