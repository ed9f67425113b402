#pragma once

#include "ui/parts/Workbench.h"

#include <QObject>

#include <memory>
#include <vector>

namespace nv {

/// The parts of the main window that need nothing but its bench, in the order of their tabs, panes
/// and chips. They have to go before the bench.
std::vector<std::unique_ptr<QObject>> newParts(Workbench &bench);

} // namespace nv
