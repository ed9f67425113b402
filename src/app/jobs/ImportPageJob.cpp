#include "app/jobs/ImportPageJob.h"

#include "app/jobs/Trail.h"
#include "app/project/EvidenceFolders.h"
#include "base/Files.h"
#include "base/Text.h"
#include "reports/exports/ExportFile.h"
#include "reports/report/ImportPage.h"

#include <fmt/format.h>

namespace nv {

std::optional<std::string> refusalOfImportPage(const std::filesystem::path &file,
                                               ProgramState &state) {
    const std::string extension = toLower(textOf(file.extension()));
    if (extension != ".html" && extension != ".htm")
        return fmt::format("\"{}\": a file *.html was expected", textOf(file));
    return refusalOf(file, {state.projectDBPath, evidenceFolders(state)});
}

void saveImportPage(Program &program, const ImportOverview &overview,
                    const std::filesystem::path &file) {
    const ProgramState &state = program.state;
    ExportFile page(file);
    page.write(importPage(overview, {textOf(state.projectDBPath.filename()), state.appVersion}));
    page.finish();
    TrailEntry entry;
    entry.action = "Summary";
    entry.detail = "Summary of the import saved: " + headlineOf(overview);
    entry.rowCount = static_cast<std::int64_t>(overview.rows.rows);
    noteFileInTrail(program, std::move(entry), file);
}

} // namespace nv
