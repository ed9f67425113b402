#pragma once

#include "ui/parts/Workbench.h"

namespace nv {

/// The command Run Link Analysis, and the pane of what it found for a record.
class LinkPart final : public QObject {
    Q_OBJECT

  public:
    explicit LinkPart(Workbench &bench);

  private:
    void analyse();

    Workbench &m_bench;
};

} // namespace nv
