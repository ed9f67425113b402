#pragma once

#include "base/ByteView.h"
#include "db/records/UrlRecord.h"
#include "readers/Evidence.h"
#include "readers/FieldRules.h"
#include "readers/sqlite/CellBytes.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace nv {

class EvidenceDatabase;

/// Bytes of the evidence in which fields of a record lie.
struct SourceBytes {
    std::string name;           ///< "the entry"
    std::filesystem::path file; ///< that holds them
    std::string cell;           ///< "table resources, row 3, column head"; empty in other files
    std::uint64_t at = 0;       ///< of the first one, in the file or in the cell
    Bytes bytes;
    std::uint64_t head = 0; ///< so many of them come before a text, and are none of it
    /// Of a cell: where its bytes lie in the file, as far as they lie together.
    std::optional<CellBytes> cellBytes = {};

    ByteView view() const { return ByteView(bytes); }
};

enum class ByteOrder { little, big };

/// A rule of a format: a number of so many bytes, counted from the begin of the bytes.
struct NumberRule {
    std::string_view field; ///< column of table `URLs`, or the name of a fact
    std::uint64_t at = 0;
    std::uint64_t size = 4; ///< up to 8
    SourceForm form = SourceForm::number;
    ByteOrder order = ByteOrder::little;
};

/// What the bytes give by the rule: nothing, a number, a text or a date in UTC.
using MadeValue = std::variant<std::monostate, std::int64_t, std::string, Date>;

/// Where a field of a record was found again.
struct FieldPlace {
    enum class State {
        found,
        derived, ///< it isn't stored: `rule` says what it is made of
        unknown, ///< `note` says why nobody can tell
    };

    State state = State::found;
    std::string field;
    std::string name;           ///< of the bytes that hold it
    std::filesystem::path file; ///< that holds it
    std::string cell;
    std::uint64_t offset = 0;           ///< in the file or in the cell
    std::uint64_t length = 0;           ///< bytes
    std::optional<CellBytes> cellBytes; ///< of the whole cell
    std::string stored;                 ///< as it lies, for people
    MadeValue made;
    SourceForm form = SourceForm::text;
    std::string rule;
    std::string note;
};

/// The places of one record's fields. The first that is told of a field counts.
class FieldPlaces {
  public:
    /// All of them throw OutOfBytes where the bytes end before.
    void number(const SourceBytes &bytes, const NumberRule &rule);
    void numbers(const SourceBytes &bytes, std::span<const NumberRule> rules);
    /// `made` is what the reader's rule gives for those bytes, in words: `rule`.
    void value(std::string_view field, const SourceBytes &bytes, std::uint64_t at,
               std::uint64_t size, MadeValue made, std::string rule = {});
    /// The first line of that name (in lower case) among the headers that the bytes hold from `at`
    /// on, which lines or zeros part. `rule` says how the value is made of it.
    void headerLine(std::string_view field, const SourceBytes &headers, std::string_view name,
                    MadeValue made, std::string rule = {});
    /// The date that was told of the field is of a clock on the wall: the offset of the machine
    /// that imported lies between it and the record's.
    void isLocal(std::string_view field);
    /// A field that other fields give.
    void derived(std::string_view field, std::string_view rule);
    void unknown(std::string_view field, std::string_view why);
    /// Those that every reader of a cache makes of the address, and those that caches don't have:
    /// the last to be told.
    void derivedOfAddress();

    const std::vector<FieldPlace> &all() const { return m_places; }
    /// Null when nothing is told of it.
    const FieldPlace *of(std::string_view field) const;

  private:
    FieldPlace *add(std::string_view field);

    std::vector<FieldPlace> m_places;
};

/// A record whose fields are looked for, and where.
struct PlaceSearch {
    const UrlRecord &record; ///< with its facts
    const Evidence &evidence;
    std::filesystem::path source; ///< the file or folder that it was read from
    /// Opens a copy of an SQLite file of the evidence, which lives until the next call. Throws
    /// EvidenceFailure and EvidenceDamage.
    std::function<EvidenceDatabase &(const std::filesystem::path &file)> database;
};

/// Reads the record's bytes again and says where each field lies. Nothing is written. What can't be
/// found again throws, with why.
using Locate = void (*)(const PlaceSearch &search, FieldPlaces &places);

/// For the format that the record is of; null for those that don't tell it.
Locate locatorOf(const UrlRecord &record);
/// "docs/formats/chromium-simple-cache.md": the page of the format that the record is of; where
/// formats share its kind and none is known to be it, that of the first.
std::string formatPageOf(const UrlRecord &record);

// For those who locate.

/// The folder of the source, where it isn't one itself.
std::filesystem::path sourceFolder(const PlaceSearch &search);
/// The file of that folder that the record was read from. Throws when it isn't there.
std::filesystem::path ownFile(const PlaceSearch &search);
/// The bytes of a stretch of a file. Throws EvidenceFailure, and OutOfBytes when the file ends
/// before.
SourceBytes sourceBytes(const PlaceSearch &search, std::string name,
                        const std::filesystem::path &file, std::uint64_t at, std::uint64_t size);
/// The same of a file that is open.
SourceBytes sourceBytes(const ByteSource &file, std::string name, std::uint64_t at,
                        std::uint64_t size);
/// A column of a row. Throws EvidenceDamage when it isn't there.
SourceBytes cellBytes(const PlaceSearch &search, const std::filesystem::path &file,
                      std::string_view table, std::int64_t row, std::string_view column);
/// A whole number of a fact; nothing without one.
std::optional<std::int64_t> factNumber(const UrlRecord &record, std::string_view name);
/// The text of a fact; empty without one.
std::string factWords(const UrlRecord &record, std::string_view name);

} // namespace nv
