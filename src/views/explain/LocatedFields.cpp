#include "views/explain/LocatedFields.h"

#include "base/Text.h"
#include "base/Trap.h"
#include "db/records/RecordFacts.h"
#include "db/records/RecordStore.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

#include <algorithm>

namespace nv {

namespace {

constexpr std::string_view kProcedure = "MainForm.Explain()";

} // namespace

LocatedFields::LocatedFields(const ExplainSource &source, EvidenceTables &tables, UrlId id,
                             const std::filesystem::path &file)
    : m_file(file) {
    auto record = source.records.getURL(id);
    if (!record)
        return;
    record->facts = RecordFacts(source.project).of(id);
    const Locate locate = locatorOf(*record);
    if (!locate)
        return;
    const auto database = [&tables](const std::filesystem::path &each) -> EvidenceDatabase & {
        return tables.of(each);
    };
    m_failure = failureOf(source.log, kProcedure, [&] {
                    locate({*record, source.evidence, m_file, database}, m_places);
                }).value_or("");
}

void LocatedFields::describe(const FieldPlace &place, ValueOrigin &value) const {
    value.rule = place.rule;
    value.note = place.note;
    if (place.state == FieldPlace::State::derived) {
        value.check = OriginCheck::derived;
        return;
    }
    if (place.state == FieldPlace::State::unknown) {
        value.check = OriginCheck::notKept;
        return;
    }
    value.stored = place.stored;
    value.length = place.length;
    const std::uint64_t last = place.offset + std::max<std::uint64_t>(place.length, 1) - 1;
    const std::string bytes = fmt::format("bytes {} to {}", place.offset, last);
    const std::string file =
        place.file == m_file ? std::string() : textOf(place.file.filename()) + ": ";
    value.place = place.cell.empty() ? fmt::format("{}{}, in {}", file, bytes, place.name)
                                     : fmt::format("{}{}, {} of it", file, place.cell, bytes);
    value.file = place.file;
    if (place.cell.empty()) {
        value.offset = place.offset;
    } else if (place.cellBytes && place.offset < place.cellBytes->length) {
        value.file = place.cellBytes->file;
        value.offset = place.cellBytes->offset + place.offset;
        value.length = std::min(place.length, place.cellBytes->length - place.offset);
    }
}

} // namespace nv
