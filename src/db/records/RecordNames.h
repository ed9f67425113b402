#pragma once

#include "db/records/UrlRecord.h"

namespace nv {

/// Puts the names and kinds of a record in order, as every stored row has them: `URLFileName`,
/// `CacheFileExt` and `URLFileExt` from the URL's tail, `URLRawValue` when it is empty, and the
/// flags `IsJavascript`, `IsPicture` and `IsWebPage`. A second run changes nothing.
void orderNames(UrlRecord &record);

} // namespace nv
