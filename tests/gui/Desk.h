#pragma once

#include "app/Program.h"
#include "app/ui/MainForm.h"
#include "app/ui/StatusForm.h"
#include "platform/Network.h"
#include "support/TempFolder.h"
#include "support/TestDoubles.h"

#include <QAction>
#include <QApplication>
#include <QTest>
#include <QTimer>

#include <deque>
#include <functional>

namespace nv::test {

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
    std::optional<std::filesystem::path> chooseProject() override { return answer; }
    std::optional<std::filesystem::path> CreateNewProjectFilename() override { return answer; }
    std::optional<std::filesystem::path> chooseSaveAs() override { return answer; }
    std::optional<std::filesystem::path> chooseFolder(const std::string &,
                                                      const std::filesystem::path &) override {
        return answer;
    }
    std::optional<std::filesystem::path> answer;
};

struct OneNetwork final : Network {
    std::string NetworkConnectionStatus(std::string_view) const override { return status; }
    std::string status;
};

struct OneZone final : SystemTime {
    MachineZone zone() const override { return {300, "Eastern Standard Time"}; }
};

/// A window over a program in a folder of its own.
struct Desk {
    Desk() {
        QObject::connect(&status, &StatusForm::cancelled, &status,
                         [this] { program.thread.CancelTask = true; });
        std::filesystem::create_directories(folder.path() / "program");
        std::filesystem::create_directories(folder.path() / "home");
        std::filesystem::copy_file(NV_TIME_ZONES, folder.path() / "program" / "nvTZ.dat");
        startUp(program, Front::window);
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

} // namespace nv::test
