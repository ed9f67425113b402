// An SQLite file; of it are read
//   moz_perms = origin type permission expireType expireTime modificationTime
//   moz_hosts = host   type permission expireType expireTime modificationTime    up to Firefox 41
//   moz_origin_interactions = origin lastInteractionTime
// with dates in milliseconds since 1970, UTC. Later versions keep moz_hosts as it was.

#include "readers/firefox/profile/Permissions.h"

#include "readers/firefox/Kinds.h"
#include "readers/firefox/ProfileValues.h"
#include "readers/sqlite/FurtherTables.h"
#include "readers/sqlite/SchemaVersion.h"
#include "readers/sqlite/SqliteReading.h"

#include <array>
#include <map>

namespace nv {

namespace {

constexpr SqliteReader kReader = {"Permissions.parseFirefoxPermissionsFile()",
                                  "PARSING FIREFOX PERMISSIONS FILE", "Mozilla Firefox",
                                  "firefox-32.png"};
constexpr const char *kTable = "moz_perms";
constexpr const char *kOldTable = "moz_hosts";
constexpr std::array<std::string_view, 6> kColumns = {
    "origin", "host", "type", "permission", "expireTime", "modificationTime"};
enum Column : std::size_t { kOrigin, kHost, kType, kPermission, kExpires, kModified };

constexpr auto kSettings = std::to_array<MozWord>(
    {{0, "unknown"}, {1, "allowed"}, {2, "blocked"}, {3, "ask"}, {8, "allowed for the session"}});

struct Interaction {
    std::int64_t last = 0;
    bool isTold = false;
};
using Interactions = std::map<std::string, Interaction, std::less<>>; ///< by origin

UrlRecord permissionRecord(const ReadContext &ctx, const Row &row, Date fileCreated) {
    const std::string stored = row.text(kOrigin).empty() ? row.text(kHost) : row.text(kOrigin);
    const std::size_t end = stored.find('^');
    UrlRecord record =
        profileRecord(ctx, kFirefoxPermission, "Saved", stored.substr(0, end), fileCreated);
    if (record.host.empty())
        record.host = stored.substr(0, row.text(kOrigin).empty() ? end : 0);
    record.ActionDateUTC = mozDate(row.number(kModified), MozUnit::milliseconds);
    record.ExpiryDate = mozDate(row.number(kExpires), MozUnit::milliseconds);
    record.Status = ctx.deleted ? "Deleted" : mozWord(kSettings, row.number(kPermission));
    return record;
}

void addFacts(FactList &facts, const Row &row) {
    const std::string origin = row.text(kOrigin);
    facts.add("permission", row.text(kType));
    addMozWord(facts, "setting", kSettings, row.number(kPermission));
    if (const std::size_t end = origin.find('^'); end != std::string::npos)
        addOriginAttributes(facts, origin.substr(end));
    addMozDate(facts, "last_updated", row.number(kModified), MozUnit::milliseconds);
}

class PermissionsReading {
  public:
    PermissionsReading(ReadContext &ctx, EvidenceDatabase &database)
        : m_ctx(ctx), m_database(database),
          m_fileCreated(ctx.evidence.factsOf(ctx.file.fullPath).created) {}

    ReadResult rows();

  private:
    ReadResult rowsOf(const char *table);
    bool readInteractions(ReadResult &result);
    bool countOlder(ReadResult &result);

    ReadContext &m_ctx;
    EvidenceDatabase &m_database;
    Date m_fileCreated;
    Interactions m_interactions;
};

ReadResult PermissionsReading::rowsOf(const char *table) {
    return mainRows(m_database, table, kColumns, m_ctx, kReader.procedure,
                    [&](std::int64_t id, const Row &row) {
                        UrlRecord record = permissionRecord(m_ctx, row, m_fileCreated);
                        addSource(record, table, id);
                        addFacts(record.facts, row);
                        const auto found = m_interactions.find(row.text(kOrigin));
                        if (found != m_interactions.end()) {
                            addMozDate(record.facts, "last_interaction", found->second.last,
                                       MozUnit::milliseconds);
                            found->second.isTold = true;
                        }
                        m_ctx.sink.save(record);
                    });
}

bool PermissionsReading::readInteractions(ReadResult &result) {
    constexpr std::array<std::string_view, 2> kTimes = {"origin", "lastInteractionTime"};
    return FurtherTables(m_ctx, m_database, kReader.procedure, result)
        .eachByKey("moz_origin_interactions", kTimes, [this](std::int64_t, const Row &row) {
            m_interactions[row.text(0)].last = row.number(1).value_or(0);
        });
}

/// The rows that the newer table took over, kept for a way back.
bool PermissionsReading::countOlder(ReadResult &result) {
    constexpr std::array<std::string_view, 1> kNothing = {"type"};
    return FurtherTables(m_ctx, m_database, kReader.procedure, result)
        .eachByKey(kOldTable, kNothing, [&](std::int64_t, const Row &) {
            ++result.passedOver["permission of the older table, which a newer one took over"];
        });
}

ReadResult PermissionsReading::rows() {
    noteSchemaVersion(m_ctx, "permissions", userVersion(m_database));
    ReadResult further;
    if (!readInteractions(further))
        return further;
    const bool isNew = m_database.hasTable(kTable) || !m_database.hasTable(kOldTable);
    ReadResult result = rowsOf(isNew ? kTable : kOldTable);
    addLosses(result, further);
    if (result.state == ReadState::cancelled || (isNew && !countOlder(result)))
        return result;
    for (const auto &[origin, interaction] : m_interactions)
        if (!interaction.isTold)
            ++result.passedOver["time of a site's last use, which has no permission"];
    return result;
}

} // namespace

ReadResult parseFirefoxPermissionsFile(ReadContext &ctx) {
    return readSqliteFile(ctx, kReader, [&ctx](EvidenceDatabase &database) {
        return PermissionsReading(ctx, database).rows();
    });
}

} // namespace nv
