#pragma once

#include "base/Examiner.h"
#include "maintenance/ProjectUpgrade.h"

#include <QDialog>

#include <functional>

class QLabel;
class QPlainTextEdit;
class QProgressBar;
class QPushButton;
class QTableWidget;

namespace nv {

/// Compares a closed project with the schema of this build and moves its data into a new file.
class UpgradeWizardForm final : public QDialog {
    Q_OBJECT

  public:
    /// Where the project lies is shown; all three must outlive the form.
    UpgradeWizardForm(const UpgradeWhere &where, ProjectUpgrade &upgrade, Examiner &examiner,
                      FailureLog &log, QWidget *parent = nullptr);

    /// While a scan or a fix runs it is stopped instead.
    void reject() override;

  private:
    class Task;
    enum class State { idle, scanning, fixing };

    void buildGrid();
    QWidget *newButtons();
    void scanBtnClick();
    void fixBtnClick();
    void scan();
    void fix();
    /// Runs `work` with the button as its Stop.
    void runStoppable(State state, const std::function<void(TaskMonitor &)> &work);
    void showState(State state);
    void showDifferences(const SchemaScan &scan);
    void showFixed(std::string_view table);
    void setStatus(const QString &text);

    ProjectUpgrade &m_upgrade;
    Examiner &m_examiner;
    FailureLog &m_log;
    QTableWidget *m_grid = nullptr; ///< vsGrid
    QPlainTextEdit *m_leftBehind = nullptr;
    QLabel *m_status = nullptr;
    QProgressBar *m_bar = nullptr;
    QPushButton *m_scan = nullptr;
    QPushButton *m_fix = nullptr;
    State m_state = State::idle;
    bool m_stop = false;
    bool m_canFix = false;
};

} // namespace nv
