#include "app/messages/TagMessages.h"

#include "base/DisplayText.h"
#include "base/MessageKinds.h"
#include "base/Text.h"

#include <fmt/format.h>

namespace nv::messages {

namespace {

std::string haveIt(std::int64_t rows) {
    if (rows == 0)
        return "No row has it.";
    return fmt::format("{} {} it. The rows stay; that they had it can't be brought back.",
                       counted(static_cast<std::uint64_t>(rows), "row"),
                       rows == 1 ? "has" : "have");
}

} // namespace

Message deleteTag(std::string_view name, std::int64_t rows) {
    return question("delete-tag", "Delete Tag",
                    fmt::format("Delete the tag \"{}\"?\n\n{}", displayText(name), haveIt(rows)),
                    Answer::No);
}

} // namespace nv::messages
