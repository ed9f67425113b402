#pragma once

#include "base/KeyedList.h"
#include "db/records/UrlRecord.h"
#include "rebuild/RebuildContext.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace nv {

/// A replacement that an examiner may choose by hand.
struct URLChoice {
    std::string proposedNewValue;
    std::string url;
    std::string relativePath;
};
using URLChoices = KeyedList<URLChoice>;

/// Picks one of its options for every tag of the page, in the order of their texts, and writes pick
/// and score into the tag's row. False after a failure, which is logged, and when cancelled.
[[nodiscard]] bool chooseTagOptions(const UrlRecord &page, const RebuildContext &ctx);

/// The pick for a page of Internet Explorer, whose parts are named by cache folder and file: the
/// tag's row notes both. The page's own record stays as it is.
[[nodiscard]] bool pickIETagOption(std::int64_t tagID, const RebuildContext &ctx);

/// The pick for a page of the other browsers, whose parts are named by URL.
[[nodiscard]] bool pickNonIETagOption(std::string_view originalTag, std::int64_t tagID,
                                      const RebuildContext &ctx);

} // namespace nv
