#include "reports/warc/WarcWriter.h"

#include "base/Digest.h"
#include "base/Files.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "db/sql/BindId.h"
#include "readers/AnswerHead.h"
#include "readers/CachedBody.h"
#include "readers/Coding.h"
#include "readers/HttpHeaders.h"
#include "readers/Scratch.h"
#include "rebuild/RebuildContext.h"
#include "reports/warc/Stretches.h"
#include "reports/warc/WarcHead.h"
#include "reports/warc/WarcTarget.h"
#include "time/DateFormat.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

#include <algorithm>
#include <utility>

namespace nv {

namespace {

constexpr std::string_view kProcedure = "MainForm.ExportColumns()";
constexpr std::string_view kAnswer = "application/http;msgtype=response";
/// Contents that are remembered, some eighty bytes each.
constexpr std::size_t kMostContents = 500'000;

std::string textOfFact(const FactList &facts, std::string_view name) {
    for (const RecordFact &fact : facts)
        if (const auto *text = std::get_if<std::string>(&fact.value); text && fact.name == name)
            return *text;
    return {};
}

/// Without the port; empty for what is no address.
std::string ipAddressOf(const FactList &facts) {
    std::string address = textOfFact(facts, "server_address");
    address.resize(std::min(address.rfind(':'), address.size()));
    if (address.starts_with('[') && address.ends_with(']'))
        address = address.substr(1, address.size() - 2);
    const bool isPlain = address.find_first_not_of("0123456789abcdefABCDEF.:") == std::string::npos;
    return isPlain ? address : std::string();
}

/// A type that stands in a line of its own.
std::string plainType(const std::string &type) {
    const bool isPlain = std::ranges::all_of(type, [](char c) { return c >= ' ' && c < 0x7F; });
    return type.empty() || !isPlain ? "application/octet-stream" : type;
}

bool beginsAsGZip(const Body &content) {
    constexpr std::size_t kMark = 2;
    if (content.isInMemory)
        return beginsAsGZip(ByteView(content.bytes));
    const Bytes head = readHead(content.file, kMark);
    return beginsAsGZip(ByteView(head));
}

std::string idOf(const UrlRecord &record, std::string_view type) {
    return warcIdOf(fmt::format("{}\n{}\n{}\n{}\n{}\n{}", type, record.URLID, record.MapFileOffset,
                                record.Reference_ID, record.URL, warcDateOf(record)));
}

std::string bracketed(const std::string &uri) {
    return '<' + uri + '>';
}

} // namespace

/// A record on its way into the archive.
struct WarcWriter::Item {
    UrlRecord record;
    FactList facts;
    std::string head;                   ///< as it is stored, then mended; empty for none
    std::string stored;                 ///< the head as it is stored
    std::vector<WarcStretch> stretches; ///< of a part ("206") that was put together from several
    std::optional<Body> content;
    std::string target;
    std::string id; ///< of what is written first, to which the rest refers
    WarcDigests digests;

    Item() = default;
    ~Item() {
        if (!record.RunTimeTempFilePath.empty())
            scratch::drop(record.RunTimeTempFilePath);
    }
    Item(const Item &) = delete;
    Item &operator=(const Item &) = delete;
};

WarcWriter::WarcWriter(std::filesystem::path place, const WarcSource &source)
    : m_source(source), m_place(std::move(place)), m_file(m_place, warcPackingOf(m_place)) {
    writeInfo();
}

void WarcWriter::writeInfo() {
    const std::string name = replaceAll(textOf(m_place.filename()), "\n", " ");
    WarcRecord info{.type = "warcinfo", .date = isoUtc(m_source.now)};
    m_infoId = warcIdOf(fmt::format("warcinfo\n{}\n{}", name, info.date));
    info.id = m_infoId;
    info.fields = {{"WARC-Filename", name}};
    info.contentType = "application/warc-fields";
    info.before = fmt::format(
        "software: {}\r\nformat: WARC File Format 1.1\r\n"
        "description: Records of browsers' caches. Nothing was fetched for this file.\r\n",
        m_source.software);
    m_file.write(info);
}

WarcAdded WarcWriter::add(UrlId id) {
    const RebuildContext &from = m_source.records;
    auto record = from.records.getURL(id);
    if (!record)
        return WarcAdded::unread;
    const bool isOther = record->IsCookie || record->IsBookmark;
    Item item;
    item.record = std::move(*record);
    if (isOther || (item.record.IsHistory && !item.record.CacheFileExists)) {
        ++m_counts.others;
        return WarcAdded::noContent;
    }
    const bool hasFacts =
        trapped(from.log, Severity::Warning, kProcedure, kContactSupport, false, [&] {
            item.facts = from.records.factsOf(id);
            return true;
        });
    if (!hasFacts)
        return WarcAdded::unread;
    item.head = answerHeadOf(item.record, item.facts);
    addContent(item);
    if (!item.content && item.head.empty()) {
        ++m_counts.others;
        return WarcAdded::noContent;
    }
    writeItem(item);
    return WarcAdded::written;
}

/// The content, its head as it fits it, and the digests of both. A content that can't be read is
/// none.
void WarcWriter::addContent(Item &item) const {
    const RebuildContext &from = m_source.records;
    const std::string stored = item.stored = item.head;
    const bool isEmpty = item.record.CacheFileSize == 0 && !item.record.CacheFileExists;
    item.content = bodyOf(item.record, from.extraction(), kBodyInMemory);
    if (!item.content && isEmpty && !item.head.empty())
        item.content = Body{{}, true, {}};
    const bool isRead =
        trapped(from.log, Severity::Warning, kProcedure, kContactSupport, false, [&] {
            if (!item.content)
                return false;
            HeldContent held{.size = sizeOf(*item.content),
                             .unpackedFrom = item.content->unpackedFrom,
                             .isGZip = beginsAsGZip(*item.content)};
            constexpr int kPartial = 206;
            if (statusOf(stored) == kPartial)
                item.stretches = stretchesIn(textOfFact(item.facts, "byte_ranges"), held.size);
            if (item.stretches.size() == 1)
                held.first = item.stretches.front().first;
            if (!stored.empty())
                item.head = mendedHead(stored, held);
            item.digests = digestsOf(item.head, *item.content);
            return true;
        });
    if (isRead)
        return;
    item.content.reset();
    if (!stored.empty())
        item.head = mendedHead(stored, {.isThere = false});
}

void WarcWriter::writeItem(Item &item) {
    item.target = warcTargetOf(item.record);
    ++m_counts.contents;
    m_counts.bodyless += item.content ? 0 : 1;
    m_counts.undated += item.record.ActionDateUTC.has() ? 0 : 1;
    if (item.head.empty())
        writeResource(item);
    else if (item.content && item.stretches.size() > 1)
        writeStretches(item);
    else if (!writeRevisit(item))
        writeAnswer(item);
    writeMetadata(item);
}

WarcRecord WarcWriter::begun(const Item &item, std::string_view type) const {
    WarcRecord record{.type = type, .id = idOf(item.record, type), .date = warcDateOf(item.record)};
    record.fields = {{"WARC-Target-URI", item.target}, {"WARC-Warcinfo-ID", bracketed(m_infoId)}};
    return record;
}

void WarcWriter::writeAnswer(Item &item) {
    WarcRecord record = begun(item, "response");
    item.id = record.id;
    if (std::string address = ipAddressOf(item.facts); !address.empty())
        record.fields.emplace_back("WARC-IP-Address", std::move(address));
    record.contentType = kAnswer;
    record.before = item.head;
    if (item.content) {
        record.content = &*item.content;
        record.contentSize = item.digests.size;
        record.fields.emplace_back("WARC-Payload-Digest", warcDigest(item.digests.payloadSha1));
        record.fields.emplace_back("WARC-Block-Digest", warcDigest(item.digests.blockSha1));
    } else {
        Digest digest(DigestAlgorithm::sha1);
        digest.add(item.head);
        record.fields.emplace_back("WARC-Block-Digest", warcDigest(digest.takeHex()));
        record.fields.emplace_back("WARC-Truncated", "unspecified");
    }
    m_file.write(record);
    noteContent(item);
}

/// With a gap the bytes are no one answer: each stretch is the answer to who asks for it.
void WarcWriter::writeStretches(Item &item) {
    std::uint64_t at = 0;
    for (std::size_t i = 0; i < item.stretches.size(); ++i) {
        const WarcStretch &stretch = item.stretches[i];
        const Body part = partOf(*item.content, at, stretch.size);
        at += stretch.size;
        const std::string head =
            mendedHead(item.stored, {.size = stretch.size,
                                     .unpackedFrom = item.content->unpackedFrom,
                                     .first = stretch.first});
        const WarcDigests digests = digestsOf(head, part);
        WarcRecord record = begun(item, "response");
        if (i == 0)
            item.id = record.id;
        else
            record.id = idOf(item.record, fmt::format("response {}", i + 1));
        record.contentType = kAnswer;
        record.before = head;
        record.content = &part;
        record.contentSize = digests.size;
        record.fields.emplace_back("WARC-Payload-Digest", warcDigest(digests.payloadSha1));
        record.fields.emplace_back("WARC-Block-Digest", warcDigest(digests.blockSha1));
        m_file.write(record);
    }
}

void WarcWriter::writeResource(Item &item) {
    WarcRecord record = begun(item, "resource");
    item.id = record.id;
    record.contentType = plainType(item.record.MIMEType);
    record.content = &*item.content;
    record.contentSize = item.digests.size;
    const std::string digest = warcDigest(item.digests.payloadSha1);
    record.fields.emplace_back("WARC-Payload-Digest", digest);
    record.fields.emplace_back("WARC-Block-Digest", digest);
    m_file.write(record);
}

namespace {

/// Nothing for what is no SHA-1.
std::optional<std::array<char, 20>> keyOf(std::string_view sha1Hex) {
    std::array<char, 20> key{};
    if (sha1Hex.size() != key.size() * 2)
        return std::nullopt;
    const auto digit = [](char c) { return c <= '9' ? c - '0' : c - 'a' + 10; };
    for (std::size_t at = 0; at < key.size(); ++at)
        key[at] = static_cast<char>(digit(sha1Hex[at * 2]) * 16 + digit(sha1Hex[at * 2 + 1]));
    return key;
}

} // namespace

void WarcWriter::noteContent(const Item &item) {
    const auto key = keyOf(item.digests.payloadSha1);
    if (item.content && item.digests.size > 0 && key && m_contents.size() < kMostContents)
        m_contents.emplace(*key, item.record.URLID);
}

/// An answer with the content of an earlier one is written without it, and names that one.
bool WarcWriter::writeRevisit(Item &item) {
    const auto key = keyOf(item.digests.payloadSha1);
    if (!item.content || !key)
        return false;
    const auto found = m_contents.find(*key);
    if (found == m_contents.end())
        return false;
    const auto first = m_source.records.records.getURL(found->second);
    if (!first)
        return false;
    WarcRecord record = begun(item, "revisit");
    item.id = record.id;
    record.contentType = kAnswer;
    record.before = item.head;
    Digest digest(DigestAlgorithm::sha1);
    digest.add(item.head);
    record.fields.insert(
        record.fields.end(),
        {{"WARC-Profile", "http://netpreserve.org/warc/1.1/revisit/identical-payload-digest"},
         {"WARC-Refers-To", bracketed(idOf(*first, "response"))},
         {"WARC-Refers-To-Target-URI", warcTargetOf(*first)},
         {"WARC-Refers-To-Date", warcDateOf(*first)},
         {"WARC-Payload-Digest", warcDigest(item.digests.payloadSha1)},
         {"WARC-Block-Digest", warcDigest(digest.takeHex())}});
    m_file.write(record);
    ++m_counts.repeated;
    return true;
}

void WarcWriter::writeMetadata(const Item &item) {
    WarcMetadata more{.sourceSha256 = sourceHash(item.record.SourceFile_ID),
                      .contentSha256 = item.digests.sha256,
                      .facts = item.facts};
    if (item.content) {
        more.unpackedFrom = item.content->unpackedFrom;
        more.doubt = item.content->doubt;
    }
    WarcRecord record = begun(item, "metadata");
    record.contentType = "application/json";
    record.before = warcMetadataOf(item.record, more);
    Digest digest(DigestAlgorithm::sha1);
    digest.add(record.before);
    record.fields.emplace_back("WARC-Refers-To", bracketed(item.id));
    record.fields.emplace_back("WARC-Block-Digest", warcDigest(digest.takeHex()));
    m_file.write(record);
}

/// Empty where the project, one of an earlier build, doesn't have it.
std::string WarcWriter::sourceHash(SourceFileId source) {
    if (m_hashOf == source)
        return m_hash;
    m_hashOf = source;
    m_hash = trapped(m_source.records.log, Severity::Warning, kProcedure, kContactSupport,
                     std::string(), [&] {
                         SQLite::Statement row(m_source.records.project,
                                               "SELECT * FROM SourceFiles WHERE SourceFile_ID = ?");
                         bindId(row, 1, source);
                         const bool isThere = row.executeStep();
                         for (int at = 0; isThere && at < row.getColumnCount(); ++at)
                             if (std::string_view(row.getColumnName(at)) == "SHA256Hash")
                                 return row.getColumn(at).getString();
                         return std::string();
                     });
    return m_hash;
}

} // namespace nv
