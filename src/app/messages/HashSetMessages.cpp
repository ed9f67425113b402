#include "app/messages/HashSetMessages.h"

#include "base/DisplayText.h"
#include "base/MessageKinds.h"
#include "base/Text.h"

#include <fmt/format.h>

namespace nv {

std::string noHashText(const HashSetMade &made) {
    return fmt::format("no hash was found in {}: no set was made. Expected were lists as md5sum "
                       "prints them, tables with a column MD5, SHA-1 or SHA-256, or hashes one a "
                       "line",
                       counted(made.lines, "line"));
}

std::string noSetNameText(std::string_view name) {
    return fmt::format("\"{}\" can't be the name of a hash set: up to 100 letters, digits, blanks "
                       "and -_.,()+ were expected",
                       displayText(name));
}

namespace messages {

Message noHashFound(const HashSetMade &made) {
    std::string text = noHashText(made) + ".";
    text.front() = 'N';
    for (const std::string &line : made.refused)
        text += "\n\n" + displayText(line);
    return notice("no-hash-found", "Hash Sets", text, Tone::Error);
}

Message replaceHashSet(std::string_view name) {
    return question("replace-hash-set", "Hash Sets",
                    fmt::format("There is a hash set \"{}\" already. Put the new one in its place?",
                                displayText(name)),
                    Answer::No, Tone::Warning);
}

Message removeHashSet(std::string_view name) {
    return question("remove-hash-set", "Hash Sets",
                    fmt::format("Remove the hash set \"{}\"?\n\nIts hashes are made again of its "
                                "lists only. Projects keep what was found by it until they are "
                                "matched again.",
                                displayText(name)),
                    Answer::No);
}

} // namespace messages

} // namespace nv
