#include "app/jobs/ImportText.h"

#include "app/jobs/ScanGapsText.h"
#include "base/Files.h"
#include "base/OneLine.h"
#include "base/Text.h"
#include "readers/Registry.h"
#include "time/DateFormat.h"

#include <fmt/format.h>

#include <map>
#include <vector>

namespace nv {

namespace {

/// Of each kind of one-row files; a cache may hold thousands of loose pages.
constexpr std::uint64_t kListed = 5;

/// After a number that stands in a column of its own.
std::string_view rowWord(std::uint64_t count) {
    return count == 1 ? "row" : "rows";
}

/// What has to be known of an artefact besides its state and its rows, a line each.
std::vector<std::string> notesOf(const ArtefactResult &artefact) {
    std::vector<std::string> notes;
    if (!artefact.reason.empty())
        notes.push_back(oneLine(artefact.reason));
    if (artefact.notReached > 0)
        notes.push_back(
            fmt::format("{} not reached", counted(artefact.notReached, "entry", "entries")));
    if (artefact.rowsLost > 0)
        notes.push_back(fmt::format("{} could not be saved, see the log",
                                    counted(artefact.rowsLost, "record")));
    for (const auto &[reason, count] : artefact.passedOver)
        notes.push_back(fmt::format("{} passed over: {}", count, oneLine(reason)));
    for (const auto &[reason, count] : artefact.noted)
        notes.push_back(fmt::format("{} noted: {}", count, oneLine(reason)));
    if (!artefact.warning.empty())
        notes.push_back("Warning: " + oneLine(artefact.warning) + ".");
    return notes;
}

std::string artefactText(const ArtefactResult &artefact) {
    std::string text = fmt::format(
        "{:<12} {:>9} {:<4}  type {:<3} {:<20} {}  {}\n", stateWord(artefact.state),
        artefact.rowsSaved, rowWord(artefact.rowsSaved), static_cast<int>(artefact.type),
        artefact.readerKey, artefact.md5Hash, oneLine(textOf(artefact.path)));
    for (const std::string &note : notesOf(artefact))
        text += fmt::format("    {}\n", note);
    return text;
}

/// A whole file that is one record, with nothing to tell of it.
bool isPlain(const ArtefactResult &artefact) {
    const Reader *reader = readerFor(artefact.type);
    return reader && reader->isOneRecord && artefact.state == ArtefactState::complete &&
           artefact.rowsLost == 0 && artefact.passedOver.empty() && artefact.noted.empty();
}

std::string artefactsText(const ImportSummary &summary) {
    std::string text;
    std::map<std::string, std::uint64_t> plain;
    for (const ArtefactResult &artefact : summary.artefacts)
        if (!isPlain(artefact) || ++plain[artefact.readerKey] <= kListed)
            text += artefactText(artefact);
    for (const auto &[reader, count] : plain)
        if (count > kListed)
            text += fmt::format("{:<12} {:>9} {:<4}  {} of the kind {}\n",
                                stateWord(ArtefactState::complete), count - kListed,
                                rowWord(count - kListed), counted(count - kListed, "further file"),
                                reader);
    return text;
}

std::string kindText(const std::string &reader, const KindTotals &kind) {
    std::string text =
        fmt::format("{:<20} {:>9} {:<4} from {} of {}\n", reader, kind.rows, rowWord(kind.rows),
                    kind.complete, counted(kind.artefacts, "artefact"));
    if (kind.notReached > 0)
        text += fmt::format("{:<20} {:>9} {} not reached\n", "", kind.notReached,
                            kind.notReached == 1 ? "entry" : "entries");
    for (const auto &[reason, count] : kind.passedOver)
        text += fmt::format("{:<20} {:>9} passed over: {}\n", "", count, oneLine(reason));
    for (const auto &[reason, count] : kind.noted)
        text += fmt::format("{:<20} {:>9} noted: {}\n", "", count, oneLine(reason));
    return text;
}

/// Whose the records are, when, and how many of each kind.
std::string profileText(const ProfileTotals &profile) {
    const Origin &origin = profile.origin;
    const KindRows all = profile.all();
    std::string text = origin.browser;
    if (!origin.profile.empty())
        text += fmt::format(", profile \"{}\"", oneLine(origin.profile));
    if (!origin.person.empty())
        text += fmt::format(", person \"{}\"", oneLine(origin.person));
    text += '\n';
    if (all.first.has())
        text +=
            fmt::format("    first event {}, last event {}\n", isoUtc(all.first), isoUtc(all.last));
    for (const auto &[kind, counts] : profile.byKind)
        text += fmt::format("    {:<24} {:>9} {}\n", kind.empty() ? "(no kind)" : kind, counts.rows,
                            rowWord(counts.rows));
    if (profile.notReadYet > 0)
        text += fmt::format("    {:<24} {:>9} {}\n", stateWord(ArtefactState::notReadYet),
                            profile.notReadYet, profile.notReadYet == 1 ? "artefact" : "artefacts");
    return text;
}

/// A block each; what belongs to no browser stands with its readers alone.
std::string profilesText(const ImportSummary &summary) {
    std::string text;
    for (const ProfileTotals &profile : summary.byProfile())
        if (!profile.origin.browser.empty() && profile.rows() + profile.notReadYet > 0)
            text += profileText(profile);
    return text;
}

std::string thumbnailsText(const ImportThumbnails &thumbnails) {
    std::string text;
    if (thumbnails.made + thumbnails.failed + thumbnails.passedOver > 0)
        text = fmt::format("{} made, {} could not be drawn, {} without cached content "
                           "or of other kinds\n",
                           counted(thumbnails.made, "thumbnail"), thumbnails.failed,
                           thumbnails.passedOver);
    if (!thumbnails.failure.empty())
        text += fmt::format("No more thumbnails were made: {}\n", thumbnails.failure);
    return text;
}

/// What ended the import before its end; empty for most.
std::string endText(const ImportSummary &summary) {
    std::string text;
    if (summary.cancelled)
        text += "The import was cancelled; what was written is kept.\n";
    if (!summary.failure.empty())
        text += fmt::format("The import ended: {}\nWhat was written before is kept: {}.\n",
                            summary.failure, counted(summary.rowsSaved(), "row"));
    return text;
}

} // namespace

std::string summaryText(const ImportSummary &summary) {
    std::string text = artefactsText(summary) + unreadableText(summary.gaps);
    for (const auto &[reader, kind] : summary.byReader())
        text += kindText(reader, kind);
    text += profilesText(summary);
    text += fmt::format(
        "{} from {} of {}; {} not reached, {} passed over\n", counted(summary.rowsSaved(), "row"),
        summary.count(ArtefactState::complete), counted(summary.artefacts.size(), "artefact"),
        counted(summary.notReached(), "entry", "entries"), counted(summary.passedOver(), "record"));
    text += gapsText(summary.gaps);
    text += thumbnailsText(summary.thumbnails);
    return text + endText(summary);
}

std::string outcomeText(const ImportSummary &summary) {
    std::string text;
    for (const ArtefactResult &artefact : summary.artefacts) {
        text +=
            fmt::format("{}\n\n{}: {}, {}\n", oneLine(textOf(artefact.path)), artefact.readerKey,
                        stateWord(artefact.state), counted(artefact.rowsSaved, "row"));
        for (const std::string &note : notesOf(artefact))
            text += note + '\n';
    }
    return text + endText(summary);
}

} // namespace nv
