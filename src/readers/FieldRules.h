#pragma once

#include "readers/RecordKind.h"
#include "time/Date.h"

#include <cstdint>
#include <span>
#include <string_view>

namespace nv {

/// What lies in the source, and by which clock or rule it becomes a value.
enum class SourceForm {
    text,             ///< as it stands, or cleaned up
    number,           ///< the number itself, or the word that stands for it
    chromeTime,       ///< microseconds since 1601, UTC
    chromeOrUnixTime, ///< the same, in early versions seconds since 1970, told apart by their size
    unixSeconds,      ///< or milliseconds, told apart by their size
    unixMicroseconds,
    fileTime,      ///< ticks of 100 nanoseconds since 1601, UTC
    fileTimeLocal, ///< the same of the clock on the wall
    fileTimeMoved, ///< UTC, moved to the zone of the machine that imported
    dosDate,       ///< a FAT date in the lower 16 bits and a FAT time in the upper ones, UTC
    secondsOf1904, ///< since 1904, five hours off, as Internet Explorer for Macintosh has them
};
/// In words, with the zone of the source.
std::string_view wordsOf(SourceForm form);
/// The date that the number is by its form; nothing for what is no date.
Date dateOf(SourceForm form, std::int64_t number);

/// Where one field of a record comes from: a column of the record's row in an SQLite file.
struct FieldRule {
    std::string_view field;  ///< column of table `URLs`, or the name of a fact
    std::string_view column; ///< of the record's row
    SourceForm form = SourceForm::text;
};

/// All that is known of the fields of a kind of record.
struct KindRules {
    const RecordKind *kind;
    std::string_view table; ///< of the SQLite file
    std::span<const FieldRule> fields;
};

/// The rules of all kinds that have some. A kind without any has only the page of its format.
std::span<const KindRules> fieldRules();
/// Null when nothing is kept of how the field was made.
const FieldRule *fieldRule(const KindRules &rules, std::string_view field);
/// Null for a kind without rules.
const KindRules *rulesOf(std::string_view cacheType);
/// "chrome-history", of docs/formats: where a kind's format is told; empty for an unknown kind.
std::string_view pageOf(std::string_view cacheType);

} // namespace nv
