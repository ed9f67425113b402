#pragma once

#include "app/cli/Exit.h"
#include "app/cli/RowWriter.h"
#include "app/cli/Session.h"

#include <cstdint>
#include <string>
#include <vector>

namespace nv::cli {

// One function a command. A call that makes no sense throws UsageError, a project that can't be
// used StorageFailure.

struct ImportArguments {
    std::string project;
    std::vector<std::string> paths;
    std::string base;
    std::string zone; ///< its key: see app/Zones.h; empty or "0" keeps the project's
    std::vector<std::string> kinds;
    std::string as; ///< key of the reader that takes every PATH; empty to find artefacts
    bool noMetadata = false;
    bool noSignatures = false;
    bool thumbnails = false;
    bool json = false;
};
Exit importCommand(Session &session, const ImportArguments &given);

enum class Dates { asShown, iso };

struct ListArguments {
    std::string project;
    std::string query;
    std::string host;
    std::vector<std::string> filter; ///< flags of the record filters
    std::vector<std::string> columns;
    Format format = Format::table;
    Dates dates = Dates::iso; ///< of csv and jsonl; tables for people show them as the window does
};
Exit listCommand(Session &session, const ListArguments &arguments);

Exit queryCommand(Session &session, const std::string &project, const std::string &sql,
                  Format format);
Exit queriesCommand(Session &session, const std::string &project, Format format);
Exit showCommand(Session &session, const std::string &project, std::int64_t urlId, Format format);
/// `as` is the key of the reader to use, or empty for the one that recognises the file.
Exit dumpCommand(Session &session, const std::string &file, const std::string &as, Format format);

enum class IfThere { refuse, overwrite };
/// Writes the cached body of a row to `file`, "-" being the standard output.
Exit extractCommand(Session &session, const std::string &project, std::int64_t urlId,
                    const std::string &file, IfThere ifThere);
struct RebuildArguments {
    std::string project;
    std::vector<std::int64_t> ids;
    bool tagged = false;
    bool allPages = false;
    std::string out;        ///< folder that gets a folder a page
    bool overwrite = false; ///< such a folder that is there already
    bool noScripts = false;
    bool wideIds = false;
    bool noThumbnails = false; ///< whatever the setting says
};
Exit rebuildCommand(Session &session, const RebuildArguments &arguments);
/// What stands in the place of each reference of a page that was rebuilt.
Exit auditCommand(Session &session, const std::string &project, std::int64_t urlId, bool wideIds,
                  Format format);

struct ThumbnailArguments {
    std::string project;
    std::vector<std::int64_t> ids;
    bool all = false;
    bool redo = false; ///< rows that have a thumbnail too
};
Exit thumbnailsCommand(Session &session, const ThumbnailArguments &arguments);

struct GalleryArguments {
    std::string project;
    std::string query;
    std::string host;
    std::vector<std::string> filter; ///< flags of the record filters
    std::string pard;                ///< "15-40"; empty for any
    std::vector<std::string> sizes;
    int page = 1;
    int perPage = 0; ///< 0 for the settings' number
    std::string out; ///< an HTML file
    bool overwrite = false;
};
/// Writes a page of the gallery as a contact sheet.
Exit galleryCommand(Session &session, const GalleryArguments &arguments);

struct TagArguments {
    std::string project;
    std::vector<std::int64_t> ids;
    std::string where; ///< a condition on URLs in the project's dialect
    bool off = false;
};
Exit tagCommand(Session &session, const TagArguments &arguments);

struct TemplateArguments {
    std::string project;
    std::vector<std::int64_t> ids;
    std::string file;   ///< a template
    std::string folder; ///< of templates; empty for the settings' one
    std::string out;    ///< folder that gets a folder a page; empty for none
    bool overwrite = false;
    bool anyTitle = false; ///< lay a template also over pages of another title
    bool wideIds = false;
};
Exit templateCreateCommand(Session &session, const TemplateArguments &arguments);
Exit templateListCommand(Session &session, const TemplateArguments &arguments, Format format);
Exit templateApplyCommand(Session &session, const TemplateArguments &arguments);

Exit zonesCommand(Session &session, Format format);
/// The zones of the system, with what they have now.
Exit exactZonesCommand(Session &session, Format format);

} // namespace nv::cli
