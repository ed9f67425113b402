#pragma once

#include "ui/window/Workbench.h"

namespace nv {

/// The command Import Summary.
class SummaryPart final : public QObject {
    Q_OBJECT

  public:
    explicit SummaryPart(Workbench &bench);

  private:
    void show();

    Workbench &m_bench;
};

} // namespace nv
