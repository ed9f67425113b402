#include "readers/ie/IndexPlaces.h"

#include "base/Text.h"
#include "readers/Dissection.h"
#include "readers/HttpHeaders.h"
#include "readers/ie/IndexFacts.h"
#include "readers/ie/IndexFields.h"
#include "readers/ie/IndexRecord.h"
#include "readers/ie/Kinds.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <stdexcept>

namespace nv {

namespace {

using namespace indexfields;
using F = SourceForm;

constexpr std::uint64_t kLong = 8;
constexpr std::uint64_t kMostRecord = std::uint64_t{1} << 20; // bytes

constexpr std::array<NumberRule, 5> kNumbers = {{
    {"CacheFileSize", kFileSize},
    {"Visits", kHits},
    {"count", kHits},
    {"last_checked", kLastChecked, 4, F::dosDate},
    {"RecordSize", kBlocks},
}};
constexpr std::array<NumberRule, 3> kDates = {{
    {"ActionDateUTC", kSecondDate, kLong, F::fileTime},
    {"LastVisited", kSecondDate, kLong, F::fileTime},
    {"OtherDate", kFirstDate, kLong, F::fileTime},
}};
constexpr std::array<NumberRule, 4> kWeeklyDates = {{
    {"ActionDateUTC", kFirstDate, kLong, F::fileTimeLocal},
    {"LastVisited", kFirstDate, kLong, F::fileTimeLocal},
    {"ActionDateLocal", kFirstDate, kLong, F::fileTimeLocal},
    {"OtherDate", kSecondDate, kLong, F::fileTimeMoved},
}};

void placeAddress(const UrlRecord &row, const SourceBytes &record, FieldPlaces &places) {
    const bool isRedirect = record.view().sub(0, 4).raw() == "REDR";
    const bool isRecovered = row.cacheType == kIERemnant.word;
    const std::uint64_t at = isRedirect ? kRedirectUrl : kUrl;
    const std::string &stored = row.URLRawValue;
    ByteView text = record.view().untilZero(at);
    // Of a record of which later blocks are lost the address ends before.
    const std::uint64_t kept = toAnsi(stored).size();
    if (isRecovered && kept < text.size() && fromAnsi(text).starts_with(stored))
        text = text.sub(0, kept);
    const std::string raw = fromAnsi(text);
    places.value("URLRawValue", record, at, text.size(), raw, "Windows-1252, up to a zero byte");
    places.value("URL", record, at, text.size(),
                 isRedirect ? raw : percentDecode(parseURLFromRawURL(raw)),
                 "the address in it, its percent coding undone");
    places.value("User", record, at, text.size(), parseUserFromURL(raw),
                 "what stands before \"@\" in it");
}

/// A text whose offset within the record another field has.
void placeText(std::string_view field, const SourceBytes &record, std::uint64_t offsetAt,
               FieldPlaces &places) {
    const std::uint64_t at = record.view().u32le(offsetAt);
    if (at == 0 || !record.view().has(at, 1))
        return;
    const ByteView text = record.view().untilZero(at);
    places.value(field, record, at, text.size(), fromAnsi(text),
                 fmt::format("Windows-1252, up to a zero byte; its offset stands 0x{:X} bytes into "
                             "the record",
                             offsetAt));
}

void placeHeaders(const SourceBytes &record, FieldPlaces &places) {
    placeText("MetaData", record, kHeaders, places);
    const FieldPlace *headers = places.of("MetaData");
    if (!headers)
        return;
    const auto *text = std::get_if<std::string>(&headers->made);
    const std::uint64_t from = headers->offset - record.at;
    const std::string_view raw = record.view().sub(from, headers->length).raw();
    const SourceBytes lines{
        "the headers", record.file, {}, headers->offset, Bytes(raw.begin(), raw.end())};
    places.headerLine("MIMEType", lines, "content-type", mimeTypeOf(text ? *text : ""),
                      "without what follows \";\"");
}

/// The table of folders in the header, of which the record has a number.
void placeFolder(const PlaceSearch &search, const SourceBytes &record, FieldPlaces &places) {
    constexpr std::uint64_t kFolders = 0x50;
    constexpr std::uint64_t kFolderRow = 12;
    constexpr std::uint64_t kFolderName = 8;
    const std::uint8_t number = record.view().u8(kFolder);
    const SourceBytes name = sourceBytes(search, "the table of folders", search.source,
                                         kFolders + number * kFolderRow, kFolderName);
    places.value("CacheFolderName", name, 0, kFolderName, fromAnsi(name.view().untilZero(0)),
                 fmt::format("folder {}, by byte {} of the file", number, record.at + kFolder));
}

void placeOfFile(FieldPlaces &places) {
    places.derived("DataBlockFile", "name of the cached file");
    places.unknown("stale_hash",
                   "it is a bit of the hash entry that leads to the record, and where "
                   "that one lies isn't kept");
    places.unknown("MIMEType", "the record has no line that says it: it comes of the file's name");
    places.derived("source_offset", "where this program found the record");
}

std::uint64_t offsetOf(const UrlRecord &record) {
    return static_cast<std::uint64_t>(
        factNumber(record, "source_offset").value_or(record.MapFileOffset));
}

} // namespace

SourceBytes indexRecordAt(const PlaceSearch &search, std::uint64_t at) {
    constexpr std::uint64_t kHead = 8;
    constexpr std::uint64_t kBlock = 0x80;
    const EvidenceFile file = search.evidence.open(search.source);
    const Bytes head = file.read(at, kHead);
    const std::string_view mark = ByteView(head).raw().substr(0, 4);
    constexpr std::array<std::string_view, 4> kMarks = {"URL ", "LEAK", "FILE", "REDR"};
    const bool isMark = std::ranges::any_of(
        kMarks, [mark](std::string_view each) { return equalsNoCase(each, mark); });
    if (head.size() < kHead || !isMark)
        throw std::runtime_error(fmt::format("no record begins at byte {}", at));
    const std::uint64_t told = std::uint64_t{ByteView(head).u32le(kBlocks)} * kBlock;
    return {"the record", search.source, {}, at, file.read(at, std::min(told, kMostRecord))};
}

void locateCarved(const PlaceSearch &search, FieldPlaces &places) {
    const SourceBytes record =
        indexRecordAt(search, static_cast<std::uint64_t>(search.record.MapFileOffset));
    placeAddress(search.record, record, places);
    if (record.view().sub(0, 4).raw() == "REDR")
        return places.derived("Visits", "a redirect has nothing but its address");
    places.number(record, {"Visits", kHits});
    for (const std::string_view field : {"ActionDateUTC", "LastVisited"})
        places.number(record, {field, kSecondDate, kLong, F::fileTime});
    places.value("CacheFileCreated", record, kCreated, kLong, createdDate(record.view()),
                 "FILETIME, UTC; where that is no time of 1980 to 2100, a FAT date and time");
    places.derived("RecordSize", "number of the record's blocks, 4 bytes into it, times 128");
}

void locateInIndex(const PlaceSearch &search, FieldPlaces &places) {
    const SourceBytes record = indexRecordAt(search, offsetOf(search.record));
    const bool isRedirect = record.view().sub(0, 4).raw() == "REDR";
    const bool isWeekly = search.record.OtherDateMeaning == "File Created (GMT)";
    placeAddress(search.record, record, places);
    if (isRedirect) {
        for (const std::string_view field : {"CacheFileSize", "Visits"})
            places.derived(field, "a redirect has nothing but its address");
    } else {
        const ByteView view = record.view();
        places.value("CacheFileCreated", record, kCreated, kLong, createdDate(view),
                     "FILETIME, UTC; where that is no time of 1980 to 2100, a FAT date and time");
        for (const std::string_view field : {"ExpiryDate", "expires"})
            places.value(field, record, kExpires, kLong, expiryOf(view),
                         "FILETIME, UTC; where that is before 1970, a FAT date and time");
        places.numbers(record, kNumbers);
        if (isWeekly)
            places.numbers(record, kWeeklyDates);
        else
            places.numbers(record, kDates);
        placeText("CacheFileName", record, kFileName, places);
        placeHeaders(record, places);
        if (!search.record.CacheFolderName.empty())
            placeFolder(search, record, places);
    }
    places.derivedOfAddress();
    placeOfFile(places);
}

} // namespace nv
