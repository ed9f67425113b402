#pragma once

#include "base/Examiner.h"
#include "base/FailureLog.h"
#include "base/KeyedList.h"
#include "base/TaskMonitor.h"
#include "search/FoundIds.h"
#include "views/gallery/Pard.h"
#include "views/rows/UrlQuery.h"
#include "views/table/UrlTable.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace SQLite {
class Statement;
}

namespace nv {

/// One tile of the gallery. `xCoord` and `yCoord` are its column and row, 0-based.
struct Tile {
    bool selected = false;
    std::string toolTip; ///< the URL
    std::int32_t urlID = 0;
    std::int16_t yCoord = 0;
    std::int16_t xCoord = 0;
    bool tagged = false;
    bool isPicture = false;
    std::string host;
    std::string rebuiltMethod; ///< empty for a record that isn't rebuilt
    std::int64_t pictureWidth = 0;
    std::int64_t pictureHeight = 0;
    std::int64_t pardValue = 0;
};
using TileCollection = KeyedList<Tile>;

struct GalleryTiles {
    TileCollection tiles;
};

/// "ID #" and seven digits, as everywhere the last ones of the id.
std::string captionOf(const Tile &tile);

struct GallerySettings {
    int galleryRecordsPerPage = 300;
    GalleryMedia media;
    int tilesPerRow = 6;
};

/// What a gallery asks for: its rows by host, equal ones by id, so that pages never overlap. The
/// host is never part of the text.
IdQuery galleryQuery(const RowChoice &rows, const PardChoice &pard, const GalleryMedia &media);

/// The gallery without its window: the ids of all that it shows, and the tiles of one page. Owns
/// neither the connection nor the log.
class Gallery {
  public:
    Gallery(SQLite::Database &project, FailureLog &log) : m_project(project), m_log(log) {}

    // What the next load takes up.
    RowChoice choice;
    /// The rows that the table shows: whatever limits them limits the gallery. Null for all of the
    /// query's.
    std::shared_ptr<const FoundIds> among;
    PardChoice pard;
    GallerySettings settings;

    /// Set by whoever changes thumbnails or rows: the gallery no longer shows what there is.
    bool galleryDirty = false;

    /// Finds the rows and shows the page in hand, or the last one when there are fewer now. A
    /// failure is logged and leaves no tiles, and so does a cancel.
    LoadResult load(TaskMonitor &task);
    /// Shows another page of the rows that load() found, from 1: before the first is the first,
    /// beyond the end the last. False after a failure, which is logged and leaves no tiles.
    bool showPage(int page);
    bool firstPage() { return showPage(1); }
    bool previousPage() { return showPage(m_page - 1); }
    bool nextPage() { return showPage(m_page < m_pageCount ? m_page + 1 : m_page); }
    bool lastPage() { return showPage(m_pageCount); }

    int galleryADOPage() const { return m_page; }           ///< from 1
    int galleryADOPageCount() const { return m_pageCount; } ///< 0 when there is nothing to show
    std::size_t rowCount() const { return m_ids.size(); }
    /// Rows of which nobody can tell whether they belong, and those of the page without a tile, as
    /// they can't be read.
    UnreadRows unread() const;
    /// The bottom line, "2 of 7".
    std::string pageText() const;

    GalleryTiles &gallery() { return m_gallery; }
    const GalleryTiles &gallery() const { return m_gallery; }

  private:
    void readTiles();
    void addTile(SQLite::Statement &row);

    SQLite::Database &m_project;
    FailureLog &m_log;
    RowIds m_ids;
    UnreadRows m_lost;      ///< at the load
    UnreadRows m_tilesLost; ///< of the page
    std::size_t m_pageSize = 1;
    int m_page = 1;
    int m_pageCount = 0;
    GalleryTiles m_gallery;
};

/// A row's thumbnail: a bitmap or a JPEG. Empty when it has none; a failure is logged.
Bytes thumbnailOf(SQLite::Database &project, FailureLog &log, UrlId id);

/// What the examiner is told when a refresh would show the same again.
Message galleryNotChanged();

} // namespace nv
