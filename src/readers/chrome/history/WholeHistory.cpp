#include "readers/chrome/history/WholeHistory.h"

#include "base/Files.h"
#include "base/Trap.h"
#include "readers/FactSource.h"
#include "readers/chrome/Kinds.h"
#include "readers/chrome/history/Downloads.h"
#include "readers/chrome/history/SearchTerms.h"
#include "readers/chrome/history/VisitTables.h"
#include "readers/chrome/shared/MetaTable.h"
#include "readers/chrome/shared/StoredDate.h"
#include "readers/chrome/shared/Transition.h"
#include "readers/sqlite/FurtherTables.h"
#include "readers/sqlite/HistoryRow.h"
#include "readers/sqlite/SchemaVersion.h"
#include "readers/sqlite/SqliteReading.h"
#include "time/SourceClocks.h"

#include <string>

namespace nv {

namespace {

// What each part takes of the time: storing is most of it.
constexpr Stretch kPageList = {0, 0.1};
constexpr Stretch kVisitList = {0.1, 0.35};
constexpr Stretch kDownloadList = {0.35, 0.4};
constexpr Stretch kPageRecords = {0.4, 0.55};
constexpr Stretch kVisitRecords = {0.55, 0.9};
constexpr Stretch kDownloadRecords = {0.9, 0.95};
constexpr Stretch kTermRecords = {0.95, 1};

class WholeHistory {
  public:
    WholeHistory(ReadContext &ctx, EvidenceDatabase &database, std::string_view procedure)
        : m_sink(ctx.sink), m_ctx(withSink(ctx, m_sink)), m_database(database),
          m_procedure(procedure), m_tables(m_ctx, database, procedure, m_further),
          m_fileCreated(ctx.evidence.factsOf(ctx.file.fullPath).created) {}

    ReadResult read(const ReadPages &readPages) {
        noteSchemaVersion(m_ctx, "History", schemaVersion(m_ctx, m_database));
        if (!readTables())
            return cancelled({});
        ReadResult result = readPageRecords(readPages);
        if (result.state == ReadState::cancelled || !saveVisits() ||
            !m_downloads.save(m_tables, m_ctx, kDownloadRecords, m_fileCreated) ||
            !saveSearchTerms(m_tables, m_ctx, m_history.pages, kTermRecords, m_fileCreated,
                             m_procedure, m_further))
            return cancelled(std::move(result));
        return joined(std::move(result));
    }

  private:
    bool readTables() {
        SubTask task(m_ctx.task, kPageList.from, kPageList.to);
        if (!m_history.pages.read(m_database, task) ||
            !m_history.read(m_tables, m_database, kVisitList, m_further) ||
            !m_downloads.read(m_tables, kDownloadList))
            return false;
        m_downloads.joinWith(m_history);
        if (const std::uint64_t hops = m_downloads.hopsWithoutDownload())
            m_further.passedOver["addresses of downloads that are no longer listed"] = hops;
        return true;
    }

    ReadResult readPageRecords(const ReadPages &readPages) {
        ReadingPart part(m_ctx, kPageRecords);
        return readPages(part.context, [this](UrlRecord &record, std::int64_t typed) {
            addSource(record.facts, "urls", record.Reference_ID);
            if (typed > 0)
                record.facts.add("typed_count", typed);
            const ListedPage *page = m_history.pages.find(record.Reference_ID);
            if (!page || page->visit == ListedPage::kNoVisit)
                return;
            const StoredVisit &visit = m_history.visits.visits()[page->visit];
            m_history.addFacts(record.facts, visit);
            record.facts.add("from_url", std::string(m_history.referrerOf(visit)));
        });
    }

    bool saveVisits() {
        SubTask task(m_ctx.task, kVisitRecords.from, kVisitRecords.to);
        RecordTrap trap(m_ctx.log, m_procedure, textOf(m_ctx.file.fullPath));
        const auto &visits = m_history.visits.visits();
        for (std::size_t at = 0; at < visits.size(); ++at) {
            const ListedPage *page = m_history.pageOf(visits[at]);
            if (page && page->visit == at)
                continue;
            if (!task.advance(static_cast<double>(at) / static_cast<double>(visits.size())))
                return false;
            trap.attempt(static_cast<std::uint64_t>(visits[at].id),
                         [&] { saveVisit(visits[at], page); });
        }
        if (trap.failed() > 0)
            m_further.passedOver["damaged record of table visits"] += trap.failed();
        return true;
    }

    void saveVisit(const StoredVisit &visit, const ListedPage *page) {
        const VisitTexts *texts = page ? nullptr : m_history.visits.findTexts(visit.id);
        const std::string url = page ? std::string(page->url) : texts ? texts->url : std::string();
        UrlRecord record =
            historyRecord(m_ctx, {visit.id, url, page && page->isHidden, std::nullopt},
                          kChromeVisit.word, m_fileCreated);
        if (page)
            record.WebpageTitle = page->title;
        record.ActionDateUTC = chromeMoment(visit.time == StoredVisit::kNothing ? 0 : visit.time);
        record.LastVisited = record.ActionDateUTC;
        record.ActionDateLocal = utcDateToLocal(record.ActionDateUTC, m_ctx.clock);
        record.Referrer = m_history.referrerOf(visit);
        record.Typed = isTypedTransition(visit.transition);
        const std::string transition = transitionStatus(visit.transition);
        if (!m_ctx.deleted && !transition.empty())
            record.Status = transition;
        addSource(record.facts, "visits", visit.id);
        m_history.addFacts(record.facts, visit);
        if (!page) {
            m_history.addFactsOfLostPage(record.facts, visit);
            ++m_further.noted["visits of pages that are no longer listed"];
        }
        m_ctx.sink.save(record);
    }

    ReadResult cancelled(ReadResult result) {
        result.state = ReadState::cancelled;
        return joined(std::move(result));
    }

    /// What the further tables lost, added to what the pages' did.
    ReadResult joined(ReadResult result) const {
        addLosses(result, m_further);
        if (result.state == ReadState::failed && m_sink.saved() > 0)
            result.state = ReadState::cutShort;
        return result;
    }

    CountingSink m_sink;
    ReadContext m_ctx;
    EvidenceDatabase &m_database;
    std::string_view m_procedure;
    ReadResult m_further;
    FurtherTables m_tables;
    Date m_fileCreated;
    VisitTables m_history;
    Downloads m_downloads;
};

} // namespace

ReadResult readWholeHistory(ReadContext &ctx, EvidenceDatabase &database,
                            std::string_view procedure, const ReadPages &readPages) {
    return WholeHistory(ctx, database, procedure).read(readPages);
}

} // namespace nv
