#include "platform/qt/GuardedApplication.h"

namespace nv {

void GuardedApplication::report(FailureLog &log, Examiner &examiner) {
    m_log = &log;
    m_examiner = &examiner;
}

void GuardedApplication::stopReporting() {
    m_log = nullptr;
    m_examiner = nullptr;
}

bool GuardedApplication::notify(QObject *receiver, QEvent *event) {
    try {
        return QApplication::notify(receiver, event);
    } catch (const std::exception &failure) {
        if (!m_examiner)
            throw;
        tell(failure.what());
        return true;
    }
}

void GuardedApplication::tell(const char *reason) {
    m_log->write({reason, "MainForm.notify()", Severity::Serious, std::string(kContactSupport)});
    m_examiner->tell({"unexpected-failure", "Error", reason, Choices::Ok, Tone::Error, Answer::Ok});
}

} // namespace nv
