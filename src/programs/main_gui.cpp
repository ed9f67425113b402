#include "app/messages/Messages.h"
#include "app/program/Program.h"
#include "app/settings/Settings.h"
#include "platform/posix/BigBlocks.h"
#include "platform/posix/PosixSystemTime.h"
#include "platform/posix/SysfsNetwork.h"
#include "platform/qt/GuardedApplication.h"
#include "platform/qt/Icons.h"
#include "platform/qt/NetworkManagerNetwork.h"
#include "platform/qt/PageGuard.h"
#include "platform/qt/QtExaminer.h"
#include "platform/qt/QtText.h"
#include "ui/frame/SplashForm.h"
#include "ui/frame/StatusForm.h"
#include "ui/window/MainForm.h"

#include <QThread>
#include <QWindow>

using namespace nv;

namespace {

constexpr unsigned long kSplashPause = 300; // milliseconds

/// What the window program is made of, in the order of its making.
struct Window {
    QtExaminer examiner;
    StatusForm status;
    SystemClock clock;
    PosixSystemTime systemTime;
    SysfsNetwork interfaces;
    NetworkManagerNetwork network{interfaces};
    QtWindowDialogs dialogs{examiner};
    Program program{findProgramPaths(std::filesystem::read_symlink("/proc/self/exe")),
                    Front::window,
                    {examiner, status, clock, systemTime, network}};
};

void tellGroundZero(Program &program) {
    if (readFlag(program.settings, "DebugMain"))
        program.around.examiner.tell(messages::groundZero());
}

/// The whole command line is one path, blanks included.
QString commandLinePath() {
    return QApplication::arguments().mid(1).join(u' ');
}

/// Not by making it the parent, which would destroy it first.
void keepAbove(QWidget &upper, const QWidget &lower) {
    upper.winId();
    upper.windowHandle()->setTransientParent(lower.windowHandle());
}

int runProgram(GuardedApplication &application, SplashForm &splash) {
    Window window;
    Program &program = window.program;
    applyTheme(keptTheme(program.settings));
    QObject::connect(&window.status, &StatusForm::cancelled, &window.status,
                     [&program] { program.task.cancelTask = true; });
    splash.showCentred();
    tellGroundZero(program);
    startUp(program, Front::window);

    MainForm form(program, window.dialogs);
    form.show();
    keepAbove(window.status, form);
    QThread::msleep(kSplashPause);
    splash.close();
    form.showTipAtStart();
    if (const QString path = commandLinePath(); !path.isEmpty())
        form.loadCommandLineFile(pathFromQt(path));
    application.report(program.log, window.examiner);
    const int result = QApplication::exec();
    application.stopReporting();
    return result;
}

} // namespace

int main(int argc, char **argv) {
    giveBigBlocksBack();
    prepareWebEngine();
    GuardedApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("norvelane"));
    QApplication::setDesktopFileName(QStringLiteral("org.norvelane.Norvelane"));
    QApplication::setWindowIcon(icon("norvelane-logo"));
    try {
        SplashForm splash({});
        return runProgram(application, splash);
    } catch (const std::exception &failure) {
        QtExaminer().tell(messages::startupError(failure.what()));
        return 1;
    }
}
