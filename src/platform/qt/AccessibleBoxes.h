#pragma once

namespace nv {

/// Gives every combo box of the program the name that it was given, for screen readers. The
/// toolkit's own interface says what is chosen in it instead. Calls after the first do nothing.
void nameComboBoxes();

} // namespace nv
