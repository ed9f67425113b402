#pragma once

#include "readers/FieldPlaces.h"

namespace nv {

/// Where the fields of a record of an index.dat lie: all but those of its cached file.
void locateInIndex(const PlaceSearch &search, FieldPlaces &places);

/// The same for a record in a run of them that another tool has cut out, docs/formats/hist-ex.md,
/// or in a results file, docs/formats/nvd.md.
void locateCarved(const PlaceSearch &search, FieldPlaces &places);

/// The bytes of a record of an index: records say how many blocks of 0x80 bytes they have.
SourceBytes indexRecordAt(const PlaceSearch &search, std::uint64_t at);

} // namespace nv
