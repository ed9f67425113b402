#pragma once

#include "base/Examiner.h"

#include <string_view>

namespace nv::messages {

// What the examiner is told of reports; as everywhere the texts stand as they are.

Message reportTypeMissing();
Message reportTagMissing();
Message reportingError(std::string_view reason);
Message reportNotLoaded(std::string_view reason);
Message nothingToPublish();
Message readyToPublish();
Message replacePublished(std::string_view folder);
Message reportPublished();

} // namespace nv::messages
