#include "ui/frame/ProgressBox.h"
#include "ui/frame/StatusForm.h"
#include "ui/frame/Theme.h"

#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

namespace nv {

class StatusFormTest : public QObject {
    Q_OBJECT

  private slots:
    void showsTitlesIconAndBarsOfTheTask();
    void theIconHasTheColoursOfTheTheme();
    void theCancelButtonIsHeardOnce();
    void closingTheWindowWhileATaskRunsCancelsIt();
    void textsOfEvidenceStayPlain();
    void theClockCanBeHidden();
    void aShortTaskDoesNotFlashUp();

  private:
    static constexpr std::chrono::milliseconds kAtOnce{0};

    template <class Widget>
    static Widget &child(StatusForm &form, const char *name) {
        return *form.findChild<Widget *>(QLatin1String(name));
    }
};

void StatusFormTest::showsTitlesIconAndBarsOfTheTask() {
    StatusForm form(nullptr, kAtOnce);
    TaskStatus thread(form);
    OpenTask task(thread,
                  {"PARSING FIREFOX CACHE", "Firefox 3", "/case/_CACHE_MAP_", "firefox-32.gif"});
    QVERIFY(form.isVisible());
    QCOMPARE(form.windowModality(), Qt::ApplicationModal); // above any dialog that is open
    QCOMPARE(child<QLabel>(form, "labMsg1").text(), QStringLiteral("PARSING FIREFOX CACHE"));
    QCOMPARE(child<QLabel>(form, "labMsg3").text(), QStringLiteral("/case/_CACHE_MAP_"));
    QVERIFY(!child<QLabel>(form, "imgIcon").pixmap(Qt::ReturnByValue).isNull());

    QVERIFY(thread.advance(0.5));
    thread.topPercent = 50;
    thread.show({"Reading records", 50, 100, "File", 1, 4});
    QCOMPARE(form.windowTitle(), QStringLiteral("50% Norvelane Thread Status"));
    QCOMPARE(child<QLabel>(form, "labBar1Msg").text(), QStringLiteral("Reading records (50%)"));
    QCOMPARE(child<QLabel>(form, "labBar1").text(), QStringLiteral("50 of 100"));
    QCOMPARE(child<ProgressBox>(form, "picBar2").percent(), 25);
    QVERIFY(child<QLabel>(form, "labBar2Msg").isVisible());
}

void StatusFormTest::theIconHasTheColoursOfTheTheme() {
    StatusForm form(nullptr, kAtOnce);
    const auto shown = [&form] {
        TaskStatus thread(form);
        const OpenTask task(thread, {"REBUILDING", "", "", "rebuild.gif"});
        return child<QLabel>(form, "imgIcon").pixmap(Qt::ReturnByValue).toImage();
    };
    applyTheme(Theme::Light);
    const QImage light = shown();
    QVERIFY(!light.isNull());
    applyTheme(Theme::Dark);
    QVERIFY(shown() != light);
    applyTheme(Theme::Light);
    QCOMPARE(shown(), light);
    applyTheme(Theme::System);
}

void StatusFormTest::theCancelButtonIsHeardOnce() {
    StatusForm form(nullptr, kAtOnce);
    TaskStatus thread(form);
    QSignalSpy spy(&form, &StatusForm::cancelled);
    connect(&form, &StatusForm::cancelled, this, [&thread] { thread.cancelTask = true; });
    auto &button = child<QPushButton>(form, "btnCancel");
    {
        OpenTask task(thread, {"LOADING URLS", "", "", ""});
        QTest::mouseClick(&button, Qt::LeftButton);
        QTest::mouseClick(&button, Qt::LeftButton);
        QCOMPARE(spy.count(), 1);
        QVERIFY(!thread.advance(0.1));
    }
    QVERIFY(!form.isVisible());
    const OpenTask next(thread, {"LOADING URLS", "", "", ""});
    QVERIFY(thread.advance(0.1));
    QVERIFY(button.isEnabled());
}

void StatusFormTest::closingTheWindowWhileATaskRunsCancelsIt() {
    StatusForm form(nullptr, kAtOnce);
    TaskStatus thread(form);
    QSignalSpy spy(&form, &StatusForm::cancelled);
    const OpenTask task(thread, {"LOADING URLS", "", "", ""});
    QTest::keyClick(&form, Qt::Key_Escape);
    QCOMPARE(spy.count(), 1);
    QVERIFY(form.isVisible());
}

void StatusFormTest::textsOfEvidenceStayPlain() {
    StatusForm form(nullptr, kAtOnce);
    TaskStatus thread(form);
    const OpenTask task(thread, {"IMPORTING", "", "<img src=\"http://x/\"><b>bold</b>", ""});
    auto &label = child<QLabel>(form, "labMsg3");
    QCOMPARE(label.textFormat(), Qt::PlainText);
    QCOMPARE(label.text(), QStringLiteral("<img src=\"http://x/\"><b>bold</b>"));
}

void StatusFormTest::theClockCanBeHidden() {
    StatusForm form(nullptr, kAtOnce);
    TaskStatus thread(form);
    thread.showTimeElapsed = false;
    const OpenTask task(thread, {"LOADING URLS", "", "", ""});
    QVERIFY(!child<QLabel>(form, "labTimeElapsed").isVisible());
}

void StatusFormTest::aShortTaskDoesNotFlashUp() {
    StatusForm form(nullptr, std::chrono::hours(1));
    TaskStatus thread(form);
    const OpenTask task(thread, {"LOADING URLS", "", "", ""});
    thread.updateStatus();
    QVERIFY(!form.isVisible());
}

} // namespace nv

QTEST_MAIN(nv::StatusFormTest)
#include "status_form_test.moc"
