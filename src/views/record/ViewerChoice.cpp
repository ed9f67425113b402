#include "views/record/ViewerChoice.h"

#include "base/Text.h"
#include "db/sql/BindId.h"
#include "db/sql/ReadOnlyConnection.h"
#include "views/rows/UrlQuery.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

#include <algorithm>

namespace nv {

namespace {

template <class Words>
bool isOneOf(std::string_view category, const Words &words) {
    return std::ranges::any_of(
        words, [category](std::string_view word) { return equalsNoCase(trim(category), word); });
}

constexpr std::array<std::string_view, 2> kPages = {"HTML", "Scripts, HTML"};
constexpr std::array<std::string_view, 1> kPictures = {"Pictures"};
/// Of other content the bytes alone say something.
constexpr std::array<std::string_view, 6> kBytes = {
    "Archive, Compressed", "Binary, Executables", "Movies, Animation", "Music, Audio", "Audio",
    "Office Documents"};

bool isPicture(const ViewedRecord &record) {
    return record.hasContent && isOneOf(record.category, kPictures);
}

bool isPage(const ViewedRecord &record) {
    return record.isRebuilt || (record.hasContent && isOneOf(record.category, kPages));
}

} // namespace

std::optional<ViewedRecord> viewedRecord(SQLite::Database &project, UrlId url) {
    SQLite::Statement row(
        project,
        fmt::format(
            "SELECT Category, CacheFileExists, {}, ifnull(Notes, '') <> '', "
            "ifnull(HistoryFilePath, '') <> '', EXISTS(SELECT 1 FROM LinkAnalysis WHERE "
            "Child_ID = URL_ID) OR EXISTS(SELECT 1 FROM LinkAnalysis WHERE Parent_ID = URL_ID) "
            "FROM URLs WHERE URL_ID = ?",
            kRebuiltCondition));
    bindId(row, 1, url);
    if (!row.executeStep())
        return std::nullopt;
    ViewedRecord record;
    record.category = row.getColumn(0).getString();
    record.hasContent = row.getColumn(1).getInt() != 0;
    record.isRebuilt = row.getColumn(2).getInt() != 0;
    record.isNoted = row.getColumn(3).getInt() != 0;
    record.hasSource = row.getColumn(4).getInt() != 0;
    record.isLinked = row.getColumn(5).getInt() != 0;
    record.mayNote = !isReadOnly(project);
    return record;
}

bool hasSomething(Viewer viewer, const ViewedRecord &record) {
    switch (viewer) {
    case Viewer::Page:
        return isPage(record) || isPicture(record);
    case Viewer::Audit:
        return record.isRebuilt;
    case Viewer::Links:
        return record.isLinked;
    case Viewer::Text:
        return record.hasContent && !isPicture(record) && !isOneOf(record.category, kBytes);
    case Viewer::Picture:
        return isPicture(record);
    case Viewer::Hex:
        return record.hasContent || record.hasSource;
    case Viewer::Notes:
        return record.isNoted;
    }
    return false;
}

bool isOfUse(Viewer viewer, const ViewedRecord &record) {
    return hasSomething(viewer, record) || (viewer == Viewer::Notes && record.mayNote);
}

std::optional<Viewer> bestViewer(const ViewedRecord &record) {
    if (isPage(record))
        return Viewer::Page;
    if (isPicture(record))
        return Viewer::Picture;
    if (!record.hasContent)
        return std::nullopt;
    return isOneOf(record.category, kBytes) ? Viewer::Hex : Viewer::Text;
}

} // namespace nv
