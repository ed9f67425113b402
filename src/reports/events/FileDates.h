#pragma once

#include <cstdint>
#include <string_view>

namespace nv {

/// What a record's dates of a file ("File Created", "File Last Accessed") were read from.
enum class FileDateFrom : std::uint8_t {
    record,     ///< the browser stored them
    cachedFile, ///< the file system, of the one file that belongs to the record
    container,  ///< the file system, of the file that all records of an artefact lie in: it says
                ///< nothing of the record, and in a copy not even when the artefact was made
};

FileDateFrom createdDateFrom(std::string_view cacheType);
FileDateFrom accessedDateFrom(std::string_view cacheType);

} // namespace nv
