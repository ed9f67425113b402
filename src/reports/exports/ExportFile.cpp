#include "reports/exports/ExportFile.h"

#include "base/Files.h"
#include "base/Paths.h"
#include "base/Replace.h"
#include "base/Text.h"
#include "db/sql/SideFiles.h"
#include "readers/Evidence.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

namespace nv {

namespace fs = std::filesystem;

ExportFile::ExportFile(fs::path place)
    : m_place(std::move(place)), m_aside(m_place.native() + ".~export"), m_writer(m_aside) {}

ExportFile::~ExportFile() {
    std::error_code ignored;
    fs::remove(m_aside, ignored);
}

void ExportFile::write(std::string_view bytes) {
    m_writer.write(bytes);
}

void ExportFile::finish() {
    m_writer.close();
    replaceDurably(m_aside, m_place);
}

std::optional<std::string> refusalOf(const fs::path &target, const Untouchable &untouchable) {
    std::error_code none;
    const fs::path whole = wholePath(target);
    const auto because = [&target](std::string_view reason) {
        return fmt::format("\"{}\" {}", textOf(target), reason);
    };
    if (fs::exists(whole, none) && !fs::is_regular_file(whole, none))
        return because("is no plain file");
    const fs::path project = wholePath(untouchable.project);
    const auto isBeside = [&](std::string_view suffix) {
        return whole == sideFile(project, suffix);
    };
    if (whole == project || fs::equivalent(whole, project, none) || isBeside(".old") ||
        std::ranges::any_of(kSideSuffixes, isBeside))
        return because("belongs to the project: nothing is written over it");
    if (equalsNoCase(whole.extension().native(), ".nvp"))
        return because("has the name of a project: nothing is written over it");
    if (std::ranges::any_of(untouchable.evidence, [&whole](const fs::path &folder) {
            return liesInEvidence(whole, folder);
        }))
        return because("lies in the evidence folder: nothing is written there");
    return std::nullopt;
}

} // namespace nv
