#include "base/Text.h"
#include "db/marks/RebuildAudit.h"
#include "db/marks/RebuiltParts.h"
#include "db/marks/RecordTags.h"
#include "db/sql/BindId.h"
#include "db/sql/SqliteErrors.h"
#include "rebuild/LocalNames.h"
#include "rebuild/RebuildMethod.h"
#include "rebuild/exact/RecordProfile.h"
#include "reports/report/CardText.h"
#include "reports/report/Html.h"
#include "reports/report/ReportValues.h"
#include "time/DateFormat.h"
#include "views/record/Audit.h"

#include <fmt/format.h>

namespace nv {

namespace fs = std::filesystem;

namespace {

std::string heading(std::string_view title, std::string_view text) {
    return fmt::format(
        "<tr><td colspan='3' bgcolor='#5E5E5E' style='font-size:11px;color:white;padding:3px;'>"
        "<strong>{}</strong></td></tr>\r\n<tr><td colspan='3' "
        "style='font-size:11px;padding:3px;'>{}\r\n",
        title, text);
}

constexpr std::string_view kEnd = "</table></td></tr>\r\n";

std::string addressCell(const std::string &url) {
    return isLink(url)
               ? fmt::format("<a href='{}' target='_new'>{}</a>", htmlAddress(url), htmlText(url))
               : htmlText(url);
}

/// What stands in the place of a reference: a part that lies beside the page, or nothing. It is
/// looked for there and not in a folder of its own, which only rows of this report have. Nothing is
/// `before` the part's name when the page names it.
std::string statusCell(std::int64_t tagURLID, std::string_view extension, std::string_view before,
                       const ReportCard &card, const fs::path &report) {
    const fs::path name = localNameOf(UrlId{tagURLID}, extension);
    const fs::path part = fs::path(card.target).parent_path() / name;
    if (tagURLID <= 0 || !fs::is_regular_file(report / part))
        return fmt::format("<font color='red'>{}</font>", kMissingPart);
    return fmt::format("{}<a href='{}' target='_new'>{}</a>", before, part.string(), name.string());
}

} // namespace

std::string linkSection(const ReportCard &card, const ReportContext &ctx) {
    std::string text = heading("LINK ANALYSIS INFORMATION",
                               "The following is a list of VISITED hyperlinks that were contained "
                               "within the above web page.") +
                       htmlTable("Table3", {"Item", "URL_ID", "Visits", "URL"});
    return onProject([&] {
        SQLite::Statement row(ctx.rebuild.project,
                              "SELECT URL_ID, Visits, URL FROM URLs WHERE URL_ID IN (SELECT "
                              "Child_ID FROM LinkAnalysis WHERE Parent_ID = ?) "
                              "ORDER BY Visits DESC, ActionDateUTC DESC, URL_ID");
        bindId(row, 1, card.record.URLID);
        for (std::size_t item = 1; row.executeStep(); ++item)
            text += htmlRow({fmt::format("{}", item), row.getColumn(0).getString(),
                             visitsText(row.getColumn(1).getInt64()),
                             addressCell(row.getColumn(2).getString())});
        return text + std::string(kEnd);
    });
}

std::string notesSection(const ReportCard &card) {
    if (card.record.Notes.empty())
        return {};
    return heading("NOTES ABOUT THIS PAGE",
                   fmt::format("<i>{}</i></td></tr>", htmlLines(card.record.Notes)));
}

std::string tagsSection(const ReportCard &card, bool withNotes, const ReportContext &ctx) {
    const auto tags =
        onProject([&] { return RowTagReader(ctx.rebuild.project).of(card.record.URLID); });
    if (tags.empty())
        return {};
    std::string text;
    for (const RowTag &each : tags)
        text += fmt::format("{}<span style='border-left:8px solid {};padding-left:4px;'>"
                            "<strong>{}</strong></span>{}",
                            text.empty() ? "" : "<br>\r\n", each.tag.color, htmlText(each.tag.name),
                            withNotes && !each.note.empty() ? " " + htmlLines(each.note) : "");
    return heading("TAGS OF THIS PAGE", text + "</td></tr>");
}

namespace {

std::string partCell(const PartNote &note, const ReportCard &card, const fs::path &report) {
    const fs::path part = fs::path(card.target).parent_path() / note.localName;
    if (!note.isShown())
        return "<font color='red'>Marked place</font>";
    if (!fs::is_regular_file(report / part))
        return fmt::format("<font color='red'>{}</font>", kMissingPart);
    return fmt::format("<a href='{}' target='_new'>{}</a> (row {})", htmlAddress(part.string()),
                       htmlText(note.localName), number(note.part));
}

/// The rule, and the records that it found besides: "exact address; others: 23, 31 and 4 more".
std::string foundBy(const PartNote &note) {
    std::vector<std::int64_t> others = note.candidates;
    std::erase(others, number(note.part));
    const auto told = static_cast<std::int64_t>(others.size());
    const std::int64_t more = note.candidateCount - (note.part == UrlId::none ? 0 : 1) - told;
    std::string text = note.rule;
    if (told > 0)
        text += fmt::format("; others: {}", fmt::join(others, ", "));
    if (told > 0 && more > 0)
        text += fmt::format(" and {} more", more);
    return text;
}

/// "2026-11-20T10:00:00Z (+12 s)".
std::string partTime(const PartNote &note) {
    const std::string time = isoUtc(note.time);
    return note.seconds ? fmt::format("{} ({:+} s)", time, *note.seconds) : time;
}

std::string exactAuditSection(const ReportCard &card, const fs::path &report,
                              const ReportContext &ctx) {
    std::string text =
        heading("AUDIT INFORMATION", "The page was rebuilt exactly. The following is a list of "
                                     "its references, and of those of its frames and styles.") +
        htmlTable("Table4", {"Reference", "Address", "Part", "Found By", "Part Date [UTC]",
                             "SHA-256", "Part's Cache"});
    RecordProfiles profiles(ctx.rebuild.project);
    for (const PartNote &note :
         onProject([&] { return RebuiltParts(ctx.rebuild.project).notes(card.record.URLID); }))
        text += htmlRow({htmlText(fmt::format("{}{}{}", note.element,
                                              note.element.empty() ? "" : " ", note.attribute)),
                         htmlText(note.address.empty() ? note.original : note.address),
                         partCell(note, card, report), htmlText(foundBy(note)),
                         htmlText(partTime(note)), htmlText(note.sha256),
                         htmlText(onProject([&] { return profiles.textOf(note.part); }))});
    return text + std::string(kEnd);
}

} // namespace

std::string auditSection(const ReportCard &card, const fs::path &report, const ReportContext &ctx) {
    if (isRebuiltExactly(card.record))
        return exactAuditSection(card, report, ctx);
    std::string text =
        heading("AUDIT INFORMATION",
                "The following is a list of TAGS that have been replaced within the file.") +
        htmlTable("Table4", {"Original Tag", "New Tag", "Status", "Accuracy Score"});
    return onProject([&] {
        SQLite::Statement row(ctx.rebuild.project,
                              "SELECT Tags.OriginalTag, Tags.NewTag, Tags.AccuracyScore, "
                              "Tags.TagURLID, URLs.URLFileExt FROM Tags LEFT JOIN URLs "
                              "ON URLs.URL_ID = Tags.TagURLID WHERE Tags.URL_ID = ? "
                              "ORDER BY Tags.Tag_ID");
        bindId(row, 1, card.record.URLID);
        const auto notes = RebuildAudit(ctx.rebuild.project).notes(card.record.URLID);
        const auto value = [&row](int at) { return row.getColumn(at).getString(); };
        for (std::size_t reference = 1; row.executeStep(); ++reference) {
            const auto note = notes.find(reference);
            const bool isNamed = note == notes.end() || note->second.rewritten;
            text += htmlRow({htmlText(value(0)), htmlText(value(1)),
                             statusCell(row.getColumn(3).getInt64(), trim(value(4)),
                                        isNamed ? "" : kNotRewritten, card, report),
                             htmlText(value(2))});
        }
        return text + std::string(kEnd);
    });
}

} // namespace nv
