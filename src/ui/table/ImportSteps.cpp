#include "ui/table/ImportSteps.h"

#include <utility>

namespace nv {

void ImportSteps::setPlaces(std::vector<std::filesystem::path> places) {
    m_places = std::move(places);
    setChecked({}, false);
}

void ImportSteps::setChecked(const QString &text, bool isReady) {
    m_checked = text;
    m_isReady = isReady;
    emit changed();
}

} // namespace nv
