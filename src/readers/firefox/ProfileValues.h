#pragma once

#include "db/records/FactList.h"
#include "readers/Reader.h"
#include "time/Date.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace nv {

// Values as the databases of Firefox's profiles store them.

/// Parts of a second in which dates since 1970, UTC, are stored.
enum class MozUnit : std::int64_t {
    milliseconds = 1'000,
    microseconds = 1'000'000,
};

/// Fractions are dropped towards the past. Nothing and 0 are no date.
Date mozDate(std::optional<std::int64_t> stored, MozUnit unit);

/// Adds it as text, with its fraction where there is one. What is no date stands as its number.
void addMozDate(FactList &facts, FactName name, std::optional<std::int64_t> stored, MozUnit unit);

struct MozWord {
    std::int64_t number;
    std::string_view word;
};

/// Empty for nothing and for a number that has no word.
std::string mozWord(std::span<const MozWord> words, std::optional<std::int64_t> stored);
/// A number that has no word stands for itself.
void addMozWord(FactList &facts, FactName name, std::span<const MozWord> words,
                std::optional<std::int64_t> stored);
void addMozNumber(FactList &facts, FactName name, std::optional<std::int64_t> stored);
/// Seconds out of milliseconds.
void addMozDuration(FactList &facts, FactName name, std::optional<std::int64_t> milliseconds);

/// The attributes behind an origin or beside a cookie, "^userContextId=2&partitionKey=...": the
/// container and the partition that it belongs to, and what else they say.
void addOriginAttributes(FactList &facts, std::string_view attributes);

/// Path of a "file:" address; any other text as it stands.
std::string pathOfFileUrl(std::string_view url);

struct RecordKind;

/// What all records of such a database have in common, for an address of any form or none.
UrlRecord profileRecord(const ReadContext &ctx, const RecordKind &kind, std::string_view action,
                        std::string_view rawUrl, Date fileCreated);
/// Says where the record lies in its source.
void addSource(UrlRecord &record, std::string_view table, std::int64_t rowId);

} // namespace nv
