#pragma once

#include "gui/Desk.h"
#include "ui/import/ImportForm.h"

#include <QPushButton>

namespace nv::test {

/// Goes by keys from the first page to the rows of this folder, into a project that the program
/// names, and counts as one counts who doesn't know the program: each press that leads on, and each
/// dialog and message in the way. The computer is connected to a network, as most are. The window
/// has to be active.
inline int stepsToRows(Desk &desk, MainForm &form, const fs::path &evidence) {
    desk.network.status = "ENABLED";
    desk.examiner.heard.clear();
    desk.dialogs.projectsAsked = 0;
    desk.dialogs.answer = evidence;
    int steps = 0;
    const auto enter = [&steps](QWidget &window) {
        ++steps;
        if (QWidget *focus = window.focusWidget())
            QTest::keyClick(focus, Qt::Key_Return);
    };
    enter(form); // choose
    whenShown<ImportForm>([&](ImportForm &wizard) {
        QVERIFY(waitFor([&wizard] { return wizard.isReady(); }));
        QVERIFY(child<QWidget>(wizard, "ImportNetwork").isVisible());
        enter(wizard); // import
        QCOMPARE(child<QPushButton>(wizard, "btnNext").text(), QStringLiteral("Finished"));
        enter(wizard); // show the table
        if (wizard.isVisible())
            wizard.reject(); // nothing waits for it for ever
    });
    enter(form); // check
    desk.network.status.clear();
    return steps + desk.dialogs.projectsAsked + static_cast<int>(desk.examiner.heard.size());
}

} // namespace nv::test
