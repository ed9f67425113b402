#include "reports/warc/WarcTarget.h"

#include "base/TextRows.h"
#include "reports/exports/FactsJson.h"
#include "time/DateFormat.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>
#include <vector>

namespace nv {

namespace {

bool hasScheme(std::string_view address) {
    const std::size_t colon = address.find(':');
    const auto isLetter = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); };
    return colon != std::string_view::npos && colon > 1 && isLetter(address.front()) &&
           std::ranges::all_of(address.substr(0, colon), [&](char c) {
               return isLetter(c) || (c >= '0' && c <= '9') || c == '+' || c == '-' || c == '.';
           });
}

bool standsInUris(char c) {
    return c > ' ' && c < 0x7F && std::string_view("\"<>\\^`{|}").find(c) == std::string_view::npos;
}

Cell textCell(const std::string &text) {
    return text.empty() ? Cell() : Cell(text);
}

Cell dateCell(Date date) {
    return date.has() ? Cell(isoUtc(date)) : Cell();
}

} // namespace

std::string warcTargetOf(const UrlRecord &record) {
    if (!hasScheme(record.URL))
        return fmt::format("urn:x-norvelane:record:{}", record.URLID);
    std::string uri;
    uri.reserve(record.URL.size());
    for (const char c : record.URL)
        uri += standsInUris(c) ? std::string(1, c)
                               : fmt::format("%{:02X}", static_cast<unsigned char>(c));
    return uri;
}

std::string warcDateOf(const UrlRecord &record) {
    return record.ActionDateUTC.has() ? isoUtc(record.ActionDateUTC) : "1970-01-01T00:00:00Z";
}

std::string warcMetadataOf(const UrlRecord &record, const WarcMetadata &more) {
    const std::vector<std::pair<const char *, Cell>> members = {
        {"url_id", number(record.URLID)},
        {"url", textCell(record.URL)},
        {"url_raw", textCell(record.URLRawValue)},
        {"cache_type", textCell(record.cacheType)},
        {"version", textCell(record.HistoryVersion)},
        {"status", textCell(record.Status)},
        {"action", textCell(record.Action)},
        {"action_date_utc", dateCell(record.ActionDateUTC)},
        {"other_date", dateCell(record.OtherDate)},
        {"other_date_meaning", textCell(record.OtherDateMeaning)},
        {"mime_type", textCell(record.MIMEType)},
        {"browser", textCell(record.Browser)},
        {"profile", textCell(record.Profile)},
        {"person", textCell(record.Person)},
        {"source_file", textCell(record.HistoryFilePath)},
        {"source_file_sha256", textCell(more.sourceSha256)},
        {"source_offset", record.MapFileOffset},
        {"source_row", record.Reference_ID},
        {"cached_file", textCell(record.CacheFileRelativePath)},
        {"data_file", textCell(record.DataBlockFile)},
        {"data_offset", record.DataBlockFileOffset},
        {"data_size", record.CacheFileSize},
        {"content_sha256", textCell(more.contentSha256)},
        {"unpacked_from", textCell(more.unpackedFrom)},
        {"doubt", textCell(more.doubt)}};
    std::vector<std::string> names;
    std::vector<Cell> cells;
    for (const auto &[name, cell] : members) {
        if (cell.isNothing())
            continue;
        names.emplace_back(name);
        cells.push_back(cell);
    }
    return jsonLine(names, cells, factMembers(more.facts));
}

} // namespace nv
