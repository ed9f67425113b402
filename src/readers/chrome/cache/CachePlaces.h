#pragma once

#include "readers/FieldPlaces.h"

#include <string_view>

namespace nv {

// Where the fields of a record of one of Chromium's caches lie.

/// Of block files, of the first layout and of the later one.
void locateInBlockFiles(const PlaceSearch &search, FieldPlaces &places);
/// Of files of their own.
void locateInSimpleCache(const PlaceSearch &search, FieldPlaces &places);
/// Of SQLite files.
void locateInSqlCache(const PlaceSearch &search, FieldPlaces &places);

// What they have in common.

/// The address and what else stands in a key.
void placeChromeKey(const SourceBytes &key, FieldPlaces &places);
/// The first stream: the head of an answer, or what takes its place.
void placeChromeHead(const SourceBytes &head, std::string_view key, FieldPlaces &places);
/// What is made by the program of all of these.
void placeChromeRest(FieldPlaces &places);

} // namespace nv
