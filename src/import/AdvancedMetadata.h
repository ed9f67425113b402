#pragma once

#include "base/FailureLog.h"
#include "db/records/RecordStore.h"
#include "db/records/UrlRecord.h"
#include "import/PageContent.h"
#include "import/SavedContent.h"

#include <cstddef>
#include <filesystem>
#include <string_view>

namespace nv {

/// What a cached page says beyond the members of its record.
struct PageFindings {
    bool isPage = false;
    std::size_t links = 0;
};

/// Looks into the cached content of records for what a page itself says: its title, the text of its
/// body, its links. The slowest step of an import, and therefore a choice of the examiner's.
/// Failures are logged and take nothing from the record.
class AdvancedMetadata {
  public:
    /// `log` must outlive this.
    explicit AdvancedMetadata(FailureLog &log) : m_log(log) {}

    /// Before the record is saved, with its names in order: sets `IsWebPage`, `WebpageTitle` and
    /// `HTMLBody`, so that its row is written once. Its own `Links` stay as they are.
    PageFindings parseAdvancedMetadata(UrlRecord &record, SavedContent &content) const;

    /// After it: stores what is no member of the record.
    void store(UrlRecord &record, const PageFindings &found, RecordStore &rows) const;

  private:
    void examine(UrlRecord &record, SavedContent &content, PageFindings &found) const;
    PageContent contentOf(std::string_view html, const std::filesystem::path &file,
                          FactList &facts) const;

    FailureLog &m_log;
};

} // namespace nv
