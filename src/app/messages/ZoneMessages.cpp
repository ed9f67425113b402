#include "app/messages/ZoneMessages.h"

#include "base/MessageKinds.h"

#include <fmt/format.h>

namespace nv::messages {

Message exactZoneNotSet(std::string_view reason) {
    return failure("exact-zone-not-set", "Error Setting Time Zone",
                   fmt::format("The time zone can't be set: {}. A project that is opened with it "
                               "keeps it, shows local dates in another one meanwhile, and takes "
                               "no import until a zone is chosen.",
                               reason));
}

Message localDatesNotStored(std::string_view reason) {
    return failure("local-dates-not-stored", "Error Setting Time Zone",
                   fmt::format("Dates are shown in the new time zone, but those that the project "
                               "stores stay in the one before, and so do orders and queries by "
                               "them: {}",
                               reason));
}

} // namespace nv::messages
