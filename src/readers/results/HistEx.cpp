// A run of records of Internet Explorer's index, cut out of unallocated space:
//   file   = header? (record | filler[80])*      version[7]@1F, which is trimmed
//   record = signature[4] blocks:i32 ...         its length is blocks * 0x80 (ie/IndexRecord.cpp)
// Records lie at multiples of 0x80 from the first one, wherever that is.

#include "readers/results/HistEx.h"

#include "base/Files.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "readers/WholeFile.h"
#include "readers/ie/CachedFile.h"
#include "readers/ie/HashWalk.h"
#include "readers/ie/IndexRecord.h"
#include "readers/results/RecordSignatures.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>
#include <stdexcept>
#include <vector>

namespace nv {

namespace {

constexpr std::string_view kProcedure = "ParserClass.ParseHistExFile()";
constexpr std::uint64_t kVersion = 0x1F;
constexpr std::uint64_t kVersionLength = 7;
constexpr std::uint64_t kBlock = 0x80;

std::string versionOf(ByteView file) {
    const std::uint64_t begin = std::min<std::uint64_t>(file.size(), kVersion);
    const std::uint64_t length = std::min<std::uint64_t>(file.size() - begin, kVersionLength);
    return std::string(trim(fromAnsi(file.sub(begin, length).untilZero(0))));
}

class Carving {
  public:
    Carving(ReadContext &ctx, ByteView file)
        : m_ctx(ctx), m_file(file), m_trap(ctx.log, kProcedure, textOf(ctx.file.FullPath)) {}

    ReadResult run() {
        m_ctx.file.Version = versionOf(m_file);
        const std::optional<std::uint64_t> start = firstRecord(m_file);
        if (!start) {
            ++m_result.passedOver["file without a record"];
            return m_result;
        }
        walk(*start);
        if (m_trap.failed() > 0)
            m_result.passedOver["damaged record"] += m_trap.failed();
        if (m_result.state != ReadState::cancelled)
            countUncarved(m_file, *start, m_carved, m_result);
        return m_result;
    }

  private:
    void walk(std::uint64_t start) {
        for (std::uint64_t at = start; m_file.has(at, kSignatureLength);) {
            if (!goesOn(at)) {
                m_result.state = ReadState::cancelled;
                return;
            }
            at += isRecordSignature(m_file.sub(at, kSignatureLength).raw()) ? carve(at) : kBlock;
        }
    }

    bool goesOn(std::uint64_t at) {
        const auto position = static_cast<std::int64_t>(at);
        const auto total = static_cast<std::int64_t>(m_file.size());
        if (m_ctx.task.wantsStep())
            m_ctx.task.show(
                {fmt::format("Extracting MSIE URL - Reading byte {} of {}", position, total),
                 position,
                 total,
                 {},
                 0,
                 0});
        return m_ctx.task.advance(static_cast<double>(at) / static_cast<double>(m_file.size()));
    }

    /// How far to go on: behind a record, but by one block only behind a signature whose record
    /// fails, since nothing that it says of its length can be trusted.
    std::uint64_t carve(std::uint64_t at) {
        std::uint64_t length = kBlock;
        m_trap.attempt(at, [&] {
            const ByteView bytes = recordAt(m_file, at);
            if (bytes.empty())
                throw std::runtime_error("the record has no length");
            save(bytes, at);
            length = bytes.size();
            m_carved.push_back({at, at + length});
        });
        return length;
    }

    /// Nothing here is told to be deleted, although all of it was: counts of earlier cases go by
    /// the status "URL".
    void save(ByteView bytes, std::uint64_t at) {
        std::optional<URLClass> record =
            ParseIEURL(bytes, m_ctx.file, at, {}, DeletedFlag::no, m_ctx.clock);
        if (!record)
            return;
        locateCachedFile(*record, m_ctx.file, m_ctx.evidence);
        m_ctx.sink.save(*record);
    }

    ReadContext &m_ctx;
    ByteView m_file;
    RecordTrap m_trap;
    std::vector<CarvedRange> m_carved;
    ReadResult m_result;
};

} // namespace

ReadResult readHistEx(ReadContext &ctx, ByteView bytes) {
    return Carving(ctx, bytes).run();
}

ReadResult ParseHistExFile(ReadContext &ctx) {
    return readWholeFile(ctx,
                         {"PARSING NET ANALYSIS HIST-EX FILE",
                          "Internet Explorer (Unallocated Space)", "", "net-32.gif"},
                         kProcedure, [&ctx](ByteView bytes) { return readHistEx(ctx, bytes); });
}

} // namespace nv
