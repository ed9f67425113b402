#include "app/messages/HashSetMessages.h"

#include "base/DisplayText.h"
#include "base/Grouped.h"
#include "base/MessageKinds.h"
#include "base/Text.h"

#include <fmt/format.h>

#include <algorithm>

namespace nv {

namespace {

std::string recordsText(std::uint64_t count) {
    return fmt::format("{} {}", grouped(count), count == 1 ? "record" : "records");
}

} // namespace

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

std::string matchText(const HashMatch &match, std::string_view how) {
    if (match.rowsOfProject == 0)
        return "The project has no records yet: there is nothing to compare.";
    std::string text =
        match.rowsWithHash == 0
            ? fmt::format("Nothing was compared: of {} none has a hash.",
                          recordsText(match.rowsOfProject))
            : fmt::format("Compared: {} of {}, those with a hash. Found in a set: {}.",
                          grouped(match.rowsWithHash), recordsText(match.rowsOfProject),
                          match.rowsFound == 0 ? "none" : grouped(match.rowsFound));
    if (match.bodiesWithoutHash > 0)
        text += fmt::format("\nNothing is said of {} with cached content that was not hashed when "
                            "it was imported. {}",
                            recordsText(match.bodiesWithoutHash), how);
    if (match.withoutContent > 0)
        text += fmt::format("\nWithout content, so there is nothing to hash: {}.",
                            recordsText(match.withoutContent));
    return text;
}

std::string matchedSetsText(std::span<const HashSetFile> sets, const HashMatch &match) {
    constexpr std::size_t kMost = 8;
    std::string text;
    for (std::size_t at = 0; at < std::min(sets.size(), kMost); ++at)
        text +=
            fmt::format("{}{} ({}): {}", at == 0 ? "" : "\n", displayText(sets[at].facts().name),
                        wordOf(sets[at].facts().meaning), recordsText(match.rows.at(at)));
    if (sets.size() > kMost)
        text += fmt::format("\nand {} in the list", counted(sets.size() - kMost, "further set"));
    return text;
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
