#pragma once

#include "app/jobs/RebuildJob.h"
#include "rebuild/Templates.h"

#include <cstddef>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace nv {

/// What became of making templates.
struct TemplatesMade {
    std::size_t asked = 0;
    std::map<TemplateResult, std::size_t> results;
    std::filesystem::path last; ///< the one made last; empty when none was
    bool cancelled = false;
};

/// Makes a template of each record that was rebuilt, in this run of the program or an earlier one.
/// The examiner decides whether one that is there already is overwritten.
[[nodiscard]] TemplatesMade createTemplates(Program &program, RecordTools &tools,
                                            std::span<const UrlId> ids);

/// What became of one page that templates were to be laid over.
enum class Laid {
    rebuilt,
    otherTitle, ///< no template has the page's title, and `templateMatchByTitle` is on
    noTemplate, ///< the template holds no page
    failed,     ///< the log tells why
};

/// What became of laying templates over pages.
struct LaidTemplates {
    std::size_t asked = 0;
    std::map<Laid, std::size_t> results;
    bool cancelled = false;
};

/// Lays the templates over each record in turn: what the last one that fits shows is what stays.
/// `done` learns of each record, and the case trail of each template.
[[nodiscard]] LaidTemplates
rebuildFromTemplates(Program &program, RecordTools &tools, std::span<const UrlId> ids,
                     std::span<const std::filesystem::path> templates,
                     const std::function<void(UrlId urlID, Laid)> &done = {});

/// One line for people.
std::string madeText(const TemplatesMade &made);
std::string laidText(const LaidTemplates &laid);
/// Why a page wasn't rebuilt from a template, without a full stop.
std::string_view reasonText(Laid why);

/// Gives the template file another name, after the question whether one of that name is
/// overwritten. Nothing when it stays as it is; the examiner was told why.
std::optional<std::filesystem::path>
renameTemplate(Program &program, const std::filesystem::path &file, std::string_view name);

/// Deletes the template file after asking. False when it stays.
bool deleteTemplate(Program &program, const std::filesystem::path &file);

/// Whether the file is still there; otherwise the examiner is told.
bool isTemplateThere(Program &program, const std::filesystem::path &file);

} // namespace nv
