#pragma once

#include "reports/report/CardEvidence.h"
#include "reports/report/ReportWriter.h"

#include <string>

namespace nv {

/// The cue card of the record in hand, with the sections that the report includes.
std::string cardText(const ReportWriter &report, const ReportCard &card, const ReportContext &ctx);

/// In the place of a card that can't be written.
std::string brokenCard(UrlId id);

/// The section of the visited links of a page. Throws.
std::string linkSection(const ReportCard &card, const ReportContext &ctx);
/// Empty without notes.
std::string notesSection(const ReportCard &card);
/// The named tags of the record, with why it has them unless notes are left out. Empty without
/// tags. Throws.
std::string tagsSection(const ReportCard &card, bool withNotes, const ReportContext &ctx);
/// The section of the replaced references of a page; `report` is the report's folder. Throws.
std::string auditSection(const ReportCard &card, const std::filesystem::path &report,
                         const ReportContext &ctx);

} // namespace nv
