#pragma once

#include "app/program/Program.h"

#include <QWidget>

#include <string>

class QLabel;

namespace nv {

/// The row of the wizard that says in which time zone the project shows its times, and what the
/// evidence says about it. Nothing is kept before take().
class ImportZone final : public QWidget {
    Q_OBJECT

  public:
    explicit ImportZone(Program &program);

    /// Looks at the files that the scan found.
    void suggest();
    /// The project has the zone from now on. False when the examiner is to choose again.
    bool take();

  private:
    void choose();
    void showZone();

    Program &m_program;
    QLabel *m_zone;
    QLabel *m_hint;
    std::string m_key; ///< empty until the first scan
};

} // namespace nv
