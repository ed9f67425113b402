#pragma once

#include "base/Clock.h"
#include "db/records/UrlRecord.h"
#include "rebuild/RebuildContext.h"
#include "rebuild/TemplateFile.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace nv {

/// Of template files.
inline constexpr std::string_view kTemplateExtension = ".NVT";

enum class IfTemplateExists { refuse, overwrite };
enum class TemplateResult {
    made,
    noRebuild, ///< the record has no rebuild folder with its list of parts in this session
    exists,    ///< the examiner has to be asked
    failed,    ///< the log says why
};

/// Where createTemplate() writes for this record: the URL's file name below the folder, with what
/// file names can't hold taken out.
std::filesystem::path templatePathOf(const UrlRecord &page, const std::filesystem::path &templates);

/// The file of that name in the folder of `file`, as renaming gives it; nothing when the name holds
/// no character that file names can.
std::optional<std::filesystem::path> renamedTemplatePath(const std::filesystem::path &file,
                                                         std::string_view name);

/// Makes a template of a page that was rebuilt in this session.
TemplateResult createTemplate(const UrlRecord &page, const std::filesystem::path &templates,
                              std::string_view version, IfTemplateExists ifExists,
                              const RebuildContext &ctx);

/// Unpacks a template for viewing; its page is "0000001.htm" in the folder that is returned.
/// Nothing after a failure, which is logged.
std::optional<std::filesystem::path> loadTemplate(const std::filesystem::path &file,
                                                  const RebuildContext &ctx);

/// Lays a template over the record: its page and parts take the place of the record's own rebuild.
/// Parts whose id stands for other bytes in this project are stored without one, so that no later
/// harvest puts a stranger's picture in their place, and the record's archive keeps their bytes. A
/// part that bears the page's own name gets another. False without records in the template, and
/// after a failure, which is logged.
bool rebuildFromTemplate(UrlRecord &page, const std::filesystem::path &file,
                         const RebuildContext &ctx, const Clock &clock);

/// Whether title and template belong together: trimmed and in either case, they are the same. No
/// title belongs to nothing, or a template without one would fit every page that has none.
bool templateMatchesTitle(const PageTemplate &made, std::string_view webPageTitle);

/// Template files of the folder, by name.
std::vector<std::filesystem::path> templatesIn(const std::filesystem::path &folder);

} // namespace nv
