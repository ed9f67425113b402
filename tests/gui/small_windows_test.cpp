#include "app/messages/ReportMessages.h"
#include "platform/qt/Icons.h"
#include "platform/qt/QtExaminer.h"
#include "support/TempFolder.h"
#include "support/TestDoubles.h"
#include "ui/frame/SplashForm.h"
#include "ui/frame/Theme.h"
#include "ui/frame/TipForm.h"
#include "ui/limits/FilterForm.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QImage>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>

namespace nv {

class SmallWindowsTest : public QObject {
    Q_OBJECT

  private slots:
    void aMessageIsABoxNamedByItsIdWithPlainText();
    void escapeAnswersNo();
    void buttonsSayWhatTheyDoWhereTheMessageSaysSo();
    void tipsAreLinesOfTheFileAndFollowEachOther();
    void theTickOfTheTipsIsWrittenAtOnce();
    void aMissingTipFileShowsNoTips();
    void theSplashHasItsSizeAndStandsInTheMiddle();
    void everyPictureIsDrawnAndNamesIgnoreTheExtension();
    void theThemeIsKeptAndSetsReadableColours();
    void theFiltersChooseWhoseRecordsFromWhatWasImported();

  private:
    /// Runs `act` on the message box that comes up next.
    static void whenAsked(const std::function<void(QMessageBox &)> &act) {
        QTimer::singleShot(0, qApp, [act] {
            auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
            QVERIFY(box);
            act(*box);
        });
    }
};

void SmallWindowsTest::aMessageIsABoxNamedByItsIdWithPlainText() {
    QtExaminer examiner;
    whenAsked([](QMessageBox &box) {
        QCOMPARE(box.objectName(), QStringLiteral("overwrite-project"));
        QCOMPARE(box.windowTitle(), QStringLiteral("File Already Exists"));
        QCOMPARE(box.text(), QStringLiteral("<b>not bold</b>"));
        QCOMPARE(box.textFormat(), Qt::PlainText);
        QCOMPARE(box.defaultButton(), box.button(QMessageBox::No));
        QTest::mouseClick(box.button(QMessageBox::Yes), Qt::LeftButton);
    });
    QCOMPARE(examiner.ask({"overwrite-project", "File Already Exists", "<b>not bold</b>",
                           Choices::YesNo, Tone::Information, Answer::No}),
             Answer::Yes);
}

void SmallWindowsTest::escapeAnswersNo() {
    QtExaminer examiner;
    whenAsked([](QMessageBox &box) { QTest::keyClick(&box, Qt::Key_Escape); });
    QCOMPARE(examiner.ask({"exit-program", "Exit Program", "Are you sure?", Choices::YesNo,
                           Tone::Information, Answer::Yes}),
             Answer::No);
}

void SmallWindowsTest::buttonsSayWhatTheyDoWhereTheMessageSaysSo() {
    QtExaminer examiner;
    const Message message = messages::reportNotPublished(2, "/tmp/<b>page</b>.htm");
    whenAsked([](QMessageBox &box) {
        QCOMPARE(box.button(QMessageBox::Yes)->text(), QStringLiteral("&Publish..."));
        QCOMPARE(box.button(QMessageBox::No)->text(), QStringLiteral("&Leave It"));
        QCOMPARE(box.defaultButton(), box.button(QMessageBox::Yes));
        QVERIFY(box.text().startsWith(QStringLiteral("2 reports")));
        QVERIFY(box.text().contains(QStringLiteral("<b>page</b>")));
        QTest::keyClick(&box, Qt::Key_Escape);
    });
    QCOMPARE(examiner.ask(message), Answer::Cancel);
    whenAsked(
        [](QMessageBox &box) { QTest::mouseClick(box.button(QMessageBox::No), Qt::LeftButton); });
    QCOMPARE(examiner.ask(message), Answer::No);
}

void SmallWindowsTest::tipsAreLinesOfTheFileAndFollowEachOther() {
    const test::TempFolder folder;
    test::MemoryLog log;
    IniFile settings(folder.path() / "Norvelane.ini", log);
    const auto tips =
        readTips(folder.write("dailytips.txt", "First tip\r\n\r\nSecond <b>tip</b>\n"));
    QCOMPARE(tips.size(), std::size_t{2});

    TipForm form(tips, 3, settings);
    form.show();
    auto *text = form.findChild<QLabel *>(QStringLiteral("labTip"));
    QCOMPARE(text->text(), QStringLiteral("Second <b>tip</b>"));
    QCOMPARE(text->textFormat(), Qt::PlainText);
    QTest::mouseClick(form.findChild<QPushButton *>(QStringLiteral("btnNextTip")), Qt::LeftButton);
    QCOMPARE(text->text(), QStringLiteral("First tip"));
}

void SmallWindowsTest::theTickOfTheTipsIsWrittenAtOnce() {
    const test::TempFolder folder;
    test::MemoryLog log;
    IniFile settings(folder.path() / "Norvelane.ini", log);
    TipForm form({"One tip"}, 0, settings);
    auto *tick = form.findChild<QCheckBox *>(QStringLiteral("chkShowTipsAtStartup"));
    QVERIFY(tick->isChecked());
    QTest::keyClick(tick, Qt::Key_Space);
    QVERIFY(!IniFile(settings.path(), log).readIniValue("OPTIONS", "ShowTipsAtStartup", true));
}

void SmallWindowsTest::aMissingTipFileShowsNoTips() {
    const test::TempFolder folder;
    test::MemoryLog log;
    IniFile settings(folder.path() / "Norvelane.ini", log);
    TipForm form(readTips(folder.path() / "missing.txt"), 7, settings);
    QCOMPARE(form.findChild<QLabel *>(QStringLiteral("labTip"))->text(),
             QStringLiteral("There are no tips."));
}

void SmallWindowsTest::theSplashHasItsSizeAndStandsInTheMiddle() {
    SplashForm splash(QStringLiteral("0.1.0"));
    splash.showCentred();
    QCOMPARE(splash.size(), QSize(600, 362));
    const QPoint off = splash.geometry().center() - splash.screen()->availableGeometry().center();
    QVERIFY(off.manhattanLength() <= 2);
}

void SmallWindowsTest::everyPictureIsDrawnAndNamesIgnoreTheExtension() {
    QVERIFY(!icon("firefox-32.gif").isNull());
    QVERIFY(!icon("C:\\Program\\images\\ie-32.png").isNull());
    QVERIFY(icon("no-such-picture").isNull());
    for (const QString &name : QDir(QStringLiteral(":/images")).entryList()) {
        const QImage image = icon(name.toStdString()).pixmap(QSize(16, 16)).toImage();
        bool drawn = false;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                drawn = drawn || qAlpha(image.pixel(x, y)) > 128;
        QVERIFY2(drawn, qPrintable(name));
    }
}

void SmallWindowsTest::theThemeIsKeptAndSetsReadableColours() {
    const test::TempFolder folder;
    test::MemoryLog log;
    IniFile settings(folder.path() / "Norvelane.ini", log);
    QCOMPARE(keptTheme(settings), Theme::System);
    keepTheme(settings, Theme::Dark);
    QCOMPARE(keptTheme(IniFile(settings.path(), log)), Theme::Dark);

    for (const Theme theme : {Theme::Light, Theme::Dark}) {
        applyTheme(theme);
        const QPalette palette = QApplication::palette();
        const int ground = palette.color(QPalette::Base).lightness();
        const int text = palette.color(QPalette::Text).lightness();
        QVERIFY(std::abs(ground - text) > 150);
        QCOMPARE(ground < text, theme == Theme::Dark);
    }
}

void SmallWindowsTest::theFiltersChooseWhoseRecordsFromWhatWasImported() {
    test::ScriptedExaminer examiner;
    RecordFilters filters = firstFilters();
    filters.enableFilters = true;
    filters.person = "bob";
    FilterForm form(filters, examiner, nullptr, {{"Brave", "Chromium"}, {}, {"alice"}});
    QVERIFY(form.filters() == filters);
    auto &browser = *form.findChild<QComboBox *>("cbBrowser");
    auto &person = *form.findChild<QComboBox *>("cbPerson");
    QCOMPARE(browser.count(), 3); // any, and the two
    QCOMPARE(browser.currentText(), QString());
    QCOMPARE(person.currentText(), QStringLiteral("bob")); // though nothing of him was imported
    browser.setCurrentIndex(2);
    person.setEditText(QStringLiteral(" alice "));
    QCOMPARE(form.filters().browser, std::string("Chromium"));
    QCOMPARE(form.filters().person, std::string("alice"));
    QCOMPARE(form.filters().profile, std::string());
}

} // namespace nv

QTEST_MAIN(nv::SmallWindowsTest)
#include "small_windows_test.moc"
