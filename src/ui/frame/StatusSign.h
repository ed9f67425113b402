#pragma once

class QLabel;
class QWidget;

namespace nv {

/// A label in the status bar of the main window that stands out in either theme; hidden at first.
/// The status bar owns it.
QLabel *newStatusSign(QWidget &window, const char *name);

} // namespace nv
