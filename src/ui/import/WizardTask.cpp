#include "ui/import/WizardTask.h"

#include "platform/qt/QtText.h"

#include <QCoreApplication>

namespace nv {

namespace {

constexpr qint64 kPumpStep = 50; // milliseconds, as below
constexpr qint64 kTextStep = 100;

} // namespace

WizardTask::WizardTask() {
    m_sincePump.start();
    m_sinceStep.start();
}

void WizardTask::describe(const TaskHeading &) {}

bool WizardTask::advance(double fraction) {
    if (m_sincePump.elapsed() >= kPumpStep) {
        m_sincePump.restart();
        emit advanced(fraction);
        QCoreApplication::processEvents();
    }
    return !m_cancelled;
}

bool WizardTask::wantsStep() const {
    return m_sinceStep.elapsed() >= kTextStep;
}

void WizardTask::show(const TaskStep &step) {
    m_sinceStep.restart();
    emit stepped(toQt(step.topMessage), toQt(step.bottomMessage));
}

} // namespace nv
