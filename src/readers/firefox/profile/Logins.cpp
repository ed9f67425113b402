// Two forms of the same, dates in milliseconds since 1970, UTC.
//   logins.json    = { "logins": [ { id hostname formSubmitURL httpRealm usernameField guid
//                    encryptedUsername encryptedPassword timeCreated timeLastUsed
//                    timePasswordChanged timesUsed } or { guid deleted: true ... } ] ... }
//   signons.sqlite = moz_logins, with columns of these names     up to Firefox 31
//                    moz_deleted_logins = guid timeDeleted       moz_disabledHosts = hostname

#include "readers/firefox/profile/Logins.h"

#include "base/Base64.h"
#include "base/Files.h"
#include "base/Trap.h"
#include "readers/Limits.h"
#include "readers/WholeFile.h"
#include "readers/firefox/Kinds.h"
#include "readers/firefox/ProfileValues.h"
#include "readers/json/JsonObject.h"
#include "readers/sqlite/FurtherTables.h"
#include "readers/sqlite/SqliteReading.h"

#include <fmt/format.h>

#include <array>

namespace nv {

namespace {

constexpr SqliteReader kReader = {"Logins.parseFirefoxLoginsFile()", "PARSING FIREFOX LOGINS FILE",
                                  "Mozilla Firefox", "firefox-32.png"};
constexpr const char *kTable = "moz_logins";
constexpr const char *kDeletedTable = "moz_deleted_logins";
constexpr const char *kNeverTable = "moz_disabledHosts";

struct Login {
    std::string site;
    std::string realm;
    std::string action;
    std::string field;
    std::string guid;
    std::string encryptedUser; ///< base64
    std::optional<std::int64_t> created;
    std::optional<std::int64_t> lastUsed;
    std::optional<std::int64_t> changed;
    std::optional<std::int64_t> count;
    bool isDeleted = false; ///< a note for other devices that the login was removed
};

std::string encryptedText(const std::string &user) {
    const std::string bytes = fromBase64(user);
    return bytes.empty() ? std::string() : fmt::format("encrypted, {} bytes", bytes.size());
}

void addFacts(FactList &facts, const Login &login) {
    facts.add("signon_realm", login.realm);
    facts.add("action_url", login.action);
    facts.add("field_name", login.field);
    facts.add("encrypted", encryptedText(login.encryptedUser));
    addMozDate(facts, "created", login.created, MozUnit::milliseconds);
    addMozDate(facts, "last_used", login.lastUsed, MozUnit::milliseconds);
    addMozDate(facts, "password_changed", login.changed, MozUnit::milliseconds);
    addMozNumber(facts, "count", login.count);
    facts.add("guid", login.guid);
}

UrlRecord loginRecord(const ReadContext &ctx, const Login &login, Date fileCreated) {
    UrlRecord record = profileRecord(ctx, kFirefoxLogin, login.isDeleted ? "Deleted" : "Saved",
                                     login.site, fileCreated);
    record.Status = login.isDeleted || ctx.deleted ? "Deleted" : "";
    const auto &date = login.isDeleted ? login.changed : login.created;
    record.ActionDateUTC = mozDate(date, MozUnit::milliseconds);
    record.OtherDate = mozDate(login.lastUsed, MozUnit::milliseconds);
    if (record.OtherDate.has())
        record.OtherDateMeaning = "Last Used";
    return record;
}

Login loginOf(const JsonObject &entry) {
    return {.site = entry.text("hostname"),
            .realm = entry.text("httpRealm"),
            .action = entry.text("formSubmitURL"),
            .field = entry.text("usernameField"),
            .guid = entry.text("guid"),
            .encryptedUser = entry.text("encryptedUsername"),
            .created = entry.number("timeCreated"),
            .lastUsed = entry.number("timeLastUsed"),
            .changed = entry.number("timePasswordChanged"),
            .count = entry.number("timesUsed"),
            .isDeleted = entry.truth("deleted").value_or(false)};
}

ReadResult saveLogins(ReadContext &ctx, const nlohmann::json &logins) {
    const Date fileCreated = ctx.evidence.factsOf(ctx.file.fullPath).created;
    RecordTrap trap(ctx.log, kReader.procedure, textOf(ctx.file.fullPath));
    ReadResult result;
    std::int64_t number = 0;
    for (const auto &element : logins) {
        if (!ctx.task.advance(static_cast<double>(number) / static_cast<double>(logins.size()))) {
            result.state = ReadState::cancelled;
            return result;
        }
        ++number;
        const JsonObject entry(element);
        if (!entry.isObject()) {
            ++result.passedOver["entry that is no login"];
            continue;
        }
        trap.attempt(static_cast<std::uint64_t>(number), [&] {
            const Login login = loginOf(entry);
            UrlRecord record = loginRecord(ctx, login, fileCreated);
            addSource(record, "logins", entry.number("id").value_or(number));
            addFacts(record.facts, login);
            ctx.sink.save(record);
        });
    }
    if (trap.failed() > 0)
        result.passedOver["damaged record"] += trap.failed();
    return result;
}

ReadResult failed(ReadContext &ctx, std::string_view reason) {
    ReadResult result{
        ReadState::failed, fmt::format("{}: {}", textOf(ctx.file.fullPath), reason), 0, {}};
    ctx.log.write({result.reason, std::string(kReader.procedure), Severity::Serious,
                   std::string(kContactSupport)});
    return result;
}

ReadResult readJson(ReadContext &ctx, ByteView bytes) {
    if (bytes.size() > limits::kFirefoxLoginsBytes)
        return failed(ctx, fmt::format("{} bytes, no more than {} were expected", bytes.size(),
                                       limits::kFirefoxLoginsBytes));
    const JsonObject file = JsonObject::parsed(bytes.raw());
    const nlohmann::json *logins = file.array("logins");
    if (!logins)
        return failed(ctx, "at offset 0: a JSON object with a list \"logins\" was expected");
    return saveLogins(ctx, *logins);
}

Login loginOf(const Row &row) {
    enum Column : std::size_t {
        kSite,
        kRealm,
        kAction,
        kField,
        kGuid,
        kUser,
        kNew,
        kUsed,
        kChanged
    };
    constexpr std::size_t kCount = 9;
    return {.site = row.text(kSite),
            .realm = row.text(kRealm),
            .action = row.text(kAction),
            .field = row.text(kField),
            .guid = row.text(kGuid),
            .encryptedUser = row.text(kUser),
            .created = row.number(kNew),
            .lastUsed = row.number(kUsed),
            .changed = row.number(kChanged),
            .count = row.number(kCount)};
}

bool saveFurther(ReadContext &ctx, EvidenceDatabase &database, Date fileCreated,
                 ReadResult &result) {
    constexpr std::array<std::string_view, 2> kGone = {"guid", "timeDeleted"};
    constexpr std::array<std::string_view, 1> kNever = {"hostname"};
    const auto saveDeleted = [&](std::int64_t id, const Row &row) {
        Login login;
        login.guid = row.text(0);
        login.changed = row.number(1);
        login.isDeleted = true;
        UrlRecord record = loginRecord(ctx, login, fileCreated);
        addSource(record, kDeletedTable, id);
        record.facts.add("guid", login.guid);
        ctx.sink.save(record);
    };
    const auto saveNever = [&](std::int64_t id, const Row &row) {
        UrlRecord record =
            profileRecord(ctx, kFirefoxPermission, "Saved", row.text(0), fileCreated);
        addSource(record, kNeverTable, id);
        record.Status = ctx.deleted ? "Deleted" : "blocked";
        record.facts.add("permission", "login-saving"); // as later versions call it
        record.facts.add("setting", "blocked");
        ctx.sink.save(record);
    };
    FurtherTables tables(ctx, database, kReader.procedure, result);
    return tables.each(kDeletedTable, kGone, saveDeleted) &&
           tables.each(kNeverTable, kNever, saveNever);
}

ReadResult readTables(ReadContext &ctx, EvidenceDatabase &database) {
    constexpr std::array<std::string_view, 10> kColumns = {
        "hostname",          "httpRealm",   "formSubmitURL", "usernameField",       "guid",
        "encryptedUsername", "timeCreated", "timeLastUsed",  "timePasswordChanged", "timesUsed"};
    const Date fileCreated = ctx.evidence.factsOf(ctx.file.fullPath).created;
    ReadResult result = mainRows(database, kTable, kColumns, ctx, kReader.procedure,
                                 [&](std::int64_t id, const Row &row) {
                                     const Login login = loginOf(row);
                                     UrlRecord record = loginRecord(ctx, login, fileCreated);
                                     addSource(record, kTable, id);
                                     addFacts(record.facts, login);
                                     ctx.sink.save(record);
                                 });
    if (result.state != ReadState::cancelled && result.state != ReadState::failed)
        static_cast<void>(saveFurther(ctx, database, fileCreated, result));
    return result;
}

bool isDatabase(const ReadContext &ctx) {
    constexpr std::string_view kMagic = "SQLite format 3";
    const Bytes head = ctx.evidence.head(ctx.file.fullPath, kMagic.size());
    return ByteView(head).raw() == kMagic;
}

} // namespace

ReadResult parseFirefoxLoginsFile(ReadContext &ctx) {
    const auto isTables =
        trapped(ctx.log, Severity::Serious, kReader.procedure, kContactSupport,
                std::optional<bool>(), [&ctx] { return std::optional(isDatabase(ctx)); });
    if (!isTables)
        return unreadable(ctx);
    if (*isTables)
        return readSqliteFile(
            ctx, kReader, [&ctx](EvidenceDatabase &database) { return readTables(ctx, database); });
    return readWholeFile(
        ctx,
        {std::string(kReader.title), std::string(kReader.subject), {}, std::string(kReader.icon)},
        kReader.procedure, [&ctx](ByteView bytes) { return readJson(ctx, bytes); });
}

} // namespace nv
