#pragma once

#include "app/program/ProgramState.h"

#include <QCoreApplication>
#include <QString>

class QLabel;
class QStatusBar;

namespace nv {

class TableTab;

/// The status bar of the main window: what the table shows, or a notice in its place.
class StatusLine {
    Q_DECLARE_TR_FUNCTIONS(nv::StatusLine)

  public:
    explicit StatusLine(QStatusBar &bar);

    /// Rows, query, zone and base folder, when the table has a list.
    void showTable(TableTab &tab, const ProgramState &state);
    /// Stands in place of query and base folder until the examiner goes to another row.
    void showNotice(const QString &text);
    /// Without a project the bar is empty.
    void setProjectOpen(bool open);

  private:
    void showParts();

    bool m_open = false;
    QLabel *m_rows, *m_tagged, *m_zone, *m_notice, *m_query, *m_base;
};

} // namespace nv
