#include "reports/report/ReportWriter.h"

#include "base/Files.h"
#include "base/Storage.h"
#include "base/Succeeds.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "db/sql/ReadOnlyConnection.h"
#include "db/sql/SqliteErrors.h"
#include "readers/RecordKind.h"
#include "reports/report/CardText.h"
#include "reports/report/OriginText.h"
#include "reports/report/ReportFrame.h"
#include "reports/report/ReportValues.h"
#include "reports/report/SortTable.h"
#include "reports/report/TabularText.h"
#include "reports/report/TrailText.h"
#include "views/rows/DateIndex.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <fstream>

namespace nv {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kReportDate = "dddd, mmmm dd, yyyy Hh:Mm:Ss AMPM";
// Enough that starting to draw doesn't count, few enough that memory stays bounded.
constexpr std::size_t kBatch = 32;
constexpr std::uintmax_t kLeastRoom = std::uintmax_t{1} << 20; // bytes

constexpr std::string_view kLegend =
    "<br><div style='font-family:Tahoma;font-size:10px;padding-right:50px;line-height:18px;"
    "width:700px;'>\r\n"
    "<strong>LEGEND:</strong><ol>\r\n"
    "<li>Timestamps displayed in <font color='#C00000'><strong>RED</strong></font> indicate "
    "Coordinated Universal Time (UTC) as calculated by the selected time zone setting."
    "<br style='line-height:1px;'><br style='line-height:5px;'></li>\r\n"
    "<li>Timestamps displayed in <font color='#909090'><strong>GREY</strong></font> indicate a "
    "File Created time or a Server Modified time. &nbsp;Not releveant in most cases."
    "<br style='line-height:1px;'><br style='line-height:5px;'></li>\r\n"
    "<li>Timestamps displayed in <font color='#FC9F0C'><strong>ORANGE</strong></font> indicate an "
    "IE WEEKLY history in <u>Local Time</u>. &nbsp;This means that the time does <u>not</u> take "
    "into account the selected UTC Offset and is the actual Local Time of the computer FROM which "
    "the URL was originally accessed.</li>\r\n"
    "</ol></div>";

/// What can't be told goes by the name of the first browser: reports of earlier cases read so.
std::string_view shownBrowserOf(std::string_view cacheType) {
    const RecordKind *kind = recordKind(cacheType);
    const bool isNamed =
        kind ? !kind->reportedAsInternetExplorer : groupOf(cacheType) == RecordGroup::cache;
    const BrowserFamily *family = isNamed ? familyOf(cacheType) : nullptr;
    return family ? family->report : families::internetExplorer.report;
}

/// A page that was cut short must not look finished.
void check(std::ostream &file, const fs::path &path) {
    errno = 0;
    if (file.flush())
        return;
    failStorage("cannot write the report", path, errno == 0 ? ENOSPC : errno);
}

/// On a full disk card after card would lack its picture for no reason of the evidence's.
void checkRoom(const fs::path &folder) {
    std::error_code none;
    const fs::space_info room = fs::space(folder, none);
    if (!none && room.available < kLeastRoom)
        failStorage("cannot write the report in", folder, ENOSPC);
}

/// What was read to write the card, and may be megabytes a row.
void letGo(UrlRecord &record) {
    for (std::string *text :
         {&record.RebuiltSourceCode, &record.HTMLBody, &record.MetaData, &record.Links})
        std::string().swap(*text);
    Bytes().swap(record.CacheFileRebuiltBLOB);
    Bytes().swap(record.ThumbnailBLOB);
}

} // namespace

ReportWriter::ReportWriter(const ReportContext &ctx) : m_ctx(ctx), m_folder(fs::path()) {}

void ReportWriter::printEntry(std::ostream &file, std::string_view entry) {
    file << entry << "\r\n";
}

void ReportWriter::createGraphicalReport(const fs::path &folder) {
    trapped(m_ctx.rebuild.log, Severity::Serious, "ReportClass.CreateGraphicalReport()",
            kContactSupport, [&] { create(folder, 0, &ReportWriter::writeCards); });
}

void ReportWriter::createTabularReport(const fs::path &folder) {
    trapped(m_ctx.rebuild.log, Severity::Serious, "ReportClass.CreateTabularReport()",
            kContactSupport, [&] { create(folder, 1, &ReportWriter::writeRows); });
}

void ReportWriter::create(const fs::path &folder, int type, Entries entries) {
    m_folder = ReportFolder(folder);
    reportFolderPath = m_folder.path;
    reportFilePath = m_folder.index(type);
    m_ctx.rebuild.task.describe({"CREATING REPORT", "Overall Progress", "", ""});
    m_folder.prepare(type);
    m_folder.copyImages(m_ctx.settings.images, m_ctx.rebuild.log);
    recordsFailed = filesFailed = pagesIncomplete = 0;
    failedRows.clear();
    changedRows.clear();
    headerFailed = footerFailed = false;
    reportDate =
        formatDate(Date::fromTimePoint(m_ctx.clock.now() + m_ctx.clock.localOffset()), kReportDate);
    std::ofstream file(m_folder.unfinished(), std::ios::binary | std::ios::trunc);
    createHeader(file);
    const RowIds ids = sortedRows(m_ctx.rebuild.project,
                                  sortAscending ? DateOrder::oldestFirst : DateOrder::newestFirst);
    buildingReport = true;
    cancel = !(this->*entries)(ids, file);
    buildingReport = false;
    if (!cancel) {
        printEntry(file, "</td></tr></table>");
        printEntry(file, kLegend);
        if (includeCaseTrail)
            printEntry(file, trailSection(m_ctx));
        if (includeOrigins)
            printEntry(file, originSection(m_ctx));
        createFooter(file);
    }
    check(file, m_folder.unfinished());
    file.close();
    if (cancel)
        return;
    // A copy that the disk cuts short must not have the name of a finished report.
    copyToScratch(m_folder.unfinished(), m_folder.copied());
    moveFile(m_folder.copied(), reportFilePath);
}

void ReportWriter::createHeader(std::ostream &file) {
    headerFailed =
        !succeeds(m_ctx.rebuild.log, Severity::Serious, "ReportClass.CreateHeader()",
                  "Error Creating Report Header",
                  [&] { ReportFrame(*this, m_ctx).writeHead(file, [this] { return logo(); }); });
}

void ReportWriter::createFooter(std::ostream &file) {
    footerFailed = !succeeds(m_ctx.rebuild.log, Severity::Serious, "ReportClass.CreateFooter()",
                             "Error Creating Report Footer",
                             [&] { ReportFrame(*this, m_ctx).writeTail(file); });
}

std::string ReportWriter::ownPicture(const std::filesystem::path &picture,
                                     const std::string &name) {
    const std::string own = m_folder.takePicture(picture, name, m_ctx.rebuild.log);
    if (own.empty())
        picturesFailed.insert(picture);
    return own;
}

std::string ReportWriter::logo() {
    std::string own;
    if (useCustomLogo && !agencyLogoPath.empty())
        own = ownPicture(agencyLogoPath, "agency-logo");
    return own.empty() ? "images/norvelane-logo.png" : own;
}

bool ReportWriter::writeCards(const RowIds &ids, std::ostream &file) {
    printEntry(file, "<table><tr><td valign='top'>");
    std::ofstream names(m_folder.rowFolders(), std::ios::binary | std::ios::trunc);
    if (useDefaultThumbnailPath && !defaultThumbnailPath.empty())
        m_fallback = ownPicture(defaultThumbnailPath, "default-thumbnail");
    if (m_fallback.empty())
        m_fallback = kNoPicture;
    if (includeLinkAnalysis && !isReadOnly(m_ctx.rebuild.project))
        onProject([&] { ensureLinkIndexes(m_ctx.rebuild.project, m_ctx.rebuild.task); });
    for (std::size_t first = 0; first < ids.size(); first += kBatch) {
        const auto batch = std::span(ids).subspan(first, std::min(kBatch, ids.size() - first));
        if (!bringCards(batch, first, ids.size()))
            return false;
        for (std::size_t i = 0; i < batch.size(); ++i) {
            createGraphicalRecord(UrlId{batch[i]}, first + i + 1, file);
            names << rowNameOf(UrlId{batch[i]}) << ".NVR\r\n";
        }
        check(file, m_folder.unfinished());
        check(names, m_folder.rowFolders());
        checkRoom(m_folder.path);
    }
    return step(ids.size(), ids.size(), 0);
}

/// Brings the evidence of a batch and draws it. False when cancelled.
bool ReportWriter::bringCards(std::span<const std::int32_t> ids, std::size_t first,
                              std::size_t total) {
    m_cards.clear();
    for (std::size_t i = 0; i < ids.size(); ++i) {
        if (!step(first + i, total, ids[i]))
            return false;
        const auto whole = static_cast<double>(total);
        SubTask part(m_ctx.rebuild.task, static_cast<double>(first + i) / whole,
                     static_cast<double>(first + i + 1) / whole);
        m_cards.push_back(cardOf(UrlId{ids[i]}, i, part));
    }
    SubTask rest(m_ctx.rebuild.task,
                 static_cast<double>(first + ids.size()) / static_cast<double>(total), 1);
    trapped(m_ctx.rebuild.log, Severity::Serious, "ReportClass.CreateGraphicalRecord()",
            kContactSupport, [&] { evidence().draw(m_cards, rest); });
    return rest.advance(0);
}

/// What the row holds, brought into the report. Evidence that can't be read leaves the card
/// without, and is logged.
ReportCard ReportWriter::cardOf(UrlId id, std::size_t place, TaskMonitor &task) {
    ReportCard card;
    auto record = m_ctx.rebuild.records.getURL(id);
    if (!record)
        return card;
    card.record = std::move(*record);
    const bool brought =
        succeeds(m_ctx.rebuild.log, Severity::Serious, "ReportClass.CreateGraphicalRecord()",
                 kContactSupport, [&] { evidence().bring(card, place, task); });
    if (!brought) {
        card.absence = "The cached file could not be read; the log of the program says why.";
        ++filesFailed;
    }
    filesFailed += card.isGone ? 1 : 0;
    pagesIncomplete += card.incomplete ? 1 : 0;
    if (card.isChanged)
        noteUnread(changedRows, id);
    letGo(card.record);
    return card;
}

CardEvidence ReportWriter::evidence() const {
    return {m_ctx, m_folder};
}

/// The row's card of the batch; one that belongs to none is brought now.
ReportCard &ReportWriter::cardFor(UrlId id) {
    const auto found =
        std::ranges::find(m_cards, id, [](const ReportCard &each) { return each.record.URLID; });
    if (found != m_cards.end())
        return *found;
    ReportCard card = cardOf(id, m_cards.size(), m_ctx.rebuild.task);
    if (card.record.URLID != id)
        throw std::runtime_error(fmt::format("the record {} can't be read", id));
    evidence().draw(std::span(&card, 1), m_ctx.rebuild.task);
    return m_cards.emplace_back(std::move(card));
}

void ReportWriter::createGraphicalRecord(UrlId urlID, std::size_t index, std::ostream &file) {
    const auto write = [&] {
        ReportCard &card = cardFor(urlID);
        take(card.record, index);
        href = card.target;
        const bool shown = !card.thumbnail.empty();
        if (!shown)
            card.width = m_ctx.settings.reportThumbnailWidth;
        imageRelativePath = shown ? card.thumbnail : m_fallback;
        if (card.record.IsHistory)
            imageRelativePath = kNoPicture;
        printEntry(file, cardText(*this, card, m_ctx));
        return true;
    };
    if (!trapped(m_ctx.rebuild.log, Severity::Serious, "ReportClass.CreateGraphicalRecord()",
                 kContactSupport, false, write)) {
        printEntry(file, brokenCard(urlID));
        countFailed(urlID);
    }
}

void ReportWriter::countFailed(UrlId id) {
    ++recordsFailed;
    noteUnread(failedRows, id);
}

bool ReportWriter::writeRows(const RowIds &ids, std::ostream &file) {
    printEntry(file, "<br style='line-height:1px;'><br style='line-height:10px;'><table><tr>"
                     "<td valign='top'>");
    printEntry(file, tabularHead(*this));
    for (std::size_t i = 0; i < ids.size(); ++i) {
        if (!step(i, ids.size(), ids[i]))
            return false;
        createTabularRecord(UrlId{ids[i]}, i + 1, file);
    }
    printEntry(file, "   </table>");
    return step(ids.size(), ids.size(), 0);
}

void ReportWriter::createTabularRecord(UrlId urlID, std::size_t index, std::ostream &file) {
    const auto write = [&] {
        const auto record = m_ctx.rebuild.records.getURL(urlID);
        if (!record)
            throw std::runtime_error(fmt::format("the record {} can't be read", urlID));
        take(*record, index);
        printEntry(file, tabularRow(*this, *record, m_ctx));
        return true;
    };
    if (!trapped(m_ctx.rebuild.log, Severity::Serious, "ReportClass.CreateTabularRecord()",
                 kContactSupport, false, write)) {
        printEntry(file, brokenRow(urlID, index));
        countFailed(urlID);
    }
}

void ReportWriter::take(const UrlRecord &record, std::size_t index) {
    recordIndex = index;
    user = record.User;
    status = record.Status;
    otherDate = utcCell(record.OtherDate, m_ctx.settings.dates);
    browser = shownBrowserOf(record.cacheType);
    originalURL = record.URL;
    rebuiltDateTime = record.RebuiltDateTime;
    pageParentFolderName = record.CacheFolderName;
    pageFileSize = record.CacheFileSize;
    actionDate = utcCell(record.ActionDateUTC, m_ctx.settings.dates);
    visits = visitsText(record.Visits);
    pageFileName = record.CacheFileName;
    pageTitle = record.WebpageTitle;
    href.clear();
}

/// Shows how far it is. False when cancelled.
bool ReportWriter::step(std::size_t done, std::size_t total, std::int64_t id) {
    TaskMonitor &task = m_ctx.rebuild.task;
    if (task.wantsStep()) {
        TaskStep now;
        now.topMessage = fmt::format("Processing URLs {} of {}", done, total);
        now.topCounter = static_cast<std::int64_t>(done);
        now.topTotal = static_cast<std::int64_t>(total);
        now.bottomMessage = fmt::format("URL_ID: {}", id);
        task.show(now);
    }
    return task.advance(total == 0 ? 1 : static_cast<double>(done) / static_cast<double>(total));
}

std::size_t gapsOf(const ReportWriter &report) {
    return report.recordsFailed + report.filesFailed + report.pagesIncomplete +
           report.changedRows.size();
}

std::vector<std::string> notesOf(const ReportWriter &report) {
    std::vector<std::string> notes;
    if (report.headerFailed)
        notes.emplace_back("Error Creating Report Header");
    if (report.footerFailed)
        notes.emplace_back("Error Creating Report Footer");
    if (report.recordsFailed > 0)
        notes.push_back(
            fmt::format("{} records could not be written; their entries say so. Ids: {}.",
                        report.recordsFailed, rangesOf(report.failedRows)));
    if (report.filesFailed > 0)
        notes.push_back(fmt::format("{} could not be read; their cards say so.",
                                    counted(report.filesFailed, "cached file")));
    if (!report.changedRows.empty())
        notes.push_back(fmt::format(
            "The content of {} is NOT what was imported; their cards say so. Ids: {}.",
            counted(report.changedRows.size(), "record"), rangesOf(report.changedRows)));
    if (report.pagesIncomplete > 0)
        notes.push_back(fmt::format("{} could not be brought with all parts; their cards say so.",
                                    counted(report.pagesIncomplete, "rebuilt page")));
    for (const fs::path &picture : report.picturesFailed)
        notes.push_back(fmt::format("\"{}\" is no picture that a report can show; it has the "
                                    "program's own instead.",
                                    textOf(picture)));
    return notes;
}

} // namespace nv
