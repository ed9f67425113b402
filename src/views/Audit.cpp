#include "views/Audit.h"

#include "base/Text.h"
#include "base/Trap.h"
#include "rebuild/Harvest.h"
#include "rebuild/LocalNames.h"

namespace nv {

namespace fs = std::filesystem;

namespace {

std::string localNameIn(const Substitution &line, const RebuildContext &ctx) {
    if (line.TagURLID <= 0)
        return line.OriginalTag;
    const auto part = ctx.records.GetURL(UrlId{line.TagURLID});
    return part ? localNameOf(part->URLID, part->URLFileExt) : line.OriginalTag;
}

AuditRow rowOf(const Substitution &line, const fs::path &folder, const RebuildContext &ctx) {
    AuditRow row;
    row.originalValue = line.OriginalTag;
    row.newValue = line.NewTag;
    row.extension = GetFileExtension(line.OriginalTag);
    row.TagURLID = line.TagURLID;
    const std::string name = localNameIn(line, ctx);
    // A name from the page may be a path: only files of the folder itself count.
    row.isThere = !name.empty() && GetFilenameFromPath(name) == name && name != ".." &&
                  fs::is_regular_file(folder / name);
    row.state = row.isThere ? name : kMissingPart;
    return row;
}

} // namespace

std::vector<AuditRow> LoadAudit(const URLClass &page, const fs::path &folder,
                                const RebuildContext &ctx) {
    return trapped(ctx.log, Severity::Warning, "MainForm.LoadAudit()", kContactSupport,
                   std::vector<AuditRow>(), [&] {
                       std::vector<AuditRow> rows;
                       for (const Substitution &line :
                            substitutionsOf(page.IngredientIDs, ctx.settings)) {
                           rows.push_back(rowOf(line, folder, ctx));
                           rows.back().number = rows.size();
                       }
                       return rows;
                   });
}

} // namespace nv
