#pragma once

class QAbstractItemView;

namespace nv {

/// Gives a grid the keys and entries to copy its current cell and its chosen rows. Without it the
/// keys would go to the main window, which copies from the URL table. `textRole` is the role of a
/// cell's whole text; the default is the shown one (Qt::DisplayRole).
void letCopy(QAbstractItemView &grid, int textRole = 0);

} // namespace nv
