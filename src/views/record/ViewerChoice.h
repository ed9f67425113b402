#pragma once

#include "db/schema/Ids.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace SQLite {
class Database;
}

namespace nv {

/// The panes that show a record, but for those that aren't about it.
enum class Viewer : std::uint8_t { Page, Audit, Links, Text, Picture, Hex, Notes };

/// By the names of their panes, in the order of their tabs.
struct ViewerName {
    Viewer viewer;
    std::string_view pane;
};
inline constexpr std::array<ViewerName, 7> kViewers = {{{Viewer::Page, "BrowserPane"},
                                                        {Viewer::Audit, "AuditPane"},
                                                        {Viewer::Links, "LinksPane"},
                                                        {Viewer::Text, "TextPane"},
                                                        {Viewer::Picture, "PicturePane"},
                                                        {Viewer::Hex, "HexPane"},
                                                        {Viewer::Notes, "NotesPane"}}};

/// What of a record says which panes have something to show. It is as the project has it: whether
/// the content can still be fetched is seen when it is.
struct ViewedRecord {
    std::string category;
    bool hasContent = false;
    bool isRebuilt = false;
    bool isLinked = false; ///< link analysis has found a pair with it
    bool isNoted = false;
    bool mayNote = false;   ///< a note can be written to it
    bool hasSource = false; ///< a file in whose bytes the record stands
};

/// Nothing when there is no such row. Throws what the database says.
std::optional<ViewedRecord> viewedRecord(SQLite::Database &project, UrlId url);

/// Whether the pane has something for the record.
bool hasSomething(Viewer viewer, const ViewedRecord &record);
/// Whether it has something, or something can be written in it.
bool isOfUse(Viewer viewer, const ViewedRecord &record);

/// The pane that shows the content best: pages as pages, pictures as pictures, other texts as text.
/// Nothing where no content is: whichever pane is in front then stays there.
std::optional<Viewer> bestViewer(const ViewedRecord &record);

} // namespace nv
