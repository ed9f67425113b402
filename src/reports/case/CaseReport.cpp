#include "reports/case/CaseReport.h"

#include "base/Digest.h"
#include "base/Files.h"
#include "base/Storage.h"
#include "base/Text.h"
#include "base/TextRows.h"
#include "base/Trap.h"
#include "db/sql/Savepoint.h"
#include "db/sql/SqliteErrors.h"
#include "reports/case/CaseCards.h"
#include "reports/case/CaseIndex.h"
#include "reports/case/CaseOrigins.h"
#include "reports/case/CasePlan.h"
#include "reports/case/CaseTables.h"
#include "reports/report/ReportWriter.h"
#include "reports/report/SortTable.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <fstream>
#include <vector>

namespace nv {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kProcedure = "ReportClass.CreateCaseReport()";
constexpr std::size_t kBatch = 32; ///< cards that are drawn together
class CaseReport {
  public:
    CaseReport(ReportWriter &report, const ReportContext &ctx, const ReportFolder &folder)
        : m_report(report), m_ctx(ctx), m_folder(folder), m_redactor(report.caseOptions.redactions),
          m_rows(ctx, m_redactor),
          m_plan(report, onProject([&] { return CaseTagRows(ctx.rebuild.project); })) {}

    /// False when cancelled.
    bool make();

  private:
    void prepare();
    bool plan();
    void dropLeftOut();
    std::uint8_t markOf(SQLite::Statement &row, std::int32_t id);
    void nameSections();
    bool writeTables();
    void writeRow(CaseTable &table, std::size_t place);
    bool writeCards();
    bool writeIndex();
    void listFiles() const;
    bool step(std::size_t done, double from, double to);
    bool writeTags();
    bool writeOrigins();

    ReportWriter &m_report;
    const ReportContext &m_ctx;
    const ReportFolder &m_folder;
    Redactor m_redactor;
    CaseRows m_rows;
    CasePlan m_plan;
    std::optional<CaseOrigins> m_origins;
    CaseFrame m_frame;
};

bool CaseReport::make() {
    prepare();
    m_plan.ids = sortedRows(m_ctx.rebuild.project, m_report.sortAscending ? DateOrder::oldestFirst
                                                                          : DateOrder::newestFirst);
    if (!plan())
        return false;
    nameSections();
    if (!writeTables() || !writeTags() || !writeCards() || !writeOrigins() || !writeIndex())
        return false;
    listFiles();
    m_report.redacted = m_redactor.counts;
    m_report.unmetRedactions = m_redactor.unmet();
    moveFile(m_folder.unfinished(), m_report.reportFilePath);
    return true;
}

void CaseReport::prepare() {
    makeEmptyFolder(m_folder.path);
    makeFolder(m_folder.pictures());
    m_report.reportFolderPath = m_folder.path;
    m_report.reportFilePath = m_folder.index(kCaseType);
    m_report.reportDate = isoUtc(Date::fromTimePoint(m_ctx.clock.now()));
    m_rows.withNotes = m_report.includeNotes;
    m_rows.withTagNotes = m_report.caseOptions.tagNotes;
    m_frame.title = m_redactor.text(m_report.reportTitle.empty() ? std::string(kDefaultReportTitle)
                                                                 : m_report.reportTitle);
    m_frame.version = m_ctx.settings.version;
}

bool CaseReport::step(std::size_t done, double from, double to) {
    TaskMonitor &task = m_ctx.rebuild.task;
    const std::size_t total = std::max<std::size_t>(m_plan.ids.size(), 1);
    if (task.wantsStep()) {
        TaskStep now;
        now.topMessage = fmt::format("Processing URLs {} of {}", done, m_plan.ids.size());
        now.topCounter = static_cast<std::int64_t>(done);
        now.topTotal = static_cast<std::int64_t>(m_plan.ids.size());
        task.show(now);
    }
    return task.advance(from +
                        (to - from) * static_cast<double>(done) / static_cast<double>(total));
}

std::uint8_t CaseReport::markOf(SQLite::Statement &row, std::int32_t id) {
    return trapped(m_ctx.rebuild.log, Severity::Serious, kProcedure, kContactSupport,
                   static_cast<std::uint8_t>(brokenMark | static_cast<int>(RecordGroup::other)),
                   [&] {
                       row.bind(1, id);
                       const bool isThere = onRow([&row] { return row.executeStep(); });
                       if (!isThere)
                           throw std::runtime_error(fmt::format("the record {} isn't there", id));
                       int mark = static_cast<int>(groupOf(row.getColumn(0).getString()));
                       mark |= row.getColumn(1).getInt() != 0 ? tickedMark : 0;
                       mark |= m_plan.tags.hasAny(id) ? taggedMark : 0;
                       if (m_redactor.leavesOutRows() && m_rows.isLeftOut(UrlId{id}))
                           mark |= leftOutMark;
                       return static_cast<std::uint8_t>(mark);
                   });
}

bool CaseReport::plan() {
    SQLite::Statement row(m_ctx.rebuild.project,
                          "SELECT CacheType, Tagged FROM URLs WHERE URL_ID = ?");
    m_plan.marks.reserve(m_plan.ids.size());
    for (std::size_t at = 0; at < m_plan.ids.size(); ++at) {
        if (!step(at, 0, 0.1))
            return false;
        m_plan.marks.push_back(markOf(row, m_plan.ids[at]));
        row.tryReset();
        m_redactor.counts.rowsLeftOut += (m_plan.marks.back() & leftOutMark) != 0 ? 1 : 0;
    }
    if (m_redactor.counts.rowsLeftOut > 0)
        dropLeftOut();
    return true;
}

/// Whoever tells how many rows were reported counts those of the table. Their order is known.
void CaseReport::dropLeftOut() {
    SQLite::Database &project = m_ctx.rebuild.project;
    onProject([&] {
        Savepoint whole(project);
        project.exec("DELETE FROM URLSortTable");
        SQLite::Statement add(project, "INSERT INTO URLSortTable (URL_ID) VALUES (?)");
        for (std::size_t place = 0; place < m_plan.ids.size(); ++place) {
            if (m_plan.isLeftOut(place))
                continue;
            add.bind(1, m_plan.ids[place]);
            add.exec();
            add.reset();
        }
        whole.release();
    });
}

void CaseReport::nameSections() {
    m_frame.sections = m_plan.sections(m_redactor);
    m_origins.emplace(m_ctx, m_frame, m_frame.sections.back(), m_redactor);
    m_origins->choose(m_plan.explained());
}

bool CaseReport::writeTags() {
    std::size_t tag = 0;
    for (const CaseSection &section : m_frame.sections) {
        if (section.part != CaseSection::Part::tag)
            continue;
        const std::size_t own = tag++;
        if (section.rows == 0)
            continue;
        CaseTable table(m_frame, section, m_folder.path);
        for (std::size_t place = 0; place < m_plan.ids.size(); ++place) {
            if (!m_plan.isOfTag(place, own))
                continue;
            if (!step(place, 0.45, 0.5))
                return false;
            writeRow(table, place);
        }
        table.finish();
    }
    return true;
}

bool CaseReport::writeOrigins() {
    SubTask part(m_ctx.rebuild.task, 0.85, 0.9);
    return m_origins->write(m_folder.path, part);
}

bool CaseReport::writeTables() {
    std::size_t done = 0;
    for (std::size_t at = 0; at < kCaseGroups.size(); ++at) {
        const CaseSection &section = m_frame.sections[at + 1];
        if (section.rows == 0)
            continue;
        CaseTable table(m_frame, section, m_folder.path);
        for (std::size_t place = 0; place < m_plan.ids.size(); ++place) {
            if (!m_plan.isOf(place, kCaseGroups.at(at)))
                continue;
            if (!step(done++, 0.1, 0.45))
                return false;
            writeRow(table, place);
        }
        table.finish();
    }
    return true;
}

void CaseReport::writeRow(CaseTable &table, std::size_t place) {
    const UrlId id{m_plan.ids[place]};
    const auto row = (m_plan.marks[place] & brokenMark) != 0
                         ? std::nullopt
                         : trapped(m_ctx.rebuild.log, Severity::Serious, kProcedure,
                                   kContactSupport, std::optional<CaseRow>(), [&] {
                                       return std::optional(m_rows.row(id, RowFacts::without));
                                   });
    if (row)
        return table.add(*row);
    table.addBroken(id);
    ++m_report.recordsFailed;
    noteUnread(m_report.failedRows, id);
}

bool CaseReport::writeCards() {
    const CaseSection &section = m_frame.sections.front();
    if (section.rows == 0)
        return true;
    CaseCardPages pages(m_ctx, m_folder, m_frame, section, m_redactor);
    pages.rows.withNotes = m_report.includeNotes;
    pages.rows.withTagNotes = m_report.caseOptions.tagNotes;
    pages.originOf = [this](UrlId id) { return m_origins->placeOf(id); };
    RowIds batch;
    batch.reserve(kBatch);
    for (std::size_t place = 0; place <= m_plan.ids.size(); ++place) {
        const bool isLast = place == m_plan.ids.size();
        if (!isLast && m_plan.hasCard(place))
            batch.push_back(m_plan.ids[place]);
        if (batch.size() < kBatch && !isLast)
            continue;
        const auto total = static_cast<double>(m_plan.ids.size());
        SubTask part(m_ctx.rebuild.task,
                     0.5 + 0.35 * static_cast<double>(place - batch.size()) / total,
                     0.5 + 0.35 * static_cast<double>(place) / total);
        if (!step(place, 0.5, 0.85) || (!batch.empty() && !pages.add(batch, part)))
            return false;
        batch.clear();
    }
    pages.finish();
    m_report.filesFailed += pages.failures.files;
    m_report.changedRows.insert(pages.failures.changed.begin(), pages.failures.changed.end());
    m_report.pagesIncomplete += pages.failures.pagesIncomplete;
    return true;
}

bool CaseReport::writeIndex() {
    RowIds shown;
    shown.reserve(m_plan.ids.size());
    for (std::size_t place = 0; place < m_plan.ids.size(); ++place)
        if (!m_plan.isLeftOut(place))
            shown.push_back(m_plan.ids[place]);
    CaseIndex index(m_report, m_ctx, m_frame, m_redactor);
    index.rows = shown.size();
    if (m_report.useCustomLogo && !m_report.agencyLogoPath.empty()) {
        makeFolder(m_folder.images());
        index.logo =
            m_folder.takePicture(m_report.agencyLogoPath, "agency-logo", m_ctx.rebuild.log);
        if (index.logo.empty())
            m_report.picturesFailed.insert(m_report.agencyLogoPath);
    }
    std::ofstream file(m_folder.unfinished(), std::ios::binary | std::ios::trunc);
    SubTask rest(m_ctx.rebuild.task, 0.9, 1);
    const bool isWhole = index.write(file, shown, m_folder.path, rest);
    checkWritten(file, m_folder.unfinished());
    return isWhole;
}

void CaseReport::listFiles() const {
    std::vector<fs::path> files;
    for (const fs::directory_entry &entry : fs::recursive_directory_iterator(m_folder.path))
        if (entry.is_regular_file())
            files.push_back(entry.path());
    std::ranges::sort(files);
    std::ofstream list(m_folder.path / kReportFiles, std::ios::binary | std::ios::trunc);
    list << csvLine(std::array<std::string, 3>{"file", "bytes", "sha256"});
    for (const fs::path &file : files) {
        const bool isIndex = file == m_folder.unfinished();
        const fs::path &name = isIndex ? m_report.reportFilePath : file;
        if (const auto hashes = hashesOfFile(file))
            list << csvLine(
                std::array<std::string, 3>{name.lexically_relative(m_folder.path).generic_string(),
                                           std::to_string(hashes->size), hashes->sha256});
    }
    checkWritten(list, m_folder.path / kReportFiles);
}

} // namespace

void createCaseReport(ReportWriter &report, const ReportContext &ctx, const fs::path &parent) {
    trapped(ctx.rebuild.log, Severity::Serious, kProcedure, kContactSupport, [&] {
        ctx.rebuild.task.describe({"CREATING REPORT", "Overall Progress", "", ""});
        report.recordsFailed = report.filesFailed = report.pagesIncomplete = 0;
        report.failedRows.clear();
        report.changedRows.clear();
        report.buildingReport = true;
        const ReportFolder folder = ReportFolder::of(parent, kCaseType);
        report.cancel = !CaseReport(report, ctx, folder).make();
        report.buildingReport = false;
    });
}

} // namespace nv
