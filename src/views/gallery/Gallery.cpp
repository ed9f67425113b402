#include "views/gallery/Gallery.h"

#include "base/Succeeds.h"
#include "base/Trap.h"
#include "db/project/StoredQueries.h"
#include "db/sql/BindId.h"
#include "db/sql/Dialect.h"
#include "db/sql/ReadOnlyConnection.h"
#include "rebuild/LocalNames.h"
#include "views/rows/DateIndex.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

#include <algorithm>
#include <limits>
#include <utility>

namespace nv {

namespace {

constexpr std::string_view kProcedure = "MainForm.LoadGallery()";

Tile tileIn(SQLite::Statement &row) {
    Tile tile;
    tile.urlID = row.getColumn(0).getInt();
    tile.tagged = row.getColumn(1).getInt() != 0;
    tile.isPicture = row.getColumn(2).getInt() != 0;
    tile.toolTip = row.getColumn(3).getString();
    tile.host = row.getColumn(4).getString();
    tile.pictureWidth = row.getColumn(5).getInt64();
    tile.pictureHeight = row.getColumn(6).getInt64();
    tile.pardValue = row.getColumn(7).getInt64();
    if (row.getColumn(8).getInt() != 0)
        tile.rebuiltMethod = row.getColumn(9).getString();
    return tile;
}

} // namespace

std::string captionOf(const Tile &tile) {
    return "ID #" + sidOf(UrlId{tile.urlID});
}

IdQuery galleryQuery(const RowChoice &rows, const PardChoice &pard, const GalleryMedia &media) {
    const std::string query = quotedName(
        rows.activeQueryName.empty() ? kDefaultQueryName : std::string_view(rows.activeQueryName));
    const bool byHost = rows.filterByHostEnabled && !rows.filterByHostValue.empty();
    // As `length` and not `Len`: that lets the index over the thumbnails' rows serve it.
    return {fmt::format("SELECT {0}.URL_ID FROM {0} WHERE {1}length({0}.ThumbnailMD5Hash) > 0{2} "
                        "ORDER BY {0}.Host ASC, {0}.URL_ID ASC",
                        query, byHost ? fmt::format("{}.Host LIKE ? AND ", query) : "",
                        translate(buildGalleryFilter(pard, media))),
            byHost ? hostPattern(rows.filterByHostValue) : std::string()};
}

LoadResult Gallery::load(TaskMonitor &task) {
    m_ids.clear();
    m_lost.clear();
    FoundRows found;
    // Cells are 16-bit.
    m_pageSize = static_cast<std::size_t>(std::clamp<int>(
        settings.galleryRecordsPerPage, 1, std::numeric_limits<std::int16_t>::max()));
    const auto walk =
        trapped(m_log, Severity::Warning, kProcedure, kContactSupport, std::optional<Walk>(),
                [&]() -> std::optional<Walk> {
                    if (!isReadOnly(m_project) &&
                        ensureGalleryIndex(m_project, task) == IndexState::Cancelled)
                        return Walk::Cancelled;
                    return findRows(m_project, galleryQuery(choice, pard, settings.media),
                                    RecordFilters(), task, found);
                });
    if (walk == Walk::Finished) {
        m_ids = std::move(found.ids);
        m_lost = std::move(found.lost);
        m_ids.resize(m_ids.size() - m_lost.size()); // they are its last
        if (among)
            keepOnly(*among, m_ids);
    }
    m_pageCount = static_cast<int>((m_ids.size() + m_pageSize - 1) / m_pageSize);
    // After a cancelled or failed load too: there are no ids then, and no tile of the load before
    // may stay.
    const bool shown = showPage(m_page);
    if (walk == Walk::Cancelled)
        return LoadResult::Cancelled;
    if (!walk || !shown)
        return LoadResult::Failed;
    galleryDirty = false;
    return LoadResult::Loaded;
}

bool Gallery::showPage(int page) {
    m_page = std::max(1, std::min(page, m_pageCount));
    m_gallery.tiles.clear();
    m_tilesLost.clear();
    const bool read =
        succeeds(m_log, Severity::Warning, kProcedure, kContactSupport, [this] { readTiles(); });
    if (!read)
        m_gallery.tiles.clear();
    return read;
}

void Gallery::readTiles() {
    SQLite::Statement row(m_project, "SELECT URL_ID, Tagged, IsPicture, URL, Host, PictureWidth, "
                                     "PictureHeight, PARDValue, CacheFileRebuilt, RebuiltMethod "
                                     "FROM URLs WHERE URL_ID = ?");
    const std::size_t first = static_cast<std::size_t>(m_page - 1) * m_pageSize;
    const std::size_t end = std::min(m_ids.size(), first + m_pageSize);
    RecordTrap trap(m_log, kProcedure);
    for (std::size_t place = first; place < end; ++place) {
        const bool read = trap.run(static_cast<std::uint64_t>(m_ids[place]), [&] {
            row.tryReset();
            row.bind(1, m_ids[place]);
            if (row.executeStep()) // not deleted since the load
                addTile(row);
        });
        if (!read)
            m_tilesLost.insert(m_ids[place]);
    }
}

void Gallery::addTile(SQLite::Statement &row) {
    Tile tile = tileIn(row);
    const int columns = std::max(1, settings.tilesPerRow);
    const int cell = static_cast<int>(m_gallery.tiles.count());
    tile.xCoord = static_cast<std::int16_t>(cell % columns);
    tile.yCoord = static_cast<std::int16_t>(cell / columns);
    m_gallery.tiles.add(std::move(tile));
}

UnreadRows Gallery::unread() const {
    UnreadRows rows = m_lost;
    rows.insert(m_tilesLost.begin(), m_tilesLost.end());
    return rows;
}

std::string Gallery::pageText() const {
    return fmt::format("{} of {}", m_page, m_pageCount);
}

Bytes thumbnailOf(SQLite::Database &project, FailureLog &log, UrlId id) {
    return trapped(log, Severity::Warning, kProcedure, kContactSupport, Bytes(), [&] {
        SQLite::Statement row(project, "SELECT ThumbnailBLOB FROM URLs WHERE URL_ID = ?");
        bindId(row, 1, id);
        if (!row.executeStep())
            return Bytes();
        const std::string bytes = row.getColumn(0).getString();
        return Bytes(bytes.begin(), bytes.end());
    });
}

Message galleryNotChanged() {
    return {"gallery-not-changed", "Refresh Gallery", "The current gallery has not changed.",
            Choices::Ok,           Tone::Information, Answer::Ok};
}

} // namespace nv
