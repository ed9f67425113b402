// Of addresses, by version:
//   autofill_profiles      = guid company_name street_address (or address_line_1 and 2, address_1
//                            and 2) city state zipcode country_code use_count use_date
//                            date_modified, and up to 2010 the names too
//     autofill_profile_names  = guid first_name middle_name last_name full_name
//     autofill_profile_emails = guid email
//   addresses              = guid use_count use_date date_modified
//     address_type_tokens     = guid type value         a row a part, by the number of the field
//   contact_info, local_addresses: the same with "_type_tokens" after their own names
// Of payment cards
//   credit_cards           = guid name_on_card expiration_month expiration_year use_count use_date
//                            date_modified nickname
//   masked_credit_cards    = id name_on_card network exp_month exp_year bank_name nickname
//     server_card_metadata    = id use_count use_date
// with dates in seconds since 1970, or in microseconds since 1601 where the server's come from.

#include "readers/chrome/profile/WebDataPeople.h"

#include "readers/FactSource.h"
#include "readers/chrome/Kinds.h"
#include "readers/chrome/profile/ProfileRecord.h"
#include "readers/chrome/shared/Stamps.h"
#include "readers/sqlite/FurtherTables.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <unordered_map>

namespace nv {

namespace {

/// The browser's numbers of fields, by which its tables name the parts of an address.
enum Field {
    kFirstName = 3,
    kMiddleName = 4,
    kLastName = 5,
    kFullName = 7,
    kEmail = 9,
    kLine1 = 30,
    kLine2 = 31,
    kCity = 33,
    kState = 34,
    kPostcode = 35,
    kCountry = 36,
    kCompany = 60,
    kStreet = 77,
};
constexpr std::array kFields = {kFirstName, kMiddleName, kLastName, kFullName, kEmail,
                                kLine1,     kLine2,      kCity,     kState,    kPostcode,
                                kCountry,   kCompany,    kStreet};
constexpr std::array kTelephone = {10, 11, 12, 13, 14};

constexpr const char *kTelephoneLeft = "telephone numbers of addresses are not stored";

using Parts = std::unordered_map<int, std::string>;

std::string textOf(const Parts &parts, int field) {
    const auto found = parts.find(field);
    return found == parts.end() ? std::string() : found->second;
}

/// Those that are there, in their order.
std::string joined(const Parts &parts, std::initializer_list<int> fields,
                   std::string_view between) {
    std::string text;
    for (const int field : fields) {
        const std::string part = textOf(parts, field);
        if (!part.empty())
            text += (text.empty() ? "" : std::string(between)) + part;
    }
    return text;
}

std::string nameOf(const Parts &parts) {
    const std::string full = textOf(parts, kFullName);
    return full.empty() ? joined(parts, {kFirstName, kMiddleName, kLastName}, " ") : full;
}

std::string placeOf(const Parts &parts) {
    return textOf(parts, kStreet).empty()
               ? joined(parts, {kLine1, kLine2, kCity, kState, kPostcode, kCountry}, ", ")
               : joined(parts, {kStreet, kCity, kState, kPostcode, kCountry}, ", ");
}

/// When and how often it was used, as all these tables store it.
struct Use {
    std::optional<std::int64_t> count;
    std::optional<std::int64_t> last;
    std::optional<std::int64_t> changed;
};

void addUse(UrlRecord &record, const Use &use, const Clock &clock) {
    setEvent(record, stampDate(use.last), clock);
    record.OtherDate = stampDate(use.changed);
    if (record.OtherDate.has())
        record.OtherDateMeaning = "Last Modified";
    if (use.count)
        record.facts.add("count", *use.count);
    addStamp(record.facts, "last_used", use.last);
    addStamp(record.facts, "last_updated", use.changed);
}

class People {
  public:
    People(ReadContext &ctx, EvidenceDatabase &database, std::string_view procedure,
           ReadResult &result)
        : m_ctx(ctx), m_database(database), m_procedure(procedure), m_result(result) {}

    bool read() {
        return readTokens("addresses", "address_type_tokens") &&
               readTokens("contact_info", "contact_info_type_tokens") &&
               readTokens("local_addresses", "local_addresses_type_tokens") && readProfiles() &&
               readCards() && readServerCards();
    }

  private:
    template <class Save>
    bool each(std::string_view table, std::span<const std::string_view> columns, Save &&save) {
        return FurtherTables(m_ctx, m_database, m_procedure, m_result)
            .each(table, columns, std::forward<Save>(save));
    }

    void saveWith(UrlRecord record, std::string_view guid, std::string_view table,
                  std::int64_t rowId) {
        record.Reference_ID = rowId;
        record.facts.add("guid", std::string(guid));
        addSource(record.facts, table, rowId);
        m_ctx.sink.save(record);
    }

    void saveAddress(const Parts &parts, const Use &use, std::string_view guid,
                     std::string_view table, std::int64_t rowId) {
        UrlRecord record = profileRecord(m_ctx, kChromeAddress, "Saved", "Address");
        record.WebpageTitle = nameOf(parts);
        addUse(record, use, m_ctx.clock);
        record.facts.add("full_name", nameOf(parts));
        record.facts.add("email", textOf(parts, kEmail));
        record.facts.add("company", textOf(parts, kCompany));
        record.facts.add("address", placeOf(parts));
        saveWith(std::move(record), guid, table, rowId);
    }

    void notePart(const std::string &guid, int field, std::string text) {
        if (text.empty())
            return;
        if (std::ranges::find(kFields, field) != kFields.end())
            m_parts[guid][field] = std::move(text);
        else if (std::ranges::find(kTelephone, field) != kTelephone.end())
            m_withTelephone[guid] = true;
    }

    bool readTokens(std::string_view table, std::string_view tokens) {
        constexpr std::array<std::string_view, 3> kTokens = {"guid", "type", "value"};
        constexpr std::array<std::string_view, 4> kColumns = {"guid", "use_count", "use_date",
                                                              "date_modified"};
        m_parts.clear();
        return each(tokens, kTokens,
                    [this](std::int64_t, const Row &row) {
                        const std::int64_t field = row.number(1).value_or(-1);
                        if (field > 0 && field < 1000)
                            notePart(row.text(0), static_cast<int>(field), row.text(2));
                    }) &&
               each(table, kColumns, [&](std::int64_t rowId, const Row &row) {
                   const std::string guid = row.text(0);
                   saveAddress(m_parts[guid], {row.number(1), row.number(2), row.number(3)}, guid,
                               table, rowId);
                   if (m_withTelephone.contains(guid))
                       ++m_result.passedOver[kTelephoneLeft];
               });
    }

    bool readNames() {
        constexpr std::array<std::string_view, 5> kNames = {"guid", "first_name", "middle_name",
                                                            "last_name", "full_name"};
        constexpr std::array<std::string_view, 2> kEmails = {"guid", "email"};
        constexpr std::array<std::string_view, 2> kPhones = {"guid", "number"};
        m_parts.clear();
        const auto noteFirst = [this](const std::string &guid, int field, std::string text) {
            if (textOf(m_parts[guid], field).empty())
                notePart(guid, field, std::move(text));
        };
        return each("autofill_profile_names", kNames,
                    [&](std::int64_t, const Row &row) {
                        const std::string guid = row.text(0);
                        noteFirst(guid, kFirstName, row.text(1));
                        noteFirst(guid, kMiddleName, row.text(2));
                        noteFirst(guid, kLastName, row.text(3));
                        noteFirst(guid, kFullName, row.text(4));
                    }) &&
               each("autofill_profile_emails", kEmails,
                    [&](std::int64_t, const Row &row) {
                        noteFirst(row.text(0), kEmail, row.text(1));
                    }) &&
               each("autofill_profile_phones", kPhones, [&](std::int64_t, const Row &row) {
                   if (!row.text(1).empty())
                       ++m_result.passedOver[kTelephoneLeft];
               });
    }

    bool readProfiles() {
        constexpr std::size_t kFirstPart = 4; // columns before it are no parts of an address
        constexpr std::array<std::string_view, 20> kColumns = {
            "guid",      "use_count",      "use_date",       "date_modified",  "company_name",
            "city",      "state",          "zipcode",        "country",        "country_code",
            "email",     "street_address", "address_line_1", "address_line_2", "address_1",
            "address_2", "first_name",     "middle_name",    "last_name",      "phone"};
        // Where two columns are one part, the later one is what newer versions have.
        constexpr std::array kPartOf = {kCompany, kCity,  kState,     kPostcode,   kCountry,
                                        kCountry, kEmail, kStreet,    kLine1,      kLine2,
                                        kLine1,   kLine2, kFirstName, kMiddleName, kLastName};
        return readNames() &&
               each("autofill_profiles", kColumns, [&](std::int64_t rowId, const Row &row) {
                   const std::string guid = row.text(0);
                   Parts &parts = m_parts[guid];
                   for (std::size_t i = 0; i < kPartOf.size(); ++i)
                       if (std::string text = row.text(kFirstPart + i); !text.empty())
                           parts[kPartOf[i]] = std::move(text);
                   saveAddress(parts, {row.number(1), row.number(2), row.number(3)}, guid,
                               "autofill_profiles", rowId);
                   if (!row.text(kColumns.size() - 1).empty())
                       ++m_result.passedOver[kTelephoneLeft];
               });
    }

    UrlRecord cardRecord(const std::string &name, std::optional<std::int64_t> month,
                         std::optional<std::int64_t> year, const Use &use) const {
        UrlRecord record = profileRecord(m_ctx, kChromeCard, "Saved", "Payment Card");
        record.WebpageTitle = name;
        addUse(record, use, m_ctx.clock);
        record.facts.add("full_name", name);
        if (year.value_or(0) != 0)
            record.facts.add("card_expiry", fmt::format("{:04}-{:02}", *year, month.value_or(0)));
        return record;
    }

    bool readCards() {
        constexpr std::array<std::string_view, 8> kColumns = {
            "guid",      "name_on_card", "expiration_month", "expiration_year",
            "use_count", "use_date",     "date_modified",    "nickname"};
        return each("credit_cards", kColumns, [this](std::int64_t rowId, const Row &row) {
            UrlRecord record = cardRecord(row.text(1), row.number(2), row.number(3),
                                          {row.number(4), row.number(5), row.number(6)});
            record.facts.add("nickname", row.text(7));
            saveWith(std::move(record), row.text(0), "credit_cards", rowId);
        });
    }

    bool readServerCards() {
        constexpr std::array<std::string_view, 3> kUses = {"id", "use_count", "use_date"};
        constexpr std::array<std::string_view, 7> kColumns = {
            "id", "name_on_card", "exp_month", "exp_year", "network", "bank_name", "nickname"};
        std::unordered_map<std::string, Use> uses;
        return each("server_card_metadata", kUses,
                    [&](std::int64_t, const Row &row) {
                        uses[row.text(0)] = {row.number(1), row.number(2), {}};
                    }) &&
               each("masked_credit_cards", kColumns, [&](std::int64_t rowId, const Row &row) {
                   UrlRecord record =
                       cardRecord(row.text(1), row.number(2), row.number(3), uses[row.text(0)]);
                   record.facts.add("card_network", row.text(4));
                   record.facts.add("bank", row.text(5));
                   record.facts.add("nickname", row.text(6));
                   saveWith(std::move(record), row.text(0), "masked_credit_cards", rowId);
               });
    }

    ReadContext &m_ctx;
    EvidenceDatabase &m_database;
    std::string_view m_procedure;
    ReadResult &m_result;
    std::unordered_map<std::string, Parts> m_parts; ///< by guid, of the tables in hand
    std::unordered_map<std::string, bool> m_withTelephone;
};

} // namespace

bool readPeople(ReadContext &ctx, EvidenceDatabase &database, std::string_view procedure,
                ReadResult &result) {
    return People(ctx, database, procedure, result).read();
}

} // namespace nv
