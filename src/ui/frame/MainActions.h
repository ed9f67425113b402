#pragma once

#include <QObject>

#include <array>

class QAction;

namespace nv {

/// What the main window can be told to do: texts, pictures and keys. Who does it is the window's.
struct MainActions {
    explicit MainActions(QObject *owner);

    QAction *newProject;
    QAction *openProject;
    QAction *import;
    QAction *saveAs;
    QAction *exportRows;
    QAction *closeProject;
    QAction *exit;
    QAction *copyCell;
    QAction *copyRows;
    QAction *copyCsv;
    QAction *copyMarkdown;
    QAction *copyJson;
    QAction *copyDefanged; ///< addresses of the selected rows, so that no click follows them
    QAction *selectAll;
    QAction *search;
    QAction *find; ///< in the columns that are shown
    QAction *findNext;
    QAction *tag;
    QAction *rebuild;          ///< the tagged pages, or the current one when none is tagged
    QAction *rebuildPage;      ///< the current one, whatever is tagged
    QAction *rebuildExactly;   ///< those of `rebuild`, whatever the setting says
    QAction *rebuildByClassic; ///< the same, by the classic rules
    QAction *linkAnalysis;
    QAction *hashSets;
    QAction *filters;
    QAction *places;
    QAction *hosts; ///< the classic list
    QAction *time;
    QAction *hideKnown; ///< rows whose file is in a known hash set
    QAction *columns;
    QAction *viewers;
    QAction *refresh;
    QAction *baseFolder;
    QAction *timeZone;
    QAction *options;
    QAction *importSummary;
    QAction *caseTrail;
    QAction *network;
    QAction *createReport;
    QAction *publishReport;
    QAction *openReportFolder; ///< enabled by the first report
    QAction *upgradeWizard;
    QAction *errorLog;
    QAction *guide;
    QAction *tips;
    QAction *about;

    /// What makes sense only with a project, and only with one that may be written.
    void setProjectOpen(bool open, bool readOnly);
    /// What would disturb it waits, and says so.
    void setReportInMaking(bool isMade);

  private:
    void makeCheckable() const;
    void describe() const;

    std::array<QAction *, 4> waitingForReport() const;

    bool m_isOpen = false; ///< the project
    bool m_isReadOnly = false;
    bool m_isReportInMaking = false;
};

} // namespace nv
