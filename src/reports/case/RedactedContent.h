#pragma once

#include "reports/case/Redactor.h"
#include "reports/report/CardEvidence.h"

#include <map>
#include <optional>
#include <set>
#include <string>

namespace nv {

/// Takes what is redacted out of the contents that a report has brought, before they are drawn: out
/// of the pages' texts and styles, and pictures and other files whole.
class RedactedContent {
  public:
    /// All must outlive it. The pictures that were chosen are read to be known again.
    RedactedContent(const ReportContext &ctx, const ReportFolder &folder, Redactor &redactor);

    /// Of a card that was brought and isn't drawn yet. Throws StorageFailure.
    void redact(ReportCard &card);
    /// After the drawing: what was kept for it goes, and a picture that couldn't be blurred is left
    /// out.
    void settle(ReportCard &card);

  private:
    enum class Fate : std::uint8_t { unchanged, changed, removed };

    void redactPicture(ReportCard &card);
    void redactFolder(ReportCard &card);
    void redactText(ReportCard &card);
    void drawAnew(ReportCard &card);
    void withhold(ReportCard &card, std::string_view why);
    Fate redactFile(const std::filesystem::path &file, std::string_view httpHeader);
    Fate redactPart(const std::filesystem::path &file);
    std::optional<RedactionWay> wayOf(const UrlRecord &record,
                                      const std::filesystem::path &picture);
    bool isOfHost(UrlId part);
    bool isChosen(const std::filesystem::path &picture) const;
    bool hasChosenInside(std::string_view text) const;

    const ReportContext &m_ctx;
    const ReportFolder &m_folder;
    Redactor &m_redactor;
    std::map<std::string, RedactionWay> m_pictures; ///< by SHA-256
    std::set<UrlId> m_blurred;                      ///< on their way to be drawn
};

} // namespace nv
