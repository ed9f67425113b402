#include "ui/options/OptionsTab.h"

#include <algorithm>

namespace nv {

QWidget *SettingBoxes::add(QVBoxLayout &column, const SettingFacts &row) {
    m_boxes.emplace_back(&row, addSettingBox(column, row, shownText(m_start, row)));
    return m_boxes.back().second.control;
}

bool SettingBoxes::has(const SettingFacts &row) const {
    return std::ranges::any_of(m_boxes, [&row](const auto &each) { return each.first == &row; });
}

void SettingBoxes::putInto(Options &options) const {
    for (const auto &[row, box] : m_boxes)
        chooseText(options, *row, box.value());
}

} // namespace nv
