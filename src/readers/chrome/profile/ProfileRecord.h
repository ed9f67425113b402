#pragma once

#include "readers/Reader.h"
#include "readers/RecordKind.h"

#include <string_view>

namespace nv {

// What the records of a profile's smaller files have in common: forms, logins, bookmarks, settings.

/// Without an address and a date. They count no visits, and no host is visited by them.
UrlRecord profileRecord(const ReadContext &ctx, const RecordKind &kind, std::string_view action,
                        std::string_view status);

/// When it happened, in UTC; may be no date.
void setEvent(UrlRecord &record, Date utc, const Clock &clock);

} // namespace nv
