#pragma once

#include "db/records/FactList.h"

#include <cstdint>
#include <string>

namespace nv {

/// Where in its source file a record begins, in bytes from 0; empty where no offset is known, as of
/// rows of a database. `stored` is the record's `MapFileOffset`, whose 0 stands for none.
std::string offsetInSource(const FactList &facts, std::int64_t stored);

/// A record, as its columns have it.
struct SourceColumns {
    const std::string &file; ///< HistoryFilePath
    const std::string &kind; ///< CacheType
    const std::string &version;
    std::int64_t offset = 0; ///< MapFileOffset
};

/// What follows the path of the source file: ", row 17 of table visits", ", offset 512", or
/// ", data_1[12032]" where the record lies in another file than the path names. Empty where nothing
/// is known. Words of evidence stand in it: show them as plain text.
std::string placeInSource(const SourceColumns &record, const FactList &facts);

} // namespace nv
