#include "reports/report/TrailText.h"

#include "db/sql/SqliteErrors.h"
#include "db/trail/CaseTrail.h"
#include "reports/report/Html.h"
#include "time/DateFormat.h"

#include <fmt/format.h>

namespace nv {

namespace {

/// What tells whether a file is still the one that was read or written.
std::string hashesCell(const TrailEntry &entry) {
    if (entry.md5Hash.empty() && entry.sha256Hash.empty())
        return {};
    return fmt::format("MD5 {}<br>SHA-256 {}", htmlText(entry.md5Hash), htmlText(entry.sha256Hash));
}

std::string rowOf(const TrailEntry &entry) {
    return htmlRow({std::to_string(entry.trailID), htmlText(isoUtc(entry.actionDateUTC)),
                    htmlText(entry.action), htmlText(entry.detail), std::to_string(entry.rowCount),
                    htmlText(entry.filePath),
                    entry.filePath.empty() ? "" : std::to_string(entry.fileSize), hashesCell(entry),
                    htmlText(entry.appVersion)});
}

} // namespace

std::string trailSection(const ReportContext &ctx) {
    std::string text =
        "<br><div style='font-family:Tahoma,sans-serif;font-size:11px;'>\r\n"
        "<strong>CASE TRAIL:</strong> what was done with this project up to this report.<br>\r\n" +
        htmlTable("Trail", {"No.", "Date [UTC]", "Action", "Detail", "Rows", "File", "Bytes",
                            "Hashes", "Version"});
    const auto entries = onProject([&] { return CaseTrail(ctx.rebuild.project).entries(); });
    for (const TrailEntry &entry : entries)
        text += rowOf(entry);
    return text + "</table></div>";
}

} // namespace nv
