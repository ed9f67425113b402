#pragma once

#include "db/marks/RebuildAudit.h"
#include "db/records/UrlRecord.h"
#include "rebuild/PageSource.h"
#include "rebuild/RebuildContext.h"

#include <optional>
#include <string>
#include <vector>

namespace nv {

/// A page with its references rewritten.
struct ReplacedPage {
    std::string text; ///< one byte a character; empty after a failure
    /// The substitution log: a line a tag, "TagURLID|old value|new value|", ended by CR LF.
    std::string log;
    std::vector<ReferenceNote> notes; ///< a line of the log each
};

/// How many candidates of a reference are noted for the audit, the chosen one included.
inline constexpr std::size_t kMostNoted = 11;

/// The page's text with every reference that has a part rewritten to the part's local name, and
/// what became of each tag. Nothing is stored. Nothing when cancelled; after a failure, which is
/// logged, an empty text with the log that the page has.
std::optional<ReplacedPage> replaceTags(const UrlRecord &page, PageSource &source,
                                        const RebuildContext &ctx);

} // namespace nv
