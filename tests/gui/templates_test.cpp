#include "gui/CachedSite.h"
#include "platform/qt/PageGuard.h"
#include "platform/qt/QtText.h"
#include "rebuild/Templates.h"
#include "ui/rebuild/TemplateModel.h"
#include "ui/rebuild/TemplatesTab.h"
#include "ui/table/TableTab.h"
#include "ui/viewers/BrowserPane.h"

#include <QCheckBox>
#include <QClipboard>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QTableView>
#include <QToolButton>
#include <SQLiteCpp/Database.h>

#include <algorithm>

// The Templates tab, and the commands on templates.
namespace nv {

using namespace test;

constexpr const char *kPage = "<html><title>Inbox</title><img src=\"pic/logo.gif\" ></html> ";

class TemplatesTest : public QObject {
    Q_OBJECT

  private slots:
    void init();
    void cleanup();

    void theEmptyTabSaysWhatToDo();
    void aPageThatIsNotRebuiltGivesNoTemplate();
    void theCurrentPageBecomesATemplate();
    void taggedPagesBecomeTemplates();
    void oneThatIsThereIsOverwrittenOnlyWhenAsked();
    void theTemplateIsLaidOverTheCurrentPage();
    void onlyPagesOfTheTitleAreRebuilt();
    void onlyTaggedTemplatesAreLaid();
    void aTemplateThatFailsIsTold();
    void renameAsksForTheName();
    void deleteAsksAndDeletes();
    void aTemplateThatIsGoneIsTold();
    void enterShowsTheTemplate();
    void whatIsNoTemplateCantBeShown();
    void theMenuHoldsEveryCommand();
    void copyTakesTheCellOfTheList();

  private:
    UrlGrid &grid() { return child<TableTab>(*m_form, "TableTab").grid(); }
    QTableView &list() { return child<QTableView>(*m_form, "TemplateGrid"); }
    TemplatesTab &tab() { return child<TemplatesTab>(*m_form, "TemplatesTab"); }
    QString notice() { return child<QLabel>(*m_form, "labNotice").text(); }
    std::vector<std::string> &heard() { return m_desk->examiner.heard; }
    QString cell(int row, int column) {
        return list().model()->index(row, column).data().toString();
    }
    void click(const char *button) {
        auto &found = child<QAbstractButton>(*m_form, button);
        QVERIFY(found.isEnabled());
        QTest::mouseClick(&found, Qt::LeftButton);
    }
    void openTab() { child<QTabWidget>(*m_form, "dataTabs").setCurrentWidget(&tab()); }
    void choose(int id) { grid().setCurrentUrl(UrlId{id}); }
    /// Makes the template of record 1.
    void makeTemplate() {
        choose(1);
        trigger(*m_form, "actRebuild");
        openTab();
        click(list().isVisible() ? "btnTemplateCreate" : "btnEmptyTemplateCreate");
        QCOMPARE(list().model()->rowCount(), 1);
        list().setFocus();
    }
    std::string rebuiltText(int id) {
        return m_desk->program.state.projectDB.connection()
            .execAndGet("SELECT ifnull(RebuiltSourceCode, '') FROM URLs WHERE URL_ID = " +
                        std::to_string(id))
            .getString();
    }
    void sql(const std::string &text) {
        m_desk->program.state.projectDB.connection().exec(text);
        trigger(*m_form, "actRefresh");
    }
    fs::path folder() { return m_desk->program.state.templatesPath; }

    std::unique_ptr<Desk> m_desk;
    std::unique_ptr<MainForm> m_form;
};

void TemplatesTest::init() {
    m_desk = std::make_unique<Desk>();
    m_form = std::make_unique<MainForm>(m_desk->program, m_desk->dialogs);
    m_form->resize(1200, 800);
    m_form->show();
    m_form->activateWindow(); // keys of one widget need the window to be the active one
    QVERIFY(QTest::qWaitForWindowActive(m_form.get()));
    CachedSite(m_desk->folder.path() / "evidence")
        .add("http://host/page.html", "page[1].htm", kPage)
        .add("http://host/pic/logo.gif", "logo[1].gif", "GIF89a")
        .add("http://host/second.html", "second[1].htm", kPage)
        .add("http://host/plain.html", "plain[1].htm", "<html><body>nothing</body></html> ")
        .open(*m_desk, *m_form);
    sql("UPDATE URLs SET WebPageTitle = 'Inbox' WHERE URL_ID IN (1, 3)");
    sql("UPDATE URLs SET WebPageTitle = 'Plain' WHERE URL_ID = 4");
    choose(1);
}

void TemplatesTest::cleanup() {
    m_form.reset();
    m_desk.reset();
}

void TemplatesTest::theEmptyTabSaysWhatToDo() {
    openTab();
    QVERIFY(child<QLabel>(*m_form, "labNoTemplates").isVisible());
    QVERIFY(child<QLabel>(*m_form, "labNoTemplates").text().contains(QStringLiteral("rebuild it")));
    QVERIFY(!child<QToolButton>(*m_form, "btnTemplateApply").isEnabled());
    QVERIFY(!child<QToolButton>(*m_form, "btnTemplateDelete").isEnabled());
    for (const char *name :
         {"btnTemplateCreate", "btnTemplateApply", "btnTemplateView", "btnTemplateRename",
          "btnTemplateDelete", "chkTemplateMatchByTitle", "btnEmptyTemplateCreate"})
        QVERIFY2(!child<QWidget>(*m_form, name).toolTip().isEmpty(), name);
}

void TemplatesTest::aPageThatIsNotRebuiltGivesNoTemplate() {
    openTab();
    click("btnEmptyTemplateCreate");
    QCOMPARE(notice(), QStringLiteral("0 of 1 template made. 1 not: a template is made of a "
                                      "rebuilt page."));
    QVERIFY(!list().isVisible());
}

void TemplatesTest::theCurrentPageBecomesATemplate() {
    makeTemplate();
    QVERIFY(list().isVisible());
    QCOMPARE(notice(), QStringLiteral("1 of 1 template made."));
    QCOMPARE(cell(0, TemplateModel::nameColumn), QStringLiteral("page.html"));
    QCOMPARE(cell(0, TemplateModel::titleColumn), QStringLiteral("Inbox"));
    QCOMPARE(cell(0, TemplateModel::methodColumn), QStringLiteral("Classic"));
    QCOMPARE(cell(0, TemplateModel::filesColumn), QStringLiteral("2"));
    QCOMPARE(cell(0, TemplateModel::filePathColumn), pathToQt(folder() / "page.html.NVT"));
    QCOMPARE(child<QLabel>(*m_form, "labTemplates").text(),
             QStringLiteral("Templates: 1. Ticked: 0."));
}

void TemplatesTest::taggedPagesBecomeTemplates() {
    sql("UPDATE URLs SET Tagged = 1 WHERE URL_ID IN (1, 3)");
    trigger(*m_form, "actRebuild");
    choose(4);
    openTab();
    click("btnEmptyTemplateCreate");
    QCOMPARE(notice(), QStringLiteral("2 of 2 templates made."));
    QCOMPARE(list().model()->rowCount(), 2);
    QCOMPARE(tab().current(), folder() / "second.html.NVT"); // the last one made
}

void TemplatesTest::oneThatIsThereIsOverwrittenOnlyWhenAsked() {
    makeTemplate();
    m_desk->examiner.script = {Answer::No};
    click("btnTemplateCreate");
    QCOMPARE(heard().back(), std::string("template-exists"));
    QVERIFY(notice().contains(QStringLiteral("is kept")));
    m_desk->examiner.script = {Answer::Yes};
    click("btnTemplateCreate");
    QCOMPARE(notice(), QStringLiteral("1 of 1 template made."));
}

void TemplatesTest::theTemplateIsLaidOverTheCurrentPage() {
    makeTemplate();
    choose(3);
    QVERIFY(rebuiltText(3).empty());
    click("btnTemplateApply");
    QCOMPARE(notice(), QStringLiteral("1 of 1 page rebuilt from the template."));
    QVERIFY(rebuiltText(3).find("0000002.gif") != std::string::npos);
    const auto place = child<TableTab>(*m_form, "TableTab").table()->placeOf(UrlId{3});
    const QModelIndex rebuilt = grid().model()->index(static_cast<int>(place.value()),
                                                      UrlModel::sectionOf(UrlColumn::Rebuilt));
    QCOMPARE(rebuilt.data().toString(), QStringLiteral("Yes"));
    auto &pane = child<BrowserPane>(*m_form, "BrowserPane");
    child<QTabWidget>(*m_form, "viewerTabs").setCurrentWidget(&pane);
    QVERIFY(waitFor([&pane] {
        return child<QLabel>(pane, "labBrowserKind").text() == QStringLiteral("Rebuilt page");
    }));
}

void TemplatesTest::onlyPagesOfTheTitleAreRebuilt() {
    makeTemplate();
    sql("UPDATE URLs SET Tagged = 1 WHERE URL_ID IN (3, 4)");
    auto &match = child<QCheckBox>(*m_form, "chkTemplateMatchByTitle");
    QVERIFY(match.isChecked());
    click("btnTemplateApply");
    QCOMPARE(notice(), QStringLiteral("1 of 2 pages rebuilt from the template. 1 not: its title "
                                      "is another than the template's."));
    QVERIFY(rebuiltText(4).empty());
    QTest::mouseClick(&match, Qt::LeftButton, {}, QPoint(8, match.height() / 2));
    QVERIFY(!m_desk->program.state.templateMatchByTitle);
    QVERIFY(!m_desk->program.settings.readIniValue("BEYOND", "TemplateMatchByTitle", true));
    click("btnTemplateApply");
    QVERIFY(!rebuiltText(4).empty());
}

void TemplatesTest::onlyTaggedTemplatesAreLaid() {
    makeTemplate();
    fs::copy_file(folder() / "page.html.NVT", folder() / "zebra.NVT");
    child<QTabWidget>(*m_form, "dataTabs").setCurrentIndex(0);
    openTab(); // looks at the folder anew
    QCOMPARE(list().model()->rowCount(), 2);
    QTest::keyClick(&list(), Qt::Key_End, Qt::ControlModifier);
    QTest::keyClick(&list(), Qt::Key_Space);
    QCOMPARE(tab().chosen(), std::vector<fs::path>{folder() / "zebra.NVT"});
    QTest::keyClick(&list(), Qt::Key_Home, Qt::ControlModifier);
    QCOMPARE(tab().chosen(), std::vector<fs::path>{folder() / "zebra.NVT"});
    const QModelIndex tick = list().model()->index(0, TemplateModel::tagColumn);
    const QRect box = list().visualRect(tick);
    QTest::mouseClick(list().viewport(), Qt::LeftButton, {},
                      QPoint(box.left() + 10, box.center().y()));
    QCOMPARE(tab().chosen().size(), 2U);
    QCOMPARE(child<QLabel>(*m_form, "labTemplates").text(),
             QStringLiteral("Templates: 2. Ticked: 2."));
}

void TemplatesTest::aTemplateThatFailsIsTold() {
    makeTemplate();
    writeWhole(folder() / "page.html.NVT", "NV");
    click("btnTemplateApply");
    QCOMPARE(heard().back(), std::string("template-rebuild-failed"));
}

void TemplatesTest::renameAsksForTheName() {
    makeTemplate();
    whenShown<QInputDialog>([](QInputDialog &dialog) {
        QCOMPARE(dialog.windowTitle(), QStringLiteral("Rename Template"));
        QCOMPARE(dialog.labelText(), QStringLiteral("Enter the new name:"));
        QCOMPARE(dialog.textValue(), QStringLiteral("page.html"));
        dialog.setTextValue(QStringLiteral("Inbox of the mail"));
        dialog.accept();
    });
    QCOMPARE(child<QAbstractButton>(*m_form, "btnTemplateRename").toolTip().right(4),
             QStringLiteral("(F2)"));
    click("btnTemplateRename");
    QCOMPARE(tab().current(), folder() / "Inbox of the mail.NVT");
    QVERIFY(fs::exists(folder() / "Inbox of the mail.NVT"));
    QVERIFY(!fs::exists(folder() / "page.html.NVT"));
}

void TemplatesTest::deleteAsksAndDeletes() {
    makeTemplate();
    m_desk->examiner.script = {Answer::No};
    click("btnTemplateDelete");
    QCOMPARE(heard().back(), std::string("delete-template"));
    QVERIFY(fs::exists(folder() / "page.html.NVT"));
    m_desk->examiner.script = {Answer::Yes};
    click("btnTemplateDelete");
    QVERIFY(!fs::exists(folder() / "page.html.NVT"));
    QVERIFY(child<QLabel>(*m_form, "labNoTemplates").isVisible());
}

void TemplatesTest::aTemplateThatIsGoneIsTold() {
    for (const char *button :
         {"btnTemplateApply", "btnTemplateView", "btnTemplateRename", "btnTemplateDelete"}) {
        makeTemplate();
        fs::remove(folder() / "page.html.NVT");
        heard().clear();
        click(button);
        QCOMPARE(heard(), std::vector<std::string>{"template-missing"});
        QCOMPARE(list().model()->rowCount(), 0);
    }
}

void TemplatesTest::enterShowsTheTemplate() {
    makeTemplate();
    QTest::keyClick(&list(), Qt::Key_Return);
    auto &preview = child<BrowserPane>(*m_form, "templatePreview");
    QVERIFY(preview.isVisible());
    auto &kind = child<QLabel>(preview, "labBrowserKind");
    QCOMPARE(kind.text(), QStringLiteral("Template"));
    QVERIFY(waitFor([&preview] {
        return child<QLineEdit>(preview, "txtLocation")
            .text()
            .endsWith(QStringLiteral("TEMPLATE.NVR/0000001.htm"));
    }));
    QCOMPARE(preview.refused(), 0U);
    QTest::keyClick(&list(), Qt::Key_Escape);
    QVERIFY(preview.isHidden());
    QTest::keyClick(&list(), Qt::Key_Return);
    QVERIFY(preview.isVisible());
    trigger(*m_form, "actClose");
    QVERIFY(preview.isHidden());
}

void TemplatesTest::whatIsNoTemplateCantBeShown() {
    fs::create_directories(folder());
    writeWhole(folder() / "short.NVT", "NV");
    openTab();
    QCOMPARE(cell(0, TemplateModel::titleColumn),
             QStringLiteral("No template can be read from this."));
    click("btnTemplateView");
    QCOMPARE(heard().back(), std::string("loading-template-failed"));
}

void TemplatesTest::theMenuHoldsEveryCommand() {
    QStringList texts;
    for (const QAction *action : list().actions())
        texts += action->text().remove(u'&').section(u'\t', 0, 0); // without its keys
    QCOMPARE(texts,
             QStringList({QStringLiteral("View Template"), QStringLiteral("Apply to Pages"),
                          QStringLiteral("Create from Pages"), QStringLiteral("Rename Template..."),
                          QStringLiteral("Delete Template..."), QStringLiteral("Copy Cell"),
                          QStringLiteral("Copy Rows")}));
    QCOMPARE(list().contextMenuPolicy(), Qt::ActionsContextMenu);
}

void TemplatesTest::copyTakesTheCellOfTheList() {
    makeTemplate();
    QTest::keyClick(&list(), Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(QApplication::clipboard()->text(), QStringLiteral("page.html"));
}

} // namespace nv

int main(int argc, char **argv) {
    nv::prepareWebEngine();
    QApplication application(argc, argv);
    nv::TemplatesTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "templates_test.moc"
