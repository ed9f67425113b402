#pragma once

#include "db/marks/RecordTags.h"
#include "readers/RecordKind.h"
#include "reports/case/Redactor.h"
#include "reports/report/ReportContext.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace nv {

/// A tag of a row, free of what is redacted.
struct CaseTag {
    std::string name;
    std::string color; ///< "#rrggbb"
    std::string note;  ///< why the row has it; empty where notes of tags aren't told
};

/// A record as a case report shows it. All texts are free of what is redacted; "[redacted]" stands
/// for it.
struct CaseRow {
    UrlId id = UrlId::none;
    bool ticked = false;
    bool hidden = false; ///< of a host that is blurred: nothing of its content is shown
    RecordGroup group = RecordGroup::other;
    std::string kind; ///< in the words of the record
    std::string action;
    std::string utc;   ///< "2011-05-07T12:00:00Z"; empty without a date
    std::string local; ///< in the project's zone, with what stands after it
    std::string address;
    std::string host;
    std::string title;
    std::string browser;
    std::string profile;
    std::string person;
    std::string user;
    std::string visits; ///< empty where the artefact counts none
    std::string referrer;
    std::string status;
    std::string source;       ///< the file of evidence
    std::string place;        ///< what follows it: ", row 17 of table visits"
    std::string sourceOffset; ///< in bytes; empty where the record has none
    std::string cacheFile;
    std::string rebuilt; ///< when, and by which method
    std::string notes;
    std::vector<CaseTag> tags;
    std::vector<std::pair<std::string, std::string>> facts; ///< of cards only

    /// "Chromium, Default, mara".
    std::string who() const;
};

enum class RowFacts : std::uint8_t { without, with };

/// Reads the rows of a report.
class CaseRows {
  public:
    /// Both must outlive it.
    CaseRows(const ReportContext &ctx, Redactor &redactor)
        : m_ctx(ctx), m_redactor(redactor), m_tags(ctx.rebuild.project) {}

    bool withNotes = true;    ///< those of the examiner
    bool withTagNotes = true; ///< those of rows' tags

    /// Whether the row is one of those that are left out. Throws for a row that can't be read.
    bool isLeftOut(UrlId id);
    /// Throws for a row that can't be read.
    CaseRow row(UrlId id, RowFacts facts);
    CaseRow rowOf(const UrlRecord &record, RowFacts facts);

  private:
    std::string text(const std::string &value) { return m_redactor.text(value); }
    void addFacts(CaseRow &row, const UrlRecord &record, const FactList &stored);

    const ReportContext &m_ctx;
    Redactor &m_redactor;
    RowTagReader m_tags;
};

/// Hashes of a content would tell which one it was: of names of facts and columns.
bool tellsContent(std::string_view field);

} // namespace nv
