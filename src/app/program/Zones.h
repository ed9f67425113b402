#pragma once

#include "app/program/Program.h"
#include "import/ZoneHints.h"
#include "time/ExactZone.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace nv {

// A zone's key is what projects, settings and the command line name it by: the number of a classic
// zone, which is a row of nvTZ.dat, or the name of an exact one, "Europe/Berlin". An examiner's
// choice of another goes through app/jobs/ZoneJob.

/// The zones of this system.
ExactZones exactZones(const Program &program);

/// Throws ZoneFailure that names the nearest zones when there is none of this name.
std::shared_ptr<const ExactZone> exactZoneNamed(const Program &program, std::string_view name);

/// Of the zone in force; of a classic one that isn't in the list, as the default zone may be, the
/// key of the one in its place.
std::string keyInList(Program &program);

/// The zone in force is one that somebody has chosen: an exact one, or another classic one than the
/// machine's, which the program takes by itself.
bool isChosenZone(Program &program);

/// A key as it is stored, or why there is no zone of it.
struct CheckedZone {
    std::string key;
    std::string refusal; ///< empty when there is one
};
CheckedZone checkedZone(Program &program, std::string_view key);

/// What the evidence says of its zone, but for zones that this system doesn't know.
std::vector<ZoneHint> knownZoneHints(Program &program, const std::filesystem::path &start,
                                     const HistoryFiles &files);

/// Takes the classic zone with this `timeZoneID` into force. False when there is none. The
/// examiner is told when the zone database can't be read.
bool setZone(Program &program, std::int64_t id);

/// Takes the zone into force, for what is computed next. False when there is none, or when it can't
/// be read: then the examiner was told, but for the number of no zone.
bool setZone(Program &program, std::string_view key);

} // namespace nv
