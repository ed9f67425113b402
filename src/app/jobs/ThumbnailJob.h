#pragma once

#include "app/program/Program.h"
#include "views/gallery/Thumbnails.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <vector>

namespace nv {

/// What drawing works with while the project stays open: make it, use it, let it go.
class ThumbnailTools {
  public:
    /// `scratch` is an existing folder of the program's own. Throws StorageFailure when this build
    /// can't draw.
    ThumbnailTools(Program &program, const std::filesystem::path &scratch);
    ThumbnailTools(Program &program, const std::filesystem::path &scratch,
                   std::unique_ptr<Drawing> drawing);

    const ThumbnailContext &context() const { return m_context; }

  private:
    RecordStore m_records;
    Evidence m_evidence;
    std::unique_ptr<Drawing> m_drawing;
    ThumbnailContext m_context;
};

enum class Redo { no, yes };

/// Rows with cached content that may be a picture or a page, by id; with `Redo::no` those without a
/// thumbnail only. Those that can't be read are named in the log and in `unread`.
std::vector<UrlId> drawableIds(Program &program, Redo redo, UnreadRows &unread);
/// The greatest number of a row; 0 without rows.
std::int64_t lastRow(Program &program);
/// Of those rows, how many there are and how many have a thumbnail.
struct ThumbnailCount {
    std::int64_t drawn = 0;
    std::int64_t drawable = 0;
};
/// Throws what the database says: a damaged one can't be counted.
ThumbnailCount countThumbnails(Program &program);
/// Of `ids` those that have no thumbnail yet.
std::vector<UrlId> withoutThumbnail(Program &program, std::vector<UrlId> ids);
/// Rows above `lastId` that an import with these settings makes thumbnails of.
std::vector<UrlId> importedDrawableIds(Program &program, std::int64_t lastId);

} // namespace nv
