#pragma once

#include <QDialog>

#include <filesystem>

namespace nv {

/// A report at the size of the window, before it is handed over.
class ReportPreview final : public QDialog {
    Q_OBJECT

  public:
    /// `page` is the report's first one.
    explicit ReportPreview(const std::filesystem::path &page, QWidget *parent = nullptr);
};

} // namespace nv
