#pragma once

#include "db/records/UrlRecord.h"

namespace nv {

/// Sets from the record's URL whether a tag of a page, or a picture's, may stand for it:
/// `IsValidHTMLTagObject` and `IsValidHTMLPictureObject`.
void setPageObjects(UrlRecord &record);

} // namespace nv
