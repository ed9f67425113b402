#include "base/Files.h"
#include "db/marks/RecordTags.h"
#include "gui/CachedSite.h"
#include "platform/qt/PageGuard.h"
#include "ui/frame/ViewerTabs.h"
#include "ui/reports/RedactionForm.h"
#include "ui/reports/ReportForm.h"
#include "ui/reports/ReportPreview.h"
#include "ui/viewers/BrowserPane.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>
#include <QWebEngineView>
#include <SQLiteCpp/Database.h>

// Making and publishing reports from the window.
namespace nv {

using namespace test;

class ReportTest : public QObject {
    Q_OBJECT

  private slots:
    void init();
    void cleanup();

    void aTypeHasToBeChosen();
    void aReportIsMadeOfTheRowsInView();
    void taggedRowsAreOfferedFirst();
    void rowsWithTagsAreChosenAndKept();
    void optionsAreKept();
    void aFinishedReportComesToTheFront();
    void aReportIsFoundAgainWithItsProject();
    void aReportThatCannotBeLoadedIsToldOf();
    void aReportIsPublished();
    void anEarlierReportIsReplacedOnRequest();
    void aPublishingThatFailsIsToldOf();
    void withoutAReportThereIsNothingToPublish();
    void nothingIsPublishedIntoTheEvidence();
    void aCaseReportIsMadeAndPublishedInOne();
    void redactionsThatCantBeReadAreToldOf();
    void theNextCaseBeginsWithoutTheNumberOfThis();

  private:
    fs::path report() { return m_desk->program.state.tempFolderPath / "Report"; }
    std::string page(const char *name) {
        const fs::path file = report() / name;
        return fs::exists(file) ? std::string(ByteView(readWhole(file)).raw()) : "";
    }
    QString notice() { return child<QLabel>(*m_form, "labNotice").text(); }
    static void press(ReportForm &form, QDialogButtonBox::StandardButton button) {
        QTest::mouseClick(form.findChild<QDialogButtonBox *>()->button(button), Qt::LeftButton);
    }
    /// Creates a report of the type at this place of the list, after `act`.
    void make(int type, const std::function<void(ReportForm &)> &act = {}) {
        whenShown<ReportForm>([type, act](ReportForm &form) {
            child<QComboBox>(form, "cbReportType").setCurrentIndex(type);
            if (act)
                act(form);
            press(form, QDialogButtonBox::Ok);
        });
        trigger(*m_form, "actCreateReport");
        waitForReport(*m_form);
    }

    std::unique_ptr<Desk> m_desk;
    std::unique_ptr<MainForm> m_form;
};

void ReportTest::init() {
    m_desk = std::make_unique<Desk>();
    m_form = std::make_unique<MainForm>(m_desk->program, m_desk->dialogs);
    m_form->show();
    openExample(*m_desk, *m_form);
}

void ReportTest::cleanup() {
    m_form.reset();
    m_desk.reset();
}

void ReportTest::aTypeHasToBeChosen() {
    whenShown<ReportForm>([](ReportForm &form) {
        child<QComboBox>(form, "cbReportType").setCurrentIndex(0);
        press(form, QDialogButtonBox::Ok);
        QVERIFY(form.isVisible());
        press(form, QDialogButtonBox::Cancel);
    });
    trigger(*m_form, "actCreateReport");
    QCOMPARE(m_desk->examiner.heard.back(), std::string("report-type-missing"));
    QVERIFY(!fs::exists(report() / "~report.htm"));
}

void ReportTest::aReportIsMadeOfTheRowsInView() {
    make(2, [](ReportForm &form) {
        QVERIFY(child<QLabel>(form, "labType").text().startsWith(QStringLiteral("URL records")));
        QVERIFY(!child<QCheckBox>(form, "chkIncludeAudit").isEnabled());
        QVERIFY(child<QCheckBox>(form, "chkIncludeUser").isEnabled());
        child<QLineEdit>(form, "txtCaseNumber").setText(QStringLiteral("<7>"));
    });
    const std::string text = page("index-history.htm");
    QVERIFY(text.find("http://a.example/") != std::string::npos);
    QVERIFY(text.find("&lt;7&gt;") != std::string::npos);
    QVERIFY(notice().contains(QStringLiteral("index-history.htm")));
    QVERIFY(m_form->findChild<QAction *>(QStringLiteral("actOpenReportFolder"))->isEnabled());
    make(1, [](ReportForm &form) {
        QVERIFY(child<QLabel>(form, "labTypeKinds").text().contains(QStringLiteral("card too")));
    });
    QVERIFY(page("index-cache.htm").find("This is a HISTORY record.") != std::string::npos);
}

void ReportTest::taggedRowsAreOfferedFirst() {
    m_desk->program.state.projectDB.connection().exec(
        "UPDATE URLs SET Tagged = 1 WHERE URL_ID = 2");
    trigger(*m_form, "actRefresh");
    make(2, [](ReportForm &form) { QVERIFY(child<QRadioButton>(form, "opTagged").isChecked()); });
    const std::string text = page("index-history.htm");
    QVERIFY(text.find("name='box1'") != std::string::npos);
    QVERIFY(text.find("name='box2'") == std::string::npos);
}

void ReportTest::rowsWithTagsAreChosenAndKept() {
    SQLite::Database &project = m_desk->program.state.projectDB.connection();
    Unwatched nobody;
    for (const auto &[name, rows] : {std::pair("Important", RowIds{2}), {"Ask <b>", {1, 2}}}) {
        const NamedTag tag = NamedTags(project).add({0, name, {}, 0, {}});
        QVERIFY(RecordTags(project).set(tag.tagID, rows, {}, nobody));
    }
    const auto item = [](ReportForm &form, int row) {
        return child<QListWidget>(form, "lstReportTags").item(row);
    };
    make(2, [&](ReportForm &form) {
        auto &named = child<QRadioButton>(form, "opNamedTags");
        QCOMPARE(item(form, 1)->text(), QStringLiteral("Ask <b> (2)"));
        named.click();
        press(form, QDialogButtonBox::Ok);
        QCOMPARE(m_desk->examiner.heard.back(), std::string("report-tag-missing"));
        child<QRadioButton>(form, "opAll").click();
        item(form, 0)->setCheckState(Qt::Checked);
        QVERIFY2(named.isChecked() && named.text().contains(u'1'), "who checks means its rows");
        QCOMPARE(child<QComboBox>(form, "cbCards").currentData().toInt(),
                 static_cast<int>(CaseCards::tagged));
    });
    QVERIFY(page("index-history.htm").find("name='box1'") != std::string::npos);
    QVERIFY(page("index-history.htm").find("name='box2'") == std::string::npos);
    make(2, [&](ReportForm &form) {
        QVERIFY2(child<QRadioButton>(form, "opNamedTags").isChecked(), "kept with the project");
        QCOMPARE(item(form, 0)->checkState(), Qt::Checked);
        item(form, 1)->setCheckState(Qt::Checked);
    });
    QVERIFY(page("index-history.htm").find("name='box2'") != std::string::npos);
}

void ReportTest::optionsAreKept() {
    make(2, [](ReportForm &form) {
        child<QLineEdit>(form, "txtOrganization").setText(QStringLiteral("Unit 4"));
        child<QCheckBox>(form, "chkIncludeUser").setChecked(false);
    });
    const IniFile &settings = m_desk->program.settings;
    QCOMPARE(settings.readIniValue("REPORT", "Organization", ""), std::string("Unit 4"));
    QCOMPARE(settings.readIniValue("REPORT", "IncludeUser", true), false);
    QCOMPARE(settings.readIniValue("REPORT", "ReportType", 0), 1);
    whenShown<ReportForm>([](ReportForm &form) {
        QCOMPARE(child<QLineEdit>(form, "txtOrganization").text(), QStringLiteral("Unit 4"));
        QVERIFY(!child<QCheckBox>(form, "chkIncludeUser").isChecked());
        QCOMPARE(child<QComboBox>(form, "cbReportType").currentIndex(), 2);
        press(form, QDialogButtonBox::Cancel);
    });
    trigger(*m_form, "actCreateReport");
}

void ReportTest::aFinishedReportComesToTheFront() {
    const auto shownText = [this] {
        auto text = std::make_shared<QString>();
        child<QWebEngineView>(child<BrowserPane>(*m_form, "ReportBrowser"), "browserView")
            .page()
            ->toPlainText([text](const QString &all) { *text = all; });
        QTest::qWait(50);
        return *text;
    };
    auto &viewers = child<ViewerTabs>(*m_form, "viewerTabs");
    viewers.setPinned(false);
    make(2, [](ReportForm &form) {
        child<QLineEdit>(form, "txtReportTitle").setText(QStringLiteral("First findings"));
    });
    QVERIFY(child<QWidget>(*m_form, "ReportPane").isVisible() && !viewers.isPinned());
    QTRY_VERIFY(shownText().contains(QStringLiteral("First findings")));
    make(2, [](ReportForm &form) {
        child<QLineEdit>(form, "txtReportTitle").setText(QStringLiteral("Second findings"));
    });
    QTRY_VERIFY(shownText().contains(QStringLiteral("Second findings")));
}

void ReportTest::aReportIsFoundAgainWithItsProject() {
    const auto location = [this] {
        return child<QLineEdit>(child<BrowserPane>(*m_form, "ReportBrowser"), "txtLocation").text();
    };
    const auto open = [this](const char *name, const char *action) {
        m_desk->dialogs.answer = m_desk->folder.path() / name;
        trigger(*m_form, action);
    };
    make(2);
    QTRY_VERIFY(location().endsWith(QStringLiteral("index-history.htm")));
    open("other.nvp", "actNew"); // another case: its examiner must not take the report for hers
    QVERIFY(m_desk->program.state.viewer.reportURL.empty());
    open("case.nvp", "actOpen");
    QVERIFY(m_desk->program.state.viewer.reportURL.ends_with("index-history.htm"));
    QTRY_VERIFY(location().endsWith(QStringLiteral("index-history.htm")));
    open("other.nvp", "actOpen");
    fs::remove(report() / "index-history.htm");
    open("case.nvp", "actOpen");
    QVERIFY(m_desk->program.state.viewer.reportURL.empty());
}

void ReportTest::aReportThatCannotBeLoadedIsToldOf() {
    make(2);
    const fs::path gone = report() / "gone.htm";
    child<BrowserPane>(*m_form, "ReportBrowser").showPage(gone, QStringLiteral("Report"));
    const std::vector<std::string> &messages = m_desk->examiner.heard;
    QTRY_VERIFY(!messages.empty() && messages.back() == "report-not-loaded");
    QVERIFY(child<QLabel>(child<BrowserPane>(*m_form, "ReportBrowser"), "labBrowserReason")
                .text()
                .startsWith(QStringLiteral("The page can't be shown")));
    const std::size_t heard = m_desk->examiner.heard.size();
    make(2); // one that can be is shown again, without a word
    QTest::qWait(300);
    QCOMPARE(m_desk->examiner.heard.size(), heard);
}

void ReportTest::anEarlierReportIsReplacedOnRequest() {
    make(1);
    const fs::path target = m_desk->folder.path() / "published";
    fs::create_directories(target);
    m_desk->dialogs.answer = target;
    trigger(*m_form, "actPublishReport");
    fs::create_directories(target / "pictures");
    writeWhole(target / "pictures" / "0000099.gif", "of the earlier report");
    m_desk->examiner.script = {Answer::Yes, Answer::No};
    trigger(*m_form, "actPublishReport");
    QCOMPARE(m_desk->examiner.heard.back(), std::string("replace-published"));
    QVERIFY(fs::exists(target / "pictures" / "0000099.gif"));
    m_desk->examiner.script = {Answer::Yes, Answer::Yes};
    trigger(*m_form, "actPublishReport");
    QCOMPARE(m_desk->examiner.heard.back(), std::string("report-published"));
    QVERIFY(!fs::exists(target / "pictures" / "0000099.gif"));
    QVERIFY(fs::exists(target / "index-cache.htm"));
}

void ReportTest::aPublishingThatFailsIsToldOf() {
    make(2);
    const fs::path target = m_desk->folder.path() / "published";
    fs::create_directories(target / "elsewhere");
    fs::create_directory_symlink(target / "elsewhere", target / "images");
    m_desk->dialogs.answer = target;
    fs::create_directories(report() / "images");
    writeWhole(report() / "images" / "ie.gif", "GIF89a");
    trigger(*m_form, "actPublishReport");
    QCOMPARE(m_desk->examiner.heard.back(), std::string("command-failed"));
    QVERIFY(!fs::exists(target / "index-history.htm"));
    const Bytes log = readWhole(m_desk->program.log.path());
    QVERIFY(ByteView(log).find("MainForm.PublishReport()"));
}

void ReportTest::aReportIsPublished() {
    make(2);
    const fs::path target = m_desk->folder.path() / "published";
    fs::create_directories(target);
    m_desk->dialogs.answer = target;
    trigger(*m_form, "actPublishReport");
    QVERIFY(fs::exists(target / "index-history.htm"));
    QCOMPARE(m_desk->examiner.heard.back(), std::string("report-published"));
}

void ReportTest::withoutAReportThereIsNothingToPublish() {
    trigger(*m_form, "actPublishReport");
    QCOMPARE(m_desk->examiner.heard.back(), std::string("nothing-to-publish"));
}

void ReportTest::nothingIsPublishedIntoTheEvidence() {
    make(2);
    const fs::path target = m_desk->folder.path() / "evidence" / "Chrome";
    m_desk->dialogs.answer = target;
    trigger(*m_form, "actPublishReport");
    QVERIFY(!fs::exists(target / "index-history.htm"));
    QCOMPARE(m_desk->examiner.heard.back(), std::string("command-failed"));
}

void ReportTest::aCaseReportIsMadeAndPublishedInOne() {
    const fs::path target = m_desk->folder.path() / "published";
    fs::create_directories(target);
    m_desk->dialogs.answer = target;
    whenShown<ReportForm>([](ReportForm &form) {
        child<QComboBox>(form, "cbReportType").setCurrentIndex(3);
        QVERIFY(child<QComboBox>(form, "cbCards").isVisible());
        QVERIFY(!child<QCheckBox>(form, "chkIncludeAudit").isVisible());
        auto &cards = child<QComboBox>(form, "cbCards");
        cards.setCurrentIndex(cards.findData(static_cast<int>(CaseCards::all)));
        QVERIFY(child<QCheckBox>(form, "chkIncludeOrigins").isEnabled());
        QVERIFY(child<QCheckBox>(form, "chkTagNotes").isChecked());
        QTest::mouseClick(&child<QPushButton>(form, "btnCreateAndPublish"), Qt::LeftButton);
    });
    trigger(*m_form, "actCreateReport");
    waitForReport(*m_form);
    QCOMPARE(m_desk->examiner.heard.back(), std::string("report-published"));
    QVERIFY(fs::exists(target / "index.htm"));
    QVERIFY(fs::exists(target / "cards-1.htm"));
    const std::string text(ByteView(readWhole(target / "index.htm")).raw());
    QVERIFY(text.find("the rows of the table") != std::string::npos);
    // The pane shows it, and large on request.
    whenShown<ReportPreview>([](ReportPreview &preview) {
        QTRY_VERIFY(child<QLineEdit>(child<BrowserPane>(preview, "PreviewBrowser"), "txtLocation")
                        .text()
                        .endsWith(QStringLiteral("index.htm")));
        preview.reject();
    });
    QTest::mouseClick(&child<QPushButton>(*m_form, "btnReportLarge"), Qt::LeftButton);
}

void ReportTest::redactionsThatCantBeReadAreToldOf() {
    make(3, [](ReportForm &form) {
        whenShown<RedactionForm>([](RedactionForm &redactions) {
            auto &lines = child<QPlainTextEdit>(redactions, "txtRedactions");
            lines.setPlainText(QStringLiteral("hide everything"));
            redactions.accept();
            QVERIFY(redactions.isVisible());
            QVERIFY(child<QLabel>(redactions, "labRedactionFault")
                        .text()
                        .contains(QStringLiteral("hide everything")));
            lines.setPlainText(QStringLiteral("blur value=a.example"));
            redactions.accept();
        });
        QTest::mouseClick(&child<QPushButton>(form, "btnRedact"), Qt::LeftButton);
        QVERIFY(child<QPushButton>(form, "btnRedact").text().contains(QStringLiteral("(1)")));
    });
    const fs::path made = m_desk->program.state.tempFolderPath / "CaseReport";
    for (const auto &entry : fs::recursive_directory_iterator(made))
        if (entry.is_regular_file())
            QVERIFY(!ByteView(readWhole(entry.path())).find("a.example"));
}

void ReportTest::theNextCaseBeginsWithoutTheNumberOfThis() {
    make(2, [](ReportForm &form) {
        child<QLineEdit>(form, "txtCaseNumber").setText(QStringLiteral("2011/17"));
        child<QLineEdit>(form, "txtReportedBy").setText(QStringLiteral("M. Quill"));
    });
    const auto open = [this](const char *name, const char *action) {
        m_desk->dialogs.answer = m_desk->folder.path() / name;
        trigger(*m_form, action);
    };
    const auto expect = [this](const QString &number, const QString &person) {
        whenShown<ReportForm>([number, person](ReportForm &form) {
            QCOMPARE(child<QLineEdit>(form, "txtCaseNumber").text(), number);
            QCOMPARE(child<QLineEdit>(form, "txtReportedBy").text(), person);
            press(form, QDialogButtonBox::Cancel);
        });
        trigger(*m_form, "actCreateReport");
    };
    open("other.nvp", "actNew");
    expect({}, {});
    open("case.nvp", "actOpen");
    expect(QStringLiteral("2011/17"), QStringLiteral("M. Quill"));
}

} // namespace nv

int main(int argc, char **argv) {
    nv::prepareWebEngine();
    QApplication application(argc, argv);
    nv::ReportTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "report_test.moc"
