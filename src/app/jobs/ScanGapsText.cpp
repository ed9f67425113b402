#include "app/jobs/ScanGapsText.h"

#include "base/OneLine.h"
#include "base/Text.h"

#include <fmt/format.h>

namespace nv {

std::string unreadableText(const ScanGaps &gaps) {
    std::string text;
    for (const UnreadPlace &place : gaps.unreadable)
        text += fmt::format("{:<12} {}\n", "not readable", oneLine(place.reason));
    return text;
}

std::string gapsText(const ScanGaps &gaps) {
    std::string text;
    if (!gaps.unreadable.empty())
        text += fmt::format("{} could not be read: what is in there is not in the project\n",
                            counted(gaps.unreadable.size(), "file or folder", "files or folders"));
    if (gaps.linksNotFollowed > 0)
        text += fmt::format("{} not followed: a link could lead out of the evidence\n",
                            counted(gaps.linksNotFollowed, "link"));
    if (gaps.shaderCaches > 0)
        text += fmt::format("{} passed over: compiled graphics programs, no addresses\n",
                            counted(gaps.shaderCaches, "shader cache"));
    return text;
}

} // namespace nv
