#pragma once

#include "db/records/UrlRecord.h"

#include <string>

namespace nv {

/// The record's address as a URI, which has neither blanks nor letters outside of ASCII: these
/// stand as percent signs with their bytes in UTF-8. What is no address with a scheme gets a name
/// of its own, by the record's key.
std::string warcTargetOf(const UrlRecord &record);

/// When the content was captured: the record's date in UTC, ISO 8601. One is wanted in any case:
/// 1970-01-01 stands for none.
std::string warcDateOf(const UrlRecord &record);

/// What is known of a record beside its answer, as an object of JSON.
struct WarcMetadata {
    std::string sourceSha256{};  ///< of the file that the record was read from
    std::string contentSha256{}; ///< as it is written
    std::string unpackedFrom{};
    std::string doubt{};
    FactList facts{};
};
std::string warcMetadataOf(const UrlRecord &record, const WarcMetadata &more);

} // namespace nv
