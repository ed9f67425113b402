#pragma once

#include "app/project/RecentFiles.h"

#include <QWidget>

#include <filesystem>
#include <vector>

class QLabel;
class QVBoxLayout;

namespace nv {

/// The projects that were open last, on the first page: each opens by one click or Enter and can be
/// taken off the list. One whose file is gone is dim and says so.
class RecentPane final : public QWidget {
    Q_OBJECT

  public:
    explicit RecentPane(QWidget *parent = nullptr);

    /// Asks the file system when each was changed last.
    void showFiles(const std::vector<RecentFile> &files);

  signals:
    void openWanted(const std::filesystem::path &path);
    void removalWanted(const std::filesystem::path &path);

  private:
    void addFile(const std::filesystem::path &path);

    QLabel *m_none;
    QVBoxLayout *m_list;
    std::vector<QWidget *> m_rows;
};

} // namespace nv
