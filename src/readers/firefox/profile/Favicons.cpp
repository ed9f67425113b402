// An SQLite file; of it are read
//   moz_pages_w_icons  = id page_url
//   moz_icons          = id icon_url expire_ms       milliseconds since 1970, UTC
//   moz_icons_to_pages = page_id icon_id
// Pages come here when they are visited or bookmarked, and some stay when they leave the history.

#include "readers/firefox/profile/Favicons.h"

#include "base/Files.h"
#include "base/Trap.h"
#include "readers/firefox/Kinds.h"
#include "readers/firefox/ProfileValues.h"
#include "readers/sqlite/EvidenceCopy.h"
#include "readers/sqlite/FurtherTables.h"
#include "readers/sqlite/KeptMessage.h"
#include "readers/sqlite/SqliteReading.h"

#include <fmt/format.h>

#include <array>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace nv {

namespace {

constexpr SqliteReader kReader = {"Favicons.parseFirefoxFaviconsFile()",
                                  "PARSING FIREFOX FAVICONS FILE", "Mozilla Firefox",
                                  "firefox-32.png"};
constexpr const char *kTable = "moz_pages_w_icons";
constexpr const char *kNoHistory =
    "the history beside the icons can't be read, so pages that it lists have rows here too";

/// Addresses of pages that the history beside the icons lists.
struct Listed {
    std::unordered_set<std::string> pages;
    std::string loss; ///< why they aren't all known; empty when they are
};

struct Icon {
    std::string url;
    std::optional<std::int64_t> expires; ///< ms
};

class FaviconsReading {
  public:
    FaviconsReading(ReadContext &ctx, EvidenceDatabase &database, const Listed &listed)
        : m_ctx(ctx), m_database(database), m_listed(listed),
          m_fileCreated(ctx.evidence.factsOf(ctx.file.fullPath).created) {}

    ReadResult rows();

  private:
    bool readIcons(ReadResult &result);
    UrlRecord recordOf(std::int64_t id, const std::string &page) const;

    ReadContext &m_ctx;
    EvidenceDatabase &m_database;
    const Listed &m_listed;
    Date m_fileCreated;
    std::unordered_map<std::int64_t, Icon> m_icons;
    std::unordered_map<std::int64_t, std::vector<std::int64_t>> m_iconsOf; ///< by page
};

bool FaviconsReading::readIcons(ReadResult &result) {
    constexpr std::array<std::string_view, 2> kIcons = {"icon_url", "expire_ms"};
    constexpr std::array<std::string_view, 2> kJoin = {"page_id", "icon_id"};
    FurtherTables tables(m_ctx, m_database, kReader.procedure, result);
    return tables.each("moz_icons", kIcons, [this](std::int64_t id, const Row &row) {
        m_icons[id] = {row.text(0), row.number(1)};
    }) && tables.eachByKey("moz_icons_to_pages", kJoin, [this](std::int64_t, const Row &row) {
        m_iconsOf[row.number(0).value_or(0)].push_back(row.number(1).value_or(0));
    });
}

UrlRecord FaviconsReading::recordOf(std::int64_t id, const std::string &page) const {
    UrlRecord record = profileRecord(m_ctx, kFirefoxIcon, "Saved", page, m_fileCreated);
    addSource(record, kTable, id);
    const auto icons = m_iconsOf.find(id);
    if (icons == m_iconsOf.end())
        return record;
    for (const std::int64_t number : icons->second) {
        const auto icon = m_icons.find(number);
        if (icon == m_icons.end())
            continue;
        record.facts.add("icon_url", icon->second.url);
        const Date expires = mozDate(icon->second.expires, MozUnit::milliseconds);
        if (!record.ExpiryDate.has() || record.ExpiryDate < expires)
            record.ExpiryDate = expires;
    }
    return record;
}

ReadResult FaviconsReading::rows() {
    ReadResult further;
    if (!readIcons(further))
        return further;
    std::uint64_t listed = 0;
    constexpr std::array<std::string_view, 1> kPage = {"page_url"};
    ReadResult result = mainRows(m_database, kTable, kPage, m_ctx, kReader.procedure,
                                 [&](std::int64_t id, const Row &row) {
                                     const std::string page = row.text(0);
                                     if (m_listed.pages.contains(page)) {
                                         ++listed;
                                         return;
                                     }
                                     UrlRecord record = recordOf(id, page);
                                     m_ctx.sink.save(record);
                                 });
    if (listed > 0)
        result.noted["page with an icon that the history lists, without a row here"] = listed;
    addLosses(result, further);
    if (!m_listed.loss.empty() && result.state != ReadState::cancelled)
        addDamage(result, m_listed.loss);
    return result;
}

/// False when cancelled.
bool readPages(ReadContext &ctx, const std::filesystem::path &places, Listed &listed) {
    constexpr std::array<std::string_view, 1> kUrl = {"url"};
    const EvidenceCopy copy(ctx.evidence, places, ctx.scratch);
    EvidenceDatabase history(copy.path(), copy.size());
    TableCursor cursor(history, "moz_places", kUrl);
    while (cursor.next()) {
        if (!ctx.task.advance(0))
            return false;
        if (cursor.isReadable())
            listed.pages.insert(cursor.row().text(0));
    }
    if (cursor.lostRows())
        listed.loss = fmt::format("{}: {}", kNoHistory, cursor.lossText());
    return true;
}

/// False when cancelled. A history that can't be read makes rows too many, none too few.
bool readHistory(ReadContext &ctx, Listed &listed) {
    const auto places = ctx.evidence.find(ctx.file.fullPath.parent_path(), "places.sqlite");
    if (!places)
        return true;
    KeptMessage failure;
    const bool goesOn = trapped(failure, Severity::Low, "", "", true,
                                [&] { return readPages(ctx, *places, listed); });
    if (!failure.text.empty())
        listed.loss = fmt::format("{}: {}", kNoHistory, failure.text);
    return goesOn;
}

} // namespace

ReadResult parseFirefoxFaviconsFile(ReadContext &ctx) {
    Listed listed; // first: there is one copy of a database at a time
    if (!readHistory(ctx, listed))
        return {ReadState::cancelled, {}, 0, {}};
    return readSqliteFile(ctx, kReader, [&](EvidenceDatabase &database) {
        return FaviconsReading(ctx, database, listed).rows();
    });
}

} // namespace nv
