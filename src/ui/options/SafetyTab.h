#pragma once

#include "ui/options/OptionsTab.h"

#include <optional>
#include <string>

class QButtonGroup;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;

namespace nv {

/// What keeps evidence and network apart. The connection is switched at once.
class SafetyTab final : public OptionsTab {
    Q_OBJECT

  public:
    /// `program` must outlive it.
    SafetyTab(Program &program, const Options &start, SettingBoxes &settings);

    void putInto(Options &options) const override;

  private:
    QGroupBox *newConnection(const std::string &inForce);
    std::string connectionName() const;
    void showConnection();
    void btnLocalAreaConnectionClick();

    Program &m_program;
    std::optional<bool> m_offline; ///< when the connection was switched here
    QButtonGroup *m_connection = nullptr;
    QLineEdit *m_connectionName = nullptr;
    QPushButton *m_switch = nullptr;
    QLabel *m_status = nullptr;
};

} // namespace nv
