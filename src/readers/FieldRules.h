#pragma once

#include "readers/RecordKind.h"
#include "time/Date.h"

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace nv {

/// What lies in the source, and by which clock or rule it becomes a value.
enum class SourceForm {
    text,             ///< as it stands, or cleaned up
    number,           ///< the number itself, or the word that stands for it
    chromeTime,       ///< microseconds since 1601, UTC
    chromeOrUnixTime, ///< the same, in early versions seconds since 1970, told apart by their size
    unixSeconds,      ///< or milliseconds, told apart by their size
    unixMicroseconds,
    unixFirstTen, ///< microseconds since 1970; of the whole seconds the first ten characters count
    storedFirstTen, ///< seconds or milliseconds since 1970, of which the first ten characters count
    fileTime,       ///< ticks of 100 nanoseconds since 1601, UTC
    fileTimeLocal,  ///< the same of the clock on the wall
    fileTimeMoved,  ///< UTC, moved to the zone of the machine that imported
    dosDate,        ///< a FAT date in the lower 16 bits and a FAT time in the upper ones, UTC
    secondsOf1904,  ///< since 1904, five hours off, as Internet Explorer for Macintosh has them
    unixMilliseconds,
    truth,     ///< 0 is no, every other number yes
    hex,       ///< bytes, shown as hexadecimal digits
    part,      ///< the value, or the number it was made of, is a part of the text
    within,    ///< the text, or the number, is a part of the value
    summand,   ///< one of the numbers that are added up
    encrypted, ///< bytes of which only kind and length are told
    encryptedBase64,
    decrypted, ///< bytes, decrypted by the key that the browser has everywhere
};
/// In words, with the zone of the source.
std::string_view wordsOf(SourceForm form);
/// The same of one number: where the size tells the unit, the unit that it has.
std::string_view wordsOf(SourceForm form, std::int64_t number);
/// The date that the number is by its form; nothing for what is no date.
Date dateOf(SourceForm form, std::int64_t number);

/// Where one field of a record comes from: a column of the record's row in an SQLite file, or of a
/// row that it leads to. Of several rules for a field the first whose value agrees tells of it.
struct FieldRule {
    std::string_view field; ///< column of table `URLs`, or the name of a fact
    std::string_view path;  ///< readers/sqlite/CellPath.h
    SourceForm form = SourceForm::text;
};

/// All that is known of the fields of a kind of record that was read from a table.
struct KindRules {
    const RecordKind *kind;
    std::string_view table; ///< of the SQLite file
    std::span<const FieldRule> fields;
};

/// The rules for a field, in their order; none when nothing is kept of how it was made.
std::vector<const FieldRule *> rulesFor(const KindRules &rules, std::string_view field);
/// For records of this kind that were read from this table; empty for what the classic rules read,
/// which keep no table. Null for a kind without rules.
const KindRules *rulesOf(std::string_view cacheType, std::string_view table);
/// "chrome-history", of docs/formats: where a kind's format is told; empty for an unknown kind.
std::string_view pageOf(std::string_view cacheType);

} // namespace nv
