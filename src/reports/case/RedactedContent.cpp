#include "reports/case/RedactedContent.h"

#include "base/Base64.h"
#include "base/Digest.h"
#include "base/Files.h"
#include "base/Storage.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "readers/CachedBody.h"
#include "reports/pages/PictureKind.h"
#include "views/gallery/ThumbnailJobs.h"
#include "views/record/CachedText.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <vector>

namespace nv {

namespace fs = std::filesystem;

namespace {

constexpr int kBlurWidth = 12; ///< pixels: nobody is known again by so few
constexpr int kBlurHeight = 9;
constexpr std::uintmax_t kLargestText = std::uintmax_t{8} << 20; ///< bytes that are looked through
constexpr std::uintmax_t kLargestFile = std::uintmax_t{64} << 20;

/// A grey point, for a picture that a page shows no more.
std::string greyPoint() {
    return fromBase64("R0lGODlhAQABAIAAAMDAwAAAACH5BAAAAAAALAAAAAABAAEAAAICRAEAOw==");
}

fs::path rowFolderOf(const ReportFolder &folder, UrlId id) {
    return folder.path / (rowNameOf(id) + ".NVR");
}

std::vector<fs::path> filesIn(const fs::path &folder) {
    std::vector<fs::path> files;
    std::error_code none;
    for (const fs::directory_entry &entry : fs::recursive_directory_iterator(folder, none))
        if (entry.is_regular_file())
            files.push_back(entry.path());
    return files;
}

/// The row whose part a file is: its name begins with the digits of the row.
UrlId partOf(const fs::path &file) {
    const std::string name = textOf(file.filename());
    std::int64_t id = 0;
    std::from_chars(name.data(), name.data() + name.size(), id);
    return UrlId{id};
}

bool isText(std::string_view bytes) {
    return isUtf8(bytes) && bytes.find('\0') == std::string_view::npos;
}

} // namespace

RedactedContent::RedactedContent(const ReportContext &ctx, const ReportFolder &folder,
                                 Redactor &redactor)
    : m_ctx(ctx), m_folder(folder), m_redactor(redactor) {
    for (const UrlId id : redactor.pictureRows()) {
        logFailureOf(ctx.rebuild.log, "ReportClass.CreateCaseReport()", [&] {
            auto record = ctx.rebuild.records.getURL(id);
            const auto content =
                record ? contentOf(*record, ctx.rebuild.extraction()) : std::nullopt;
            if (content)
                if (const auto hashes = hashesOfFile(*content)) {
                    m_pictures.emplace(hashes->sha256, *redactor.pictureOf(id));
                    redactor.notePicture(id);
                }
        });
    }
}

bool RedactedContent::isChosen(const fs::path &picture) const {
    if (m_pictures.empty())
        return false;
    const auto hashes = hashesOfFile(picture);
    return hashes && m_pictures.contains(hashes->sha256);
}

/// As an address of data.
bool RedactedContent::hasChosenInside(std::string_view text) const {
    if (m_pictures.empty())
        return false;
    return std::ranges::any_of(embeddedData(text), [this](const std::string &data) {
        Digest digest(DigestAlgorithm::sha256);
        digest.add(data);
        return m_pictures.contains(digest.takeHex());
    });
}

/// How a row's picture is to be treated; what can't be looked through is blurred.
std::optional<RedactionWay> RedactedContent::wayOf(const UrlRecord &record,
                                                   const fs::path &picture) {
    if (const auto way = m_redactor.pictureOf(record.URLID))
        return way;
    if (!m_pictures.empty())
        if (const auto hashes = hashesOfFile(picture))
            if (const auto found = m_pictures.find(hashes->sha256); found != m_pictures.end())
                return found->second;
    if (m_redactor.hidesHost(hostOf(record)) || fs::file_size(picture) > kLargestFile ||
        m_redactor.holds(ByteView(readWhole(picture)).raw()))
        return RedactionWay::blur;
    return std::nullopt;
}

void RedactedContent::redact(ReportCard &card) {
    if (!m_redactor.isOn() || card.target.empty())
        return;
    if (card.target.starts_with("pictures/"))
        redactPicture(card);
    else if (m_redactor.hidesHost(hostOf(card.record)))
        withhold(card, "Its content was left out on purpose.");
    else if (card.target.ends_with(".txt"))
        redactText(card);
    else
        redactFolder(card);
}

void RedactedContent::redactPicture(ReportCard &card) {
    const fs::path picture = m_folder.path / card.target;
    const auto way = wayOf(card.record, picture);
    if (!way)
        return;
    card.target.clear();
    card.thumbnail.clear();
    card.drawing.reset();
    if (*way == RedactionWay::leaveOut || !m_ctx.drawing) {
        fs::remove(picture);
        card.absence = "Its picture was left out on purpose.";
        ++m_redactor.counts.picturesLeftOut;
        return;
    }
    const fs::path kept = m_ctx.rebuild.tempFolderPath / "~blur";
    makeFolder(kept);
    const fs::path source = kept / picture.filename();
    moveFile(picture, source);
    card.drawing = {DrawJob::Kind::picture, source,
                    m_folder.pictures() / (rowNameOf(card.record.URLID) + "-blurred.jpg"),
                    kBlurWidth, kBlurHeight};
    card.absence = "Its picture was blurred on purpose.";
    m_blurred.insert(card.record.URLID);
}

void RedactedContent::settle(ReportCard &card) {
    if (m_blurred.erase(card.record.URLID) == 0)
        return;
    if (card.drawing)
        fs::remove(card.drawing->source);
    if (!card.thumbnail.empty()) {
        ++m_redactor.counts.picturesBlurred;
        return;
    }
    card.absence = "Its picture was left out on purpose.";
    ++m_redactor.counts.picturesLeftOut;
}

/// Neither the text nor a drawing of it is handed over.
void RedactedContent::withhold(ReportCard &card, std::string_view why) {
    fs::remove_all(rowFolderOf(m_folder, card.record.URLID));
    card.target.clear();
    card.thumbnail.clear();
    card.drawing.reset();
    card.absence = why;
    ++m_redactor.counts.filesLeftOut;
}

/// A text is handed on in UTF-8 then: a word would not be found in another code.
void RedactedContent::redactText(ReportCard &card) {
    const fs::path file = m_folder.path / card.target;
    if (redactFile(file, card.record.MetaData) == Fate::removed)
        return withhold(card, "Its text was left out on purpose.");
    if (!card.drawing)
        return;
    const fs::path page = card.drawing->source;
    if (redactFile(page, card.record.MetaData) == Fate::removed)
        card.drawing.reset();
}

void RedactedContent::redactFolder(ReportCard &card) {
    const fs::path page = m_folder.path / card.target;
    for (const fs::path &file : filesIn(page.parent_path())) {
        // An earlier drawing shows what stood there then.
        if (textOf(file.filename()).find(".thumbnail.") != std::string::npos) {
            fs::remove(file);
            continue;
        }
        const Fate fate = redactPart(file);
        if (file == page && fate == Fate::removed)
            return withhold(card, "Its page was left out on purpose.");
    }
    drawAnew(card);
}

void RedactedContent::drawAnew(ReportCard &card) {
    const int width = m_ctx.settings.reportThumbnailWidth;
    card.thumbnail.clear();
    card.width = width;
    const std::string row = rowNameOf(card.record.URLID);
    card.drawing = {DrawJob::Kind::page, m_folder.path / card.target,
                    rowFolderOf(m_folder, card.record.URLID) / ("~" + row + ".thumbnail.jpg"),
                    width, thumbnailHeight(width)};
}

bool RedactedContent::isOfHost(UrlId part) {
    if (part == UrlId::none)
        return false;
    const auto record = m_ctx.rebuild.records.getURL(part);
    return record && m_redactor.isOfHost(hostOf(*record));
}

/// A file of a rebuilt page.
RedactedContent::Fate RedactedContent::redactPart(const fs::path &file) {
    const UrlId part = partOf(file);
    const bool isPicture = !pictureKindOf(file).empty();
    const bool isSecret = m_redactor.pictureOf(part) || isOfHost(part);
    if (isPicture) {
        if (!isSecret && !isChosen(file) && fs::file_size(file) <= kLargestFile &&
            !m_redactor.holds(ByteView(readWhole(file)).raw()))
            return Fate::unchanged;
        writeWhole(file, greyPoint());
        ++m_redactor.counts.picturesLeftOut;
        return Fate::changed;
    }
    const Fate fate = isSecret ? Fate::removed : redactFile(file, {});
    if (fate == Fate::removed) {
        fs::remove(file);
        ++m_redactor.counts.filesLeftOut;
    }
    return fate;
}

/// `removed` is for the caller to do.
RedactedContent::Fate RedactedContent::redactFile(const fs::path &file,
                                                  std::string_view httpHeader) {
    if (fs::file_size(file) > kLargestText)
        return Fate::removed;
    const Bytes bytes = readWhole(file);
    const std::string_view raw = ByteView(bytes).raw();
    const bool isCoded = !isText(raw);
    const bool isNamedText = file.extension() == ".txt" || file.extension() == ".htm";
    if (isCoded && !isNamedText)
        return m_redactor.holds(raw) ? Fate::removed : Fate::unchanged;
    const std::string text =
        isCoded ? readCachedText(file, httpHeader, kLargestText).text : std::string(raw);
    const std::string marked = m_redactor.text(text);
    if (m_redactor.holds(marked) || hasChosenInside(text))
        return Fate::removed;
    if (marked == text && !isCoded)
        return Fate::unchanged;
    writeWhole(file, marked);
    m_redactor.counts.filesChanged += marked == text ? 0 : 1;
    return Fate::changed;
}

} // namespace nv
