#include "app/messages/DropMessages.h"

#include "base/Files.h"
#include "base/MessageKinds.h"

#include <fmt/format.h>

namespace nv::messages {

Message droppedNotTaken(std::string_view things) {
    return notice("dropped-not-taken", "Not Taken",
                  fmt::format("Of what was dropped this isn't taken:\n\n{}", things),
                  Tone::Information);
}

Message evidenceGone(const std::filesystem::path &place) {
    return notice("evidence-gone", "Invalid Path",
                  fmt::format("\"{}\" does not exist. Nothing was looked for.", textOf(place)));
}

} // namespace nv::messages
