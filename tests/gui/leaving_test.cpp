#include "gui/Desk.h"
#include "platform/qt/PageGuard.h"
#include "ui/frame/Theme.h"
#include "ui/frame/TipForm.h"
#include "ui/import/ImportSummaryForm.h"
#include "ui/reports/ReportForm.h"
#include "ui/table/TableTab.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QStatusBar>
#include <QToolButton>
#include <QTreeWidget>

#include <cmath>

// The first and the last minute with the window, and what its status bar says between them.
namespace nv {

using namespace test;

class LeavingTest : public QObject {
    Q_OBJECT

  private slots:
    void init();
    void cleanup();

    void anUnpublishedReportIsAskedAbout();
    void publishingWhileLeavingSavesIt();
    void oneQuestionIsEnough();
    void aPublishedReportIsNotAskedAbout();
    void whatWasNotReadStandsInTheStatusBar();
    void theSignLeadsToTheList();
    void theSignIsReadInBothThemes();
    void withoutGapsThereIsNoSign();
    void longTextsCoverNothing();
    void tipsComeFromTheSecondStartOn();

  private:
    bool isOpen() { return m_desk->program.state.projectDB.isOpen(); }
    QToolButton &sign() { return child<QToolButton>(*m_form, "btnNotReadSign"); }
    std::size_t asked(const char *id) {
        return static_cast<std::size_t>(
            std::ranges::count(m_desk->examiner.heard, std::string(id)));
    }
    fs::path target() {
        const fs::path folder = m_desk->folder.path() / "handed over";
        fs::create_directories(folder);
        return folder;
    }
    void makeReport() {
        whenShown<ReportForm>([](ReportForm &form) {
            child<QComboBox>(form, "cbReportType").setCurrentIndex(2);
            QTest::mouseClick(form.findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Ok),
                              Qt::LeftButton);
        });
        trigger(*m_form, "actCreateReport");
        waitForReport(*m_form);
        QVERIFY(child<QLabel>(*m_form, "labNotice").text().contains(QStringLiteral("is ready")));
    }

    std::unique_ptr<Desk> m_desk;
    std::unique_ptr<MainForm> m_form;
};

void LeavingTest::init() {
    m_desk = std::make_unique<Desk>();
    m_form = std::make_unique<MainForm>(m_desk->program, m_desk->dialogs);
    m_form->resize(1280, 800);
    m_form->show();
    openExample(*m_desk, *m_form);
}

void LeavingTest::cleanup() {
    m_form.reset();
    m_desk.reset();
}

void LeavingTest::anUnpublishedReportIsAskedAbout() {
    makeReport();
    for (const char *action : {"actClose", "actOpen", "actNew"}) {
        m_desk->examiner.script = {Answer::Cancel};
        trigger(*m_form, action);
        QCOMPARE(m_desk->examiner.heard.back(), std::string("report-not-published"));
        QVERIFY2(isOpen(), action);
    }
    m_desk->examiner.script = {Answer::Cancel};
    QVERIFY(!m_form->close());
    m_desk->examiner.script = {Answer::No};
    trigger(*m_form, "actClose");
    QVERIFY(!isOpen());
    m_form->takePath(m_desk->folder.path() / "case.nvp");
    const std::size_t before = asked("report-not-published");
    QVERIFY(m_form->close());
    QCOMPARE(asked("report-not-published"), before); // who lets it go isn't asked again
    QCOMPARE(m_desk->examiner.heard.back(), std::string("exit-program"));
}

void LeavingTest::publishingWhileLeavingSavesIt() {
    makeReport();
    m_desk->dialogs.answer = m_desk->folder.path() / "no such folder";
    m_desk->examiner.script = {Answer::Yes};
    QVERIFY2(!m_form->close(), "who chooses no folder stays");
    m_desk->dialogs.answer = target();
    m_desk->examiner.script = {Answer::Yes, Answer::Yes};
    QVERIFY(m_form->close());
    QVERIFY(fs::exists(target() / "index-history.htm"));
    QCOMPARE(m_desk->examiner.heard.back(), std::string("report-published"));
}

void LeavingTest::oneQuestionIsEnough() {
    makeReport();
    m_desk->examiner.heard.clear();
    m_desk->examiner.script = {Answer::No};
    QVERIFY(m_form->close());
    QCOMPARE(m_desk->examiner.heard, std::vector<std::string>{"report-not-published"});
}

void LeavingTest::aPublishedReportIsNotAskedAbout() {
    makeReport();
    m_desk->dialogs.answer = target();
    trigger(*m_form, "actPublishReport");
    QCOMPARE(m_desk->examiner.heard.back(), std::string("report-published"));
    trigger(*m_form, "actClose");
    QVERIFY(!isOpen());
    QCOMPARE(asked("report-not-published"), std::size_t{0});
}

void LeavingTest::whatWasNotReadStandsInTheStatusBar() {
    QVERIFY(sign().isVisible());
    QCOMPARE(sign().text(), QStringLiteral("1 thing not read: what?"));
    trigger(*m_form, "actClose");
    QVERIFY(!sign().isVisible());
    m_form->takePath(m_desk->folder.path() / "case.nvp");
    QVERIFY(sign().isVisible());
    QVERIFY2((sign().focusPolicy() & Qt::TabFocus) != 0, "keys lead to it");
    m_desk->dialogs.answer = m_desk->folder.path() / "other.nvp";
    trigger(*m_form, "actNew");
    QVERIFY2(!sign().isVisible(), "of another project");
}

void LeavingTest::theSignLeadsToTheList() {
    for (int area = 0; area < 12 && m_form->focusWidget() != &sign(); ++area)
        trigger(*m_form, "actNextArea");
    QCOMPARE(m_form->focusWidget(), &sign());
    QTimer poll; // it counts once it is up
    bool isSeen = false;
    connect(&poll, &QTimer::timeout, &poll, [&] {
        auto *form = qobject_cast<ImportSummaryForm *>(QApplication::activeModalWidget());
        if (!form || !form->isEnabled() || child<QLabel>(*form, "labHeadline").text().isEmpty())
            return;
        poll.stop();
        auto &list = child<QTreeWidget>(*form, "lstNotRead");
        isSeen = list.isVisible() && list.topLevelItemCount() == 1 &&
                 list.topLevelItem(0)->text(0) == QStringLiteral("Cookies.plist");
        form->reject();
    });
    poll.start(10);
    QTest::keyClick(&sign(), Qt::Key_Space);
    QVERIFY(isSeen);
}

void LeavingTest::theSignIsReadInBothThemes() {
    const auto luminance = [](const QColor &color) {
        const auto linear = [](double part) {
            return part <= 0.03928 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
        };
        return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
               0.0722 * linear(color.blueF());
    };
    for (const char *theme : {"actThemeDark", "actThemeLight", "actThemeDark"}) {
        trigger(*m_form, theme);
        QApplication::processEvents();
        const QPalette palette = sign().palette();
        const double text = luminance(palette.color(QPalette::ButtonText));
        const double ground = luminance(palette.color(QPalette::Button));
        const double contrast = (std::max(text, ground) + 0.05) / (std::min(text, ground) + 0.05);
        QVERIFY2(contrast >= 4.5, theme);
        QCOMPARE(text > ground, QByteArray(theme) == "actThemeDark");
    }
    trigger(*m_form, "actThemeSystem");
}

void LeavingTest::withoutGapsThereIsNoSign() {
    trigger(*m_form, "actClose");
    fs::remove_all(m_desk->folder.path() / "evidence" / "Safari");
    m_desk->dialogs.answer = m_desk->folder.path() / "whole.nvp";
    trigger(*m_form, "actNew");
    Program &program = m_desk->program;
    program.import.startingDirectory = (m_desk->folder.path() / "evidence").string();
    Unwatched nobody;
    program.import.historyFiles = scan(program.import, nobody, program.log).historyFiles;
    static_cast<void>(runImportJob(program, nobody, program.state.tempFolderPath));
    trigger(*m_form, "actRefresh");
    QVERIFY(child<TableTab>(*m_form, "TableTab").grid().model()->rowCount() > 0);
    QVERIFY(!sign().isVisible());
}

void LeavingTest::longTextsCoverNothing() {
    m_form->resize(960, 540);
    QTRY_COMPARE(m_form->width(), 960);
    makeReport();
    auto &notice = child<QLabel>(*m_form, "labNotice");
    QVERIFY(notice.fontMetrics().horizontalAdvance(notice.text()) > notice.width());
    QTRY_VERIFY(child<QLabel>(*m_form, "labZone").isVisible());
    QTRY_VERIFY(notice.geometry().right() < sign().geometry().left());
    QVERIFY(sign().geometry().right() <= m_form->statusBar()->width());
    QVERIFY(notice.toolTip().contains(QStringLiteral("index-history.htm")));
    QCOMPARE(m_form->width(), 960);
    // What doesn't fit is left out with a sign that it is, and not in the middle of a letter.
    const QImage edge = notice.grab().toImage();
    bool isEmpty = true;
    for (int y = 0; y < edge.height(); ++y)
        isEmpty &= edge.pixel(edge.width() - 2, y) == edge.pixel(edge.width() - 1, y);
    QVERIFY(isEmpty);
}

void LeavingTest::tipsComeFromTheSecondStartOn() {
    bool isShown = false;
    const auto start = [&] {
        isShown = false;
        QTimer::singleShot(0, qApp, [&isShown] {
            if (auto *form = qobject_cast<TipForm *>(QApplication::activeModalWidget())) {
                isShown = true;
                form->reject();
            }
        });
        m_form->showTipAtStart();
        QApplication::processEvents();
    };
    start();
    QVERIFY2(!isShown, "the steps of the first page stand there");
    start();
    QVERIFY(isShown);
    rememberFlag(m_desk->program.settings, "ShowTipsAtStartup", false);
    start();
    QVERIFY(!isShown);
    whenShown<TipForm>([](TipForm &form) { form.reject(); });
    trigger(*m_form, "actTips");
}

} // namespace nv

int main(int argc, char **argv) {
    nv::prepareWebEngine();
    QApplication application(argc, argv);
    nv::LeavingTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "leaving_test.moc"
