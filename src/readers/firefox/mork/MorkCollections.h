#pragma once

#include "base/KeyedList.h"

#include <cstdint>
#include <string>

namespace nv {

/// An entry of a column dictionary.
struct MorkColHeader {
    std::string id;
    std::string colName;
};

/// An entry of a value dictionary, in the file's own bytes.
struct MorkValue {
    std::string valueRowID;
    std::string rowValue;
};

/// A row of the table, in the file's own bytes.
struct MorkRow {
    std::int64_t fileOffset = 0; ///< 1-based; 0 when the file doesn't hold the row's beginning
    bool markedForDeletion = false;
    std::string rowValue; ///< its cells, each in parentheses
    std::string rowID;
};

/// A row with its values looked up. Dates stay the digits that the file holds: microseconds since
/// 1970, UTC.
struct MorkEntry {
    std::int64_t fileOffset = 0;
    std::string groupAction;
    std::string groupID;
    std::string rowID;
    std::string hidden;
    std::string hostname;
    std::string urlName;
    std::string visitCount;
    std::string firstVisitDate;
    std::string lastVisitDate;
    std::string referrer;
    std::string url;
    std::string byteOrder;
    std::string lastPageVisited;
    std::string typed;

    /// The entry as a block of text. Made when it is asked for: kept, it would double the memory
    /// that the entries take.
    std::string rawData() const;
};

using MorkColHeaders = KeyedList<MorkColHeader>;
/// By `valueRowID`. Of values with the same id the first has the key and is found.
using MorkValues = KeyedList<MorkValue>;
using MorkRows = KeyedList<MorkRow>;
using MorkEntries = KeyedList<MorkEntry>;

} // namespace nv
