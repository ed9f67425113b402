#pragma once

#include "app/settings/IniFile.h"

#include <QDialog>

#include <filesystem>
#include <string>
#include <vector>

class QLabel;

namespace nv {

/// The tips of the file, one a line; blank lines are none. A missing file has no tips.
std::vector<std::string> readTips(const std::filesystem::path &file);

/// The tip of the day. Its tick is written to the settings at once.
class TipForm final : public QDialog {
    Q_OBJECT

  public:
    /// `first` chooses the tip that is shown first, any number. The settings must outlive the
    /// window.
    TipForm(std::vector<std::string> tips, std::size_t first, IniFile &settings,
            QWidget *parent = nullptr);

  private:
    void showTip();
    void nextTip();

    std::vector<std::string> m_tips;
    std::size_t m_place;
    QLabel *m_text = nullptr;
};

} // namespace nv
