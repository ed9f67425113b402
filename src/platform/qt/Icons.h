#pragma once

#include <QIcon>

#include <string_view>

namespace nv {

/// A picture of the program's own, sharp at every size; its "currentColor" follows the palette.
/// `name` is a stem or a file name whose extension is ignored ("ie-32.gif"): readers name pictures
/// that stem from another format. A null icon when there is no such picture.
QIcon icon(std::string_view name);

} // namespace nv
