#pragma once

#include "reports/exports/Export.h"
#include "ui/parts/Workbench.h"

#include <filesystem>
#include <functional>

namespace nv {

/// The command Export: the table as it is shown leaves as a file.
class ExportPart final : public QObject {
    Q_OBJECT

  public:
    explicit ExportPart(Workbench &bench);

    /// Opens a file that was written; tests look on instead of starting a program.
    std::function<void(const std::filesystem::path &)> openFile;

  private:
    void exportColumns();
    void run(Export &job);
    void tell(const Export &job);

    Workbench &m_bench;
};

} // namespace nv
