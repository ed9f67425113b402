#pragma once

#include "gui/Desk.h"
#include "platform/qt/QtText.h"
#include "ui/limits/ColumnLimitForm.h"
#include "ui/table/TableTab.h"

#include <QLabel>
#include <QLineEdit>
#include <QToolButton>

#include <functional>
#include <memory>

namespace nv::test {

/// A window whose table holds the example, and what limits its rows.
struct LimitedTable {
    LimitedTable() {
        form.resize(1280, 800);
        form.show();
        openExample(desk, form);
        all = rows();
    }

    TableTab &tab() { return child<TableTab>(form, "TableTab"); }
    int rows() { return tab().grid().model()->rowCount(); }
    QLineEdit &box() { return child<QLineEdit>(form, "txtSearch"); }
    SQLite::Database &project() { return desk.program.state.projectDB.connection(); }
    /// What a screen reader says of them.
    QStringList chips() {
        QStringList texts;
        for (int place = 0;; ++place) {
            auto *found = form.findChild<QToolButton *>(QStringLiteral("btnChip%1").arg(place));
            if (!found || !found->isVisible())
                return texts;
            texts += found->accessibleName();
        }
    }
    QToolButton *chip(const QString &text) {
        for (auto *each : form.findChildren<QToolButton *>())
            if (each->isVisible() && each->objectName().startsWith(QStringLiteral("btnChip")) &&
                each->accessibleName().contains(text))
                return each;
        return nullptr;
    }
    void type(const QString &text) {
        box().setFocus();
        QTest::keyClicks(&box(), text);
    }
    void enter(const QString &text) {
        box().setFocus();
        box().setText(text);
        QTest::keyClick(&box(), Qt::Key_Return);
    }
    void chooseHost(const QString &host) {
        auto &hosts = child<QLineEdit>(form, "txtHostFilter");
        hosts.setText(host);
        QTest::keyClick(&hosts, Qt::Key_Return);
    }

    Desk desk;
    MainForm form{desk.program, desk.dialogs};
    int all = 0;
};

/// Runs `act` on the dialog once it is there: values are counted before.
inline void onForm(const std::function<void(ColumnLimitForm &)> &act) {
    auto *timer = new QTimer(qApp);
    QObject::connect(timer, &QTimer::timeout, timer, [timer, act] {
        if (auto *form = qobject_cast<ColumnLimitForm *>(QApplication::activeModalWidget())) {
            timer->stop();
            timer->deleteLater();
            act(*form);
        }
    });
    timer->start(10);
}

} // namespace nv::test
