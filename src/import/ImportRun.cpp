#include "import/ImportRun.h"

#include "base/Files.h"
#include "base/Storage.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "db/records/SourceFiles.h"
#include "db/schema/LateUrlIndex.h"
#include "db/sql/UncheckedReferences.h"
#include "db/sql/WriteBatch.h"
#include "import/HashesBeside.h"
#include "import/ImportSink.h"
#include "readers/BrowserOf.h"
#include "readers/ContentProbe.h"
#include "readers/EvidenceGaps.h"
#include "readers/Scratch.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <optional>
#include <set>
#include <utility>

namespace nv {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kProcedure = "ImportForm.ImportFiles()";
// What is left out by rule is no failure, but whoever reads the log later has to learn of it.
constexpr std::string_view kCounts = "ImportForm.ImportFiles() counts";
constexpr std::string_view kScratchName = "~import";

/// The import's own folder below the scratch folder, emptied for each file and gone at the end.
class ScratchFolder {
  public:
    explicit ScratchFolder(const fs::path &parent) : m_path(parent / kScratchName) {}
    ~ScratchFolder() { scratch::dropFolder(m_path); }
    ScratchFolder(const ScratchFolder &) = delete;
    ScratchFolder &operator=(const ScratchFolder &) = delete;

    const fs::path &path() const { return m_path; }
    /// Throws StorageFailure.
    const fs::path &emptied() const {
        if (!scratch::isEmptyFolder(m_path)) // most readers leave nothing
            makeEmptyFolder(m_path);
        return m_path;
    }

  private:
    fs::path m_path;
};

/// Keeps what the log was told last, so that the summary can say it too, and adds each file beside
/// the artefacts that couldn't be read to what the scan couldn't read.
class HeardLog final : public GapLog {
  public:
    HeardLog(FailureLog &log, std::vector<UnreadPlace> &unreadable)
        : m_log(log), m_unreadable(unreadable) {
        for (const UnreadPlace &place : unreadable)
            m_known.insert(place.path);
    }
    void write(const Failure &failure) override {
        last = failure.message;
        m_log.write(failure);
    }
    void unread(const fs::path &file, const std::string &reason) override {
        if (m_known.insert(file).second)
            m_unreadable.push_back({file, reason});
    }
    /// No reader fails over a folder in which it can't look: files that aren't found are no
    /// failure.
    void unlisted(const UnreadPlace &folder) {
        if (!m_known.insert(folder.path).second)
            return;
        m_unreadable.push_back(folder);
        m_log.write({folder.reason, std::string(kProcedure), Severity::Warning,
                     std::string(kContactSupport)});
    }
    std::string last;

  private:
    FailureLog &m_log;
    std::vector<UnreadPlace> &m_unreadable;
    std::set<fs::path> m_known;
};

ArtefactState stateOf(ReadState state) {
    switch (state) {
    case ReadState::complete:
        return ArtefactState::complete;
    case ReadState::cancelled:
        return ArtefactState::cancelled;
    case ReadState::cutShort:
        return ArtefactState::cutShort;
    case ReadState::notReadYet:
        return ArtefactState::notReadYet;
    case ReadState::failed:
        break;
    }
    return ArtefactState::failed;
}

/// A file's share of the progress bar: by its size, and empty files count a little too.
double weightOf(const HistoryFile &file) {
    return static_cast<double>(file.fileSize) + 1;
}

/// Files of one record, such as loose pages, share commits. Any other artefact may take its time
/// before it brings the first record.
bool isReadAtOnce(const Reader &reader, const HistoryFile &file) {
    constexpr std::uint64_t kQuickPage = std::uint64_t{1} << 20; // bytes
    return reader.isOneRecord && file.fileSize <= kQuickPage;
}

std::string notReadYet(const Reader *reader) {
    return reader && !reader->kind.empty()
               ? fmt::format("{}, not read yet: nothing of it is in the project", reader->kind)
               : "this format is not read yet";
}

class Import {
  public:
    Import(const ImportRun &run, ImportSettings &job, ImportSummary &summary)
        : m_run(run), m_files(job.historyFiles), m_asked(job.asked), m_summary(summary),
          m_log(run.log, summary.gaps.unreadable),
          m_scratch(run.scratch), m_extraction{.evidence = run.evidence,
                                               .folder = m_scratch.path(),
                                               .log = m_log,
                                               .classicOnly = job.classicOnly},
          m_looks{job.verifyFileSignatures ? Signatures::verify : Signatures::trustNames,
                  job.parseAdvancedMetadata, run.hashSets != nullptr},
          m_classicOnly(job.classicOnly), m_secrets(job.secrets), m_browserOf(run.evidence, &m_log),
          m_sources(run.project, run.clock, m_log,
                    job.classicOnly ? ReadBy::classicRules : ReadBy::allRules),
          m_unchecked(run.project), m_urlIndex(run.project, m_log),
          m_store(run.project, run.zone, run.clock, m_log),
          m_batch(run.project, [this] { note(); }) {
        if (run.opened)
            m_beside.emplace(run.evidence, *run.opened, m_workers, m_files);
    }
    /// Whatever ends the import, the summary tells of what is in the project.
    ~Import() {
        if (!m_batch.end())
            takeBack();
    }
    Import(const Import &) = delete;
    Import &operator=(const Import &) = delete;

    void all() {
        double total = 0;
        for (const HistoryFile &file : m_files)
            total += weightOf(file);
        double done = 0;
        for (std::size_t i = 0; i < m_files.count() && !m_summary.cancelled; ++i) {
            HistoryFile &file = m_files.item(i + 1);
            const double from = done / total;
            done += weightOf(file);
            if (m_run.task.advance(from))
                one(file, m_summary.artefacts[i], from, done / total);
            else
                m_summary.cancelled = true;
            m_finished = i + 1;
            m_batch.written();
        }
        m_batch.commit(); // here and not at the batch's end, where a full disk couldn't be told
    }

  private:
    /// Where the project stood at the last commit.
    void note() {
        m_finishedKept = m_finished;
        const bool isWithin = m_finished < m_files.count();
        m_rowsKept = isWithin ? m_summary.artefacts[m_finished].byKind : RowsByKind();
    }

    /// Takes out of the summary what the project gave up with its last batch.
    void takeBack() {
        for (std::size_t i = m_finishedKept; i < m_files.count(); ++i) {
            ArtefactResult &result = m_summary.artefacts[i];
            const RowsByKind byKind = i == m_finishedKept ? m_rowsKept : RowsByKind();
            const std::uint64_t kept = rowsOf(byKind);
            const bool isWhole = result.state == ArtefactState::complete;
            if (result.rowsSaved == kept && !isWhole)
                continue;
            settle(result, ArtefactState::failed,
                   fmt::format("the project could not be written: {} of its {} are kept", kept,
                               counted(result.rowsSaved, "row")));
            result.rowsLost += result.rowsSaved - kept;
            result.rowsSaved = kept;
            result.byKind = byKind;
        }
    }

    void one(HistoryFile &file, ArtefactResult &result, double from, double to) {
        const auto begun = std::chrono::steady_clock::now();
        const Reader *reader = m_run.readerFor(file.historyFileType);
        result.origin = file.origin = m_browserOf(file.fullPath, engineOf(reader));
        if (m_run.evidence.kindOf(file.fullPath) == PlaceKind::nothing)
            settle(result, ArtefactState::vanished, "the file is no longer there");
        else if (!reader || !reader->read)
            settle(result, ArtefactState::notReadYet, notReadYet(reader));
        else if (result.isLogged = m_sources.logFile(file); !result.isLogged)
            settle(result, ArtefactState::failed, m_log.last);
        else
            read(*reader, file, result, SubTask(m_run.task, from, to));
        if (m_beside && reader && !reader->isOneRecord)
            m_beside->addLogsOf(file.fullPath);
        if (m_beside)
            result.beside = m_beside->take(m_log);
        m_summary.cancelled |= result.state == ArtefactState::cancelled;
        const std::chrono::duration<double> took = std::chrono::steady_clock::now() - begun;
        result.seconds = took.count();
    }

    static void settle(ArtefactResult &result, ArtefactState state, std::string_view reason) {
        result.state = state;
        result.reason = reason;
    }

    void read(const Reader &reader, HistoryFile &file, ArtefactResult &result, SubTask task) {
        if (!isReadAtOnce(reader, file))
            m_batch.commit(); // what came before doesn't wait for it
        ImportSink sink(m_store, m_looks, m_extraction, m_content, m_batch, file, result);
        sink.lookWith(m_workers);
        sink.lookUpIn(m_run.hashSets);
        AskedSink asked(sink, m_asked, reader);
        settle(result, ArtefactState::failed, "the import ended while this file was read");
        ReadResult outcome = readTrapped(reader, file, asked, task);
        sink.finish();
        result.type = file.historyFileType;
        if (std::exchange(result.origin, file.origin) != file.origin)
            m_sources.noteOrigin(file); // its reading has told more than its place
        result.notReached = outcome.notReached;
        result.passedOver = std::move(outcome.passedOver);
        result.noted = std::move(outcome.noted);
        if (asked.notAsked() > 0)
            result.passedOver["not asked for"] += asked.notAsked();
        result.warning = warningTrapped(reader, file);
        for (const UnreadPlace &place : m_run.evidence.unlisted())
            m_log.unlisted(place);
        if (outcome.state == ReadState::complete && !m_sources.setSuccessful(file.sourceFileID))
            ++result.noted["file whose row could not be marked as read to its end"];
        settle(result, stateOf(outcome.state), outcome.reason); // now, since the mark may fail
        logCounts(file, result);
    }

    void logCounts(const HistoryFile &file, const ArtefactResult &result) {
        const auto write = [&](std::uint64_t count, std::string_view what) {
            m_run.log.write({fmt::format("{} ({}): {} {}", textOf(file.fullPath), result.readerKey,
                                         count, what),
                             std::string(kCounts), Severity::Low, std::string(kNotSerious)});
        };
        for (const auto &[reason, count] : result.passedOver)
            write(count, "passed over: " + reason);
        if (result.notReached > 0)
            write(result.notReached, "entries not reached: " + result.reason);
        if (!result.warning.empty())
            write(result.rowsSaved, "rows: " + result.warning);
    }

    std::string warningTrapped(const Reader &reader, const HistoryFile &file) {
        return trapped(m_log, Severity::Warning, kProcedure, kContactSupport, std::string(),
                       [&] { return warningOn(reader, file.fullPath, m_run.evidence); });
    }

    /// A reader that fails unforeseen is told like one that knows why.
    ReadResult readTrapped(const Reader &reader, HistoryFile &file, RecordSink &sink,
                           TaskMonitor &task) {
        if (file.historyFileType == HistoryFileType::simpleHTML)
            task.describe({"IMPORTING ORPHANED HTML FILES", "", textOf(file.fullPath), ""});
        const auto result =
            trapped(m_log, Severity::Warning, kProcedure, kContactSupport,
                    std::optional<ReadResult>(), [&] {
                        ReadContext context{
                            file,     m_run.evidence, m_content, m_run.clock, m_scratch.emptied(),
                            sink,     m_log,          task,      false,       m_classicOnly,
                            m_secrets};
                        return std::optional(reader.read(context));
                    });
        return result ? *result : ReadResult{ReadState::failed, m_log.last, 0, {}};
    }

    const ImportRun &m_run;
    HistoryFiles &m_files;
    const AskedKinds &m_asked;
    ImportSummary &m_summary;
    HeardLog m_log;
    ContentProbe m_content;
    ScratchFolder m_scratch;
    Extraction m_extraction;
    ContentLooks m_looks;
    bool m_classicOnly;
    bool m_secrets;
    BrowserOf m_browserOf;
    SourceFiles m_sources;
    UncheckedReferences m_unchecked;
    LateUrlIndex m_urlIndex;
    RecordStore m_store;
    std::size_t m_finished = 0; ///< artefacts, from the first
    std::size_t m_finishedKept = 0;
    RowsByKind m_rowsKept; ///< of the artefact after them
    Workers m_workers;
    std::optional<HashesBeside> m_beside;
    WriteBatch m_batch; ///< over artefacts: a commit for each loose page takes long
};

/// Every file of the list as one that the import hasn't reached.
ImportSummary nothingReached(const ImportRun &run, const HistoryFiles &files) {
    ImportSummary summary;
    for (const HistoryFile &file : files) {
        ArtefactResult &result = summary.artefacts.emplace_back();
        const Reader *reader = run.readerFor(file.historyFileType);
        result.path = file.fullPath;
        result.type = file.historyFileType;
        result.readerKey = reader ? reader->key : "";
        result.fileSize = file.fileSize;
        result.md5Hash = file.md5Hash;
        result.sha256Hash = file.sha256Hash;
    }
    return summary;
}

} // namespace

ImportSummary runImport(const ImportRun &run, ImportSettings &job) {
    if (job.cancelImport)
        job.historyFiles.clear();
    ImportSummary summary = nothingReached(run, job.historyFiles);
    summary.gaps = job.gaps;
    summary.cancelled = job.cancelImport;
    summary.failure = failureOf(run.log, kProcedure, [&] {
                          Import(run, job, summary).all();
                      }).value_or(std::string());
    return summary;
}

} // namespace nv
