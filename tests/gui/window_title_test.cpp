#include "Desk.h"
#include "ui/window/WindowTitle.h"

#include <QLabel>
#include <QMainWindow>

#include <stdexcept>

namespace nv::test {

/// How far running work is, in the title of the window.
class WindowTitleTest : public QObject {
    Q_OBJECT

  private slots:
    void tellsTheTaskAndIsAsBeforeAfterIt();
    void aFailureAndACancelLeaveNothing();
    void aShortTaskDoesNotFlicker();
    void tellsWorkInTheBackgroundWhereNoTaskRuns();
    void theStatusWindowTellsTheTimeThatIsLeft();
};

void WindowTitleTest::tellsTheTaskAndIsAsBeforeAfterIt() {
    Desk desk;
    MainForm form(desk.program, desk.dialogs);
    openExample(desk, form);
    const QString before = form.windowTitle();
    QVERIFY(before.contains(QStringLiteral("case.nvp")));
    form.showMinimized();
    {
        TaskStatus &task = desk.program.task;
        const OpenTask open(task, {}, "Import");
        task.startTimer -= 10; // it has run for a while
        task.topPercent = 42;
        task.updateStatus();
        QCOMPARE(form.windowTitle(), QStringLiteral("42% - Import - ") + before);
        task.topPercent = 43;
        task.updateStatus();
        QCOMPARE(form.windowTitle(), QStringLiteral("43% - Import - ") + before);
    }
    QCOMPARE(form.windowTitle(), before);
}

void WindowTitleTest::aFailureAndACancelLeaveNothing() {
    Desk desk;
    MainForm form(desk.program, desk.dialogs);
    const QString before = form.windowTitle();
    TaskStatus &task = desk.program.task;
    try {
        const OpenTask open(task, {"REBUILDING WEB PAGES", "", "", ""});
        task.startTimer -= 10;
        task.topPercent = 7;
        task.updateStatus();
        QCOMPARE(form.windowTitle(), QStringLiteral("7% - Rebuilding web pages - ") + before);
        throw std::runtime_error("a failure");
    } catch (const std::runtime_error &) {
    }
    QCOMPARE(form.windowTitle(), before);
    {
        const OpenTask open(task, {"REBUILDING WEB PAGES", "", "", ""});
        task.startTimer -= 10;
        task.updateStatus();
        task.cancelTask = true;
        QVERIFY(!task.advance(0.5));
    }
    QCOMPARE(form.windowTitle(), before);
}

void WindowTitleTest::aShortTaskDoesNotFlicker() {
    QWidget window;
    WindowTitle title(window);
    title.setCaption(QStringLiteral("Norvelane"));
    StatusForm view(nullptr, std::chrono::hours(1));
    double now = 100;
    TaskStatus task(view, [&now] { return now; });
    task.watcher = [&title](const TaskStatus &status) { title.showTask(status); };
    const OpenTask open(task, {"LOADING URLS", "", "", ""});
    now += 0.3;
    task.topPercent = 50;
    task.updateStatus();
    QCOMPARE(window.windowTitle(), QStringLiteral("Norvelane"));
    now += 0.2;
    task.updateStatus();
    QCOMPARE(window.windowTitle(), QStringLiteral("50% - Loading URLs - Norvelane"));
    task.topPercent = 0; // nobody knows how much there is
    task.updateStatus();
    QCOMPARE(window.windowTitle(), QStringLiteral("Loading URLs - Norvelane"));
}

void WindowTitleTest::tellsWorkInTheBackgroundWhereNoTaskRuns() {
    QWidget window;
    WindowTitle title(window);
    title.setCaption(QStringLiteral("Norvelane"));
    title.showWork(QStringLiteral("Search index"), 0.125);
    QCOMPARE(window.windowTitle(), QStringLiteral("12% - Search index - Norvelane"));
    title.showWork(QStringLiteral("Thumbnails"), 7); // more than all of it
    title.endWork(QStringLiteral("Search index"));
    QCOMPARE(window.windowTitle(), QStringLiteral("100% - Thumbnails - Norvelane"));
    title.setCaption(QStringLiteral("Norvelane - [case.nvp]"));
    title.endAllWork();
    QCOMPARE(window.windowTitle(), QStringLiteral("Norvelane - [case.nvp]"));
}

void WindowTitleTest::theStatusWindowTellsTheTimeThatIsLeft() {
    StatusForm view(nullptr, std::chrono::milliseconds(0));
    double now = 100;
    TaskStatus task(view, [&now] { return now; });
    const OpenTask open(task, {"LOADING URLS", "", "", ""});
    auto &left = child<QLabel>(view, "labTimeLeft");
    QVERIFY(!left.isVisible());
    for (int i = 1; i <= 25; ++i) {
        now += 2.4;
        QVERIFY(task.advance(i * 0.01));
    }
    QVERIFY(left.isVisible());
    QCOMPARE(left.text(), QStringLiteral("- about 3 minutes left"));
}

} // namespace nv::test

QTEST_MAIN(nv::test::WindowTitleTest)
#include "window_title_test.moc"
