#include "app/jobs/SearchJob.h"

#include "app/jobs/Trail.h"
#include "app/project/EvidenceFolders.h"
#include "app/project/Project.h"
#include "base/Files.h"
#include "base/NoLog.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "db/marks/SearchResults.h"
#include "db/project/StoredQueries.h"
#include "search/IndexFile.h"
#include "views/queries/QueryCommands.h"
#include "views/record/RecordCard.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

namespace nv {

namespace {

constexpr std::size_t kNamesTold = 5;

std::string namesOf(const NamedCounts &counts) {
    std::string text;
    for (std::size_t at = 0; at < std::min(counts.size(), kNamesTold); ++at)
        text += fmt::format("{}{} {}", at == 0 ? "" : ", ", counts[at].second,
                            counts[at].first.empty() ? "(none)" : counts[at].first);
    if (counts.size() > kNamesTold)
        text += fmt::format(" and {} more", counts.size() - kNamesTold);
    return text;
}

/// Hits stand by rows.
std::int64_t rowsIn(const std::vector<KeywordHit> &hits) {
    std::int64_t rows = 0;
    std::int32_t last = 0;
    for (const KeywordHit &hit : hits)
        rows += std::exchange(last, hit.row) == hit.row ? 0 : 1;
    return rows;
}

SearchResult resultOf(const Program &program, const std::string &name, std::string_view kind) {
    SearchResult result;
    result.name = name;
    result.kind = kind;
    result.madeUTC = Date::fromTimePoint(program.around.clock.now());
    result.appVersion = program.state.appVersion;
    return result;
}

} // namespace

SearchQuery projectSearch(const Program &program, std::string_view text) {
    SearchQuery query = parseSearch(text);
    goByClock(query, program.state.gmtZone, dateSettings(program).enableDSTChanges);
    return query;
}

std::string zoneOfSearch(const Program &program, std::string_view text) {
    NoLog unheard; // what can't be read was told as it was typed
    SearchQuery query;
    if (failureOf(unheard, "MainForm.SearchProject()", [&] { query = parseSearch(text); }))
        return {};
    return hasDates(query) ? zoneName(program.state.gmtZone) : std::string();
}

std::string toldSearch(const Program &program, const std::string &text) {
    const std::string zone = zoneOfSearch(program, text);
    return zone.empty() ? text : fmt::format("{} [dates by {}]", text, zone);
}

SearchFound searchProject(Program &program, RowMatch &match, TaskMonitor &task,
                          const std::filesystem::path &scratch) {
    SQLite::Database &project = program.state.projectDB.connection();
    const std::filesystem::path file = project.getFilename();
    const bool isEvidence = evidenceAround(file, program.state).has_value();
    SearchIndex index(project, {file, indexBeside(file), scratch, isEvidence}, program.log);
    return findRows(project, index, match, task);
}

std::string faultOfResultName(Program &program, const std::string &name) {
    constexpr std::size_t kMostLetters = 100;
    SQLite::Database &project = program.state.projectDB.connection();
    if (trim(name).empty() || trim(name).size() != name.size())
        return "a name without blanks around it was expected";
    if (charCount(name) > kMostLetters)
        return fmt::format("a name of at most {} letters was expected", kMostLetters);
    if (isReservedQuery(name) || !isListedQuery(name) ||
        name.find_first_of("[]\"`\n\r\t") != std::string::npos)
        return fmt::format("\"{}\" can't be a name: \"_\" at its beginning, \"~\", brackets and "
                           "quotation marks have meanings of their own",
                           name);
    if (SearchResults(project).find(name))
        return fmt::format("the project has a result \"{}\": take another name, or delete it",
                           name);
    if (StoredQueries(project).text(name))
        return fmt::format("the project has a stored query \"{}\": take another name", name);
    if (project.tableExists(name))
        return fmt::format("the project has a table \"{}\": take another name", name);
    return {};
}

void keepSearch(Program &program, const std::string &name, const std::string &text,
                const FoundIds &ids) {
    SearchResult result = resultOf(program, name, "Search");
    result.searchText = text;
    result.rowCount = static_cast<std::int64_t>(ids.size());
    SearchResults(program.state.projectDB.connection())
        .add(result, ids.size(), [&ids](std::size_t at) {
            return ResultHit{ids[at], {}, {}, 0};
        });
    TrailEntry entry;
    entry.action = "Search";
    entry.detail =
        fmt::format("{} found by \"{}\", kept as \"{}\"", counted(ids.size(), "row"), text, name);
    entry.rowCount = result.rowCount;
    noteInTrail(program, std::move(entry));
}

void keepKeywords(Program &program, const std::string &name, const KeywordList &list,
                  const KeywordFound &found) {
    SearchResult result = resultOf(program, name, "Keywords");
    result.searchText = counted(list.terms.size(), "term");
    if (found.isCut)
        result.searchText += fmt::format(", the first {} hits of more", found.hits.size());
    result.filePath = list.file;
    result.sha256Hash = list.hashes.sha256;
    result.rowCount = rowsIn(found.hits);
    SearchResults(program.state.projectDB.connection())
        .add(result, found.hits.size(), [&](std::size_t at) {
            const KeywordHit &hit = found.hits[at];
            return ResultHit{hit.row, list.terms[hit.term].text, std::string(fieldWord(hit.field)),
                             hit.hits};
        });
    TrailEntry entry;
    addList(entry, list);
    entry.detail = fmt::format("{} found by {}, kept as \"{}\"",
                               counted(static_cast<std::uint64_t>(result.rowCount), "row"),
                               result.searchText, name);
    entry.rowCount = result.rowCount;
    noteInTrail(program, std::move(entry));
}

std::string indexText(const IndexNews &news) {
    if (!news.hasAny() && !news.inScratch)
        return {};
    const auto rows = [](std::int64_t count) {
        return counted(static_cast<std::uint64_t>(count), "row");
    };
    std::string text =
        news.madeAnew
            ? fmt::format("search index of {} made: \"{}\"", rows(news.added), textOf(news.file))
            : fmt::format("search index put right: {} added, {} changed, {} gone", rows(news.added),
                          news.changed, news.gone);
    if (!news.why.empty())
        text += fmt::format(" (another was given up: {})", news.why);
    if (news.inScratch)
        text += "; nothing can or may be written beside the project, so it goes with this run";
    return text;
}

std::string countsText(const SearchFound &found) {
    std::string text = counted(found.ids.size(), "row");
    if (found.ids.empty())
        return text;
    const NamedCounts &hosts = found.counts.byHost;
    return text + fmt::format(": {}; of {}: {}", namesOf(found.counts.byKind),
                              counted(hosts.size(), "host"), namesOf(hosts));
}

} // namespace nv
