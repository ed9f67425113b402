#include "rebuild/TemplateFile.h"

#include "base/Files.h"
#include "base/Text.h"
#include "rebuild/LocalNames.h"

#include <fmt/format.h>

#include <charconv>
#include <stdexcept>

namespace nv {

namespace {

// The layout: docs/formats/template.md.
constexpr std::size_t kHeaderSize = 0x1000;
constexpr std::size_t kHashOffsetAt = 0x200;
constexpr std::size_t kHashSizeAt = 0x204;
constexpr std::size_t kMethodAt = 0x208;
constexpr std::size_t kMethodSize = 8;
constexpr std::size_t kTitleSizeAt = 0x3FC;
constexpr std::size_t kTitleAt = 0x400;
constexpr std::string_view kMark = "NV\xBB\xBB";
constexpr std::string_view kClosing = "\xAB\xAB"
                                      "NV";
constexpr std::string_view kBreak = "\r\n";

void put32(std::string &bytes, std::size_t at, std::uint64_t value) {
    if (value > INT32_MAX)
        throw std::length_error("a template can't be larger than 2 GB");
    for (std::size_t i = 0; i < 4; ++i)
        bytes[at + i] = static_cast<char>(value >> (8 * i) & 0xFF);
}

std::string header(std::string_view version) {
    std::string bytes = fmt::format("        Norvelane Template {}", version);
    bytes.replace(0, kMark.size(), kMark);
    bytes.resize(kHeaderSize);
    return bytes;
}

/// A part's name is made of its id; one without a record keeps the name that its page knows.
std::string partNameOf(const TemplateRecord &record) {
    return record.tagID == 0 ? record.fileName
                             : fmt::format("{}.{}", sidOf(UrlId{record.tagID}),
                                           getFileExtension(record.fileName));
}

std::string hashSection(const TemplateRecordsCollection &records) {
    std::string text = fmt::format("{}[HASH]", kBreak);
    for (const TemplateRecord &r : records)
        text += fmt::format("{}{{{}|{}|{}|{}|{}}}", kBreak, r.tagID, r.originalTag,
                            r.newTagRelativePath, r.recordOffset, r.recordSize);
    return text + fmt::format("{}[/HASH]{}", kBreak, kBreak);
}

std::int64_t numberOf(std::string_view field) {
    std::int64_t value = 0;
    const std::string_view digits = trim(field);
    std::from_chars(digits.data(), digits.data() + digits.size(), value);
    return value;
}

void addRecord(PageTemplate &made, std::string_view piece, ByteView bytes) {
    const auto fields = split(piece, '|');
    if (fields.size() != 5)
        return; // a text with "|" or "}" in it has broken the section
    const std::int64_t offset = numberOf(fields[3]);
    const std::int64_t size = numberOf(fields[4]);
    if (offset < 0 || size < 0 ||
        !bytes.has(static_cast<std::uint64_t>(offset), static_cast<std::uint64_t>(size)))
        return;
    TemplateRecord record;
    record.tagID = numberOf(fields[0]);
    record.originalTag = fields[1];
    record.newTagRelativePath = fields[2];
    record.fileName = fields[2];
    record.recordOffset = static_cast<std::uint32_t>(offset);
    record.recordSize = static_cast<std::uint32_t>(size);
    made.records.add(std::move(record));
}

} // namespace

std::string templateBytes(TemplateRecordsCollection &records, const TemplateHead &head) {
    std::string bytes = header(head.version);
    for (TemplateRecord &record : records) {
        const Bytes content = readWhole(record.filePath);
        // The page comes first; what it is called there doesn't depend on its id in this project.
        const bool isPage = &record == &records.item(1);
        record.newTagRelativePath = isPage ? std::string(kTemplatePage) : partNameOf(record);
        record.recordOffset = static_cast<std::uint32_t>(bytes.size());
        record.recordSize = static_cast<std::uint32_t>(content.size());
        bytes.append(ByteView(content).raw()).append(kBreak);
    }
    const std::string hash = toAnsi(hashSection(records));
    // A longer title would run into the first record.
    const std::string title = toAnsi(head.webpageTitle).substr(0, kHeaderSize - kTitleAt);
    put32(bytes, kHashOffsetAt, bytes.size());
    put32(bytes, kHashSizeAt, hash.size());
    const std::string_view method = head.method.substr(0, kMethodSize);
    bytes.replace(kMethodAt, method.size(), method);
    put32(bytes, kTitleSizeAt, title.size());
    bytes.replace(kTitleAt, title.size(), title);
    return bytes.append(hash).append(kClosing);
}

PageTemplate readTemplate(ByteView bytes) {
    PageTemplate made;
    made.fileSize = bytes.size();
    made.hashOffset = bytes.u32le(kHashOffsetAt);
    made.hashSize = bytes.u32le(kHashSizeAt);
    for (const std::string_view word : {"classic", "exact"})
        if (std::string_view(bytes.sub(kMethodAt, kMethodSize).raw()).starts_with(word))
            made.method = word;
    made.titleSize = bytes.u32le(kTitleSizeAt);
    made.webpageTitle = fromAnsi(bytes.sub(kTitleAt, made.titleSize));
    if (!bytes.has(made.hashOffset, made.hashSize))
        return made;
    made.hashTable = fromAnsi(bytes.sub(made.hashOffset, made.hashSize));
    if (made.hashTable.find("[HASH]") == std::string::npos)
        return made;
    std::string text = replaceAll(replaceAll(made.hashTable, "[HASH]", ""), "[/HASH]", "");
    text = replaceAll(replaceAll(text, kBreak, ""), "{", "");
    for (const std::string_view piece : split(text, '}'))
        addRecord(made, piece, bytes);
    return made;
}

} // namespace nv
