// keyword_search_terms = keyword_id url_id term lower_term normalized_term
//   url_id names the page that showed what was found, keyword_id the search engine: a row of table
//   keywords (id short_name) in the file "Web Data" of the same folder.

#include "readers/chrome/history/SearchTerms.h"

#include "readers/FactSource.h"
#include "readers/chrome/Kinds.h"
#include "readers/chrome/shared/StoredDate.h"
#include "readers/sqlite/DatabaseBeside.h"
#include "readers/sqlite/HistoryRow.h"
#include "readers/sqlite/SqliteReading.h"
#include "time/SourceClocks.h"

#include <array>
#include <string>
#include <unordered_map>

namespace nv {

namespace {

using Engines = std::unordered_map<std::int64_t, std::string>;
using Names = std::string_view;

constexpr auto kColumns =
    std::to_array<Names>({"keyword_id", "url_id", "term", "normalized_term", "lower_term"});
enum Column : std::size_t { kEngine, kPage, kTerm, kNormalized, kLower };

/// Names of search engines by their number. That none can be read leaves the numbers.
Engines enginesBeside(ReadContext &ctx, std::string_view procedure, ReadResult &result) {
    constexpr auto kKeywords = std::to_array<Names>({"id", "short_name"});
    Engines engines;
    const Beside found = readBeside(ctx, "Web Data", procedure, [&](EvidenceDatabase &database) {
        TableCursor cursor(database, "keywords", kKeywords);
        while (cursor.next())
            if (cursor.isReadable()) {
                const Row row = cursor.row();
                engines.try_emplace(row.number(0).value_or(cursor.rowId()), row.text(1));
            }
    });
    if (found == Beside::notReadable)
        ++result.noted["the names of search engines could not be read from \"Web Data\""];
    return engines;
}

UrlRecord termRecord(const ReadContext &ctx, const ListedPage *page, std::int64_t rowId,
                     Date fileCreated) {
    const std::string url = page ? std::string(page->url) : std::string();
    UrlRecord record = historyRecord(ctx, {rowId, url, page && page->isHidden, std::nullopt},
                                     kChromeSearchTerm.word, fileCreated);
    record.Action = "Searched";
    if (!page)
        return record;
    record.WebpageTitle = page->title;
    record.ActionDateUTC = chromeMoment(page->lastVisit);
    record.LastVisited = record.ActionDateUTC;
    record.ActionDateLocal = utcDateToLocal(record.ActionDateUTC, ctx.clock);
    return record;
}

/// The term as it was typed; earlier versions have it in small letters beside that.
std::string termOf(const Row &row) {
    for (const Column column : {kTerm, kNormalized, kLower})
        if (std::string term = row.text(column); !term.empty())
            return term;
    return {};
}

void addFacts(FactList &facts, const Row &row, std::int64_t rowId, const Engines &engines) {
    addSource(facts, "keyword_search_terms", rowId);
    facts.add("search_term", termOf(row));
    if (const auto engine = row.number(kEngine)) {
        const auto name = engines.find(*engine);
        facts.add("search_engine", name == engines.end() ? std::string() : name->second, *engine);
    }
}

} // namespace

bool saveSearchTerms(FurtherTables &tables, ReadContext &ctx, const PageTable &pages,
                     Stretch stretch, Date fileCreated, std::string_view procedure,
                     ReadResult &result) {
    Engines engines;
    bool isAsked = false;
    const auto save = [&](std::int64_t rowId, const Row &row) {
        if (!isAsked)
            engines = enginesBeside(ctx, procedure, result);
        isAsked = true;
        const auto number = row.number(kPage);
        const ListedPage *page = number ? pages.find(*number) : nullptr;
        UrlRecord record = termRecord(ctx, page, rowId, fileCreated);
        addFacts(record.facts, row, rowId, engines);
        if (!page) {
            if (number)
                record.facts.add("page_id", *number);
            ++result.noted["search terms of pages that are no longer listed"];
        }
        ctx.sink.save(record);
    };
    return tables.each("keyword_search_terms", kColumns, stretch, save);
}

} // namespace nv
