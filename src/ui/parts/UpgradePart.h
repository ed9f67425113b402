#pragma once

#include "ui/parts/Workbench.h"

#include <filesystem>

namespace nv {

/// The upgrade wizard over a closed project.
class UpgradePart final : public QObject {
    Q_OBJECT

  public:
    explicit UpgradePart(Workbench &bench) : m_bench(bench) {}

    /// An empty path asks for a project.
    void show(const std::filesystem::path &project);

  private:
    Workbench &m_bench;
};

} // namespace nv
