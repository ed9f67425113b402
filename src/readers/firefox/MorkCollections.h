#pragma once

#include "base/KeyedList.h"

#include <cstdint>
#include <string>

namespace nv {

/// An entry of a column dictionary.
struct morkColHeaderClass {
    std::string id;
    std::string ColName;
};

/// An entry of a value dictionary, in the file's own bytes.
struct morkValueClass {
    std::string ValueRowID;
    std::string RowValue;
};

/// A row of the table, in the file's own bytes.
struct morkRowClass {
    std::int64_t FileOffset = 0; ///< 1-based; 0 when the file doesn't hold the row's beginning
    bool MarkedForDeletion = false;
    std::string RowValue; ///< its cells, each in parentheses
    std::string RowID;
};

/// A row with its values looked up. Dates stay the digits that the file holds: microseconds since
/// 1970, UTC.
struct morkEntryClass {
    std::int64_t FileOffset = 0;
    std::string GroupAction;
    std::string GroupID;
    std::string RowID;
    std::string Hidden;
    std::string Hostname;
    std::string URLName;
    std::string VisitCount;
    std::string FirstVisitDate;
    std::string LastVisitDate;
    std::string Referrer;
    std::string URL;
    std::string ByteOrder;
    std::string LastPageVisited;
    std::string Typed;

    /// The entry as a block of text. Made when it is asked for: kept, it would double the memory
    /// that the entries take.
    std::string RawData() const;
};

using morkColHeadersCollection = KeyedList<morkColHeaderClass>;
/// By `ValueRowID`. Of values with the same id the first has the key and is found.
using morkValuesCollection = KeyedList<morkValueClass>;
using morkRowsCollection = KeyedList<morkRowClass>;
using morkEntriesCollection = KeyedList<morkEntryClass>;

} // namespace nv
