#pragma once

#include "ui/parts/Workbench.h"

#include <QString>

#include <functional>
#include <optional>

namespace nv {

class GridText;

/// Copies the selected rows in the forms of CopyForm, and their addresses so that no click follows
/// them.
class CopyPart final : public QObject {
    Q_OBJECT

  public:
    explicit CopyPart(Workbench &bench);

  private:
    using Make = std::function<std::optional<QString>(const GridText &text, TaskMonitor &task)>;
    void connectAction(QAction *action, const Make &make);

    Workbench &m_bench;
};

} // namespace nv
