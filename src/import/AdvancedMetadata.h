#pragma once

#include "db/RecordStore.h"
#include "db/URLClass.h"
#include "readers/CachedBody.h"
#include "readers/ContentProbe.h"

#include <cstddef>
#include <utility>

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
    /// All must outlive this. `content` is shared with the other steps, so a file is read once.
    AdvancedMetadata(Extraction extraction, ContentProbe &content)
        : m_extraction(std::move(extraction)), m_content(content) {}

    /// Before the record is saved, with its names in order: sets `IsWebPage`, `WebpageTitle` and
    /// `HTMLBody`, so that its row is written once. Its own `Links` stay as they are.
    PageFindings ParseAdvancedMetadata(URLClass &record) const;

    /// After it: stores what is no member of the record.
    void store(URLClass &record, const PageFindings &found, RecordStore &rows) const;

  private:
    void examine(URLClass &record, PageFindings &found) const;

    Extraction m_extraction;
    ContentProbe &m_content;
};

} // namespace nv
