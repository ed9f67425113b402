#include "views/explain/RecordValues.h"

#include "base/Text.h"
#include "db/records/RecordFacts.h"
#include "db/sql/BindId.h"
#include "readers/sqlite/CellPath.h"
#include "time/ExactZone.h"
#include "views/explain/CellAgreement.h"
#include "views/explain/LocatedFields.h"
#include "views/explain/MadeBy.h"
#include "views/explain/SourceValues.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>

namespace nv {

namespace {

const RecordFact *factNamed(const FactList &facts, std::string_view name) {
    const auto found = std::ranges::find(facts, name, &RecordFact::name);
    return found == facts.end() ? nullptr : &*found;
}

/// Of several of a name that which the property shows.
const RecordFact *factOf(const FactList &facts, const ValueOrigin &value) {
    for (const RecordFact &fact : facts)
        if (fact.name == value.field && factText(fact) == value.value)
            return &fact;
    return factNamed(facts, value.field);
}

std::string tableOf(const StoredRecord &stored) {
    const RecordFact *table = factNamed(stored.facts, "source_table");
    return table ? factText(table->value) : std::string();
}

std::optional<std::int64_t> numberOf(const FactList &facts, std::string_view name) {
    const RecordFact *fact = factNamed(facts, name);
    const auto *number = fact ? std::get_if<std::int64_t>(&fact->value) : nullptr;
    return number ? std::optional(*number) : std::nullopt;
}

RecordPlace placeOf(const StoredRecord &stored, const KindRules *rules) {
    RecordPlace place;
    const RecordFact *table = factNamed(stored.facts, "source_table");
    place.rowId = numberOf(stored.facts, "source_rowid");
    if (table)
        place.table = factText(table->value);
    // Rows of the classic rules alone have no facts.
    if (!table && rules && !rules->table.empty() && stored.reference > 0) {
        place.table = rules->table;
        place.rowId = stored.reference;
    }
    const auto offset = numberOf(stored.facts, "source_offset");
    if (const std::int64_t at = offset.value_or(stored.offset); at > 0)
        place.offset = static_cast<std::uint64_t>(at);
    return place;
}

/// Whether a part of the text is the value; letters and digits alone stand in many.
bool standsIn(const std::string &text, const std::string &value) {
    constexpr std::size_t kLeast = 3;
    return value.size() >= kLeast && (text.find(value) != std::string::npos ||
                                      percentDecode(text).find(value) != std::string::npos);
}

bool isDateForm(SourceForm form) {
    switch (form) {
    case SourceForm::text:
    case SourceForm::number:
    case SourceForm::truth:
    case SourceForm::hex:
    case SourceForm::part:
    case SourceForm::within:
    case SourceForm::summand:
    case SourceForm::encrypted:
    case SourceForm::encryptedBase64:
    case SourceForm::decrypted:
        return false;
    default:
        return true;
    }
}

} // namespace

std::optional<StoredRecord> storedRecordOf(SQLite::Database &project, UrlId id) {
    SQLite::Statement row(project,
                          "SELECT CacheType, HistoryVersion, HistoryFilePath, RootPath, "
                          "URLRawValue, SourceFile_ID, Reference_ID, MapFileOffset FROM URLs "
                          "WHERE URL_ID = ?");
    bindId(row, 1, id);
    if (!row.executeStep())
        return std::nullopt;
    StoredRecord stored{
        row.getColumn(0).getString(), row.getColumn(1).getString(), row.getColumn(2).getString(),
        row.getColumn(3).getString(), row.getColumn(4).getString(), row.getColumn(5).getInt64(),
        row.getColumn(6).getInt64(),  row.getColumn(7).getInt64(),  {}};
    stored.facts = RecordFacts(project).of(id);
    return stored;
}

class RecordValues::Reading {
  public:
    Reading(const ExplainSource &source, EvidenceTables &tables, UrlId id,
            const StoredRecord &stored, const std::optional<std::filesystem::path> &file)
        : m_source(source), m_id(id), m_stored(stored),
          m_rules(rulesOf(stored.kind, tableOf(stored))), m_place(placeOf(stored, m_rules)) {
        if (!file)
            return;
        m_values.emplace(tables, source.log, *file, m_place, stored.facts);
        m_located.emplace(source, tables, id, *file);
    }

    ValueOrigin of(const Property &property) {
        ValueOrigin value;
        value.field = property.name;
        value.value = property.value;
        if (const FieldPlace *place = m_located ? m_located->of(property.name) : nullptr) {
            setLocated(*place, value);
            return value;
        }
        const MadeBy *made = madeBy(property.name);
        const auto rules =
            m_rules ? rulesFor(*m_rules, property.name) : std::vector<const FieldRule *>();
        if (made)
            setMade(*made, value);
        else if (!rules.empty())
            read(rules, value);
        else
            unknown(value);
        // Where no cell tells of it, the field may be one that readers make of others.
        const bool isTold =
            value.check != OriginCheck::unread && value.check != OriginCheck::notKept;
        if (const MadeBy *otherwise = madeOtherwise(property.name);
            otherwise && !isTold && (otherwise->isAlways || (rules.empty() && !m_isCut)))
            setMade(*otherwise, value);
        return value;
    }

  private:
    void setMade(const MadeBy &made, ValueOrigin &value) const {
        value.check = made.check;
        value.rule = made.rule;
        value.place.clear();
        value.stored.clear();
        value.note.clear();
        value.offset.reset();
        value.file.clear();
        setZone(value, SourceForm::text);
    }

    void setLocated(const FieldPlace &place, ValueOrigin &value) const {
        m_located->describe(place, value);
        if (place.state == FieldPlace::State::found) {
            const auto agreed = agreesAsMade(place, value);
            value.check = !agreed   ? OriginCheck::unread
                          : *agreed ? OriginCheck::same
                                    : OriginCheck::differs;
        }
        const bool isDate = std::holds_alternative<Date>(place.made);
        setZone(value, isDateForm(place.form) ? place.form
                       : isDate               ? SourceForm::unixSeconds
                                              : SourceForm::text);
    }

    /// Nothing where the two can't be compared.
    std::optional<bool> agreesAsMade(const FieldPlace &place, ValueOrigin &value) const {
        const RecordFact *fact = factOf(m_stored.facts, value);
        if (const auto *date = std::get_if<Date>(&place.made))
            return agreesAsDate(place.form, *date, fact, value);
        std::string kept = fact ? factText(fact->value) : columnText(value.field);
        if (const auto *text = std::get_if<std::string>(&place.made))
            return *text == kept;
        if (kept.ends_with(".0")) // some columns of whole numbers hold them with a fraction
            kept.resize(kept.size() - 2);
        const auto *number = std::get_if<std::int64_t>(&place.made);
        if (number && fact && std::to_string(*number) == factText(fact->raw))
            return true; // the words stand for it
        if (number)
            return std::to_string(*number) == kept ||
                   (place.length == 4 &&
                    std::to_string(static_cast<std::int32_t>(*number)) == kept);
        if (standsIn(place.stored, kept) || (fact && standsIn(place.stored, factText(fact->raw)))) {
            value.note = "it stands in the bytes that were read";
            return true;
        }
        value.note = "the bytes were read again; how the value is made of them is in the page of "
                     "the format";
        return std::nullopt;
    }

    void unknown(ValueOrigin &value) {
        if (const std::size_t part = value.field.find(" > "); part != std::string::npos)
            return setDecoded(value.field.substr(0, part), value);
        if (m_located && !m_located->failure().empty()) {
            value.check = OriginCheck::unread;
            value.note = m_located->failure();
            m_isCut = true;
            return;
        }
        value.check = OriginCheck::notKept;
        value.note = "which part of the record gave it isn't kept; the page of the format tells";
        if (m_place.rowId && !m_place.table.empty())
            value.place = fmt::format("table {}, row {}", m_place.table, *m_place.rowId);
        else if (m_place.offset) {
            value.place = fmt::format("in the record that begins at byte {}", *m_place.offset);
            value.offset = m_place.offset;
        }
    }

    /// What was decoded lies where the whole lies.
    void setDecoded(const std::string &whole, ValueOrigin &value) {
        const RecordFact *fact = factNamed(m_stored.facts, whole);
        const bool isColumn = whole == "URL";
        if (fact || isColumn) {
            const ValueOrigin origin =
                of({whole, fact ? factText(fact->value) : columnText(whole)});
            value.place = origin.place;
            value.offset = origin.offset;
            value.length = origin.length;
            value.file = origin.file;
        }
        value.check = OriginCheck::derived;
        value.rule = fmt::format("part of {}, decoded by the rule in brackets", whole);
    }

    /// The first cell that gives the value tells of it; of those that don't, the first that can't
    /// be compared, then one that gives another value.
    void read(const std::vector<const FieldRule *> &rules, ValueOrigin &value) {
        if (!m_values) {
            value.check = OriginCheck::unread;
            value.rule = wordsOf(rules.front()->form);
            value.place = wordsOfPath(rules.front()->path);
            value.note = "the source file isn't there";
            m_isCut = true;
            return;
        }
        std::optional<ValueOrigin> best;
        for (const FieldRule *rule : rules)
            for (SourceValue &found : m_values->read(*rule)) {
                ValueOrigin one = value;
                set(*rule, found, one);
                if (!best || rankOf(one) < rankOf(*best))
                    best = std::move(one);
                if (rankOf(*best) == 0)
                    break;
            }
        value = std::move(*best);
    }

    static int rankOf(const ValueOrigin &value) {
        if (value.check == OriginCheck::same)
            return 0;
        if (value.check == OriginCheck::unread)
            return value.stored.empty() ? 3 : 1;
        return 2;
    }

    void set(const FieldRule &rule, const SourceValue &found, ValueOrigin &value) const {
        value.rule = found.number ? wordsOf(rule.form, *found.number) : wordsOf(rule.form);
        value.rule += found.conversion;
        value.place = found.place;
        value.offset = found.offset;
        value.length = found.length;
        value.file = found.file;
        value.stored = found.stored;
        value.note = found.whyNot;
        const auto agreed = found.whyNot.empty() ? agrees(rule, found, value) : std::nullopt;
        value.check = !agreed   ? OriginCheck::unread
                      : *agreed ? OriginCheck::same
                                : OriginCheck::differs;
        setZone(value, rule.form);
    }

    /// Nothing where the two can't be compared.
    std::optional<bool> agrees(const FieldRule &rule, const SourceValue &found,
                               ValueOrigin &value) const {
        const RecordFact *fact = factOf(m_stored.facts, value);
        const bool isAsItLies = fact && found.number &&
                                (factText(fact->raw) == std::to_string(*found.number) ||
                                 factText(fact->value) == std::to_string(*found.number));
        if (isDateForm(rule.form) && isAsItLies)
            return true; // of some numbers no date comes
        if (isDateForm(rule.form))
            return found.number &&
                   agreesAsDate(rule.form, dateOf(rule.form, *found.number), fact, value);
        if (fact)
            return cellAgrees(rule.form, found, {factText(fact->value), factText(fact->raw)},
                              value.note);
        const KeptValue kept{columnText(value.field), {}};
        const auto agreed = cellAgrees(rule.form, found, kept, value.note);
        const bool isAddress = value.field == "URL" && rule.form == SourceForm::text;
        if (!isAddress || agreed.value_or(true))
            return agreed;
        // What stands around an address is cut away.
        value.note = "cleaned up: percent coding undone, and what stands around the address cut "
                     "away";
        std::string unused;
        return cellAgrees(rule.form, found, {m_stored.rawUrl, {}}, unused);
    }

    /// Histories of Firefox are read towards 1970, also before it.
    static bool isOfTowards1970(SourceForm form, Date made, std::int64_t apart) {
        return form == SourceForm::unixMicroseconds && made.unixSeconds() < 0 && apart == -1;
    }

    bool agreesAsDate(SourceForm form, Date made, const RecordFact *fact,
                      ValueOrigin &value) const {
        if (fact)
            return !isoUtc(made).empty() &&
                   factText(fact->value).starts_with(formatDate(made, "yyyy-mm-dd hh:nn:ss"));
        SQLite::Statement row = columnOf(value.field);
        const Date kept = row.executeStep() && !row.getColumn(0).isNull()
                              ? Date::fromDays(row.getColumn(0).getDouble())
                              : Date();
        if (!made.has() || !kept.has())
            return made.has() == kept.has();
        const std::int64_t apart = made.unixSeconds() - kept.unixSeconds();
        if (form != SourceForm::fileTimeLocal && form != SourceForm::fileTimeMoved)
            return apart == 0 || isOfTowards1970(form, made, apart);
        constexpr auto kMostOffset = std::int64_t{15} * 3600;
        value.note = fmt::format("{} minutes from the stored time: the offset of the machine that "
                                 "imported",
                                 apart / 60);
        return std::abs(apart) <= kMostOffset && apart % 60 == 0;
    }

    /// `field` is a column that a rule names, never a text of evidence.
    SQLite::Statement columnOf(const std::string &field) const {
        SQLite::Statement row(m_source.project,
                              "SELECT \"" + field + "\" FROM URLs WHERE URL_ID = ?");
        bindId(row, 1, m_id);
        return row;
    }

    std::string columnText(const std::string &field) const {
        SQLite::Statement row = columnOf(field);
        return row.executeStep() ? row.getColumn(0).getString() : std::string();
    }

    void setZone(ValueOrigin &value, SourceForm form) const {
        const TimeZone &zone = m_source.zone;
        if (value.field == "ActionDateLocal")
            value.zone = zone.exact            ? exactZoneText(zone)
                         : zone.tzName.empty() ? zoneHeading(zone)
                                               : zone.tzName;
        else if (form == SourceForm::fileTimeLocal)
            value.zone = "local time of the machine that wrote it; made UTC with the offset of the "
                         "machine that imported";
        else if (form == SourceForm::fileTimeMoved)
            value.zone = "the zone that the machine of the import had then; UTC as it is stored";
        else if (isDateForm(form))
            value.zone = "UTC, as it is stored";
    }

    const ExplainSource &m_source;
    UrlId m_id;
    const StoredRecord &m_stored;
    const KindRules *m_rules;
    RecordPlace m_place;
    std::optional<SourceValues> m_values;
    std::optional<LocatedFields> m_located;
    bool m_isCut = false; ///< the source file, or the record in it, isn't there
};

RecordValues::RecordValues(const ExplainSource &source, EvidenceTables &tables, UrlId id,
                           const StoredRecord &stored,
                           const std::optional<std::filesystem::path> &file)
    : m_reading(std::make_unique<Reading>(source, tables, id, stored, file)) {}

RecordValues::~RecordValues() = default;

ValueOrigin RecordValues::of(const Property &property) {
    return m_reading->of(property);
}

} // namespace nv
