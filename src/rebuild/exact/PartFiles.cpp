#include "rebuild/exact/PartFiles.h"

#include "base/Digest.h"
#include "base/Files.h"
#include "base/Storage.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "db/marks/RebuiltParts.h"
#include "readers/AnswerHead.h"
#include "readers/CachedBody.h"
#include "readers/HttpHeaders.h"
#include "rebuild/LocalNames.h"
#include "rebuild/exact/RecordAddress.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

namespace nv {

namespace fs = std::filesystem;

namespace {

constexpr std::int64_t kLargestOfSevenDigits = 9'999'999;

/// Empty for an answer that is no redirect.
std::string redirectOf(std::string_view headers) {
    const int status = statusOf(headers);
    if (status < 300 || status > 399 || status == 304)
        return {};
    const auto locations = headerValues(headers, "location");
    return locations.empty() ? std::string() : std::string(locations.front());
}

/// Whether the server said that nothing is to be taken for what it doesn't say.
bool isStrict(std::string_view headers) {
    const auto values = headerValues(headers, "x-content-type-options");
    return !values.empty() && startsWithNoCase(values.front(), "nosniff");
}

/// Why browsers don't use what a server answered; null where they do. Pages and pictures of errors
/// show, styles and fonts don't count.
const char *refusalOf(std::string_view headers, RefUse use) {
    constexpr int kFirstError = 400;
    const bool isStyle = use == RefUse::style || use == RefUse::quirkyStyle;
    if (!isStyle && use != RefUse::font && use != RefUse::track && use != RefUse::object)
        return nullptr;
    if (statusOf(headers) >= kFirstError)
        return partrule::kError;
    if (use == RefUse::object)
        return nullptr;
    const std::string type = mimeTypeOf(headers);
    if (isStyle) {
        const bool isAny = type.empty() || type == "application/x-unknown-content-type" ||
                           (use == RefUse::quirkyStyle && !isStrict(headers));
        return isAny || type == "text/css" ? nullptr : partrule::kOtherType;
    }
    return type == "text/html" ? partrule::kOtherType : nullptr;
}

std::string headOf(const Body &body) {
    if (body.isInMemory)
        return std::string(body.raw().substr(0, kPartHead));
    const Bytes head = readHead(body.file, kPartHead);
    return std::string(ByteView(head).raw());
}

std::uint64_t sizeOf(const Body &body) {
    return body.isInMemory ? body.bytes.size() : fs::file_size(body.file);
}

std::string sha256Of(const Body &body) {
    Digest digest(DigestAlgorithm::sha256);
    if (body.isInMemory)
        digest.add(body.raw());
    else
        static_cast<void>(readInBlocks(body.file, [&digest](std::string_view block, std::uint64_t) {
            digest.add(block);
            return true;
        }));
    return digest.takeHex();
}

std::string cacheOf(const UrlRecord &record) {
    return fmt::format("{}: {}", record.cacheType, record.HistoryFilePath);
}

void writeTo(const fs::path &target, const Body &body) {
    if (body.isInMemory)
        writeWhole(target, body.raw());
    else
        copyToScratch(body.file, target);
}

} // namespace

std::string headersOf(const UrlRecord &record, const RebuildContext &ctx) {
    std::string head(answerHeadIn(record.MetaData));
    if (head.empty())
        head = answerHeadOf(record, ctx.records.factsOf(record.URLID));
    return head.empty() ? record.MetaData : head;
}

PartFiles::PartFiles(const UrlRecord &page, fs::path folder, const RebuildContext &ctx)
    : m_page(page), m_folder(std::move(folder)), m_ctx(ctx) {
    PartFile own;
    own.record = page.URLID;
    own.form = PartForm::page;
    own.name = pageNameOf(page.URLID);
    own.url = askedAddress(page.URL, page.URLRawValue);
    own.headers = headersOf(page, ctx);
    own.time = page.ActionDateUTC;
    own.cache = cacheOf(page);
    m_files.emplace(std::pair(page.URLID, PartForm::page), std::move(own));
}

PartFiles::Taken PartFiles::take(UrlId record, RefUse use) {
    const auto known = m_taken.find({record, use});
    if (known != m_taken.end())
        return known->second;
    Taken taken = trapped(m_ctx.log, Severity::Warning, "PartFiles.Take()", kContactSupport,
                          Taken(Gone()), [&] { return bring(record, use); });
    m_taken.emplace(std::pair(record, use), taken);
    return taken;
}

PartFiles::Taken PartFiles::bring(UrlId id, RefUse use) {
    auto record = m_ctx.records.getURL(id);
    if (!record)
        return Gone();
    std::string headers = headersOf(*record, m_ctx);
    if (std::string location = redirectOf(headers); !location.empty())
        return Redirect{std::move(location)};
    if (const char *const rule = refusalOf(headers, use))
        return Refused{rule};
    const auto body = bodyOf(*record, m_ctx.extraction(), kBodyInMemory);
    if (m_ctx.partFetched)
        m_ctx.partFetched(*record, body ? &*body : nullptr);
    if (!body || sizeOf(*body) == 0)
        return Gone();
    const std::string head = headOf(*body);
    const std::string type = record->MIMEType.empty() ? mimeTypeOf(headers) : record->MIMEType;
    const PartForm form = partForm(use, type, head);
    if (const auto there = m_files.find({id, form}); there != m_files.end()) {
        if (there->second.sha256.empty())
            there->second.sha256 = sha256Of(*body);
        return &there->second;
    }
    if (form != PartForm::plain && sizeOf(*body) > kLargestDocument)
        return Refused{partrule::kTooLarge};
    PartFile file;
    file.record = id;
    file.form = form;
    file.name = nameOf(*record, form, head);
    file.url = askedAddress(record->URL, record->URLRawValue);
    file.headers = std::move(headers);
    file.sha256 = sha256Of(*body);
    file.time = record->ActionDateUTC;
    file.cache = cacheOf(*record);
    writeTo(m_folder / file.name, *body);
    return &m_files.emplace(std::pair(id, form), std::move(file)).first->second;
}

std::optional<Bytes> PartFiles::bytesOf(const PartFile &file, std::uint64_t most) const {
    auto record = m_ctx.records.getURL(file.record);
    auto body = record ? bodyOf(*record, m_ctx.extraction(), kBodyInMemory) : std::nullopt;
    if (!body || sizeOf(*body) > most)
        return std::nullopt;
    return body->isInMemory ? std::move(body->bytes) : readWhole(body->file);
}

/// Names have the last seven digits of the key: two records may not share one, and none may take
/// that of the page.
std::string PartFiles::nameOf(const UrlRecord &record, PartForm form, std::string_view head) const {
    const std::string extension = partExtension(form, record, head);
    const std::string name = localNameOf(record.URLID, extension);
    if (number(record.URLID) > kLargestOfSevenDigits)
        return fmt::format("{}{}", number(record.URLID), std::string_view(name).substr(7));
    return equalsNoCase(name, pageNameOf(m_page.URLID)) ? "_" + name : name;
}

std::vector<std::string> PartFiles::caches() const {
    std::vector<std::string> caches{cacheOf(m_page)};
    for (const auto &[key, file] : m_files)
        if (std::ranges::find(caches, file.cache) == caches.end())
            caches.push_back(file.cache);
    return caches;
}

} // namespace nv
