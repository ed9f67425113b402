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
#include "readers/ie/IndexKind.h"
#include "readers/ie/IndexRecord.h"

#include <algorithm>
#include <array>

namespace nv {

namespace {

constexpr std::string_view kProcedure = "ParserClass.ParseIECacheFile()";

/// Here the letters' case doesn't count; ParseIEURL takes capitals only.
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
          m_contents(ctx.log, kProcedure, textOf(ctx.file.FullPath)) {}

    ReadResult run() {
        ReadResult result;
        if (!m_walk.open(result))
            return result;
        m_folders = settleIndexKind(m_ctx.file, m_bytes, m_walk.chain());
        m_walk.run([this](std::uint64_t offset) { return take(offset); }, result);
        if (m_contents.failed() > 0)
            result.noted["record whose cached file could not be read"] = m_contents.failed();
        return result;
    }

  private:
    std::string_view take(std::uint64_t offset) {
        if (!hasSignature(m_bytes, offset))
            return "entry without a record signature";
        std::optional<URLClass> record =
            ParseIEURL(recordAt(m_bytes, offset), m_ctx.file, offset, m_folders,
                       m_ctx.deleted ? DeletedFlag::yes : DeletedFlag::no, m_ctx.clock);
        if (!record)
            return "record of no length or with a signature not in capitals";
        addCachedFile(*record, offset);
        m_ctx.sink.save(*record);
        return {};
    }

    /// A cached file that can't be read is no reason to lose its record.
    void addCachedFile(URLClass &record, std::uint64_t offset) {
        if (const auto found = locateCachedFile(record, m_ctx.file, m_ctx.evidence))
            m_contents.attempt(
                offset, [&] { examineCachedFile(record, *found, m_ctx.evidence, m_ctx.content); });
    }

    ReadContext &m_ctx;
    ByteView m_bytes;
    HashWalk m_walk;
    RecordTrap m_contents;
    FolderList m_folders;
};

} // namespace

ReadResult readIEIndex(ReadContext &ctx, ByteView bytes) {
    return IndexReading(ctx, bytes).run();
}

ReadResult ParseIECacheFile(ReadContext &ctx) {
    return readWholeFile(ctx, {"PARSING CACHE INDEX FILE", "Internet Explorer", "", "ie-32.gif"},
                         kProcedure, [&ctx](ByteView bytes) { return readIEIndex(ctx, bytes); });
}

} // namespace nv
