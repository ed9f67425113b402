#pragma once

#include "db/records/UrlRecord.h"

#include <string>

namespace nv {

/// The fields of a cached record's address and what follows of it, as the first layout has them.
/// `raw` is the text that the cache keeps; both are UTF-8.
void setCachedAddress(UrlRecord &url, std::string address, std::string raw);

} // namespace nv
