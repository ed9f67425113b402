#include "views/links/LinkAnalysis.h"

#include "base/Md5.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "db/sql/BindId.h"
#include "db/sql/SqliteErrors.h"
#include "import/PageContent.h"
#include "import/SavedContent.h"
#include "readers/RecordKind.h"
#include "views/rows/DateIndex.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

#include <algorithm>
#include <limits>
#include <utility>
#include <vector>

namespace nv {

namespace {

constexpr std::string_view kProcedure = "MainForm.RunLinkAnalysis()";
constexpr std::string_view kTitle = "RUNNING LINK ANALYSIS";
constexpr std::string_view kSubject = "Comparing History data to Cache data...";

/// Rows of `URLs` at hand at a time: no cursor stays open over the table while its pages are
/// written.
constexpr int kRowsAtHand = 1000;

struct ExaminedRow {
    std::int64_t id = 0;
    std::string hash;
    bool mayBePage = false; ///< a row of a cache whose content was there when it was imported
};

/// The rows in the order of their ids.
class RowsInTurn {
  public:
    /// Where an import found no content, the path of the row may be that of the index.
    explicit RowsInTurn(SQLite::Database &project)
        : m_select(project, "SELECT URL_ID, ifnull(trim(HashedURL), ''), "
                            "CASE WHEN CacheFileExists THEN CacheType END, CASE WHEN "
                            "ifnull(trim(HashedURL), '') = '' THEN URL END "
                            "FROM URLs WHERE URL_ID > ? ORDER BY URL_ID LIMIT ?") {}

    /// The next rows; none at the end.
    const std::vector<ExaminedRow> &next() {
        m_select.reset();
        m_select.bind(1,
                      m_rows.empty() ? std::numeric_limits<std::int64_t>::min() : m_rows.back().id);
        m_select.bind(2, kRowsAtHand);
        m_rows.clear();
        while (m_select.executeStep())
            m_rows.push_back({m_select.getColumn(0).getInt64(), hash(), mayBePage()});
        return m_rows;
    }

  private:
    bool mayBePage() { return partsOf(m_select.getColumn(2).getString()) != CacheParts::none; }

    /// Rows that another program wrote may have a URL without its hash.
    std::string hash() {
        const std::string url = m_select.getColumn(3).getString();
        return url.empty() ? m_select.getColumn(1).getString() : hashOfUrl(url);
    }

    SQLite::Statement m_select;
    std::vector<ExaminedRow> m_rows;
};

/// Writes the texts of cached pages anew.
class PageRefresh {
  public:
    PageRefresh(const LinkContext &ctx, LinkTotals &totals)
        : m_ctx(ctx), m_totals(totals), m_trap(ctx.log, kProcedure),
          m_update(ctx.project, "UPDATE URLs SET HTMLBody = ?, Links = ? WHERE URL_ID = ?") {}

    void run(std::int64_t id) {
        auto record = m_ctx.records.getURL(UrlId{id});
        const bool read =
            record && m_trap.run(static_cast<std::uint64_t>(id), [&] { refresh(*record); });
        m_totals.notRead += read ? 0 : 1;
        if (record)
            dropBody(*record);
    }

  private:
    void refresh(UrlRecord &record) {
        record.cacheType = trim(record.cacheType);
        const Extraction extraction{m_ctx.evidence, m_ctx.scratch, m_ctx.log};
        SavedContent content(record, extraction, m_content);
        const ContentFacts *facts = content.facts();
        if (!facts) {
            ++m_totals.notFetched;
            return;
        }
        // The cheap test, before anything is decoded or parsed: most of a cache is pictures.
        if (!facts->hasHtml && !facts->hasBody)
            return;
        write(record.URLID, readPageContent(content.pageText(), content.file()));
        ++m_totals.refreshed;
    }

    void write(UrlId id, const PageContent &page) {
        std::string links;
        for (const std::string &link : page.links)
            links.append(links.empty() ? "" : "\r\n").append(link);
        onProject([&] {
            m_update.tryReset();
            m_update.bindNoCopy(1, page.body);
            m_update.bindNoCopy(2, links);
            bindId(m_update, 3, id);
            m_update.exec();
            m_update.tryReset();
        });
    }

    /// The next one's gets the same name.
    void dropBody(const UrlRecord &record) {
        m_content.forget();
        std::error_code ignored; // it is scratch
        if (!record.RunTimeTempFilePath.empty())
            std::filesystem::remove(record.RunTimeTempFilePath, ignored);
    }

    const LinkContext &m_ctx;
    LinkTotals &m_totals;
    ContentProbe m_content;
    RecordTrap m_trap;
    SQLite::Statement m_update;
};

/// Loose pages have no URL. All of them carry the hash of an empty text, and would be taken for
/// pages that link to each other.
bool hasUrl(const ExaminedRow &row) {
    static const std::string none = hashOfUrl("");
    return !row.hash.empty() && !equalsNoCase(row.hash, none);
}

/// Finds the pages that link to a record.
class Matching {
  public:
    explicit Matching(SQLite::Database &project)
        : m_next(project, "SELECT URL_ID, Link_ID FROM Links WHERE HashedURL = ? AND URL_ID > ? "
                          "ORDER BY URL_ID, Link_ID LIMIT 1"),
          m_insert(project, "INSERT INTO LinkAnalysis (Parent_ID, Child_ID, URL, HashedURL) SELECT "
                            "URL_ID, ?, trim(URL), HashedURL FROM Links WHERE Link_ID = ? "
                            "AND URL_ID IN (SELECT URL_ID FROM URLs)") {}

    /// Stores a pair for each page that holds the record's hash, in the order in which imports
    /// found the links.
    void addPairsOf(const ExaminedRow &row, LinkTotals &totals) {
        findFirstLinks(row);
        for (const std::int64_t link : m_links)
            ++(insert(row.id, link) ? totals.matches : totals.withoutPage);
    }

  private:
    /// False when the page isn't there: a pair of it can't be stored.
    bool insert(std::int64_t child, std::int64_t link) {
        m_insert.reset();
        m_insert.bind(1, child);
        m_insert.bind(2, link);
        return m_insert.exec() > 0;
    }

    /// A page holds a link many times over, its own address once for each of its links: the index
    /// is asked for the next page, so that only the first is read.
    void findFirstLinks(const ExaminedRow &row) {
        m_links.clear();
        m_next.reset();
        m_next.bind(1, row.hash);
        m_next.bind(2, std::numeric_limits<std::int64_t>::min());
        while (m_next.executeStep()) {
            const std::int64_t page = m_next.getColumn(0).getInt64();
            if (page != row.id) // a page's link to itself says nothing
                m_links.push_back(m_next.getColumn(1).getInt64());
            m_next.reset();
            m_next.bind(2, page);
        }
        std::ranges::sort(m_links);
    }

    SQLite::Statement m_next;
    SQLite::Statement m_insert;
    std::vector<std::int64_t> m_links; ///< `Link_ID`s
};

class LinkWalk {
  public:
    LinkWalk(const LinkContext &ctx, LinkTotals &totals)
        : m_ctx(ctx), m_totals(totals), m_rows(ctx.project), m_pages(ctx, totals),
          m_matching(ctx.project) {}

    void run() {
        SQLite::Transaction transaction(m_ctx.project, SQLite::TransactionBehavior::IMMEDIATE);
        while (!m_totals.cancelled) {
            const auto &rows = m_rows.next();
            if (rows.empty())
                break;
            for (const ExaminedRow &row : rows)
                if (!examine(row))
                    break;
        }
        transaction.commit();
    }

  private:
    bool examine(const ExaminedRow &row) {
        const auto all = static_cast<double>(std::max<std::int64_t>(m_totals.records, 1));
        m_totals.cancelled = !m_ctx.task.advance(static_cast<double>(m_totals.examined) / all);
        if (m_totals.cancelled)
            return false;
        ++m_totals.examined;
        show();
        if (row.mayBePage)
            m_pages.run(row.id);
        if (hasUrl(row))
            m_matching.addPairsOf(row, m_totals);
        else
            ++m_totals.withoutUrl;
        return true;
    }

    void show() {
        if (!m_ctx.task.wantsStep())
            return;
        TaskStep step;
        step.topMessage = fmt::format("Examining {} of {}", m_totals.examined, m_totals.records);
        step.topCounter = m_totals.examined;
        step.topTotal = m_totals.records;
        step.bottomMessage = fmt::format("Match Count: {}", m_totals.matches);
        m_ctx.task.show(step);
    }

    const LinkContext &m_ctx;
    LinkTotals &m_totals;
    RowsInTurn m_rows;
    PageRefresh m_pages;
    Matching m_matching;
};

std::int64_t countOf(SQLite::Database &project, const char *query) {
    return project.execAndGet(query).getInt64();
}

} // namespace

LinkTotals runLinkAnalysis(const LinkContext &ctx) {
    return onProject([&] {
        LinkTotals totals;
        // Every run starts from nothing. What stops this stops the writing of pairs too.
        ctx.project.tryExec("DELETE FROM LinkAnalysis");
        totals.records = countOf(ctx.project, "SELECT Count(URL_ID) As LinkCount FROM URLs");
        totals.links = countOf(ctx.project, "SELECT Count(*) FROM Links");
        totals.withoutHash =
            countOf(ctx.project, "SELECT Count(*) FROM Links WHERE ifnull(HashedURL, '') = ''");
        ctx.task.describe({std::string(kTitle), std::string(kSubject), "", ""});
        if (ensureLinkHashIndex(ctx.project, ctx.task) == IndexState::Cancelled)
            totals.cancelled = true;
        else
            LinkWalk(ctx, totals).run();
        return totals;
    });
}

std::string notesOn(const LinkTotals &totals) {
    std::string notes;
    const auto add = [&notes](const std::string &line) {
        notes.append(notes.empty() ? "" : "\n").append(line);
    };
    if (totals.cancelled)
        add(fmt::format("The analysis was cancelled: {} of {} records were examined.",
                        totals.examined, totals.records));
    if (totals.links == 0)
        add("The project holds no hyperlinks: nothing was imported with the 'Parse Advanced "
            "Metadata' option.");
    const auto tell = [&add](std::int64_t count, std::string_view one, std::string_view many,
                             std::string_view what) {
        if (count > 0)
            add(fmt::format("{} {}", counted(static_cast<std::uint64_t>(count), one, many), what));
    };
    tell(totals.withoutUrl, "record", "", "without a URL: compared with nothing.");
    tell(totals.withoutHash, "hyperlink", "", "without a hash: compared with nothing.");
    tell(totals.withoutPage, "match", "matches",
         "left out: the page that holds the link is no longer in the project.");
    tell(totals.notFetched, "record", "",
         "whose cached content was not found in the evidence; what the project holds of the page "
         "was left as it is.");
    tell(totals.notRead, "record", "",
         "could not be read as a page; the error log has the reasons.");
    return notes;
}

} // namespace nv
