#include "reports/report/CardEvidence.h"

#include "base/Digest.h"
#include "base/Files.h"
#include "base/Storage.h"
#include "base/Text.h"
#include "readers/CachedBody.h"
#include "readers/RecordKind.h"
#include "rebuild/Archive.h"
#include "rebuild/Harvest.h"
#include "rebuild/LocalNames.h"
#include "rebuild/WatchedBy.h"
#include "reports/pages/PictureKind.h"
#include "reports/pages/SafePage.h"
#include "views/explain/ContentCheck.h"
#include "views/gallery/ThumbnailJobs.h"
#include "views/record/TextKind.h"

#include <fmt/format.h>

#include <algorithm>
#include <vector>

namespace nv {

namespace fs = std::filesystem;

namespace {

constexpr std::uintmax_t kLargestText = std::uintmax_t{64} << 20;

std::string rowFolder(const UrlRecord &record) {
    return rowNameOf(record.URLID) + ".NVR";
}

std::string thumbnailName(const UrlRecord &record) {
    return fmt::format("{}/~{}.thumbnail.jpg", rowFolder(record), sidOf(record.URLID));
}

bool hasContent(const UrlRecord &record) {
    if (record.IsHistory || record.IsCookie)
        return false;
    const RecordKind *kind = recordKind(record.cacheType);
    if (kind && kind->group != RecordGroup::cache)
        return record.CacheFileExists || record.CacheFileRebuilt;
    return !kind || !kind->mayLackContent || record.CacheFileExists;
}

std::string sha256Of(const Body &content) {
    if (!content.isInMemory)
        return hashesOfFile(content.file).value_or(FileHashes()).sha256;
    Digest digest(DigestAlgorithm::sha256);
    digest.add(content.raw());
    return digest.takeHex();
}

/// The width of a picture within a thumbnail's box; it isn't made larger.
int shownWidth(std::int64_t width, std::int64_t height, int box) {
    if (width <= 0 || height <= 0)
        return box;
    const double scale = std::min({1.0, static_cast<double>(box) / static_cast<double>(width),
                                   thumbnailHeight(box) / static_cast<double>(height)});
    return std::max(1, static_cast<int>(static_cast<double>(width) * scale));
}

} // namespace

RebuildContext CardEvidence::contextFor(const fs::path &folder, TaskMonitor &task) const {
    RebuildContext ctx = watchedBy(m_ctx.rebuild, task);
    ctx.tempFolderPath = folder;
    ctx.settings.creatingReport = true;
    return ctx;
}

void CardEvidence::bring(ReportCard &card, std::size_t place, TaskMonitor &task) const {
    if (!hasContent(card.record)) {
        card.absence = card.record.IsHistory ? "" : "There is no cached file.";
        return;
    }
    if (!card.record.CacheFileRebuilt || !bringRebuilt(card, task))
        bringContent(card, place);
}

bool CardEvidence::bringRebuilt(ReportCard &card, TaskMonitor &task) const {
    UrlRecord &record = card.record;
    const fs::path folder = m_folder.path / rowFolder(record);
    const fs::path page = folder / pageNameOf(record.URLID);
    fs::remove_all(folder); // a row that is listed twice would be guarded twice
    if (!record.RebuiltSourceCode.empty()) {
        RebuildContext ctx = contextFor(m_ctx.rebuild.tempFolderPath, task);
        ctx.partFetched = [this, &card](const UrlRecord &part, const Body *content) {
            if (content)
                compare(card, part.URLID, *content);
            else
                card.incomplete |= part.CacheFileExists;
        };
        card.incomplete |= !harvestParts(record, folder, Batch::yes, ctx) &&
                           task.advance(1); // a cancelled report has no cards
    }
    // An archive unpacks into a folder of seven digits, which can be that of another row.
    else if (!record.CacheFileRebuiltBLOB.empty() && sidOf(record.URLID) == rowNameOf(record.URLID))
        unpackCabinetFile(record, contextFor(m_folder.path, task));
    if (!fs::exists(page))
        return false;
    guardFolder(page);
    card.target = rowFolder(record) + "/" + pageNameOf(record.URLID);
    const fs::path packed = folder / (sidOf(record.URLID) + ".thumbnail.jpg");
    if (fs::exists(packed)) {
        moveFile(packed, m_folder.path / thumbnailName(record));
        card.thumbnail = thumbnailName(record);
        card.width = m_ctx.settings.reportThumbnailWidth;
    } else {
        planPage(card, page);
    }
    return true;
}

void CardEvidence::bringContent(ReportCard &card, std::size_t place) const {
    card.record.RunTimeTempFilePath.clear();
    const auto content = contentOf(card.record, m_ctx.rebuild.extraction());
    if (!content) {
        card.isGone = card.record.CacheFileExists;
        card.absence = card.record.CacheFileExists ? "The cached file is gone."
                                                   : "The cached file was not there at the import.";
        return;
    }
    compare(card, card.record.URLID, Body{*content, false, {}});
    if (const std::string kind = pictureKindOf(*content); !kind.empty())
        bringPicture(card, *content, kind);
    else
        bringText(card, *content, place);
}

/// What is handed over as evidence must be what was imported, or be told not to be.
void CardEvidence::compare(ReportCard &card, UrlId id, const Body &content) const {
    const std::string then = contentHashThen(m_ctx.rebuild.project, id);
    if (then.empty())
        return;
    const std::string now = sha256Of(content);
    if (now == then)
        return;
    card.isChanged = true;
    m_ctx.rebuild.log.write({fmt::format("URL ID: {} the content is NOT what was imported: SHA-256 "
                                         "{} then, {} now",
                                         id, then, now),
                             "ReportClass.CreateGraphicalRecord()", Severity::Serious,
                             std::string(kContactSupport)});
}

void CardEvidence::bringPicture(ReportCard &card, const fs::path &content,
                                const std::string &kind) const {
    const UrlRecord &record = card.record;
    card.target = fmt::format("pictures/{}.{}", rowNameOf(record.URLID), kind);
    const fs::path picture = m_folder.path / card.target;
    copyToScratch(content, picture);
    const int width = m_ctx.settings.reportThumbnailWidth;
    card.width = shownWidth(record.PictureWidth, record.PictureHeight, width);
    if (isShownByBrowsers(kind))
        card.thumbnail = card.target;
    // A JPEG has the very name that its thumbnail would get: it is shown itself.
    if (kind != "jpg")
        card.drawing = {DrawJob::Kind::picture, picture,
                        m_folder.pictures() / (rowNameOf(record.URLID) + ".jpg"), width,
                        thumbnailHeight(width)};
}

/// A page that was not rebuilt is handed on byte by byte, as a text: as a page it would be one that
/// asks its site for all its parts.
void CardEvidence::bringText(ReportCard &card, const fs::path &content, std::size_t place) const {
    const Bytes head = readHead(content, kTextHead);
    const TextKind kind = textKindOf(ByteView(head).raw());
    if (kind == TextKind::none || fs::file_size(content) > kLargestText) {
        card.absence = kind == TextKind::none
                           ? "The cached file is neither a page, a picture nor text."
                           : "The cached file is too large for a report.";
        return;
    }
    const fs::path folder = m_folder.path / rowFolder(card.record);
    makeFolder(folder);
    const std::string name = rowNameOf(card.record.URLID) + ".txt";
    copyToScratch(content, folder / name);
    card.target = rowFolder(card.record) + "/" + name;
    if (kind != TextKind::page || !m_ctx.drawing)
        return;
    const fs::path alone = scratch() / std::to_string(place);
    makeFolder(alone);
    copyToScratch(content, alone / "page.htm");
    planPage(card, alone / "page.htm");
}

void CardEvidence::planPage(ReportCard &card, const fs::path &page) const {
    const int width = m_ctx.settings.reportThumbnailWidth;
    card.width = width;
    card.drawing = {DrawJob::Kind::page, page, m_folder.path / thumbnailName(card.record), width,
                    thumbnailHeight(width)};
}

void CardEvidence::take(ReportCard &card, const Drawn &drawn) const {
    if (!drawn.done) {
        if (card.drawing->kind == DrawJob::Kind::picture)
            card.thumbnail.clear(); // what can't be drawn would be no picture in a browser either
        m_ctx.rebuild.log.write({fmt::format("URL ID: {} {}", card.record.URLID, drawn.failure),
                                 "ReportClass.CreateGraphicalRecord()", Severity::Low,
                                 std::string(kNotSerious)});
        return;
    }
    if (card.drawing->kind == DrawJob::Kind::picture)
        card.width = shownWidth(drawn.pictureWidth, drawn.pictureHeight, card.drawing->width);
    card.thumbnail = textOf(card.drawing->target.lexically_relative(m_folder.path));
}

void CardEvidence::draw(std::span<ReportCard> cards, TaskMonitor &task) const {
    std::vector<DrawJob> jobs;
    std::vector<std::size_t> places;
    for (std::size_t i = 0; i < cards.size(); ++i)
        if (cards[i].drawing) {
            jobs.push_back(*cards[i].drawing);
            places.push_back(i);
        }
    if (m_ctx.drawing && !jobs.empty())
        m_ctx.drawing->draw(
            jobs, m_ctx.settings.thumbnailRedrawTimeout,
            [&](std::size_t job, const Drawn &drawn) {
                take(cards[places.at(job)], drawn);
                return task.advance(0);
            },
            [&task] { return task.advance(0); });
    fs::remove_all(scratch());
}

} // namespace nv
