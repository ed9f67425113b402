#pragma once

#include "base/ByteView.h"
#include "db/records/UrlRecord.h"

#include <cstdint>

namespace nv {

/// When the entry ends, of a record of any version: a DOS date in UTC, or a FILETIME. Throws
/// OutOfBytes.
Date expiryOf(ByteView record);

/// Adds what a record of an index tells and no column holds: `record` begins with the signature.
void addIndexFacts(UrlRecord &url, ByteView record);

/// Adds what the hash entry tells of the record that it leads to.
void addHashFacts(UrlRecord &url, std::uint32_t hashStatus);

} // namespace nv
