#include "app/ui/MainActions.h"

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

QString tr(const char *text) {
    return QObject::tr(text);
}

} // namespace

MainActions::MainActions(QObject *o)
    : newProject(make(o, "actNew", tr("&New..."), "new", QKeySequence::New)),
      openProject(make(o, "actOpen", tr("&Open..."), "open", QKeySequence::Open)),
      import(make(o, "actImport", tr("&Import..."), "import", Qt::CTRL | Qt::Key_I)),
      saveAs(make(o, "actSaveAs", tr("Save &As..."), "save-as", QKeySequence::SaveAs)),
      exportRows(make(o, "actExport", tr("&Export..."), "save-as", Qt::CTRL | Qt::Key_E)),
      closeProject(make(o, "actClose", tr("&Close"), "close", QKeySequence::Close)),
      exit(make(o, "actExit", tr("E&xit"), "", QKeySequence::Quit)),
      copyCell(make(o, "actCopyCell", tr("&Copy Cell"), "", QKeySequence::Copy)),
      copyRows(make(o, "actCopyRows", tr("Copy &Rows"), "", Qt::CTRL | Qt::SHIFT | Qt::Key_C)),
      selectAll(make(o, "actSelectAll", tr("Select &All"), "", QKeySequence::SelectAll)),
      find(make(o, "actFind", tr("&Find..."), "find", QKeySequence::Find)),
      findNext(make(o, "actFindNext", tr("Find &Next"), "", QKeySequence::FindNext)),
      tag(make(o, "actTag", tr("&Tag or Untag"), "tag", Qt::CTRL | Qt::Key_T)),
      rebuild(make(o, "actRebuild", tr("&Rebuild"), "rebuild", Qt::CTRL | Qt::Key_B)),
      linkAnalysis(make(o, "actLinkAnalysis", tr("Run &Link Analysis..."), "links",
                        Qt::CTRL | Qt::SHIFT | Qt::Key_L)),
      filters(make(o, "actFilters", tr("Filter&s..."), "filter", Qt::CTRL | Qt::SHIFT | Qt::Key_F)),
      hosts(make(o, "actHosts", tr("&Hosts"), "net-32", Qt::CTRL | Qt::Key_H)),
      columns(make(o, "actColumns", tr("&Columns..."), "columns", Qt::CTRL | Qt::Key_L)),
      viewers(make(o, "actViewers", tr("&Viewers"), "", Qt::Key_F4)),
      refresh(make(o, "actRefresh", tr("&Refresh"), "refresh", QKeySequence::Refresh)),
      baseFolder(make(o, "actBaseFolder", tr("&Base Folder..."), "folder")),
      timeZone(make(o, "actTimeZone", tr("&Time Zone..."), "history")),
      options(make(o, "actOptions", tr("&Options..."), "options", Qt::CTRL | Qt::Key_Comma)),
      caseTrail(make(o, "actCaseTrail", tr("&Case Trail..."), "document")),
      network(make(o, "actNetwork", tr("Disable &Network"), "")),
      createReport(make(o, "actCreateReport", tr("&Create Report..."), "document",
                        Qt::CTRL | Qt::SHIFT | Qt::Key_R)),
      publishReport(make(o, "actPublishReport", tr("&Publish Report..."), "save-as")),
      openReportFolder(make(o, "actOpenReportFolder", tr("Open Report &Folder"), "folder")),
      upgradeWizard(make(o, "actUpgradeWizard", tr("&Upgrade Wizard..."), "rebuild")),
      errorLog(make(o, "actErrorLog", tr("&Error Log..."), "text")),
      tips(make(o, "actTips", tr("&Tip of the Day..."), "tip")),
      about(make(o, "actAbout", tr("&About Norvelane"), "norvelane-logo")) {
    rebuild->setToolTip(tr("Rebuild the tagged web pages, or the current one when none is tagged"));
    caseTrail->setToolTip(tr("What was done with this project, when and on which file"));
    linkAnalysis->setToolTip(tr("Find the cached pages that hold a link to each record"));
    filters->setToolTip(tr("Show only records of some sources, kinds and sites"));
    options->setToolTip(tr("Settings of the program and the project"));
    hosts->setToolTip(tr("The list of hosts beside the table"));
    hosts->setCheckable(true);
    openReportFolder->setEnabled(false);
    viewers->setCheckable(true);
    viewers->setChecked(true);
}

void MainActions::setProjectOpen(bool open) {
    for (QAction *action :
         {saveAs,    closeProject, copyCell,     copyRows,     selectAll,     find,       findNext,
          tag,       rebuild,      linkAnalysis, columns,      refresh,       baseFolder, timeZone,
          caseTrail, filters,      hosts,        createReport, publishReport, exportRows})
        action->setEnabled(open);
}

} // namespace nv
