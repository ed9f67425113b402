// An index.dat, numbers little-endian, offsets from the start of the file:
//   index  = header table* record*
//   header = "Client UrlCache MMF Ver " version[3]@18 size:u32@1C table:i32be@1F
//            folders:i32@48 (name[8] pad[4])*@50          the odd offset 1F: see firstHashTable()
//   table  = "HASH" blocks:i32 next:i32 number:i32 (status:u32 record:i32)*
//   record = see IndexRecord.cpp
// Tables and records begin at multiples of 0x80 and are as many blocks of 0x80 bytes long.

#include "readers/ie/Index.h"

#include "base/Files.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "readers/WholeFile.h"
#include "readers/ie/CachedFile.h"
#include "readers/ie/HashWalk.h"
#include "readers/ie/IndexFacts.h"
#include "readers/ie/IndexKind.h"
#include "readers/ie/IndexRecord.h"
#include "readers/ie/RemnantWalk.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <unordered_set>
#include <utility>

namespace nv {

namespace {

constexpr std::string_view kProcedure = "ParserClass.ParseIECacheFile()";
constexpr std::uint64_t kUrlOfOthers = 0x68;

/// Here the letters' case doesn't count; parseIEURL takes capitals only.
bool hasSignature(ByteView file, std::uint64_t offset) {
    constexpr std::array<std::string_view, 4> kSignatures = {"url ", "redr", "leak", "file"};
    const std::string_view signature = file.sub(offset, 4).raw();
    return std::any_of(kSignatures.begin(), kSignatures.end(),
                       [signature](std::string_view s) { return equalsNoCase(signature, s); });
}

class IndexReading {
  public:
    IndexReading(ReadContext &ctx, ByteView bytes)
        : m_ctx(ctx), m_bytes(bytes), m_walk(ctx, bytes, kProcedure),
          m_contents(ctx.log, kProcedure, textOf(ctx.file.fullPath)) {}

    ReadResult run() {
        ReadResult result;
        if (!m_walk.open(result))
            return result;
        m_folders = settleIndexKind(m_ctx.file, m_bytes, m_walk.chain());
        m_walk.run([this](const ListedRecord &record) { return take(record); }, result);
        if (!m_ctx.classicOnly && result.state != ReadState::cancelled) {
            const IndexBlocks blocks = m_walk.blocks();
            RemnantWalk(m_ctx, m_bytes, blocks, kProcedure)
                .run([this](const Remnant &remnant) { recover(remnant); }, result);
        }
        if (m_contents.failed() > 0)
            result.noted["record whose cached file could not be read"] = m_contents.failed();
        return result;
    }

  private:
    std::string_view take(const ListedRecord &listed) {
        const std::uint64_t offset = listed.offset;
        if (!hasSignature(m_bytes, offset))
            return "entry without a record signature";
        const ByteView bytes = recordAt(m_bytes, offset);
        std::optional<UrlRecord> record =
            parseIEURL(bytes, m_ctx.file, offset, m_folders,
                       m_ctx.deleted ? DeletedFlag::yes : DeletedFlag::no, m_ctx.clock);
        if (!record)
            return "record of no length or with a signature not in capitals";
        addCachedFile(*record, offset);
        if (!m_ctx.classicOnly)
            addFacts(*record, bytes, listed);
        m_ctx.sink.save(*record);
        return {};
    }

    void addFacts(UrlRecord &record, ByteView bytes, const ListedRecord &listed) {
        if (!record.CacheFileName.empty())
            m_files.insert(nameOfFile(record));
        addIndexFacts(record, bytes);
        addHashFacts(record, listed.hashStatus);
        record.facts.add("classic_rule", std::string(listed.classicRule));
    }

    void recover(const Remnant &remnant) {
        const ByteView bytes(remnant.bytes, remnant.offset);
        std::optional<UrlRecord> record =
            parseIEURL(bytes, m_ctx.file, remnant.offset, m_folders, DeletedFlag::no, m_ctx.clock);
        if (!record)
            return;
        // A short LEAK record keeps the file's name alone, where others have their URL.
        if (record->CacheFileNameRecordOffset == kUrlOfOthers) {
            record->URLRawValue.clear();
            record->host.clear();
            setUrl(*record, {});
        }
        addFileOfRemnant(*record, remnant.offset);
        setRecovered(*record, remnant);
        addIndexFacts(*record, bytes);
        m_ctx.sink.save(*record);
    }

    /// The browser gives the names of deleted files anew: what lies under one is the record's only
    /// when no listed record has it, and when it is as long as the record says.
    void addFileOfRemnant(UrlRecord &record, std::uint64_t offset) {
        UrlRecord found = record;
        const bool isListed = m_files.contains(nameOfFile(record));
        const auto file =
            isListed ? std::nullopt : locateCachedFile(found, m_ctx.file, m_ctx.evidence);
        record.RootPath = m_ctx.evidence.rootOf(m_ctx.file.fullPath);
        if (record.CacheFileName.empty())
            return;
        if (isListed)
            return record.facts.add("body", "none: a listed record has the cached file");
        if (!file)
            return record.facts.add("body", "none: the cached file is gone");
        const std::uint64_t size = m_ctx.evidence.factsOf(*file).size;
        if (std::int64_t(size) != record.CacheFileSize)
            return record.facts.add(
                "body", fmt::format("none: the file of this name has {} bytes, the record {}", size,
                                    record.CacheFileSize));
        record = std::move(found);
        record.facts.add("body", "a file of this name and size, which no listed record has");
        m_contents.attempt(
            offset, [&] { examineCachedFile(record, *file, m_ctx.evidence, m_ctx.content); });
    }

    static std::string nameOfFile(const UrlRecord &record) {
        return toLower(record.CacheFolderName + "/" + record.CacheFileName);
    }

    /// A cached file that can't be read is no reason to lose its record.
    void addCachedFile(UrlRecord &record, std::uint64_t offset) {
        if (const auto found = locateCachedFile(record, m_ctx.file, m_ctx.evidence))
            m_contents.attempt(
                offset, [&] { examineCachedFile(record, *found, m_ctx.evidence, m_ctx.content); });
    }

    ReadContext &m_ctx;
    ByteView m_bytes;
    HashWalk m_walk;
    RecordTrap m_contents;
    FolderList m_folders;
    std::unordered_set<std::string> m_files; ///< cached files of listed records
};

} // namespace

ReadResult readIEIndex(ReadContext &ctx, ByteView bytes) {
    return IndexReading(ctx, bytes).run();
}

ReadResult parseIECacheFile(ReadContext &ctx) {
    return readWholeFile(ctx, {"PARSING CACHE INDEX FILE", "Internet Explorer", "", "ie-32.gif"},
                         kProcedure, [&ctx](ByteView bytes) { return readIEIndex(ctx, bytes); });
}

} // namespace nv
