#pragma once

#include "db/records/UrlRecord.h"
#include "rebuild/RebuildContext.h"

#include <optional>
#include <string>

namespace nv {

/// The content of a page that is being rebuilt, fetched once for all steps: the search for
/// references and their replacement work on the very same bytes.
class PageSource {
  public:
    /// Both must outlive this.
    PageSource(UrlRecord &page, const RebuildContext &ctx) : m_page(page), m_ctx(ctx) {}

    /// The page's bytes without line breaks, as references are searched in it; a copy of them with
    /// line breaks lies in `RunTimeTempFilePath` after the first call. Nothing when its content is
    /// gone. Throws FileFailure; the next call then tries again.
    const std::optional<std::string> &text();

  private:
    std::optional<std::string> fetched();

    UrlRecord &m_page;
    const RebuildContext &m_ctx;
    bool m_isFetched = false;
    std::optional<std::string> m_text;
};

} // namespace nv
