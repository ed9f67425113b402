#include "gui/Desk.h"
#include "platform/qt/PageGuard.h"
#include "ui/reports/RedactionForm.h"
#include "ui/reports/ReportForm.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>

#include <memory>

// What the window tells of redactions before anything is handed over.
namespace nv {

using namespace test;

class ReportRedactionsTest : public QObject {
    Q_OBJECT

  private slots:
    void init();
    void cleanup();

    void aRedactionThatFitsNothingIsToldAndAskedAbout();
    void aReportThatShowsAllSaysSoOfKeptRedactions();

  private:
    QString notice() { return child<QLabel>(*m_form, "labNotice").text(); }
    /// Creates a report of the type at this place of the list, after `act`.
    void make(int type, const std::function<void(ReportForm &)> &act) {
        whenShown<ReportForm>([type, act](ReportForm &form) {
            child<QComboBox>(form, "cbReportType").setCurrentIndex(type);
            act(form);
            QTest::mouseClick(form.findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Ok),
                              Qt::LeftButton);
        });
        trigger(*m_form, "actCreateReport");
    }

    std::unique_ptr<Desk> m_desk;
    std::unique_ptr<MainForm> m_form;
};

void ReportRedactionsTest::init() {
    m_desk = std::make_unique<Desk>();
    m_form = std::make_unique<MainForm>(m_desk->program, m_desk->dialogs);
    m_form->show();
    openExample(*m_desk, *m_form);
}

void ReportRedactionsTest::cleanup() {
    m_form.reset();
    m_desk.reset();
}

void ReportRedactionsTest::aRedactionThatFitsNothingIsToldAndAskedAbout() {
    const fs::path target = m_desk->folder.path() / "published";
    fs::create_directories(target);
    m_desk->dialogs.answer = target;
    make(3, [](ReportForm &form) {
        whenShown<RedactionForm>([](RedactionForm &redactions) {
            auto &advice = child<QLabel>(redactions, "labRedactionAdvice");
            auto &lines = child<QPlainTextEdit>(redactions, "txtRedactions");
            lines.setPlainText(QStringLiteral("leave out host=a.exampel\nblur value=never seen"));
            QTRY_VERIFY(advice.text().contains(QStringLiteral("No row is of the host")));
            QVERIFY2(advice.text().contains(QStringLiteral("a.example (")),
                     qPrintable(advice.text()));
            QVERIFY(advice.text().contains(QStringLiteral("has \"never seen\" in it")));
            if (const QString shots = qEnvironmentVariable("NV_SHOTS"); !shots.isEmpty())
                redactions.grab().save(shots + QStringLiteral("/redact.png"));
            lines.setPlainText(QStringLiteral("leave out host=a.example"));
            QTRY_COMPARE(advice.text(), QString());
            lines.setPlainText(QStringLiteral("leave out host=a.exampel"));
            redactions.accept();
        });
        QTest::mouseClick(&child<QPushButton>(form, "btnRedact"), Qt::LeftButton);
    });
    QTRY_VERIFY2(notice().contains(QStringLiteral("leave out host=a.exampel")),
                 qPrintable(notice()));
    trigger(*m_form, "actPublishReport");
    QCOMPARE(m_desk->examiner.heard.back(), std::string("redactions-unmet"));
    QVERIFY(fs::is_empty(target));
    m_desk->examiner.script = {Answer::Yes};
    trigger(*m_form, "actPublishReport");
    QCOMPARE(m_desk->examiner.heard.back(), std::string("report-published"));
}

void ReportRedactionsTest::aReportThatShowsAllSaysSoOfKeptRedactions() {
    make(3, [](ReportForm &form) {
        whenShown<RedactionForm>([](RedactionForm &redactions) {
            child<QPlainTextEdit>(redactions, "txtRedactions")
                .setPlainText(QStringLiteral("blur host=a.example"));
            redactions.accept();
        });
        QTest::mouseClick(&child<QPushButton>(form, "btnRedact"), Qt::LeftButton);
    });
    for (const int type : {1, 2})
        make(type, [type](ReportForm &form) {
            const QString told = child<QLabel>(form, "labTypeKinds").text();
            QVERIFY2(told.contains(QStringLiteral("hold for the type Case alone")),
                     qPrintable(told));
            if (const QString shots = qEnvironmentVariable("NV_SHOTS"); !shots.isEmpty())
                form.grab().save(shots + QStringLiteral("/report-type%1.png").arg(type));
        });
    make(3,
         [](ReportForm &form) { QVERIFY(child<QLabel>(form, "labTypeKinds").text().isEmpty()); });
}

} // namespace nv

int main(int argc, char **argv) {
    nv::prepareWebEngine();
    QApplication application(argc, argv);
    nv::ReportRedactionsTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "report_redactions_test.moc"
