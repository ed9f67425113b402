#include "rebuild/TagOptions.h"

#include "base/Text.h"
#include "base/Trap.h"
#include "db/sql/BindId.h"
#include "db/sql/KeyWalk.h"
#include "db/sql/Savepoint.h"
#include "db/sql/SqliteErrors.h"
#include "readers/RecordKind.h"
#include "rebuild/PageText.h"
#include "rebuild/UrlPatterns.h"
#include "rebuild/WebMail.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <vector>

namespace nv {

namespace {

constexpr std::string_view kProcedure = "MainBAS.FindTagOptions()";
constexpr std::size_t kShownText = 60; ///< characters of a reference in a message

struct SearchedTag {
    std::int64_t tagID;
    std::optional<std::size_t> pattern; ///< nothing for a text that can't be searched for
};

/// Records that hold a tag's text in their URL, by urlID in rising order. A text such as a list of
/// countries has stands in nearly every URL, so that not all of them are kept.
class Found {
  public:
    void add(std::int64_t urlID, std::string_view url, std::string_view text) {
        ++m_count;
        const bool isFull = m_ids.size() >= kMostOptions;
        if (isFull && (m_exact == kMostExactOptions || !endsInText(url, text)))
            return;
        m_exact += isFull ? 1 : 0;
        m_ids.push_back(urlID);
    }
    bool isEmpty() const { return m_count == 0; }
    bool isCut() const { return m_ids.size() < static_cast<std::size_t>(m_count); }
    std::int64_t count() const { return m_count; }
    const std::vector<std::int64_t> &ids() const { return m_ids; }

  private:
    std::int64_t m_count = 0;
    std::size_t m_exact = 0; ///< of those beyond the first ones
    std::vector<std::int64_t> m_ids;
};

struct Candidates {
    std::string text; ///< that is searched for
    Found ofHost;
    Found ofAnyHost;

    const Found &chosen() const { return ofHost.isEmpty() ? ofAnyHost : ofHost; }
};

std::string without(std::string_view text, std::string_view what) {
    return replaceAll(text, what, "");
}

/// Which records belong to the page's own site.
class SiteTest {
  public:
    explicit SiteTest(std::string_view host)
        : m_host(host), m_isWebMail(isWebMail(host)),
          m_inUrl(LikePattern::compile("%" + std::string(host) + "%")) {}

    /// False for a host that makes no valid pattern: its pages are given no options at all.
    bool isPossible() const { return m_isWebMail || m_inUrl; }

    bool takes(std::string_view host, std::string_view url) const {
        if (equalsNoCase(host, m_host))
            return true;
        return m_isWebMail ? equalsNoCase(host, kWebMailParts) : m_inUrl->matches(url);
    }

  private:
    std::string m_host;
    bool m_isWebMail;
    std::optional<LikePattern> m_inUrl;
};

class OptionSearch {
  public:
    OptionSearch(const UrlRecord &page, const RebuildContext &ctx)
        : m_page(page), m_ctx(ctx), m_cacheType(toUpper(page.cacheType)), m_site(page.host) {}

    /// False when cancelled.
    bool run() {
        readTags();
        showStep("Finding Options", 0);
        return findCandidates() && storeOptions();
    }

  private:
    void readTags() {
        SQLite::Statement tags(m_ctx.project, "SELECT Tag_ID, OriginalTag FROM Tags "
                                              "WHERE URL_ID = ? ORDER BY Tag_ID");
        bindId(tags, 1, m_page.URLID);
        while (tags.executeStep()) {
            const std::string text = searchTextOf(tags.getColumn(1).getString());
            m_tags.push_back({tags.getColumn(0).getInt64(), m_patterns.add(text)});
            if (m_tags.back().pattern)
                m_candidates.push_back({text, {}, {}});
        }
    }

    bool findCandidates() {
        if (m_candidates.empty() || !m_site.isPossible())
            return true;
        SQLite::Statement urls(m_ctx.project, "SELECT URL_ID, URL, Host FROM URLs WHERE URL_ID >= "
                                              "?1 AND CacheType = ?2 ORDER BY URL_ID");
        urls.bind(2, m_cacheType); // the column compares without regard to case
        std::size_t lost = 0;
        KeyWalk walk(m_ctx.project, urls, [&](std::int64_t) {
            ++lost;
            return m_ctx.task.advance(0.5);
        });
        KeyStep step = walk.next();
        for (; step == KeyStep::Row; step = walk.next()) {
            if (!m_ctx.task.advance(0.5))
                return false;
            const std::string_view url = textIn(urls.getColumn(1));
            const std::string_view host = textIn(urls.getColumn(2));
            m_patterns.find(url, [&](std::size_t pattern) {
                Candidates &candidates = m_candidates[pattern];
                const bool ofHost = m_site.takes(host, url);
                (ofHost ? candidates.ofHost : candidates.ofAnyHost)
                    .add(urls.getColumn(0).getInt64(), url, candidates.text);
            });
        }
        tellOfLost(lost);
        return step == KeyStep::End;
    }

    void tellOfLost(std::size_t lost) const {
        if (lost == 0)
            return;
        m_ctx.log.write({fmt::format("record {}: its parts were not looked for among {} that could "
                                     "not be read, as the project is damaged where they lie",
                                     m_page.URLID, counted(lost, "row")),
                         std::string(kProcedure), Severity::Warning, std::string(kContactSupport)});
    }

    static std::string_view textIn(const SQLite::Column &column) {
        return {column.getText(), static_cast<std::size_t>(column.getBytes())};
    }

    bool storeOptions() {
        SQLite::Statement remove(m_ctx.project, "DELETE FROM TagOptions WHERE Tag_ID = ?");
        SQLite::Statement insert(m_ctx.project, insertText());
        SQLite::Statement note(m_ctx.project, "UPDATE Tags SET AccuracyScore = ? WHERE Tag_ID = ?");
        const auto count = static_cast<double>(m_tags.size());
        for (std::size_t i = 0; i < m_tags.size(); ++i) {
            if (m_ctx.task.wantsStep())
                showStep(fmt::format("Finding Options for Tag #{} of {} ", i + 1, m_tags.size()),
                         i + 1);
            if (!m_ctx.task.advance(0.5 + static_cast<double>(i) / count / 2))
                return false;
            Savepoint whole(m_ctx.project);
            remove.reset();
            remove.bind(1, m_tags[i].tagID);
            remove.exec();
            if (m_tags[i].pattern) {
                const Candidates &candidates = m_candidates[*m_tags[i].pattern];
                insertOptions(insert, m_tags[i].tagID, candidates.chosen());
                if (candidates.chosen().isCut())
                    noteCut(note, m_tags[i].tagID, candidates);
            }
            whole.release();
        }
        tellOfCut();
        return true;
    }

    /// What isn't stored is counted all the same: nothing is picked yet, of so many candidates.
    void noteCut(SQLite::Statement &note, std::int64_t tag, const Candidates &candidates) {
        note.reset();
        note.bind(1, scoreText(0, candidates.chosen().count()));
        note.bind(2, tag);
        note.exec();
        if (!m_widest || m_widest->chosen().count() < candidates.chosen().count())
            m_widest = &candidates;
        ++m_cut;
    }

    void tellOfCut() const {
        if (!m_widest)
            return;
        m_ctx.log.write(
            {fmt::format("record {}: {} more than {} candidates, of which these are kept; the text "
                         "\"{}\" alone stands in {} URLs",
                         m_page.URLID,
                         m_cut == 1 ? "a reference has" : fmt::format("{} references have", m_cut),
                         kMostOptions, charSub(m_widest->text, 0, kShownText),
                         m_widest->chosen().count()),
             std::string(kProcedure), Severity::Low, std::string(kNotSerious)});
    }

    std::string insertText() const {
        const std::string option = partsOf(m_cacheType) == CacheParts::byUrl
                                       ? "trim(URL)"
                                       : "'../' || trim(coalesce(CacheFolderName, '')) || '/' || "
                                         "trim(coalesce(CacheFileName, ''))";
        return "INSERT INTO TagOptions (TagURLID, Option, Tag_ID) SELECT URL_ID, " + option +
               ", ? FROM URLs WHERE URL_ID = ?";
    }

    static void insertOptions(SQLite::Statement &insert, std::int64_t tag, const Found &chosen) {
        for (const std::int64_t url : chosen.ids()) {
            insert.reset();
            insert.bind(1, tag);
            insert.bind(2, url);
            insert.exec();
        }
    }

    void showStep(std::string_view message, std::size_t n) const {
        TaskStep step;
        step.bottomMessage = message;
        step.bottomCounter = static_cast<std::int64_t>(n);
        step.bottomTotal = static_cast<std::int64_t>(m_tags.size());
        m_ctx.task.show(step);
    }

    const UrlRecord &m_page;
    const RebuildContext &m_ctx;
    std::string m_cacheType;
    SiteTest m_site;
    UrlPatterns m_patterns;
    std::vector<SearchedTag> m_tags;
    std::vector<Candidates> m_candidates; ///< by pattern
    const Candidates *m_widest = nullptr; ///< of the tags that have more options than are stored
    std::size_t m_cut = 0;                ///< those tags
};

} // namespace

std::string stripWhitespace(std::string_view text) {
    std::string stripped;
    std::ranges::copy_if(text, std::back_inserter(stripped),
                         [](char c) { return c != ' ' && c != '\r' && c != '\n' && c != '\t'; });
    return stripped;
}

std::string hostFromURL(std::string_view url) {
    if (charCount(url) < 4 || !startsWithNoCase(url, "http"))
        return {};
    std::size_t slash = url.find('/');
    for (int i = 1; i < 3 && slash != std::string_view::npos; ++i)
        slash = url.find('/', slash + 1);
    if (slash == std::string_view::npos)
        return {};
    std::string host(url.substr(0, slash));
    for (const std::string_view prefix : {"http://www.", "http://", "https://", "www."})
        host = replaceAllText(host, prefix, "");
    const std::size_t port = host.find(':');
    return port != std::string::npos && port > 0 ? host.substr(0, port) : host;
}

std::string searchTextOf(std::string_view originalTag) {
    const std::string text = stripWhitespace(without(trim(originalTag), "../"));
    const bool beginsHere = text.size() > 2 && text.starts_with("./");
    return beginsHere ? without(without(text, "../"), "./") : text;
}

bool endsInText(std::string_view url, std::string_view text) {
    const std::string_view path = url.substr(0, url.find_first_of("?#"));
    return path.size() >= text.size() && equalsNoCase(path.substr(path.size() - text.size()), text);
}

std::string scoreText(std::int64_t picks, std::int64_t candidates) {
    return fmt::format("{}:{}", picks, candidates);
}

std::int64_t candidatesIn(std::string_view accuracyScore) {
    const std::size_t colon = accuracyScore.find(':');
    std::int64_t count = 0;
    if (colon != std::string_view::npos)
        std::from_chars(accuracyScore.data() + colon + 1,
                        accuracyScore.data() + accuracyScore.size(), count);
    return count;
}

void forgetTagOptions(const RebuildContext &ctx) {
    onProject([&] { ctx.project.exec("DELETE FROM TagOptions"); });
}

bool findTagOptions(const UrlRecord &page, const RebuildContext &ctx) {
    return trapped(ctx.log, Severity::Warning, kProcedure, kContactSupport, false,
                   [&] { return onRow([&] { return OptionSearch(page, ctx).run(); }); });
}

} // namespace nv
