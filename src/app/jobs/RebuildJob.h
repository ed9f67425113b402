#pragma once

#include "app/jobs/RecordTools.h"
#include "views/rows/UnreadRows.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <span>
#include <vector>

namespace nv {

/// Records with the tick, by id. Those that can't be read are named in the log and in `unread`.
std::vector<UrlId> taggedIds(Program &program, UnreadRows &unread);

/// Why a page wasn't rebuilt.
enum class NotRebuilt {
    noContent,    ///< a visit, or a page that was gone when it was imported
    contentGone,  ///< no cached bytes any more
    noReferences, ///< nothing in the page that could be replaced
    noPage,       ///< the content is none
    wideIds,      ///< a part's id is above 32,767 and `wideRecordIds` is off
    cancelled,
    unreadable, ///< the project is damaged where the page's row lies
    failed,     ///< the log tells
};

/// What became of the thumbnail of a page that was rebuilt.
enum class Redrawn {
    notWanted, ///< the setting is off; so it is as well for what wasn't reached before a cancel
    yes,
    failed, ///< the log tells; the older thumbnail stays
};

/// What became of one page.
struct RebuiltPage {
    UrlId urlID = UrlId::none;
    bool rebuilt = false;
    NotRebuilt why = NotRebuilt::failed; ///< of a page that isn't rebuilt
    std::size_t tagsFound = 0;
    std::size_t replaced = 0;     ///< references that the page names a part for, which lies there
    std::size_t missing = 0;      ///< without a part beside the page
    std::size_t notRewritten = 0; ///< there is a part, and the page doesn't name it
    Redrawn thumbnail = Redrawn::notWanted;
    RebuildMethod method = RebuildMethod::classic; ///< that it was, or would have been, rebuilt by
    std::filesystem::path folder;
};

/// Rebuilds one page by itself, and draws its thumbnail anew as `redrawThumbIfPageRebuilt` says. By
/// `method` where one is named, otherwise by the settings. Nothing when the project has no such
/// record.
std::optional<RebuiltPage> rebuildPage(Program &program, RecordTools &tools, UrlId urlID,
                                       std::optional<MethodChoice> method = {});

/// Rebuilds each page in turn and hands on what became of it; a page that fails doesn't stop the
/// run. Thumbnails are drawn for some ten pages at once, and these are handed on together.
/// The case trail tells of the run. False when cancelled.
bool rebuildPages(Program &program, RecordTools &tools, std::span<const UrlId> ids,
                  const std::function<void(const RebuiltPage &)> &done,
                  std::optional<MethodChoice> method = {});

/// Whether this run of the program has the page's rebuild folder; sets `RunTimeRebuiltFilePath`.
bool hasFolder(const RecordTools &tools, UrlRecord &page);

/// Makes the rebuild folder of a page that was rebuilt earlier, when this run of the program has
/// none yet. False when it can't be made: it was cancelled, or the log tells.
bool bringBackFolder(RecordTools &tools, UrlRecord &page);

} // namespace nv
