#include "Desk.h"
#include "base/Files.h"
#include "ui/frame/Theme.h"
#include "ui/import/ImportForm.h"
#include "ui/import/ImportSummaryForm.h"

#include <QCheckBox>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QTreeWidget>
#include <SQLiteCpp/SQLiteCpp.h>

namespace nv::test {

/// Answers with the file that a test wants a page in.
struct PageDialogs final : WindowDialogs {
    std::optional<fs::path> chooseProject() override { return project; }
    std::optional<fs::path> createNewProjectFilename() override { return project; }
    std::optional<fs::path> chooseSaveAs() override { return project; }
    std::optional<fs::path> chooseFolder(const std::string &, const fs::path &) override {
        return std::nullopt;
    }
    std::optional<fs::path> choosePage(const fs::path &path) override {
        offered = path;
        return page;
    }
    bool confirmNewProject(OptionsForm &form) override {
        child<QLineEdit>(form, "txtPathProject").setText(QString::fromStdString(project.string()));
        form.accept();
        return true;
    }
    fs::path project;
    fs::path offered;
    std::optional<fs::path> page;
};

/// What the window tells of an import when it is over, and later.
class ImportSummaryTest : public QObject {
    Q_OBJECT

  private slots:
    void init();
    void cleanup();
    void theWizardEndsWithHeadlineLightAndGaps();
    void theSummaryCanBeSeenLaterAndFollowsThePalette();
    void itIsSavedAsOnePage();
    void aPageAmongTheEvidenceIsRefused();
    void hostileNamesStayText();
    void whatIsNotThereIsNotOffered();
    void theIndexForSearchIsMadeOnWish();
    void everyImportCanBeTold();

  private:
    void importWith(const std::function<void(ImportForm &)> &look);
    void later(const std::function<void(ImportSummaryForm &)> &look);
    template <class Widget>
    static QString textOf(QWidget &form, const char *name) {
        return child<Widget>(form, name).text();
    }

    std::unique_ptr<Desk> m_desk;
    std::unique_ptr<PageDialogs> m_dialogs;
    std::unique_ptr<MainForm> m_form;
};

void ImportSummaryTest::init() {
    m_desk = std::make_unique<Desk>();
    m_dialogs = std::make_unique<PageDialogs>();
    m_dialogs->project = m_desk->folder.path() / "case.nvp";
    m_form = std::make_unique<MainForm>(m_desk->program, *m_dialogs);
    m_form->resize(1280, 800);
    m_form->show();
    trigger(*m_form, "actNew");
}

void ImportSummaryTest::cleanup() {
    m_form.reset();
    m_dialogs.reset();
    m_desk.reset();
}

void ImportSummaryTest::importWith(const std::function<void(ImportForm &)> &look) {
    const fs::path evidence = makeEvidence(m_desk->folder);
    whenShown<ImportForm>([evidence, look](ImportForm &wizard) {
        child<QLineEdit>(wizard, "txtStartingDirectory")
            .setText(QString::fromStdString(evidence.string()));
        auto &next = child<QPushButton>(wizard, "btnNext");
        QTest::mouseClick(&next, Qt::LeftButton);
        QTest::mouseClick(&next, Qt::LeftButton);
        look(wizard);
        if (wizard.isVisible())
            QTest::mouseClick(&next, Qt::LeftButton);
    });
    trigger(*m_form, "actImport");
}

void ImportSummaryTest::later(const std::function<void(ImportSummaryForm &)> &look) {
    QTimer poll; // it counts once it is up
    connect(&poll, &QTimer::timeout, &poll, [&poll, &look] {
        auto *form = qobject_cast<ImportSummaryForm *>(QApplication::activeModalWidget());
        if (!form || !form->isEnabled() || child<QLabel>(*form, "labHeadline").text().isEmpty())
            return;
        poll.stop();
        look(*form);
        if (form->isVisible())
            form->reject();
    });
    poll.start(10);
    trigger(*m_form, "actImportSummary");
    QVERIFY(!poll.isActive());
}

void ImportSummaryTest::theWizardEndsWithHeadlineLightAndGaps() {
    importWith([](ImportForm &wizard) {
        QCOMPARE(textOf<QLabel>(wizard, "labHeadline"),
                 QStringLiteral("6 records from 2 profiles, 2 files read"));
        QCOMPARE(textOf<QLabel>(wizard, "labLightSign"), QStringLiteral("!"));
        QCOMPARE(textOf<QLabel>(wizard, "labLightText"),
                 QStringLiteral("Not complete. 1 file or folder was not read, or only in part."));
        QVERIFY(
            child<QLabel>(wizard, "labSpan").text().startsWith(QStringLiteral("Events from 2")));
        auto &notRead = child<QTreeWidget>(wizard, "lstNotRead");
        QCOMPARE(notRead.topLevelItemCount(), 1);
        QCOMPARE(notRead.topLevelItem(0)->text(0), QStringLiteral("Cookies.plist"));
        QCOMPARE(notRead.topLevelItem(0)->text(1), QStringLiteral("! not read yet"));
        QVERIFY(!notRead.topLevelItem(0)->text(2).isEmpty());
        QVERIFY(notRead.topLevelItem(0)->text(3).endsWith(QStringLiteral("/evidence/Safari")));
        QTest::mouseClick(&child<QPushButton>(wizard, "btnNotRead"), Qt::LeftButton);
        QVERIFY(notRead.isVisible());
        QVERIFY(wizard.focusWidget() == &notRead);
        QVERIFY(child<QPlainTextEdit>(wizard, "txtSummary")
                    .toPlainText()
                    .contains(QStringLiteral("not read yet")));
        QVERIFY(child<QTreeWidget>(wizard, "lstCounts").topLevelItemCount() >= 2);
    });
}

void ImportSummaryTest::theSummaryCanBeSeenLaterAndFollowsThePalette() {
    importWith([](ImportForm &) {});
    trigger(*m_form, "actClose");
    trigger(*m_form, "actOpen");
    later([](ImportSummaryForm &form) {
        QCOMPARE(textOf<QLabel>(form, "labHeadline"),
                 QStringLiteral("6 records from 2 profiles, 2 files read"));
        QVERIFY(!child<QTabWidget>(form, "tabsSummary").isTabVisible(2));
        auto &box = child<QFrame>(form, "ImportLightBox");
        applyTheme(Theme::Dark);
        QTest::qWait(1);
        const QPalette dark = box.palette();
        QVERIFY(dark.color(QPalette::Window).lightness() <
                dark.color(QPalette::WindowText).lightness());
        applyTheme(Theme::Light);
        QTest::qWait(1);
        const QPalette light = box.palette();
        QVERIFY(light.color(QPalette::Window).lightness() >
                light.color(QPalette::WindowText).lightness());
        QVERIFY(box.accessibleName().contains(QStringLiteral("Not complete.")));
    });
}

void ImportSummaryTest::itIsSavedAsOnePage() {
    m_dialogs->page = m_desk->folder.path() / "page.html";
    importWith([this](ImportForm &wizard) {
        QTest::mouseClick(&child<QPushButton>(wizard, "btnSaveHtml"), Qt::LeftButton);
        QCOMPARE(m_dialogs->offered.filename().string(), std::string("case-import.html"));
        const std::string page(ByteView(readWhole(*m_dialogs->page)).raw());
        QVERIFY(page.find("6 records from 2 profiles, 2 files read") != std::string::npos);
        QVERIFY(page.find("Cookies.plist") != std::string::npos);
    });
    const std::string last = m_desk->program.state.projectDB.connection()
                                 .execAndGet("SELECT Action FROM AuditTrail ORDER BY Trail_ID DESC")
                                 .getString();
    QCOMPARE(last, std::string("Summary"));
}

void ImportSummaryTest::aPageAmongTheEvidenceIsRefused() {
    m_dialogs->page = m_desk->folder.path() / "evidence" / "page.html";
    importWith([this](ImportForm &wizard) {
        QTest::mouseClick(&child<QPushButton>(wizard, "btnSaveHtml"), Qt::LeftButton);
        QCOMPARE(m_desk->examiner.heard.back(), std::string("command-failed"));
        QVERIFY(!fs::exists(*m_dialogs->page));
    });
}

void ImportSummaryTest::hostileNamesStayText() {
    m_desk->folder.write("evidence/<b>x</b>/Safari/Cookies.plist", std::string(64, 'x'));
    importWith([](ImportForm &wizard) {
        for (const char *name : {"labHeadline", "labLightText", "labNotes"})
            QCOMPARE(child<QLabel>(wizard, name).textFormat(), Qt::PlainText);
        auto &list = child<QTreeWidget>(wizard, "lstNotRead");
        QCOMPARE(list.topLevelItemCount(), 2);
        bool isFound = false;
        for (int at = 0; at < list.topLevelItemCount(); ++at) {
            isFound |= list.topLevelItem(at)->text(3).contains(QStringLiteral("<b>x</b>"));
            QVERIFY(!list.topLevelItem(at)->toolTip(3).contains(QStringLiteral("<b>x")));
        }
        QVERIFY(isFound);
    });
}

void ImportSummaryTest::whatIsNotThereIsNotOffered() {
    importWith([](ImportForm &wizard) {
        QVERIFY(!child<QPushButton>(wizard, "btnSummaryThumbnails").isVisible()); // no pictures
        QVERIFY(child<QPushButton>(wizard, "btnSummaryIndex").isVisible());
    });
    SQLite::Database &project = m_desk->program.state.projectDB.connection();
    project.exec(
        "UPDATE URLs SET CacheFileExists = 1, IsPicture = 1, IsCookie = 0 WHERE URL_ID = 1");
    later([](ImportSummaryForm &form) {
        auto &thumbnails = child<QPushButton>(form, "btnSummaryThumbnails");
        QVERIFY(thumbnails.isVisible());
        QTest::mouseClick(&thumbnails, Qt::LeftButton);
        QVERIFY(form.next() == AfterSummary::thumbnails);
    });
}

void ImportSummaryTest::theIndexForSearchIsMadeOnWish() {
    importWith([](ImportForm &wizard) {
        QTest::mouseClick(&child<QPushButton>(wizard, "btnSummaryIndex"), Qt::LeftButton);
    });
    const fs::path index = m_desk->folder.path() / "case.nvp.search";
    QVERIFY(waitFor([&index] { return fs::exists(index); }));
    QVERIFY(waitFor([this] {
        return child<QLabel>(*m_form, "labNotice").text() ==
               QStringLiteral("The search index is ready");
    }));
    QVERIFY(m_form->windowTitle().startsWith(QStringLiteral("Norvelane")));
}

void ImportSummaryTest::everyImportCanBeTold() {
    importWith([](ImportForm &) {});
    importWith([](ImportForm &) {});
    later([](ImportSummaryForm &form) {
        const auto records = [&form] { return textOf<QLabel>(form, "labHeadline"); };
        QVERIFY(records().startsWith(QStringLiteral("6 records")));
        auto &all = child<QCheckBox>(form, "chkAllImports");
        QVERIFY(all.isVisible());
        all.setChecked(true);
        QVERIFY(records().startsWith(QStringLiteral("12 records")));
        QVERIFY(child<QLabel>(form, "labNotes").text().contains(QStringLiteral("everything")));
    });
}

} // namespace nv::test

QTEST_MAIN(nv::test::ImportSummaryTest)
#include "import_summary_test.moc"
