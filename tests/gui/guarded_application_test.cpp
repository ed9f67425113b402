#include "platform/qt/GuardedApplication.h"
#include "support/TestDoubles.h"

#include <QTest>
#include <QTimer>

namespace nv {

namespace {

struct Listener final : Examiner {
    Answer ask(const Message &message) override {
        heard.push_back(message.text);
        return message.unattended;
    }
    std::vector<std::string> heard;
};

} // namespace

class GuardedApplicationTest : public QObject {
    Q_OBJECT

  private slots:
    void aFailureThatNobodyCaughtIsLoggedAndTold() {
        auto &application = *static_cast<GuardedApplication *>(QCoreApplication::instance());
        test::MemoryLog log;
        Listener examiner;
        application.report(log, examiner);
        QTimer::singleShot(0, this, [] { throw std::runtime_error("the disk is full"); });
        QTRY_COMPARE(examiner.heard, std::vector<std::string>{"the disk is full"});
        application.stopReporting();
        QCOMPARE(log.entries.size(), std::size_t{1});
        QCOMPARE(log.entries[0].severity, Severity::Serious);
    }
};

} // namespace nv

int main(int argc, char **argv) {
    nv::GuardedApplication application(argc, argv);
    nv::GuardedApplicationTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "guarded_application_test.moc"
