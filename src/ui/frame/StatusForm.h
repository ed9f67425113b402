#pragma once

#include "app/program/TaskStatus.h"

#include <QDialog>
#include <QElapsedTimer>

#include <chrono>

class QBoxLayout;
class QLabel;
class QPushButton;

namespace nv {

class ProgressBox;

/// The window behind TaskStatus. Nobody waits for it: the task goes on, and other windows stay
/// drawn but take no clicks.
class StatusForm final : public QDialog, public StatusView {
    Q_OBJECT

  public:
    /// A task that is over before `showAfter` never shows it: a window that only flashes up is
    /// worse than none.
    explicit StatusForm(QWidget *parent = nullptr,
                        std::chrono::milliseconds showAfter = std::chrono::milliseconds(400));

    void open() override;
    void close() override;
    void update(const TaskStatus &status) override;
    void pump() override;
    /// Closing the window is no way round its Cancel button.
    void reject() override;

  signals:
    /// The examiner wants the task to end; emitted once a task.
    void cancelled();

  protected:
    void changeEvent(QEvent *event) override;

  private:
    struct Bar {
        QLabel *message = nullptr; ///< above the bar
        ProgressBox *box = nullptr;
        QLabel *counter = nullptr; ///< on the bar
    };

    QLabel *addLabel(const char *name);
    Bar addBar(QBoxLayout &column, int number);
    QBoxLayout *messageRow();
    QBoxLayout *buttonRow();
    void cancel();
    void centreOnActiveWindow();
    void showIcon(const TaskStatus &status);
    static void showBar(const Bar &bar, const StatusBar &values);

    QLabel *m_icon = nullptr;
    QLabel *m_messages[3] = {};
    Bar m_top;
    Bar m_bottom;
    QLabel *m_elapsed = nullptr;
    QLabel *m_left = nullptr; ///< the time that is left, while it is known
    QPushButton *m_cancel = nullptr;
    std::string m_iconPath; ///< of the picture that is shown
    QElapsedTimer m_sinceOpen;
    std::chrono::milliseconds m_showAfter;
    bool m_running = false;
};

} // namespace nv
