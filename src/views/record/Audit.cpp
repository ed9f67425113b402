#include "views/record/Audit.h"

#include "base/Text.h"
#include "base/Trap.h"
#include "db/marks/RebuildAudit.h"
#include "rebuild/Harvest.h"
#include "rebuild/LocalNames.h"
#include "rebuild/RebuildMethod.h"
#include "rebuild/TagOptions.h"
#include "rebuild/exact/RecordProfile.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

#include <map>
#include <utility>

namespace nv {

namespace fs = std::filesystem;

namespace {

/// A part that a template has brought has no record, but a name of its own.
std::string localNameIn(const Substitution &line, const RebuildContext &ctx) {
    if (line.tagURLID <= 0)
        return line.newTag;
    const auto part = ctx.records.getURL(UrlId{line.tagURLID});
    return part ? localNameOf(part->URLID, part->URLFileExt) : line.originalTag;
}

/// Whether the text has the name as a whole value, for rebuilds of which no more is known.
bool namesFile(std::string_view text, std::string_view name) {
    constexpr std::string_view kBefore = "\"'=( ";
    constexpr std::string_view kBehind = "\"')> \r\n";
    for (std::size_t at = text.find(name); !name.empty() && at != std::string_view::npos;
         at = text.find(name, at + 1)) {
        const std::size_t end = at + name.size();
        if (at > 0 && kBefore.find(text[at - 1]) != std::string_view::npos &&
            (end == text.size() || kBehind.find(text[end]) != std::string_view::npos))
            return true;
    }
    return false;
}

class Audit {
  public:
    Audit(const UrlRecord &page, fs::path folder, const RebuildContext &ctx)
        : m_page(page), m_folder(std::move(folder)), m_ctx(ctx),
          m_notes(RebuildAudit(ctx.project).notes(page.URLID)), m_profiles(ctx.project),
          m_url(ctx.project, "SELECT URL FROM URLs WHERE URL_ID = ?") {}

    std::vector<AuditRow> rows() {
        std::vector<AuditRow> rows;
        if (isRebuiltExactly(m_page)) {
            for (PartNote &note : RebuiltParts(m_ctx.project).notes(m_page.URLID))
                rows.push_back(rowOf(std::move(note), rows.size() + 1));
            return rows;
        }
        for (const Substitution &line : substitutionsOf(m_page.IngredientIDs, m_ctx.settings))
            rows.push_back(rowOf(line, rows.size() + 1));
        return rows;
    }

  private:
    AuditRow rowOf(const Substitution &line, std::size_t place) {
        AuditRow row;
        row.number = place;
        row.originalValue = line.originalTag;
        row.newValue = line.newTag;
        row.extension = getFileExtension(line.originalTag);
        row.tagURLID = line.tagURLID;
        const std::string name = localNameIn(line, m_ctx);
        // A name from the page may be a path: only files of the folder itself count.
        row.isThere = !name.empty() && getFilenameFromPath(name) == name && name != ".." &&
                      fs::is_regular_file(m_folder / name);
        takeNote(row);
        row.state = !row.isThere ? kMissingPart : (row.isRewritten ? "" : kNotRewritten) + name;
        return row;
    }

    AuditRow rowOf(PartNote note, std::size_t place) {
        AuditRow row;
        row.number = place;
        row.originalValue = note.original;
        row.newValue = note.localName;
        row.extension = getFileExtension(note.localName);
        row.tagURLID = number(note.part);
        row.isThere = note.isShown() && fs::is_regular_file(m_folder / note.localName);
        row.isRewritten = true;
        row.state = row.isThere      ? note.localName
                    : note.isShown() ? kMissingPart
                                     : kMarkedPlace + note.rule;
        row.score = scoreText(row.tagURLID > 0 ? 1 : 0, note.candidateCount);
        for (const std::int64_t id : note.candidates)
            row.candidates.push_back({id, urlOf(id)});
        row.cache = m_profiles.textOf(note.part);
        row.note = std::move(note);
        return row;
    }

    void takeNote(AuditRow &row) {
        const auto note = m_notes.find(row.number);
        if (note == m_notes.end()) {
            row.isRewritten = row.newValue != row.originalValue &&
                              namesFile(m_page.RebuiltSourceCode, row.newValue);
            if (row.tagURLID > 0)
                row.candidates.push_back({row.tagURLID, urlOf(row.tagURLID)});
            return;
        }
        row.isRewritten = note->second.rewritten;
        row.score = note->second.accuracyScore;
        for (const std::int64_t id : note->second.candidates)
            row.candidates.push_back({id, urlOf(id)});
    }

    std::string urlOf(std::int64_t urlID) {
        m_url.reset();
        m_url.bind(1, urlID);
        return m_url.executeStep() ? m_url.getColumn(0).getString() : std::string();
    }

    const UrlRecord &m_page;
    fs::path m_folder;
    const RebuildContext &m_ctx;
    std::map<std::size_t, ReferenceNote> m_notes;
    RecordProfiles m_profiles;
    SQLite::Statement m_url;
};

} // namespace

std::string AuditRow::partUrl() const {
    const bool isChosen = tagURLID > 0 && !candidates.empty();
    return isChosen && candidates.front().urlID == tagURLID ? candidates.front().url : "";
}

std::string AuditRow::otherCandidates() const {
    std::string text;
    for (const AuditCandidate &candidate : candidates)
        if (candidate.urlID != tagURLID)
            text +=
                fmt::format("{}{} {}", text.empty() ? "" : " | ", candidate.urlID, candidate.url);
    const std::int64_t more = candidatesIn(score) - static_cast<std::int64_t>(candidates.size());
    return text.empty() || more <= 0 ? text : text + fmt::format(" | {} more", more);
}

std::optional<std::vector<AuditRow>> loadAudit(const UrlRecord &page, const fs::path &folder,
                                               const RebuildContext &ctx) {
    return trapped(ctx.log, Severity::Warning, "MainForm.LoadAudit()", kContactSupport,
                   std::optional<std::vector<AuditRow>>(),
                   [&] { return std::optional(Audit(page, folder, ctx).rows()); });
}

} // namespace nv
