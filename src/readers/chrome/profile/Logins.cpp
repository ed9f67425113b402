// An SQLite file; of it are read
//   logins = origin_url action_url username_element username_value password_value signon_realm
//            date_created date_last_used date_last_filled date_password_modified times_used
//            blacklisted_by_user
// with dates in microseconds since 1601, up to 2013 in seconds since 1970. The browser keeps a row
// also for a site of which no login is to be saved.

#include "readers/chrome/profile/Logins.h"

#include "base/Text.h"
#include "readers/Dissection.h"
#include "readers/FactSource.h"
#include "readers/chrome/Kinds.h"
#include "readers/chrome/profile/ProfileRecord.h"
#include "readers/chrome/profile/ValueCipher.h"
#include "readers/chrome/shared/MetaTable.h"
#include "readers/chrome/shared/Stamps.h"
#include "readers/chrome/shared/UnreadTables.h"
#include "readers/sqlite/HistoryRow.h"
#include "readers/sqlite/SchemaVersion.h"
#include "readers/sqlite/SqliteReading.h"

#include <array>

namespace nv {

namespace {

constexpr SqliteReader kReader = {"ParserClass.ParseChromiumLogins()",
                                  "PARSING CHROMIUM LOGIN DATA FILE", "Google Chrome",
                                  "chrome-32.png"};

constexpr std::array<std::string_view, 12> kColumns = {
    "origin_url",       "action_url",   "username_element",       "username_value",
    "password_value",   "signon_realm", "date_created",           "date_last_used",
    "date_last_filled", "times_used",   "date_password_modified", "blacklisted_by_user"};
enum Column : std::size_t {
    kOrigin,
    kAction,
    kUserField,
    kUser,
    kPassword,
    kRealm,
    kCreated,
    kLastUsed,
    kLastFilled,
    kTimesUsed,
    kPasswordChanged,
    kNeverSave
};

constexpr std::array<std::string_view, 3> kUnread = {"stats", "password_notes",
                                                     "insecure_credentials"};

/// The password, or in which form it is there. Before 2012 Linux had it without encryption.
std::string passwordOf(ByteView stored) {
    const std::string_view version = cipherVersion(stored);
    const std::string plain =
        version.empty() ? std::string(stored.raw()) : decryptedByPublicKey(stored).value_or("");
    const bool isRead = !plain.empty() && isPlainValue(plain);
    return isRead ? plain : encryptionText(stored);
}

void addPassword(const ReadContext &ctx, FactList &facts, const Row &row) {
    const auto stored = row.bytes(kPassword);
    if (!stored || stored->size() == 0)
        return;
    if (ctx.secrets)
        facts.add("password", passwordOf(*stored));
    else if (cipherVersion(*stored).empty())
        facts.add("encrypted", "a password that is not shown");
    else
        facts.add("encrypted", encryptionText(*stored));
}

UrlRecord loginRecord(const ReadContext &ctx, const Row &row) {
    const bool isNever = row.truth(kNeverSave);
    UrlRecord record = profileRecord(ctx, kChromeLogin, "Saved", isNever ? "Never Saved" : "Login");
    record.URLRawValue = row.text(kOrigin);
    setUrl(record, percentDecode(parseURLFromRawURL(record.URLRawValue)));
    record.User = row.text(kUser);
    setEvent(record, stampDate(row.number(kCreated)), ctx.clock);
    record.OtherDate = stampDate(row.number(kLastUsed));
    if (record.OtherDate.has())
        record.OtherDateMeaning = "Last Used";
    FactList &facts = record.facts;
    facts.add("user_name", row.text(kUser));
    facts.add("field_name", row.text(kUserField));
    facts.add("signon_realm", row.text(kRealm));
    facts.add("action_url", row.text(kAction));
    if (isNever)
        facts.add("never_save", "yes");
    if (const auto count = row.number(kTimesUsed))
        facts.add("count", *count);
    addStamp(facts, "created", row.number(kCreated));
    addStamp(facts, "last_used", row.number(kLastUsed));
    addStamp(facts, "last_filled", row.number(kLastFilled));
    addStamp(facts, "password_changed", row.number(kPasswordChanged));
    addPassword(ctx, facts, row);
    return record;
}

ReadResult readLogins(ReadContext &ctx, EvidenceDatabase &database) {
    return mainRows(database, "logins", kColumns, ctx, kReader.procedure,
                    [&ctx](std::int64_t rowId, const Row &row) {
                        UrlRecord record = loginRecord(ctx, row);
                        record.Reference_ID = rowId;
                        addSource(record.facts, "logins", rowId);
                        ctx.sink.save(record);
                    });
}

} // namespace

ReadResult parseChromiumLogins(ReadContext &ctx) {
    return readSqliteFile(ctx, kReader, [&ctx](EvidenceDatabase &database) {
        noteSchemaVersion(ctx, "Login Data", schemaVersion(ctx, database));
        ReadResult result = readLogins(ctx, database);
        if (result.state != ReadState::cancelled &&
            !countUnread(ctx, database, kUnread, kReader.procedure, result))
            result.state = ReadState::cancelled;
        return result;
    });
}

} // namespace nv
