#include "app/jobs/ThumbnailJob.h"

#include "app/program/DrawingTools.h"
#include "app/project/ChosenRows.h"
#include "db/sql/BindId.h"
#include "db/sql/SqliteErrors.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

#include <algorithm>

namespace nv {

namespace {

constexpr std::string_view kDrawable =
    "CacheFileExists AND NOT IsCookie AND (IsPicture OR IsWebPage OR Category IN ('Pictures', "
    "'HTML', 'Scripts, HTML'))";

std::vector<UrlId> idsOf(Program &program, const std::string &sql, UnreadRows &unread) {
    return onProject([&] { return idsPastDamage(program, sql, unread); });
}

ThumbnailSettings settingsOf(const Program &program) {
    const ProgramState &state = program.state;
    return {state.viewerThumbnailWidth, std::chrono::seconds(state.thumbnailRedrawTimeout),
            program.import.verifyFileSignatures ? Signatures::verify : Signatures::trustNames};
}

} // namespace

ThumbnailTools::ThumbnailTools(Program &program, const std::filesystem::path &scratch)
    : ThumbnailTools(program, scratch, makeDrawing(scratch)) {}

ThumbnailTools::ThumbnailTools(Program &program, const std::filesystem::path &scratch,
                               std::unique_ptr<Drawing> drawing)
    : m_records(program.state.projectDB.connection(),
                {program.state.gmtZone, program.state.enableDSTChanges}, program.around.clock,
                program.log),
      m_evidence(program.state.rootPath),
      m_drawing(std::move(drawing)), m_context{program.state.projectDB.connection(),
                                               m_records,
                                               m_evidence,
                                               scratch,
                                               *m_drawing,
                                               program.around.clock,
                                               program.log,
                                               settingsOf(program)} {}

std::vector<UrlId> drawableIds(Program &program, Redo redo, UnreadRows &unread) {
    return idsOf(
        program,
        fmt::format("SELECT URL_ID FROM URLs WHERE {}{} ORDER BY URL_ID", kDrawable,
                    redo == Redo::yes ? "" : " AND ifnull(length(ThumbnailMD5Hash), 0) = 0"),
        unread);
}

std::int64_t lastRow(Program &program) {
    return program.state.projectDB.connection()
        .execAndGet("SELECT ifnull(max(URL_ID), 0) FROM URLs")
        .getInt64();
}

ThumbnailCount countThumbnails(Program &program) {
    return onProject([&] {
        SQLite::Statement count(
            program.state.projectDB.connection(),
            fmt::format("SELECT count(*), count(CASE WHEN length(ThumbnailMD5Hash) > 0 THEN 1 END) "
                        "FROM URLs WHERE {}",
                        kDrawable));
        count.executeStep();
        return ThumbnailCount{count.getColumn(1).getInt64(), count.getColumn(0).getInt64()};
    });
}

std::vector<UrlId> withoutThumbnail(Program &program, std::vector<UrlId> ids) {
    onProject([&] {
        SQLite::Statement row(
            program.state.projectDB.connection(),
            "SELECT 1 FROM URLs WHERE URL_ID = ? AND length(ThumbnailMD5Hash) > 0");
        std::erase_if(ids, [&row](UrlId id) {
            row.reset();
            bindId(row, 1, id);
            return row.executeStep();
        });
    });
    return ids;
}

std::vector<UrlId> importedDrawableIds(Program &program, std::int64_t lastId) {
    const ImportSettings &import = program.import;
    // Without pictures there are no pages either: the box of pictures was always asked for both.
    if (!import.makeThumbnails || !import.makePictureThumbnails)
        return {};
    UnreadRows logged;
    return idsOf(program,
                 fmt::format("SELECT URL_ID FROM URLs WHERE URL_ID > {} AND CacheFileExists AND "
                             "NOT IsCookie AND Category IN ('Pictures'{}) ORDER BY URL_ID",
                             lastId, import.makeWebPageThumbnails ? ", 'HTML'" : ""),
                 logged);
}

} // namespace nv
