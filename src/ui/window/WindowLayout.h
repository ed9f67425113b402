#pragma once

class QMainWindow;

namespace nv {

class IniFile;

/// What the examiner has made of the window outlives the run: place and size, every splitter and
/// set of tabs that has a name, and the widths in lists whose header has one.
void keepWindowLayout(const QMainWindow &window, IniFile &settings);
/// What isn't kept, or is of another version of the window, stays as it is.
void restoreWindowLayout(QMainWindow &window, const IniFile &settings);

} // namespace nv
