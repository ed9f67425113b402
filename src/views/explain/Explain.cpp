#include "views/explain/Explain.h"

#include "base/Files.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "db/BindId.h"
#include "db/RecordFacts.h"
#include "time/ExactZone.h"
#include "views/Properties.h"
#include "views/SourcePath.h"
#include "views/explain/LocatedFields.h"
#include "views/explain/MadeBy.h"
#include "views/explain/SourceValues.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstdlib>

namespace nv {

namespace {

constexpr std::string_view kProcedure = "MainForm.Explain()";

/// What the project itself holds of the record.
struct Stored {
    std::string kind;
    std::string version;
    std::string historyFile;
    std::string root;
    std::string rawUrl;
    std::int64_t sourceFile = 0;
    std::int64_t reference = 0;
    std::int64_t offset = 0;
    FactList facts;
};

std::optional<Stored> storedOf(const ExplainSource &source, UrlId id) {
    SQLite::Statement row(source.project,
                          "SELECT CacheType, HistoryVersion, HistoryFilePath, RootPath, "
                          "URLRawValue, SourceFile_ID, Reference_ID, MapFileOffset FROM URLs "
                          "WHERE URL_ID = ?");
    bindId(row, 1, id);
    if (!row.executeStep())
        return std::nullopt;
    Stored stored{
        row.getColumn(0).getString(), row.getColumn(1).getString(), row.getColumn(2).getString(),
        row.getColumn(3).getString(), row.getColumn(4).getString(), row.getColumn(5).getInt64(),
        row.getColumn(6).getInt64(),  row.getColumn(7).getInt64(),  {}};
    stored.facts = RecordFacts(source.project).of(id);
    return stored;
}

const RecordFact *factNamed(const FactList &facts, std::string_view name) {
    const auto found = std::ranges::find(facts, name, &RecordFact::name);
    return found == facts.end() ? nullptr : &*found;
}

std::optional<std::int64_t> numberOf(const FactList &facts, std::string_view name) {
    const RecordFact *fact = factNamed(facts, name);
    const auto *number = fact ? std::get_if<std::int64_t>(&fact->value) : nullptr;
    return number ? std::optional(*number) : std::nullopt;
}

RecordPlace placeOf(const Stored &stored, const KindRules *rules) {
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

/// What the project has of the file.
void describeFile(const ExplainSource &source, const Stored &stored, bool isFolder,
                  RecordOrigin &origin) {
    SQLite::Statement row(source.project, "SELECT FilePath, FileName, FileSize, MD5Hash FROM "
                                          "SourceFiles WHERE SourceFile_ID = ?");
    row.bind(1, stored.sourceFile);
    origin.file = stored.historyFile;
    if (row.executeStep()) {
        const std::string artefact = row.getColumn(0).getString();
        origin.isOfFolder = isFolder || stored.historyFile.starts_with(artefact + "/") ||
                            stored.historyFile.starts_with(artefact + "\\");
        origin.fileSize = row.getColumn(2).getInt64();
        origin.md5 = row.getColumn(3).getString();
        // Projects of earlier builds have no column for it.
        logFailureOf(source.log, kProcedure, [&] {
            SQLite::Statement hash(source.project,
                                   "SELECT SHA256Hash FROM SourceFiles WHERE SourceFile_ID = ?");
            hash.bind(1, stored.sourceFile);
            if (hash.executeStep())
                origin.sha256 = hash.getColumn(0).getString();
        });
    }
}

bool isDateForm(SourceForm form) {
    return form != SourceForm::text && form != SourceForm::number;
}

/// Explains the values of one record.
class Values {
  public:
    Values(const ExplainSource &source, EvidenceTables &tables, UrlId id, const Stored &stored,
           const std::optional<std::filesystem::path> &file)
        : m_source(source), m_id(id), m_stored(stored), m_rules(rulesOf(stored.kind)),
          m_place(placeOf(stored, m_rules)) {
        if (!file)
            return;
        m_values.emplace(tables, source.log, *file, m_place);
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
        const FieldRule *rule = m_rules ? fieldRule(*m_rules, property.name) : nullptr;
        const bool isElsewhere = rule && !m_rules->table.empty() && m_rules->table != m_place.table;
        if (made) {
            value.check = made->check;
            value.rule = made->rule;
        } else if (rule && !isElsewhere) {
            value.rule = wordsOf(rule->form);
            read(*rule, value);
        } else {
            unknown(value);
        }
        setZone(value, rule ? rule->form : SourceForm::text);
        return value;
    }

  private:
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
        const RecordFact *fact = factNamed(m_stored.facts, value.field);
        if (const auto *date = std::get_if<Date>(&place.made))
            return agreesAsDate(place.form, *date, fact, value);
        const std::string kept = fact ? factText(fact->value) : columnText(value.field);
        if (const auto *text = std::get_if<std::string>(&place.made))
            return *text == kept;
        if (const auto *number = std::get_if<std::int64_t>(&place.made))
            return std::to_string(*number) == kept ||
                   (place.length == 4 &&
                    std::to_string(static_cast<std::int32_t>(*number)) == kept);
        value.note = "the bytes were read again; how the value is made of them is in the page of "
                     "the format";
        return std::nullopt;
    }

    void unknown(ValueOrigin &value) const {
        if (m_located && !m_located->failure().empty()) {
            value.check = OriginCheck::unread;
            value.note = m_located->failure();
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

    void read(const FieldRule &rule, ValueOrigin &value) {
        if (!m_values) {
            value.check = OriginCheck::unread;
            value.place = rule.column.empty() ? "" : fmt::format("column {}", rule.column);
            value.note = "the source file isn't there";
            return;
        }
        SourceValue found = m_values->read(rule);
        value.place = std::move(found.place);
        value.offset = found.offset;
        value.length = found.length;
        value.stored = found.stored;
        value.note = found.whyNot;
        const auto agreed = found.whyNot.empty() ? agrees(rule, found, value) : std::nullopt;
        value.check = !agreed   ? OriginCheck::unread
                      : *agreed ? OriginCheck::same
                                : OriginCheck::differs;
    }

    /// Nothing where the two can't be compared.
    std::optional<bool> agrees(const FieldRule &rule, const SourceValue &found,
                               ValueOrigin &value) const {
        const RecordFact *fact = factNamed(m_stored.facts, value.field);
        if (isDateForm(rule.form))
            return found.number &&
                   agreesAsDate(rule.form, dateOf(rule.form, *found.number), fact, value);
        if (rule.form == SourceForm::number) {
            const std::string kept =
                fact ? factText(std::holds_alternative<std::monostate>(fact->raw) ? fact->value
                                                                                  : fact->raw)
                     : columnText(value.field);
            return agreesAsNumber(found, kept, value);
        }
        return agreesAsText(found.text, fact ? factText(fact->value) : columnText(value.field),
                            value);
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
            return std::abs(apart) <= 1;
        constexpr auto kMostOffset = std::int64_t{15} * 3600;
        value.note = fmt::format("{} minutes from the stored time: the offset of the machine that "
                                 "imported",
                                 apart / 60);
        return std::abs(apart) <= kMostOffset && apart % 60 == 0;
    }

    /// 32 bits count of numbers that SQLite has signed.
    static std::optional<bool> agreesAsNumber(const SourceValue &found, const std::string &kept,
                                              ValueOrigin &value) {
        if (kept.empty() || kept.find_first_not_of("0123456789-.") != std::string::npos) {
            value.note = "the number was read again; which words stand for it is in the page of "
                         "the format";
            return std::nullopt;
        }
        if (!found.number)
            return found.text == kept;
        return std::to_string(*found.number) == kept ||
               std::to_string(static_cast<std::uint32_t>(*found.number)) == kept;
    }

    bool agreesAsText(const std::string &text, const std::string &kept, ValueOrigin &value) const {
        const std::string_view bare =
            std::string_view(text).starts_with('.') ? std::string_view(text).substr(1) : text;
        if (text == kept || bare == kept)
            return true;
        const bool isCleaned =
            value.field == "URL" && (text == m_stored.rawUrl || bare == m_stored.rawUrl);
        if (isCleaned || percentDecode(text) == kept)
            value.note = "cleaned up: percent coding undone, and what stands around the address "
                         "cut away";
        else if (text.size() >= 4096 && kept.starts_with(text.substr(0, 4000)))
            value.note = "compared up to its 4,000th byte";
        return !value.note.empty();
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
    const Stored &m_stored;
    const KindRules *m_rules;
    RecordPlace m_place;
    std::optional<SourceValues> m_values;
    std::optional<LocatedFields> m_located;
};

} // namespace

std::string_view checkWord(OriginCheck check) {
    switch (check) {
    case OriginCheck::same:
        return "same";
    case OriginCheck::differs:
        return "differs";
    case OriginCheck::unread:
        return "unread";
    case OriginCheck::notKept:
        return "not kept";
    case OriginCheck::derived:
        return "derived";
    case OriginCheck::examiner:
        return "examiner";
    }
    return {};
}

Explainer::Explainer(ExplainSource source)
    : m_source(std::move(source)),
      m_tables(std::make_unique<EvidenceTables>(m_source.evidence, m_source.scratch)) {}

Explainer::~Explainer() = default;

const Explainer::Hashed &Explainer::hashed(const std::filesystem::path &file) {
    const auto known = m_hashed.find(file);
    if (known != m_hashed.end())
        return known->second;
    Hashed &entry = m_hashed[file];
    entry.failure = failureOf(m_source.log, kProcedure, [&] {
                        entry.hashes = hashesOfFile(file);
                    }).value_or("");
    return entry;
}

void Explainer::setState(const std::optional<std::filesystem::path> &file, RecordOrigin &origin) {
    if (!file) {
        origin.state = SourceNow::gone;
        origin.fileNote = "the file isn't there any more: what follows is what the import kept";
        return;
    }
    if (origin.isOfFolder) {
        origin.state = SourceNow::unhashed;
        origin.fileNote = "the hash then is of the folder with all of its files: \"verify\" "
                          "compares it";
        return;
    }
    const Hashed &now = hashed(*file);
    if (!now.hashes || (origin.sha256.empty() && origin.md5.empty())) {
        origin.state = SourceNow::unhashed;
        origin.fileNote = !now.failure.empty() ? now.failure
                                               : "no hash was kept, so nobody can say whether it "
                                                 "is the file that was imported";
        return;
    }
    const bool isSame = origin.sha256.empty() ? equalsNoCase(now.hashes->md5, origin.md5)
                                              : equalsNoCase(now.hashes->sha256, origin.sha256);
    origin.state = isSame ? SourceNow::same : SourceNow::changed;
    origin.fileNote =
        isSame ? "the file has the hash that it had at the import"
               : "the file has another hash than at the import: its values may be others";
}

std::optional<RecordOrigin> Explainer::explain(UrlId id, const std::string &field) {
    const auto stored = storedOf(m_source, id);
    if (!stored)
        return std::nullopt;
    RecordOrigin origin;
    origin.id = number(id);
    origin.kind = stored->kind;
    origin.version = stored->version;
    if (const std::string_view page = pageOf(stored->kind); !page.empty())
        origin.page = fmt::format("docs/formats/{}.md", page);
    auto file = sourcePathOf(stored->historyFile, stored->root);
    const bool isFile = file.has_value();
    if (!file)
        file = sourceFolderOf(stored->historyFile, stored->root);
    describeFile(m_source, *stored, file && !isFile, origin);
    setState(file, origin);
    Values values(m_source, *m_tables, id, *stored, file);
    for (const Property &property :
         loadProperties(id, {m_source.project, m_source.zone, m_source.dates, m_source.log, {}}))
        if (field.empty() ? !property.value.empty() : equalsNoCase(property.name, field))
            origin.values.push_back(values.of(property));
    for (const ValueOrigin &value : origin.values)
        if (!value.file.empty() && (value.file != file || origin.isOfFolder))
            addFurther(value.file, origin);
    return origin;
}

void Explainer::addFurther(const std::filesystem::path &file, RecordOrigin &origin) {
    const std::string name = textOf(file.filename());
    if (std::ranges::find(origin.further, name, &FurtherFile::name) != origin.further.end())
        return;
    const Hashed &now = hashed(file);
    origin.further.push_back({name, now.hashes ? now.hashes->sha256 : std::string()});
}

std::vector<std::pair<std::string, std::string>> linesOf(const RecordOrigin &record) {
    std::vector<std::pair<std::string, std::string>> lines = {
        {"Record", fmt::format("{} ({})", record.id, record.kind)},
        {"Source file", record.file},
        {"Size then", std::to_string(record.fileSize)},
        {"MD5 then", record.md5},
        {"SHA-256 then", record.sha256},
        {"Today", record.fileNote},
        {"Format", record.page}};
    for (const FurtherFile &file : record.further)
        lines.emplace_back("Lies in", file.sha256.empty()
                                          ? fmt::format("{}, which can't be read", file.name)
                                          : fmt::format("{} (SHA-256 today: {})", file.name,
                                                        file.sha256));
    std::erase_if(lines, [](const auto &line) { return line.second.empty(); });
    return lines;
}

std::vector<std::pair<std::string, std::string>> linesOf(const ValueOrigin &value) {
    constexpr std::array<std::pair<OriginCheck, std::string_view>, 6> kWords = {{
        {OriginCheck::same, "the source was read again and gives this value"},
        {OriginCheck::differs, "the source was read again and gives ANOTHER value"},
        {OriginCheck::unread, "the source could not be read again"},
        {OriginCheck::notKept, "how it was made isn't kept value by value"},
        {OriginCheck::derived, "made by the program"},
        {OriginCheck::examiner, "made by the examiner"},
    }};
    const auto words =
        std::ranges::find(kWords, value.check, &std::pair<OriginCheck, std::string_view>::first);
    std::vector<std::pair<std::string, std::string>> lines = {
        {"Value", value.value}, {"Lies at", value.place}, {"As it lies", value.stored},
        {"Rule", value.rule},   {"Zone", value.zone},     {"Check", std::string(words->second)},
        {"Note", value.note}};
    std::erase_if(lines, [](const auto &line) { return line.second.empty(); });
    return lines;
}

} // namespace nv
