#pragma once

#include <QWidget>

#include <vector>

class QLabel;
class QPushButton;

namespace nv {

class FlowLayout;
class ImportSteps;
class StepSign;

/// The three steps from evidence to rows: choose, check, import. Each has its button, which waits
/// for the step before and says so.
class StepsPane final : public QWidget {
    Q_OBJECT

  public:
    /// Beside each other or below each other. `steps` must outlive it.
    StepsPane(ImportSteps &steps, Qt::Orientation orientation, QWidget *parent = nullptr);

    /// To the button of the step that comes next.
    void focusNext();

  private:
    struct Step {
        StepSign *sign = nullptr;
        QLabel *text = nullptr;
        FlowLayout *buttons = nullptr;
    };
    Step addStep(const QString &title, const char *name);
    QPushButton *addButton(const Step &step, const char *name, const QString &text);
    void showSteps();

    ImportSteps &m_steps;
    Step m_choose;
    Step m_check;
    Step m_import;
    QPushButton *m_folder = nullptr;
    QPushButton *m_clear = nullptr;
    QPushButton *m_checkButton = nullptr;
    QPushButton *m_importButton = nullptr;
    int m_number = 0; ///< of steps so far
};

} // namespace nv
