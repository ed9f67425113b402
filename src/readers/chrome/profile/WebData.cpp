// An SQLite file; of it are read
//   autofill       = name value date_created date_last_used count
//                    up to 2013 with pair_id instead of the dates, which autofill_dates holds
//   autofill_dates = pair_id date_created                    a row a use, up to some number of them
//   autocomplete   = name label value date_created date_last_used count            from 2026 on
//   keywords       = short_name keyword url favicon_url originating_url date_created usage_count
//                    last_modified last_visited prepopulate_id
//   addresses and payment cards: see WebDataPeople.cpp
// with dates in seconds since 1970 in forms, and in either clock in keywords.

#include "readers/chrome/profile/WebData.h"

#include "base/Text.h"
#include "readers/FactSource.h"
#include "readers/chrome/Kinds.h"
#include "readers/chrome/profile/ProfileRecord.h"
#include "readers/chrome/profile/WebDataPeople.h"
#include "readers/chrome/shared/MetaTable.h"
#include "readers/chrome/shared/Stamps.h"
#include "readers/chrome/shared/UnreadTables.h"
#include "readers/sqlite/FurtherTables.h"
#include "readers/sqlite/HistoryRow.h"
#include "readers/sqlite/SchemaVersion.h"
#include "readers/sqlite/SqliteReading.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace nv {

namespace {

constexpr SqliteReader kReader = {"ParserClass.ParseChromiumWebData()",
                                  "PARSING CHROMIUM WEB DATA FILE", "Google Chrome",
                                  "chrome-32.png"};

/// What a user can have left in them isn't made into rows: that there is something is told.
constexpr std::array<std::string_view, 10> kUnread = {"local_ibans",
                                                      "masked_ibans",
                                                      "masked_bank_accounts",
                                                      "loyalty_cards",
                                                      "autofill_ai_entities",
                                                      "token_service",
                                                      "secure_payment_confirmation_instrument",
                                                      "offer_data",
                                                      "virtual_card_usage_data",
                                                      "ie7_logins"};

constexpr std::string_view kFirstTable = "autofill";

struct FormValue {
    std::string name;
    std::string label;
    std::string value;
    std::optional<std::int64_t> count;
    std::vector<std::int64_t> uses; ///< as stored, in their order; at least the first and the last
};

UrlRecord formRecord(const ReadContext &ctx, const FormValue &form) {
    UrlRecord record = profileRecord(ctx, kChromeFormValue, "Typed", "Form Value");
    record.URLFileName = form.name;
    record.URLParameters = form.value;
    record.facts.add("field_name", form.name);
    record.facts.add("field_label", form.label);
    record.facts.add("field_value", form.value);
    if (form.count)
        record.facts.add("count", *form.count);
    if (form.uses.empty())
        return record;
    setEvent(record, stampDate(form.uses.back()), ctx.clock);
    record.OtherDate = stampDate(form.uses.front());
    record.OtherDateMeaning = "First Used";
    addStamp(record.facts, "first_used", form.uses.front());
    for (std::size_t i = 1; i + 1 < form.uses.size(); ++i)
        addStamp(record.facts, "used", form.uses[i]);
    addStamp(record.facts, "last_used", form.uses.back());
    return record;
}

/// Where a row lies in its source comes last, after what it says.
void save(ReadContext &ctx, UrlRecord record, std::string_view table, std::int64_t rowId) {
    record.Reference_ID = rowId;
    addSource(record.facts, table, rowId);
    ctx.sink.save(record);
}

/// The tables of forms: an entry that a later version has copied to its new table is one row.
class Forms {
  public:
    Forms(ReadContext &ctx, EvidenceDatabase &database, ReadResult &result)
        : m_ctx(ctx), m_database(database), m_result(result),
          m_hasNewTable(database.hasTable("autocomplete")) {}

    bool read() { return readUses() && readTable(kFirstTable) && readTable("autocomplete"); }

  private:
    bool readUses() {
        constexpr std::array<std::string_view, 2> kColumns = {"pair_id", "date_created"};
        const bool wholly =
            FurtherTables(m_ctx, m_database, kReader.procedure, m_result)
                .each("autofill_dates", kColumns, [this](std::int64_t, const Row &row) {
                    if (const auto pair = row.number(0); pair && row.number(1).value_or(0) != 0)
                        m_uses[*pair].push_back(*row.number(1));
                });
        for (auto &[pair, uses] : m_uses)
            std::ranges::sort(uses);
        return wholly;
    }

    bool readTable(std::string_view table) {
        constexpr std::array<std::string_view, 7> kColumns = {
            "name", "value", "count", "date_created", "date_last_used", "pair_id", "label"};
        return FurtherTables(m_ctx, m_database, kReader.procedure, m_result)
            .each(table, kColumns, [&](std::int64_t rowId, const Row &row) {
                const FormValue form = formOf(row);
                if (isNew(form, table == kFirstTable))
                    save(m_ctx, formRecord(m_ctx, form), table, rowId);
                else
                    ++m_result.passedOver[fmt::format(
                        "form values of table {} that table autofill has too", table)];
            });
    }

    FormValue formOf(const Row &row) const {
        FormValue form{row.text(0), row.text(6), row.text(1), row.number(2), {}};
        if (row.number(3) || row.number(4)) {
            const std::int64_t first = row.number(3).value_or(0);
            form.uses = {first, row.number(4).value_or(first)};
        } else if (const auto uses = m_uses.find(row.number(5).value_or(-1));
                   uses != m_uses.end()) {
            form.uses = uses->second;
        }
        return form;
    }

    /// What the first table has is remembered only where there is a second one.
    bool isNew(const FormValue &form, bool isFirstTable) {
        if (!m_hasNewTable)
            return true;
        const bool isUnseen =
            m_seen
                .insert(fmt::format("{}\n{}\n{}", form.name, form.value, fmt::join(form.uses, " ")))
                .second;
        return isUnseen || isFirstTable;
    }

    ReadContext &m_ctx;
    EvidenceDatabase &m_database;
    ReadResult &m_result;
    bool m_hasNewTable;
    std::unordered_map<std::int64_t, std::vector<std::int64_t>> m_uses; ///< by pair_id
    std::unordered_set<std::string> m_seen;
};

constexpr std::array<std::string_view, 11> kEngineColumns = {
    "short_name",     "keyword",     "url",           "favicon_url",  "originating_url",
    "date_created",   "usage_count", "last_modified", "last_visited", "prepopulate_id",
    "starter_pack_id"};

/// Whether a person had to do with it: the browser brings some ten engines along. Those for its own
/// pages have the date on which the profile was made.
bool isTouched(const Row &row) {
    if (row.number(10).value_or(0) != 0)
        return row.number(6).value_or(0) != 0 || row.number(8).value_or(0) != 0;
    for (const std::size_t column : {5, 6, 7, 8}) // dates and uses
        if (row.number(column).value_or(0) != 0)
            return true;
    return row.number(9).value_or(0) == 0; // none of those that came along
}

UrlRecord engineRecord(const ReadContext &ctx, const Row &row) {
    UrlRecord record = profileRecord(ctx, kChromeSearchEngine, "Saved", "Search Engine");
    record.URLRawValue = row.text(2);
    setUrl(record, percentDecode(record.URLRawValue));
    record.WebpageTitle = row.text(0);
    record.Referrer = row.text(4);
    const Date created = stampDate(row.number(5));
    const Date used = stampDate(row.number(8));
    setEvent(record, used.has() ? used : created, ctx.clock);
    record.OtherDate = created;
    if (created.has())
        record.OtherDateMeaning = "Created";
    record.facts.add("search_engine", row.text(0));
    record.facts.add("keyword", row.text(1));
    if (row.number(6).value_or(0) != 0)
        record.facts.add("count", *row.number(6));
    addStamp(record.facts, "created", row.number(5));
    addStamp(record.facts, "last_updated", row.number(7));
    addStamp(record.facts, "last_used", row.number(8));
    record.facts.add("icon_url", row.text(3));
    return record;
}

bool readEngines(ReadContext &ctx, EvidenceDatabase &database, ReadResult &result) {
    return FurtherTables(ctx, database, kReader.procedure, result)
        .each("keywords", kEngineColumns, [&](std::int64_t rowId, const Row &row) {
            if (isTouched(row))
                save(ctx, engineRecord(ctx, row), "keywords", rowId);
            else
                ++result.passedOver["search engines that came with the browser and weren't used"];
        });
}

bool isWebData(EvidenceDatabase &database) {
    return database.hasTable("autofill") || database.hasTable("credit_cards") ||
           database.hasTable("keywords");
}

} // namespace

ReadResult parseChromiumWebData(ReadContext &ctx) {
    return readSqliteFile(ctx, kReader, [&ctx](EvidenceDatabase &database) {
        noteSchemaVersion(ctx, "Web Data", schemaVersion(ctx, database));
        if (!isWebData(database))
            throw EvidenceDamage("a table of forms, payment cards or search engines was expected "
                                 "and is not there");
        ReadResult result;
        if (!Forms(ctx, database, result).read() ||
            !readPeople(ctx, database, kReader.procedure, result) ||
            !readEngines(ctx, database, result) ||
            !countUnread(ctx, database, kUnread, kReader.procedure, result))
            result.state = ReadState::cancelled;
        return result;
    });
}

} // namespace nv
