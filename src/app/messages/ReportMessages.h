#pragma once

#include "base/Examiner.h"

#include <cstddef>
#include <string_view>

namespace nv::messages {

// What the examiner is told of reports; as everywhere the texts stand as they are.

Message reportTypeMissing();
Message reportTagMissing();
Message reportingError(std::string_view reason);
Message reportNotLoaded(std::string_view reason);
Message nothingToPublish();
Message readyToPublish();
/// `page` is the first one of `count` reports.
/// The project is about to be closed under it.
Message reportInMaking();
Message reportNotPublished(std::size_t count, std::string_view page);
Message replacePublished(std::string_view folder);
/// `rules` are those that nothing in the report fits, a line each.
Message redactionsUnmet(std::string_view rules);
Message reportPublished();

} // namespace nv::messages
