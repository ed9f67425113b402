#pragma once

#include "app/SettingFacts.h"

#include <functional>
#include <string>

class QVBoxLayout;
class QWidget;

namespace nv {

/// The control of a setting in the Options dialog.
struct SettingBox {
    QWidget *control = nullptr;
    std::function<std::string()> value; ///< as the settings file has it
};

/// Adds a control of the setting's kind, with its label and sentence, which shows `value`.
SettingBox addSettingBox(QVBoxLayout &column, const SettingFacts &row, const std::string &value);

} // namespace nv
