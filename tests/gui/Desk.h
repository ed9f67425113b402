#pragma once

#include "app/jobs/ImportJob.h"
#include "app/project/Project.h"
#include "app/settings/Settings.h"
#include "import/Scan.h"
#include "platform/Network.h"
#include "support/Places.h"
#include "support/TempFolder.h"
#include "support/TestDoubles.h"
#include "support/builders/ChromeHistory.h"
#include "support/builders/IndexDat.h"
#include "ui/frame/StatusForm.h"
#include "ui/options/OptionsForm.h"
#include "ui/window/MainForm.h"

#include <QAction>
#include <QApplication>
#include <QLineEdit>
#include <QTest>
#include <QTimer>

#include <deque>
#include <functional>

// What tests of windows share: a program in a folder of its own, its examiner, and evidence.
namespace nv::test {

namespace fs = std::filesystem;

/// Answers in order; with no answer left, what nobody would be asked gets the unattended answer.
struct Answers final : Examiner {
    Answer ask(const Message &message) override {
        heard.push_back(message.id);
        if (script.empty())
            return message.unattended;
        const Answer answer = script.front();
        script.pop_front();
        return answer;
    }
    std::vector<std::string> heard;
    std::deque<Answer> script;
};

struct Dialogs final : WindowDialogs {
    std::optional<fs::path> chooseProject() override { return answer; }
    std::optional<fs::path> createNewProjectFilename() override {
        ++projectsAsked;
        return answer;
    }
    std::optional<fs::path> chooseSaveAs() override { return answer; }
    std::optional<fs::path> chooseFolder(const std::string &, const fs::path &) override {
        return answer;
    }
    /// The answer is typed over the offered file, and confirmed.
    bool confirmNewProject(OptionsForm &form) override {
        ++projectsAsked;
        if (!answer)
            return false;
        form.findChild<QLineEdit *>(QStringLiteral("txtPathProject"))
            ->setText(QString::fromStdString(answer->string()));
        form.accept();
        return form.result() == QDialog::Accepted;
    }
    std::vector<fs::path> chooseHashLists() override { return lists; }
    std::optional<fs::path> answer;
    std::vector<fs::path> lists;
    int projectsAsked = 0; ///< dialogs for the file of a new project that came up
};

struct OneNetwork final : Network {
    std::string networkConnectionStatus(std::string_view) const override { return status; }
    Switched switchConnection(std::string_view, ConnectionState state) override {
        if (answer == Switched::done)
            status = state == ConnectionState::enabled ? "ENABLED" : "DISABLED";
        return answer;
    }
    std::string status;
    Switched answer = Switched::done;
};

struct OneZone final : SystemTime {
    MachineZone zone() const override { return {300, "Eastern Standard Time"}; }
};

/// A window over a program in a folder of its own.
struct Desk {
    Desk() {
        QObject::connect(&status, &StatusForm::cancelled, &status,
                         [this] { program.task.cancelTask = true; });
        fs::create_directories(folder.path() / "program");
        fs::create_directories(folder.path() / "home");
        fs::copy_file(timeZonesFile(), folder.path() / "program" / "nvTZ.dat");
        startUp(program, Front::window);
        // Most tests are about the table, and go to the viewers themselves.
        rememberFlag(program.settings, "ShowPlaces", false);
        rememberFlag(program.settings, "PinViewer", true);
    }
    TempFolder folder;
    Answers examiner;
    StatusForm status{nullptr, std::chrono::milliseconds(0)};
    FixedClock clock;
    OneZone zone;
    OneNetwork network;
    Dialogs dialogs;
    Program program{{folder.path() / "program", folder.path() / "home"},
                    Front::window,
                    {examiner, status, clock, zone, network}};
};

inline fs::path makeEvidence(const TempFolder &folder) {
    IndexDat index;
    for (const char *url : {"Visited: mara@http://b.example/", "Visited: mara@http://a.example/",
                            "Visited: mara@http://<b>bold</b>.example/"}) {
        IndexRecord record;
        record.url = url;
        record.secondDate = fileTime(2011, 3, 1, 12);
        index.add(record);
    }
    folder.write("evidence/History.IE5/index.dat", index.bytes());
    fs::create_directories(folder.path() / "evidence" / "Chrome");
    ChromeHistory history(folder.path() / "evidence" / "Chrome" / "History");
    addExamplePages(history);
    history.run("DELETE FROM visits WHERE visit_time <> "
                "(SELECT last_visit_time FROM urls WHERE urls.id = visits.url)"); // a row a page
    history.close();
    folder.write("evidence/Safari/Cookies.plist", std::string(64, 'x')); // is not read yet
    return folder.path() / "evidence";
}

template <class Child>
Child &child(QWidget &parent, const char *name) {
    auto *found = parent.findChild<Child *>(QString::fromLatin1(name));
    if (!found)
        qFatal("no child %s", name);
    return *found;
}

inline void trigger(MainForm &form, const char *action) {
    auto *found = form.findChild<QAction *>(QString::fromLatin1(action));
    if (!found)
        qFatal("no action %s", action);
    found->trigger();
}

/// Runs `act` on the window of the given kind that comes up modal next.
template <class Form>
void whenShown(const std::function<void(Form &)> &act) {
    QTimer::singleShot(0, qApp, [act] {
        auto *form = qobject_cast<Form *>(QApplication::activeModalWidget());
        QVERIFY(form);
        act(*form);
    });
}

/// Makes the project "case.nvp" and reads the example evidence into it, without the wizard.
inline void openExample(Desk &desk, MainForm &form) {
    Program &program = desk.program;
    desk.dialogs.answer = desk.folder.path() / "case.nvp";
    trigger(form, "actNew");
    const fs::path evidence = makeEvidence(desk.folder);
    setRootPath(program, evidence);
    program.import.startingDirectory = evidence.string();
    Unwatched nobody;
    program.import.historyFiles = scan(program.import, nobody, program.log).historyFiles;
    static_cast<void>(runImportJob(program, nobody, program.state.tempFolderPath));
    trigger(form, "actRefresh");
}

/// Lets timers and queued events run until `done`; gives up when even a loaded machine would be
/// done.
inline bool waitFor(const std::function<bool()> &done) {
    return QTest::qWaitFor(done, 20'000);
}

/// Lets the report that is being made, if there is one, come to its end.
inline void waitForReport(MainForm &form) {
    QVERIFY(waitFor([&form] { return child<QWidget>(form, "ReportProgress").isHidden(); }));
}

} // namespace nv::test
