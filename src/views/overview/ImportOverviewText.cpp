#include "base/Grouped.h"
#include "base/Text.h"
#include "time/DateFormat.h"
#include "views/overview/ImportOverview.h"

#include <fmt/format.h>

namespace nv {

namespace {

/// "1 record", "98,311 records".
std::string many(std::uint64_t count, std::string_view one, std::string_view more) {
    return fmt::format("{} {}", grouped(count), count == 1 ? one : more);
}

bool hasFailed(const ImportOverview &overview) {
    return overview.count(ImportLight::red) > 0 || overview.hasChanged || !overview.isCounted ||
           !overview.end.failure.empty() || overview.end.rowsLost > 0 || !overview.isInTrail;
}

bool lacksSomething(const ImportOverview &overview) {
    return overview.count(ImportLight::amber) > 0 || overview.end.cancelled || !overview.isWhole ||
           overview.end.notReached > 0 || !overview.isKnown;
}

/// The first of what makes it amber.
std::string amberText(const ImportOverview &overview) {
    if (const std::size_t gaps = overview.count(ImportLight::amber) + overview.end.notReached;
        gaps > 0)
        return many(gaps, "file or folder was", "files or folders were") +
               " not read, or only in part.";
    if (!overview.isKnown)
        return "The case trail tells of no import: nobody knows how complete it was.";
    return overview.isWhole ? "The import was cancelled before everything was read."
                            : "The records were not counted: that was cancelled.";
}

/// Those that its gaps tell of.
std::size_t unendedWithin(const ImportOverview &overview) {
    return overview.scope == ImportScope::all ? overview.unended.size() : 0;
}

/// The first of what makes it red.
std::string redText(const ImportOverview &overview, std::size_t gaps) {
    if (const std::size_t unended = unendedWithin(overview); unended > 0) {
        std::string text = many(unended, "import never ended: records of it may be missing.",
                                "imports never ended: records of them may be missing.");
        if (gaps > unended)
            text += ' ' + many(gaps - unended, "file is damaged, could not be read or has changed.",
                               "files are damaged, could not be read or have changed.");
        return text;
    }
    if (gaps > 0)
        return many(gaps, "file is damaged, could not be read or has changed.",
                    "files are damaged, could not be read or have changed.");
    if (overview.hasChanged)
        return "The evidence has changed since.";
    if (!overview.isInTrail)
        return "The case trail doesn't tell of this import.";
    return overview.isCounted ? "Not everything that was read is in the project."
                              : "The project is damaged where its rows lie.";
}

} // namespace

std::string_view lightWord(ImportLight light) {
    return light == ImportLight::green   ? "Complete"
           : light == ImportLight::amber ? "Not complete"
                                         : "Failed or changed";
}

std::string_view lightSign(ImportLight light) {
    return light == ImportLight::green ? "\u2713" : light == ImportLight::amber ? "!" : "\u2715";
}

ImportLight lightOf(const ImportOverview &overview) {
    return hasFailed(overview)        ? ImportLight::red
           : lacksSomething(overview) ? ImportLight::amber
                                      : ImportLight::green;
}

std::string headlineOf(const ImportOverview &overview) {
    if (overview.found == 0 && overview.gaps.empty() && overview.rows.rows == 0 && overview.isWhole)
        return overview.end.cancelled ? "Nothing was imported: it was cancelled"
               : overview.isKnown     ? "Nothing was found to import"
                                      : "Nothing was imported yet";
    std::string text = overview.isCounted && overview.isWhole
                           ? many(overview.rows.rows, "record", "records")
                           : std::string("Records that were not counted");
    if (const std::size_t profiles = overview.profileCount(); profiles > 0)
        text += " from " + many(profiles, "profile", "profiles");
    if (const std::size_t people = overview.personCount(); people > 0)
        text += fmt::format(" of {}", many(people, "person", "people"));
    return text + ", " + many(overview.read, "file", "files") + " read";
}

std::string lightText(const ImportOverview &overview) {
    switch (lightOf(overview)) {
    case ImportLight::green:
        return overview.found == 0 ? "There was nothing that could have been missed."
                                   : "Everything that was found was read.";
    case ImportLight::amber:
        return amberText(overview);
    case ImportLight::red:
        break;
    }
    const std::size_t gaps = overview.count(ImportLight::red);
    std::string text = redText(overview, gaps);
    if (const std::size_t more = overview.count(ImportLight::amber); more > 0)
        text += fmt::format(" {} not read.", many(more, "other was", "others were"));
    return text;
}

std::vector<std::string> notesOf(const ImportOverview &overview) {
    const ImportEnd &end = overview.end;
    std::vector<std::string> notes;
    if (!end.failure.empty())
        notes.push_back(fmt::format("The import ended: {}", end.failure));
    if (!overview.isInTrail)
        notes.emplace_back("Nobody can see in the project later what was imported, and how "
                           "completely: save this summary as HTML, and import again into a "
                           "project that can be written. The log says why.");
    if (overview.scope == ImportScope::last && !overview.unended.empty())
        notes.push_back(
            fmt::format("{} into this project never ended: the summary of all imports "
                        "tells what may be missing.",
                        many(overview.unended.size(), "earlier import", "earlier imports")));
    if (end.cancelled)
        notes.emplace_back("The import was cancelled; what was written is kept.");
    const auto note = [&notes](std::uint64_t count, std::string_view one, std::string_view more,
                               std::string_view what) {
        if (count > 0)
            notes.push_back(many(count, one, more) + ' ' + std::string(what));
    };
    note(end.notReached, "file", "files", "not reached before the import ended.");
    note(end.rowsLost, "record", "records", "could not be stored: the log says why.");
    note(end.passedOver, "record", "records", "passed over, as the readers' rules leave them out.");
    note(end.linksNotFollowed, "link", "links",
         "not followed: a link could lead out of the evidence.");
    note(end.shaderCaches, "shader cache", "shader caches",
         "passed over: compiled graphics programs, no addresses.");
    if (!overview.verified.empty())
        notes.push_back("Verified later: " + overview.verified + '.');
    if (overview.isKnown && overview.scope == ImportScope::all)
        notes.emplace_back("This tells of everything that was imported into the project.");
    return notes;
}

std::string spanText(const KindRows &rows) {
    return rows.first.has() ? fmt::format("{} to {}", isoUtc(rows.first), isoUtc(rows.last))
                            : std::string();
}

} // namespace nv
