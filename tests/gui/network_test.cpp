#include "gui/Desk.h"
#include "ui/import/ImportForm.h"

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

    void theWizardWarnsOfANetworkAndStops();
    void theWizardGoesOnWithTheNetworkWhenAsked();
    void theWizardDisablesTheNetworkWhenAsked();
    void theWizardStaysWhenTheNetworkCantBeDisabled();
    void theNetworkIsSwitchedOffAndOn();

  private:
    /// Makes a project and goes through the wizard, or leaves it where it stays.
    void importWith(std::deque<Answer> answers);
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

void NetworkTest::importWith(std::deque<Answer> answers) {
    const fs::path evidence = makeEvidence(m_desk->folder);
    m_desk->dialogs.answer = m_desk->folder.path() / "case.nvp";
    trigger(*m_form, "actNew");
    m_desk->examiner.heard.clear();
    m_desk->examiner.script = std::move(answers);
    whenShown<ImportForm>([evidence](ImportForm &wizard) {
        child<QLineEdit>(wizard, "txtStartingDirectory")
            .setText(QString::fromStdString(evidence.string()));
        auto &next = child<QPushButton>(wizard, "btnNext");
        QTest::mouseClick(&next, Qt::LeftButton);
        QTest::mouseClick(&next, Qt::LeftButton);
        const bool isDone = next.text() == QStringLiteral("Finished");
        QTest::mouseClick(isDone ? &next : &child<QPushButton>(wizard, "btnCancel"),
                          Qt::LeftButton);
    });
    trigger(*m_form, "actImport");
}

void NetworkTest::theWizardWarnsOfANetworkAndStops() {
    importWith({Answer::Cancel});
    QCOMPARE(m_desk->examiner.heard, std::vector<std::string>{"network-detected"});
    QCOMPARE(rows(), 0);
    QVERIFY(m_desk->network.status == "ENABLED");
}

void NetworkTest::theWizardGoesOnWithTheNetworkWhenAsked() {
    importWith({Answer::No});
    QVERIFY(rows() > 0);
    QVERIFY(m_desk->network.status == "ENABLED");
}

void NetworkTest::theWizardDisablesTheNetworkWhenAsked() {
    importWith({Answer::Yes});
    QCOMPARE(m_desk->examiner.heard,
             (std::vector<std::string>{"network-detected", "network-disabled"}));
    QVERIFY(m_desk->network.status == "DISABLED");
    QVERIFY(rows() > 0);
}

void NetworkTest::theWizardStaysWhenTheNetworkCantBeDisabled() {
    m_desk->network.answer = Switched::noFolder;
    importWith({Answer::Yes});
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
