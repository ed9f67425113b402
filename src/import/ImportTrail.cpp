#include "import/ImportTrail.h"

#include "base/Files.h"
#include "base/Text.h"
#include "time/DateFormat.h"

#include <fmt/format.h>

#include <array>
#include <charconv>
#include <string_view>
#include <utility>

namespace nv {

namespace {

constexpr const char *kBeginAction = "Import Begin";
constexpr const char *kEndAction = "Import End";
constexpr std::string_view kFailure = "; ended by: ";
constexpr std::string_view kNotStored = " not stored";

/// By what the rows differ from those of other imports of the file; empty for most.
std::string rulesOf(const ImportSettings &job) {
    std::string text;
    if (job.classicOnly)
        text += "; by the classic rules alone";
    if (job.secrets)
        text += "; with passwords, where there are any";
    if (job.hashSets)
        text += "; content hashed and looked for in hash sets";
    return text;
}

/// The numbers of a begin by their names, in the order in which they are written.
template <class Begin, class Visit>
void eachNumberOfBegin(Begin &begin, Visit &&visit) {
    visit("files found", begin.found);
    visit("last row before", begin.lastBefore);
}

/// Of an end: the same, and more.
template <class End, class Visit>
void eachNumber(End &end, Visit &&visit) {
    eachNumberOfBegin(end, visit);
    visit("last row", end.lastRow);
    visit("files not reached", end.notReached);
    visit("records not stored", end.rowsLost);
    visit("records passed over", end.passedOver);
    visit("links not followed", end.linksNotFollowed);
    visit("shader caches passed over", end.shaderCaches);
}

/// Writes "name 12", parted by semicolons.
auto addingTo(std::string &text) {
    return [&text](std::string_view name, auto number) {
        text += fmt::format("{}{} {}", text.empty() ? "" : "; ", name, number);
    };
}

constexpr std::string_view kCancelled = "; cancelled";
constexpr std::string_view kHashedBeside = "files beside hashed";

/// Of "name 12" in a list that semicolons part; 0 where it isn't.
template <class Number>
void readNumber(std::string_view text, std::string_view name, Number &number) {
    for (const std::string_view part : split(text, ';')) {
        const std::string_view bare = trim(part);
        if (bare.size() > name.size() && bare.starts_with(name) && bare[name.size()] == ' ')
            std::from_chars(bare.data() + name.size() + 1, bare.data() + bare.size(), number);
    }
}

/// "(reason)" is the reason; what has more behind it stays as it is.
std::string wordsOf(std::string_view text) {
    text = trim(text);
    while (text.starts_with(',') || text.starts_with(';'))
        text = trim(text.substr(1));
    const bool isOne = text.starts_with('(') && text.find(')') == text.size() - 1;
    return std::string(isOne ? text.substr(1, text.size() - 2) : text);
}

} // namespace

TrailEntry trailEntry(const ArtefactResult &artefact, const ImportSettings &job) {
    TrailEntry entry;
    entry.action = kImportAction;
    entry.detail = fmt::format("{}: {}", artefact.readerKey, stateWord(artefact.state));
    if (!artefact.reason.empty())
        entry.detail += fmt::format(" ({})", artefact.reason);
    if (artefact.rowsLost > 0)
        entry.detail += fmt::format(", {}{}", counted(artefact.rowsLost, "record"), kNotStored);
    if (artefact.notReached > 0)
        entry.detail +=
            fmt::format(", {} not reached", counted(artefact.notReached, "entry", "entries"));
    if (!artefact.warning.empty())
        entry.detail += "; " + artefact.warning;
    entry.detail += rulesOf(job);
    entry.filePath = textOf(artefact.path);
    entry.fileSize = static_cast<std::int64_t>(artefact.fileSize);
    entry.md5Hash = artefact.md5Hash;
    entry.sha256Hash = artefact.sha256Hash;
    entry.rowCount = static_cast<std::int64_t>(artefact.rowsSaved);
    return entry;
}

TrailEntry trailEntry(const FileBeside &file, const ArtefactResult &artefact) {
    TrailEntry entry;
    entry.action = kBesideAction;
    entry.detail = fmt::format("read for {} ({})", textOf(artefact.path), artefact.readerKey);
    if (!file.failure.empty())
        entry.detail += "; not hashed: " + file.failure;
    entry.filePath = textOf(file.path);
    entry.fileSize = static_cast<std::int64_t>(file.fileSize);
    entry.md5Hash = file.md5Hash;
    entry.sha256Hash = file.sha256Hash;
    return entry;
}

/// No entry "Import": there is nothing that a verification could compare.
TrailEntry trailEntry(const UnreadPlace &place) {
    TrailEntry entry;
    entry.action = kNotReadableAction;
    entry.detail = place.reason;
    entry.filePath = textOf(place.path);
    return entry;
}

TrailEntry trailEntry(const ImportBegin &begin, const std::filesystem::path &folder) {
    TrailEntry entry;
    entry.action = kBeginAction;
    entry.filePath = textOf(folder);
    eachNumberOfBegin(begin, addingTo(entry.detail));
    return entry;
}

std::optional<ImportBegin> importBeginOf(const TrailEntry &entry) {
    if (entry.action != kBeginAction)
        return std::nullopt;
    ImportBegin begin;
    eachNumberOfBegin(begin, [&entry](std::string_view name, auto &number) {
        readNumber(entry.detail, name, number);
    });
    return begin;
}

ImportEnd importEnd(const ImportSummary &summary, std::int64_t lastBefore, std::int64_t lastRow) {
    return {.found = summary.artefacts.size(),
            .lastBefore = lastBefore,
            .lastRow = lastRow,
            .notReached = summary.count(ArtefactState::notReached),
            .rowsLost = summary.rowsLost(),
            .passedOver = summary.passedOver(),
            .linksNotFollowed = summary.gaps.linksNotFollowed,
            .shaderCaches = summary.gaps.shaderCaches,
            .hashedBeside = summary.hashedBeside(),
            .cancelled = summary.cancelled,
            .failure = summary.failure};
}

TrailEntry trailEntry(const ImportEnd &end) {
    TrailEntry entry;
    entry.action = kEndAction;
    eachNumber(end, addingTo(entry.detail));
    if (end.hashedBeside)
        entry.detail += fmt::format("; {} {}", kHashedBeside, *end.hashedBeside);
    if (end.cancelled)
        entry.detail += kCancelled;
    if (!end.failure.empty())
        entry.detail += std::string(kFailure) + end.failure;
    entry.rowCount = end.lastRow - end.lastBefore;
    return entry;
}

std::optional<ImportEnd> importEndOf(const TrailEntry &entry) {
    if (entry.action != kEndAction)
        return std::nullopt;
    ImportEnd end;
    std::string_view text = entry.detail;
    if (const std::size_t at = text.find(kFailure); at != std::string_view::npos) {
        end.failure = text.substr(at + kFailure.size());
        text = text.substr(0, at);
    }
    end.cancelled = text.ends_with(kCancelled);
    eachNumber(end,
               [text](std::string_view name, auto &number) { readNumber(text, name, number); });
    if (text.find(kHashedBeside) != std::string_view::npos)
        readNumber(text, kHashedBeside, end.hashedBeside.emplace());
    return end;
}

std::string reasonOf(const UnendedImport &import) {
    const std::int64_t first = import.begin.lastBefore + 1;
    std::string rows = fmt::format("its rows follow row {}", import.begin.lastBefore);
    if (import.lastRow)
        rows = *import.lastRow < first
                   ? std::string("no row of it is here")
                   : fmt::format("rows {} to {} are of it", first, *import.lastRow);
    return fmt::format("began {} to read {}, and its end isn't told: it was killed, or could not "
                       "write it{}; {}, and others may be missing",
                       isoUtc(import.begun), counted(import.begin.found, "file"),
                       import.lastRow ? "" : ", or is still running", rows);
}

void UnendedImports::take(const TrailEntry &entry) {
    const auto leave = [this](std::int64_t lastRow) {
        m_open->lastRow = lastRow;
        m_before.push_back(std::move(*m_open));
        m_open.reset();
    };
    if (const auto end = importEndOf(entry); end && m_open) {
        // Another one is of an earlier version, which told of no begin.
        if (end->lastBefore == m_open->begin.lastBefore)
            m_open.reset();
        else
            leave(end->lastBefore);
    } else if (const auto begin = importBeginOf(entry)) {
        if (m_open)
            leave(begin->lastBefore);
        m_open = UnendedImport{entry.actionDateUTC, entry.filePath, *begin, {}};
    }
}

std::vector<UnendedImport> UnendedImports::found() const {
    std::vector<UnendedImport> all = m_before;
    if (m_open)
        all.push_back(*m_open);
    return all;
}

std::vector<UnendedImport> unendedImports(SQLite::Database &project) {
    UnendedImports imports;
    CaseTrail(project).forEach([&imports](const TrailEntry &entry) { imports.take(entry); });
    return imports.found();
}

std::optional<ImportedFile> importedFileOf(const TrailEntry &entry) {
    using enum ArtefactState;
    constexpr std::array kStates = {complete,   cutShort, cancelled, failed,
                                    notReadYet, vanished, notReached};
    constexpr std::string_view kColon = ": ";
    const std::string_view text = entry.detail;
    const std::size_t colon = text.find(kColon);
    if (entry.action != kImportAction || colon == std::string_view::npos)
        return std::nullopt;
    const std::string_view said = text.substr(colon + kColon.size());
    for (const ArtefactState state : kStates)
        if (said.starts_with(stateWord(state)))
            return ImportedFile{.readerKey = std::string(text.substr(0, colon)),
                                .state = state,
                                .why = wordsOf(said.substr(stateWord(state).size())),
                                .lacksRows = said.find(kNotStored) != std::string_view::npos};
    return std::nullopt;
}

} // namespace nv
