#pragma once

#include "gui/CachedSite.h"
#include "ui/table/TableTab.h"
#include "ui/viewers/AuditPane.h"

#include <QTabWidget>
#include <QTableView>
#include <SQLiteCpp/Database.h>

#include <memory>
#include <string>

namespace nv::test {

/// A window over a small cache, for tests of what rebuilds its pages.
class RebuildWindow {
  protected:
    /// Opens the project of the site that `fill` adds to, at its first record.
    template <class Fill>
    void openSite(Fill &&fill) {
        m_desk = std::make_unique<Desk>();
        m_desk->program.state.redrawThumbIfPageRebuilt = false; // starting to draw takes a second
        m_form = std::make_unique<MainForm>(m_desk->program, m_desk->dialogs);
        m_form->resize(1200, 800);
        m_form->show();
        CachedSite site(m_desk->folder.path() / "evidence");
        fill(site);
        site.open(*m_desk, *m_form);
        choose(1);
    }
    void closeSite() {
        m_form.reset();
        m_desk.reset();
    }

    UrlGrid &grid() { return child<TableTab>(*m_form, "TableTab").grid(); }
    SQLite::Database &project() { return m_desk->program.state.projectDB.connection(); }
    /// Of a record; empty for none.
    std::string stored(const std::string &column, int id) {
        return project()
            .execAndGet("SELECT ifnull(" + column +
                        ", '') FROM URLs WHERE URL_ID = " + std::to_string(id))
            .getString();
    }
    QTableView &audit() { return child<QTableView>(*m_form, "AuditGrid"); }
    void choose(int id) { grid().setCurrentUrl(UrlId{id}); }
    void showAudit() {
        auto &viewers = child<QTabWidget>(*m_form, "viewerTabs");
        viewers.setCurrentWidget(&child<AuditPane>(*m_form, "AuditPane"));
    }

    std::unique_ptr<Desk> m_desk;
    std::unique_ptr<MainForm> m_form;
};

} // namespace nv::test
