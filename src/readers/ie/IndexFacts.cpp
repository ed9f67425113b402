#include "readers/ie/IndexFacts.h"

#include "readers/FactDate.h"
#include "readers/ie/IndexFields.h"
#include "time/SourceClocks.h"

namespace nv {

namespace {

using indexfields::kExpires;
using indexfields::kLastChecked;

constexpr std::uint64_t kUrlOffset = 0x34;
constexpr std::uint64_t kHead = 0x68;

// The lower six bits of a hash entry's status say what became of it, the others are the hash.
constexpr std::uint32_t kStateBits = 0x3F;
constexpr std::uint32_t kGivenUp = 1;

/// Only version 5 has the date of the last check where it is looked for here. Its records say that
/// their URL follows on a head of 0x68 bytes.
bool isOfVersion5(ByteView record) {
    return record.has(0, kHead) && record.u32le(kUrlOffset) == kHead;
}

} // namespace

/// Version 5 of the browser keeps a DOS date in the lower half of the field and zeros in the upper
/// one; earlier versions a FILETIME. Eight bytes that hold a DOS date are, as a FILETIME, a moment
/// of 1601, at which nothing ends; a FILETIME of any year since 1970 has an upper half that no
/// DOS date has beside it.
Date expiryOf(ByteView record) {
    constexpr std::uint64_t kYear1970 = 116444736000000000; // in 100 ns since 1601
    const std::uint64_t ticks = record.u64le(kExpires);
    return ticks < kYear1970 ? dosDateToUtc(record.u16le(kExpires), record.u16le(kExpires + 2))
                             : fileTimeToUtc(ticks);
}

void addIndexFacts(UrlRecord &url, ByteView record) {
    if (record.has(0, 4) && record.sub(0, 4).raw() == "REDR")
        return; // it has a URL and nothing else
    if (isOfVersion5(record))
        url.facts.add("last_checked", factDate(dosDateToUtc(record.u16le(kLastChecked),
                                                            record.u16le(kLastChecked + 2))));
    if (!url.ExpiryDate.has() && record.has(kExpires, 8))
        url.facts.add("expires", factDate(expiryOf(record)));
}

void addHashFacts(UrlRecord &url, std::uint32_t hashStatus) {
    if ((hashStatus & kStateBits) == kGivenUp)
        url.facts.add("stale_hash", std::string("yes"), std::int64_t{hashStatus});
}

} // namespace nv
