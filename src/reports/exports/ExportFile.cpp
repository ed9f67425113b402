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
    : m_place(std::move(place)), m_aside(m_place.native() + ".~export"),
      m_writer(std::make_unique<FileWriter>(m_aside)) {}

ExportFile::~ExportFile() {
    std::error_code ignored;
    fs::remove(m_aside, ignored);
    fs::remove(m_aside.native() + "~", ignored);
}

void ExportFile::write(std::string_view bytes) {
    m_writer->write(bytes);
}

void ExportFile::rewrite(std::string_view beginning,
                         const std::function<std::string(std::string_view)> &converted) {
    m_writer->close();
    const fs::path before = m_aside.native() + "~";
    replaceDurably(m_aside, before);
    m_writer = std::make_unique<FileWriter>(m_aside);
    m_writer->write(beginning);
    readInBlocks(before, [&](std::string_view block, std::uint64_t) {
        m_writer->write(converted(block));
        return true;
    });
    fs::remove(before);
}

void ExportFile::finish() {
    m_writer->close();
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
