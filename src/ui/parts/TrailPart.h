#pragma once

#include "ui/parts/Workbench.h"

namespace nv {

/// The command Case Trail.
class TrailPart final : public QObject {
    Q_OBJECT

  public:
    explicit TrailPart(Workbench &bench);

  private:
    void showTrail();
    void verify();

    Workbench &m_bench;
};

} // namespace nv
