#include "gui/Desk.h"
#include "ui/import/ImportForm.h"

#include <QLabel>
#include <QPushButton>
#include <SQLiteCpp/SQLiteCpp.h>

// The computer's network as the window deals with it.
namespace nv {

using namespace test;

class NetworkTest : public QObject {
    Q_OBJECT

  private slots:
    void init();
    void cleanup();

    void theWizardWarnsOnThePageBeforeTheImport();
    void withoutANetworkThereIsNoWarning();
    void theWizardDisablesTheNetworkOnThePage();
    void theWarningStaysWhereTheNetworkCantBeDisabled();
    void aNetworkThatComesUpMeanwhileIsAskedAbout();
    void itIsDisabledWhenAsked();
    void itStaysWithoutAnImportWhereThatFails();
    void theNetworkIsSwitchedOffAndOn();

  private:
    /// Makes a project and goes through the wizard, or leaves it where it stays. `before` is done
    /// on the page before the import.
    void importWith(const std::function<void(ImportForm &)> &before,
                    std::deque<Answer> answers = {});
    int rows() {
        return m_desk->program.state.projectDB.connection()
            .execAndGet("SELECT count(*) FROM URLs")
            .getInt();
    }

    std::unique_ptr<Desk> m_desk;
    std::unique_ptr<MainForm> m_form;
};

void NetworkTest::init() {
    m_desk = std::make_unique<Desk>();
    m_desk->network.status = "ENABLED";
    m_form = std::make_unique<MainForm>(m_desk->program, m_desk->dialogs);
    m_form->show();
}

void NetworkTest::cleanup() {
    m_form.reset();
    m_desk.reset();
}

void NetworkTest::importWith(const std::function<void(ImportForm &)> &before,
                             std::deque<Answer> answers) {
    const fs::path evidence = makeEvidence(m_desk->folder);
    m_desk->dialogs.answer = m_desk->folder.path() / "case.nvp";
    trigger(*m_form, "actNew");
    m_desk->examiner.heard.clear();
    m_desk->examiner.script = std::move(answers);
    whenShown<ImportForm>([evidence, before](ImportForm &wizard) {
        child<QLineEdit>(wizard, "txtStartingDirectory")
            .setText(QString::fromStdString(evidence.string()));
        auto &next = child<QPushButton>(wizard, "btnNext");
        QTest::mouseClick(&next, Qt::LeftButton);
        before(wizard);
        QTest::mouseClick(&next, Qt::LeftButton);
        const bool isDone = next.text() == QStringLiteral("Finished");
        QTest::mouseClick(isDone ? &next : &child<QPushButton>(wizard, "btnCancel"),
                          Qt::LeftButton);
    });
    trigger(*m_form, "actImport");
}

void NetworkTest::theWizardWarnsOnThePageBeforeTheImport() {
    importWith([](ImportForm &wizard) {
        auto &box = child<QWidget>(wizard, "ImportNetwork");
        QVERIFY(box.isVisible());
        QCOMPARE(child<QLabel>(box, "labNetworkTitle").text(),
                 QStringLiteral("Network Connection Detected"));
        const QString text = child<QLabel>(box, "labNetworkText").text();
        QVERIFY(
            text.contains(QStringLiteral("Your computer appears to be connected to a network.")));
        QVERIFY(text.contains(QStringLiteral("is strongly recommended that you disable any outside "
                                             "connection to the Internet while using Norvelane")));
        QVERIFY(box.accessibleName().contains(text));
        QVERIFY(child<QPushButton>(box, "btnDisableNetwork").focusPolicy() & Qt::TabFocus);
    });
    QVERIFY(m_desk->examiner.heard.empty()); // who imports has been warned
    QVERIFY(rows() > 0);
    QVERIFY(m_desk->network.status == "ENABLED");
}

void NetworkTest::withoutANetworkThereIsNoWarning() {
    m_desk->network.status = "DISABLED";
    importWith(
        [](ImportForm &wizard) { QVERIFY(!child<QWidget>(wizard, "ImportNetwork").isVisible()); });
    QVERIFY(m_desk->examiner.heard.empty());
    QVERIFY(rows() > 0);
}

void NetworkTest::theWizardDisablesTheNetworkOnThePage() {
    importWith([this](ImportForm &wizard) {
        auto &disable = child<QPushButton>(wizard, "btnDisableNetwork");
        QTest::keyClick(&disable, Qt::Key_Space);
        QVERIFY(m_desk->network.status == "DISABLED");
        QVERIFY(!disable.isVisible());
        QCOMPARE(child<QLabel>(wizard, "labNetworkText").text(),
                 QStringLiteral("Your network connection has been disabled."));
    });
    QVERIFY(m_desk->examiner.heard.empty());
    QVERIFY(rows() > 0);
}

void NetworkTest::theWarningStaysWhereTheNetworkCantBeDisabled() {
    m_desk->network.answer = Switched::noFolder;
    importWith([this](ImportForm &wizard) {
        auto &disable = child<QPushButton>(wizard, "btnDisableNetwork");
        QTest::keyClick(&disable, Qt::Key_Space);
        QCOMPARE(m_desk->examiner.heard, std::vector<std::string>{"connection-not-found"});
        QVERIFY(disable.isVisible());
    });
    QVERIFY(rows() > 0);
}

void NetworkTest::aNetworkThatComesUpMeanwhileIsAskedAbout() {
    m_desk->network.status = "DISABLED";
    const auto comesUp = [this](ImportForm &) { m_desk->network.status = "ENABLED"; };
    importWith(comesUp, {Answer::Cancel});
    QCOMPARE(m_desk->examiner.heard, std::vector<std::string>{"network-detected"});
    QCOMPARE(rows(), 0);
}

void NetworkTest::itIsDisabledWhenAsked() {
    m_desk->network.status = "DISABLED";
    const auto comesUp = [this](ImportForm &) { m_desk->network.status = "ENABLED"; };
    importWith(comesUp, {Answer::Yes});
    QCOMPARE(m_desk->examiner.heard,
             (std::vector<std::string>{"network-detected", "network-disabled"}));
    QVERIFY(m_desk->network.status == "DISABLED");
    QVERIFY(rows() > 0);
}

void NetworkTest::itStaysWithoutAnImportWhereThatFails() {
    m_desk->network.status = "DISABLED";
    m_desk->network.answer = Switched::noFolder;
    importWith([this](ImportForm &) { m_desk->network.status = "ENABLED"; }, {Answer::Yes});
    QCOMPARE(m_desk->examiner.heard,
             (std::vector<std::string>{"network-detected", "connection-not-found"}));
    QCOMPARE(rows(), 0);
}

void NetworkTest::theNetworkIsSwitchedOffAndOn() {
    auto &action = *m_form->findChild<QAction *>(QStringLiteral("actNetwork"));
    m_desk->examiner.script = {Answer::No};
    action.trigger();
    QCOMPARE(m_desk->examiner.heard, std::vector<std::string>{"switch-network"});
    QCOMPARE(m_desk->network.status, std::string("ENABLED"));
    m_desk->examiner.heard.clear();
    m_desk->examiner.script = {Answer::Yes};
    action.trigger();
    QCOMPARE(m_desk->examiner.heard,
             (std::vector<std::string>{"switch-network", "network-disabled"}));
    QCOMPARE(m_desk->network.status, std::string("DISABLED"));
    QCOMPARE(action.text(), QStringLiteral("Enable &Network"));
    m_desk->examiner.script = {Answer::Yes};
    action.trigger();
    QCOMPARE(m_desk->network.status, std::string("ENABLED"));
    QCOMPARE(action.text(), QStringLiteral("Disable &Network"));
    m_desk->network.answer = Switched::noItem;
    m_desk->examiner.script = {Answer::Yes};
    action.trigger();
    QCOMPARE(m_desk->examiner.heard.back(), std::string("connection-not-found"));
}

} // namespace nv

QTEST_MAIN(nv::NetworkTest)
#include "network_test.moc"
