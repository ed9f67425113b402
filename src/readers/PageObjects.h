#pragma once

#include "db/URLClass.h"

namespace nv {

/// Sets from the record's URL whether a tag of a page, or a picture's, may stand for it:
/// `IsValidHTMLTagObject` and `IsValidHTMLPictureObject`.
void setPageObjects(URLClass &record);

} // namespace nv
