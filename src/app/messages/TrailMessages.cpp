#include "app/messages/TrailMessages.h"

#include "base/MessageKinds.h"

#include <fmt/format.h>

namespace nv::messages {

Message trailNotWritten(std::string_view reason) {
    return notice("trail-not-written", "Case Trail",
                  fmt::format("The project's trail has no note of this: {}", reason));
}

Message sourcesVerified(const SourceCheck &check, const TrailChain &chain) {
    return notice("sources-verified", "Verify Source Files",
                  summaryText(check) + "\n\n" + chainText(chain),
                  check.allSame() && chain.isWhole() ? Tone::Information : Tone::Warning);
}

} // namespace nv::messages
