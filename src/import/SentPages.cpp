#include "import/SentPages.h"

#include "base/Text.h"
#include "readers/HttpHeaders.h"

#include <algorithm>
#include <string_view>

namespace nv {

bool isOfTodaysCache(const UrlRecord &record) {
    return std::ranges::any_of(record.facts,
                               [](const RecordFact &fact) { return fact.name == "cache_layout"; });
}

bool isSentAsPage(const UrlRecord &record, const ContentFacts &facts) {
    constexpr int kClass = 100;
    constexpr int kSuccess = 2;
    const bool isXhtml = record.MIMEType == "application/xhtml+xml";
    if ((!isXhtml && record.MIMEType != "text/html") || !isOfTodaysCache(record))
        return false;
    // An answer of another site that a page may not look into has no status.
    const int status = statusOf(record.MetaData);
    if ((status != 0 && status / kClass != kSuccess) || equalsNoCase(record.URLFileExt, "js"))
        return false;
    const std::string_view first = facts.extension;
    return first.empty() || first == "html" || (isXhtml && first == "xml");
}

} // namespace nv
