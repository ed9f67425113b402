#pragma once

#include "ui/parts/Workbench.h"

namespace nv {

/// The tip of the day: the command, and at the start of the program.
class TipPart final : public QObject {
    Q_OBJECT

  public:
    explicit TipPart(Workbench &bench);

    /// From the second start on, unless the examiner wants none: at the first one it would stand
    /// over the steps of the empty page.
    void showAtStart();

  private:
    void show();

    Workbench &m_bench;
};

} // namespace nv
