#pragma once

#include "app/program/NetworkSwitch.h"
#include "ui/parts/Workbench.h"

namespace nv {

/// The command that takes the machine off the network and back. Its text says which of both it
/// does now.
class NetworkPart final : public QObject {
    Q_OBJECT

  public:
    explicit NetworkPart(Workbench &bench);

  private:
    void toggle();
    void showState();

    Workbench &m_bench;
};

} // namespace nv
