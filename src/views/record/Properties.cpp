#include "views/record/Properties.h"

#include "base/Succeeds.h"
#include "base/Text.h"
#include "db/records/RecordFacts.h"
#include "db/records/UrlRecord.h"
#include "db/schema/SchemaColumns.h"
#include "db/sql/BindId.h"
#include "views/record/DecodedValues.h"
#include "views/record/Exif.h"
#include "views/rows/StoredCell.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <utility>

namespace nv {

namespace {

using schema::ColumnType;

constexpr std::string_view kProcedure = "MainForm.LoadProperties()";
constexpr std::string_view kErrorCode = "ErrorCode";
constexpr int kLastYearHidden = 1980;

// Examiners compare these rows with those of earlier cases, so labels and order stay.
constexpr std::array<std::pair<std::string_view, std::string_view>, 12> kExifRows = {{
    {"EXIF-EquipMake", "EquipMake"},
    {"EXIF-EquipModel", "EquipModel"},
    {"EXIF-DateTime", "DateTime"},
    {"EXIF-DocumentName", "DocumentName"},
    {"EXIF-ImageHeight", "ImageHeight"},
    {"EXIF-ImageWidth", "ImageWidth"},
    {"EXIF-ImageDescription", "ImageDescription"},
    {"EXIF-HostComputer", "HostComputer"},
    {"EXIF-FileSource", "FileSource"},
    {"EXIF-Flash", "Flash"},
    {"EXIF-SubjectDist", "SubjectDist"},
    {"EXIF-SubjectLoc", "SubjectLoc"},
}};

template <class Body>
bool attempt(FailureLog &log, Body &&body) {
    return succeeds(log, Severity::Warning, kProcedure, kContactSupport, [&] { body(); });
}

bool isSkipped(std::string_view field) {
    return equalsNoCase(field, "Record_Added") || equalsNoCase(field, "Typed");
}

bool isFileSize(std::string_view field) {
    return equalsNoCase(field, "CacheFileSize") || equalsNoCase(field, "FileSize");
}

/// Fields that a project has beyond the schema show as they are stored.
ColumnType typeOf(std::string_view field, const SQLite::Column &stored) {
    for (const schema::Column &column : schema::urlColumns())
        if (equalsNoCase(column.name, field))
            return column.type;
    return stored.isBlob() ? ColumnType::Binary : ColumnType::Memo;
}

Date dateIn(const SQLite::Column &stored) {
    return stored.isFloat() || stored.isInteger() ? Date::fromDays(stored.getDouble()) : Date();
}

/// What stands for "no date" in most formats is a date before the first browser.
std::string otherDate(Date date, const DateSettings &dates) {
    if (!date.has() || date.civil().year <= kLastYearHidden)
        return {};
    return formatDate(date, dates.dateTimeFormat());
}

/// The values of a record's row, field by field.
class RecordFields {
  public:
    RecordFields(SQLite::Statement &row, const PropertySource &source)
        : m_row(row), m_source(source) {}

    std::vector<Property> all() const {
        std::vector<Property> properties;
        if (const std::string code = textNamed(kErrorCode); !code.empty())
            properties.push_back({std::string(kErrorCode), code});
        for (int at = 0; at < m_row.getColumnCount(); ++at) {
            const std::string name = m_row.getColumnName(at);
            if (isSkipped(name))
                continue;
            properties.push_back({name, {}});
            attempt(m_source.log, [&] { properties.back().value = valueOf(name, at); });
        }
        return properties;
    }

    std::string textNamed(std::string_view field) const {
        for (int at = 0; at < m_row.getColumnCount(); ++at)
            if (equalsNoCase(m_row.getColumnName(at), field))
                return plainText(storedCell(m_row.getColumn(at)));
        return {};
    }

  private:
    std::string valueOf(const std::string &name, int at) const {
        const SQLite::Column stored = m_row.getColumn(at);
        // The stored date is that of the zone at the time of the import; the project's may be
        // another one by now.
        if (equalsNoCase(name, "ActionDateLocal"))
            return zoneProperty(actionDate(), m_source.gmtZone, m_source.dates);
        if (equalsNoCase(name, "ActionDateUTC"))
            return utcProperty(dateIn(stored), m_source.dates);
        if (equalsNoCase(name, "Visits") && stored.isInteger() &&
            stored.getInt64() == kVisitsUnknown)
            return {};
        if (isFileSize(name) && stored.isInteger())
            return sizeText(stored.getInt64());
        switch (typeOf(name, stored)) {
        case ColumnType::Date:
            return otherDate(dateIn(stored), m_source.dates);
        case ColumnType::YesNo:
            return stored.getInt() != 0 ? "True" : "False";
        case ColumnType::Binary:
            return stored.size() > 0 ? fmt::format("<{} bytes>", stored.size()) : std::string();
        default:
            return plainText(storedCell(stored));
        }
    }

    Date actionDate() const { return dateIn(m_row.getColumn("ActionDateUTC")); }

    SQLite::Statement &m_row;
    const PropertySource &m_source;
};

void addFacts(std::vector<Property> &properties, UrlId url, const PropertySource &source) {
    attempt(source.log, [&] {
        for (const RecordFact &fact : RecordFacts(source.project).of(url))
            properties.push_back({fact.name, factText(fact)});
    });
}

void addExifRows(std::vector<Property> &properties, const PropertySource &source) {
    std::optional<std::filesystem::path> picture;
    attempt(source.log, [&] { picture = source.picture(); });
    if (!picture)
        return;
    std::optional<ExifPicture> image;
    attempt(source.log, [&] { image.emplace(*picture); });
    if (!image)
        return;
    for (const auto &[label, tag] : kExifRows)
        attempt(source.log, [&, label = label, tag = tag] {
            const std::string value = Exif::getEXIFValue(tag, *image);
            if (!value.empty())
                properties.push_back({std::string(label), value});
        });
}

/// Values that may hold others in another form, with the property that names them.
constexpr std::array<std::pair<std::string_view, std::string_view>, 8> kDecodedFacts = {
    {{"external_referrer", ""},
     {"tab_url", ""},
     {"tab_referrer", ""},
     {"site_url", ""},
     {"from_url", ""},
     {"value", "URLFileName"},
     {"cookie_value", "cookie_name"},
     {"field_value", "field_name"}}};

void addDecoded(std::vector<Property> &properties, const std::vector<DecodedValue> &values) {
    for (const DecodedValue &value : values)
        properties.push_back({value.name.empty() ? value.field : value.field + " > " + value.name,
                              fmt::format("{} [{}]", value.value, value.rule)});
}

std::string_view valueOf(const std::vector<Property> &properties, std::string_view name) {
    const auto found = std::ranges::find(properties, name, &Property::name);
    return found == properties.end() ? std::string_view() : std::string_view(found->value);
}

void addDecodedFact(std::vector<Property> &decoded, const Property &property,
                    const std::vector<Property> &properties) {
    const auto *fact = std::ranges::find(kDecodedFacts, property.name,
                                         &decltype(kDecodedFacts)::value_type::first);
    if (fact != kDecodedFacts.end())
        addDecoded(decoded,
                   decodedText(property.name, property.value, valueOf(properties, fact->second)));
}

/// Behind what the record itself says.
void addDecodedValues(std::vector<Property> &properties, FailureLog &log) {
    std::vector<Property> decoded;
    attempt(log, [&] {
        for (const Property &property : properties)
            if (property.name == "URL")
                addDecoded(decoded, decodedAddress(property.name, property.value,
                                                   valueOf(properties, "URLRawValue")));
            else if (property.name == "Referrer")
                addDecoded(decoded, decodedAddress(property.name, property.value));
            else
                addDecodedFact(decoded, property, properties);
    });
    properties.insert(properties.end(), decoded.begin(), decoded.end());
}

} // namespace

std::vector<Property> loadProperties(UrlId url, const PropertySource &source) {
    std::vector<Property> properties;
    bool isPicture = false;
    attempt(source.log, [&] {
        SQLite::Statement row(source.project, "SELECT * FROM URLs WHERE URL_ID = ?");
        bindId(row, 1, url);
        if (!row.executeStep())
            return;
        const RecordFields fields(row, source);
        properties = fields.all();
        isPicture = equalsNoCase(fields.textNamed("Category"), "PICTURES");
    });
    if (!properties.empty())
        addFacts(properties, url, source);
    addDecodedValues(properties, source.log);
    if (isPicture && source.picture)
        addExifRows(properties, source);
    return properties;
}

std::string sizeText(std::int64_t bytes) {
    std::string digits = std::to_string(bytes);
    const std::size_t first = digits.front() == '-' ? 1 : 0;
    for (std::size_t at = digits.size(); at > first + 3;)
        digits.insert(at -= 3, 1, ',');
    return digits + ".00";
}

} // namespace nv
