#pragma once

#include <QSize>

class QWidget;

namespace nv {

/// As large as wanted, but with its frame no larger than the screen.
void resizeWithinScreen(QWidget &window, QSize wanted);

} // namespace nv
