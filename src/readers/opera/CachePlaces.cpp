#include "readers/opera/CachePlaces.h"

#include "readers/opera/CacheField.h"

#include <fmt/format.h>

#include <algorithm>
#include <stdexcept>
#include <utility>
#include <vector>

namespace nv {

namespace {

constexpr std::uint64_t kMostRecord = std::uint64_t{64} << 10; // bytes
constexpr std::string_view kSeconds = "seconds since 1970-01-01, UTC; the highest byte first";

/// The fields of a record and their places.
class RecordFields {
  public:
    RecordFields(const SourceBytes &record, FieldPlaces &places)
        : m_record(record), m_places(places) {}

    /// As the reader goes: by a byte where no known field begins, up to the next address or behind
    /// the file's name. Of fields of one kind the last one counts.
    void place() {
        const ByteView bytes = m_record.view();
        std::vector<std::pair<OperaField, std::uint64_t>> fields;
        for (std::uint64_t at = 0; at < bytes.size();) {
            const auto field = operaFieldAt(bytes, at);
            const bool isUrl = field && field->tag == OperaTag::url;
            const bool isEmpty = isUrl && textOf(*field).empty();
            if (isUrl && !isEmpty && at > 0)
                break;
            if (field && !isEmpty)
                fields.emplace_back(*field, at + field->length - field->value.size());
            if (field && field->tag == OperaTag::fileName)
                break;
            at += field && !isEmpty ? field->length : 1;
        }
        for (auto each = fields.rbegin(); each != fields.rend(); ++each)
            take(each->first, each->second);
    }

  private:
    void take(const OperaField &field, std::uint64_t at) {
        const auto set = [&](std::string_view name, MadeValue made, std::string_view rule) {
            m_places.value(name, m_record, at, field.value.size(), std::move(made),
                           fmt::format("field {}: {}", static_cast<int>(field.tag), rule));
        };
        switch (field.tag) {
        case OperaTag::url:
            set("URL", textOf(field), "text");
            set("URLRawValue", textOf(field), "text");
            break;
        case OperaTag::visited:
            set("ActionDateUTC", dateOf(field), kSeconds);
            set("LastVisited", dateOf(field), kSeconds);
            break;
        case OperaTag::mimeType:
            set("MIMEType", textOf(field), "text");
            break;
        case OperaTag::fileName:
            set("CacheFileName", textOf(field), "text");
            break;
        case OperaTag::size:
            set("RecordSize", static_cast<std::int64_t>(numberOf(field).value_or(0)), "number");
            break;
        case OperaTag::status:
            set("Status", MadeValue(), "number, for which the page of the format has the word");
            break;
        }
    }

    const SourceBytes &m_record;
    FieldPlaces &m_places;
};

} // namespace

void locateInOperaCache(const PlaceSearch &search, FieldPlaces &places) {
    const auto at = static_cast<std::uint64_t>(search.record.MapFileOffset);
    const EvidenceFile file = search.evidence.open(search.source);
    const SourceBytes record{"the record", search.source, {}, at, file.read(at, kMostRecord)};
    const auto first = operaFieldAt(record.view(), 0);
    if (!first || first->tag != OperaTag::url)
        throw std::runtime_error(fmt::format("no record begins at byte {}", at));
    RecordFields(record, places).place();
    places.derived("CacheFileSize", "of the cached file, as the file system told at the import");
    places.derived("CacheFileCreated", "of the cached file, as the file system told at the import");
    places.derived("DataBlockFile", "name of the cached file");
    places.derived("CacheFolderName", "folder of the cached file");
    places.derived("MapFileOffset", "where the walk along the fields found the record");
    places.derivedOfAddress();
}

} // namespace nv
