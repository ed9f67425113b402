// A results file, numbers little-endian and signed, offsets from the start of the file:
//   file   = header table record*
//   header = unknown[64] count:i32@64 unknown[4] table:i32@6C
//   table  = unknown[8] (record:i32 size:i32)*      size in bytes
//   record = see ie/IndexRecord.cpp

#include "readers/results/Nvd.h"

#include "base/Files.h"
#include "base/Trap.h"
#include "readers/WholeFile.h"
#include "readers/ie/CachedFile.h"
#include "readers/ie/IndexRecord.h"

#include <fmt/format.h>

#include <optional>

namespace nv {

namespace {

constexpr std::string_view kProcedure = "ParserClass.ParseNorvelaneNVDFile()";
constexpr std::uint64_t kCount = 0x64;
constexpr std::uint64_t kTable = 0x6C;
constexpr std::uint64_t kHeader = kTable + 4;
constexpr std::int64_t kTableHead = 8;
constexpr std::int64_t kEntry = 8;

NVDFileClass headOf(ByteView file, const std::string &version) {
    return {file.size(), file.i32le(kTable), file.i32le(kCount), version, file.sub(0, kHeader)};
}

class NvdReading {
  public:
    NvdReading(ReadContext &ctx, ByteView bytes)
        : m_ctx(ctx), m_bytes(bytes), m_trap(ctx.log, kProcedure, textOf(ctx.file.FullPath)) {}

    ReadResult run() {
        if (!m_bytes.has(0, kHeader)) {
            noteDamage(
                fmt::format("a header was expected, and there are {} bytes", m_bytes.size()));
            m_result.state = ReadState::failed;
            return m_result;
        }
        m_head = headOf(m_bytes, m_ctx.file.Version);
        m_ctx.task.describe({"PARSING NORVELANE BINARY FILE",
                             fmt::format("A total of {} URLs were found.", m_head.EntryCount),
                             textOf(m_ctx.file.FullPath), "norvelane-32.gif"});
        if (m_head.EntryCount < 0)
            noteDamage(fmt::format("the number of entries at {} is {}", kCount, m_head.EntryCount));
        walk();
        if (m_trap.failed() > 0)
            m_result.passedOver["damaged record"] += m_trap.failed();
        if (m_result.state != ReadState::cancelled)
            m_ctx.task.show({"All done.", 0, 0, {}, 0, 0});
        return m_result;
    }

  private:
    void walk() {
        for (std::int64_t entry = 0; entry < m_head.EntryCount; ++entry) {
            if (!goesOn(entry)) {
                m_result.state = ReadState::cancelled;
                return;
            }
            const std::int64_t at = m_head.HashTableOffset + kTableHead + entry * kEntry;
            if (at < 0 || !m_bytes.has(static_cast<std::uint64_t>(at), kEntry)) {
                noteDamage(fmt::format("the entry of record {} was expected at {}, outside of the "
                                       "{} bytes",
                                       entry + 1, at, m_bytes.size()));
                m_result.notReached += static_cast<std::uint64_t>(m_head.EntryCount - entry);
                return;
            }
            takeEntry(static_cast<std::uint64_t>(at));
        }
    }

    bool goesOn(std::int64_t entry) {
        if (m_ctx.task.wantsStep())
            m_ctx.task.show({fmt::format("Processing {} of {}", entry + 1, m_head.EntryCount),
                             entry + 1,
                             m_head.EntryCount,
                             {},
                             0,
                             0});
        return m_ctx.task.advance(static_cast<double>(entry) /
                                  static_cast<double>(m_head.EntryCount));
    }

    void takeEntry(std::uint64_t at) {
        const std::int32_t offset = m_bytes.i32le(at);
        const std::int32_t size = m_bytes.i32le(at + 4);
        if (size <= 0) {
            ++m_result.passedOver["entry without a size"];
            return;
        }
        const auto place = static_cast<std::uint64_t>(offset);
        const auto length = static_cast<std::uint64_t>(size);
        if (offset < 0 || !m_bytes.has(place, length)) {
            // Each entry stands for itself: the next ones may well be sound.
            noteDamage(fmt::format("the entry at {} expects a record of {} bytes at {}, outside of "
                                   "the {} bytes",
                                   at, size, offset, m_bytes.size()));
            ++m_result.notReached;
            return;
        }
        m_trap.attempt(place, [&] { takeRecord(m_bytes.sub(place, length)); });
    }

    void takeRecord(ByteView bytes) {
        const DeletedFlag deleted = m_ctx.deleted ? DeletedFlag::yes : DeletedFlag::no;
        std::optional<URLClass> record =
            ParseIEURL(bytes, m_ctx.file, bytes.place(), {}, deleted, m_ctx.clock);
        if (!record) {
            ++m_result.passedOver["entry without a record signature"];
            return;
        }
        locateCachedFile(*record, m_ctx.file, m_ctx.evidence);
        m_ctx.sink.save(*record);
    }

    /// The first damage is told and logged; of the others the result has the number.
    void noteDamage(const std::string &damage) {
        if (m_result.state == ReadState::cutShort)
            return;
        m_result.state = ReadState::cutShort;
        m_result.reason = fmt::format("{}: {}", textOf(m_ctx.file.FullPath), damage);
        m_ctx.log.write({m_result.reason, std::string(kProcedure), Severity::Warning,
                         std::string(kContactSupport)});
    }

    ReadContext &m_ctx;
    ByteView m_bytes;
    RecordTrap m_trap;
    NVDFileClass m_head;
    ReadResult m_result;
};

} // namespace

ReadResult readNvd(ReadContext &ctx, ByteView bytes) {
    return NvdReading(ctx, bytes).run();
}

ReadResult ParseNorvelaneNVDFile(ReadContext &ctx) {
    return trapped(ctx.log, Severity::Warning, kProcedure, kContactSupport, unreadable(ctx),
                   [&ctx] {
                       const Bytes bytes = ctx.evidence.whole(ctx.file.FullPath);
                       return readNvd(ctx, ByteView(bytes));
                   });
}

} // namespace nv
