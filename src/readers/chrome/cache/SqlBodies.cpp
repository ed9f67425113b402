#include "readers/chrome/cache/SqlBodies.h"

#include "base/Files.h"
#include "base/Trap.h"
#include "readers/CachedBody.h"
#include "readers/EvidenceGaps.h"
#include "readers/chrome/cache/CacheRow.h"
#include "readers/chrome/cache/SqlChecksum.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

namespace nv {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kBodyName = "~sql_body";

/// The browser keeps empty ones.
bool hasFilledJournal(const Evidence &evidence, const fs::path &file) {
    constexpr std::array<std::string_view, 2> kEndings = {"-wal", "-journal"};
    return std::ranges::any_of(kEndings, [&](std::string_view ending) {
        const auto found =
            evidence.find(file.parent_path(), textOf(file.filename()) + std::string(ending));
        return found && evidence.factsOf(*found).size > 0;
    });
}

} // namespace

SqlBodies::SqlBodies(ReadContext &ctx, const PagedRows &rows, std::string_view procedure)
    : m_ctx(ctx), m_rows(rows), m_procedure(procedure), m_blobs(rows.rootOf("blobs")),
      m_hasJournal(hasFilledJournal(ctx.evidence, ctx.file.fullPath)) {}

SqlBodies::Measure SqlBodies::measure(std::vector<SqlPiece> &pieces) const {
    std::ranges::sort(pieces, {}, [](const SqlPiece &piece) { return piece.range.first; });
    Measure all;
    for (SqlPiece &each : pieces) {
        all.told += each.range.size;
        all.isInPages &= measure(each);
        all.size += each.range.size;
    }
    return all;
}

/// False when the pages don't have the piece.
bool SqlBodies::measure(SqlPiece &piece) const {
    const std::uint64_t size = m_rows.columnSize(m_blobs, piece.rowId, kBlob);
    if (size == piece.range.size)
        return true;
    if (m_hasJournal || (size == 0 && !m_rows.hasRow(m_blobs, piece.rowId)))
        return false;
    piece.range.size = size;
    return true;
}

void SqlBodies::addDoubts(UrlRecord &record, const std::vector<SqlPiece> &pieces,
                          const Measure &measure, std::uint64_t bodyEnd, ReadResult &result) const {
    std::vector<ByteRange> stored;
    stored.reserve(pieces.size());
    for (const SqlPiece &piece : pieces)
        stored.push_back(piece.range);
    const bool isOfRanges = record.MetaData.starts_with("HTTP/1.1 206");
    const std::string ranges =
        byteRangesText(stored, isOfRanges ? contentLengthIn(record.MetaData) : bodyEnd);
    const bool hasGap = ranges.find("missing") != std::string::npos;
    if (measure.size != measure.told)
        addDoubt(
            record,
            fmt::format("{} bytes, by the places of its pieces {}", measure.size, measure.told),
            result.noted["body whose pieces have other lengths than the table tells"]);
    if (isOfRanges || hasGap)
        record.facts.add("byte_ranges", ranges);
    else
        addBodyDoubts(record, measure.size);
    if (hasGap && !isOfRanges)
        ++result.noted["body of which pieces are missing"];
}

void SqlBodies::hold(UrlRecord &record, const std::vector<SqlPiece> &pieces,
                     std::optional<std::int64_t> keyHash, HeldBody &held,
                     ReadResult &result) const {
    const auto run = [&] { holdBytes(record, pieces, keyHash, held, result); };
    trapped(m_ctx.log, Severity::Warning, m_procedure, kContactSupport,
            [&] { tellingGaps(m_ctx.log, run); });
}

void SqlBodies::holdBytes(UrlRecord &record, const std::vector<SqlPiece> &pieces,
                          std::optional<std::int64_t> keyHash, HeldBody &held,
                          ReadResult &result) const {
    BodyTarget target(m_ctx.scratch / kBodyName, kBodyInMemory);
    bool isRight = true;
    for (const SqlPiece &piece : pieces) {
        SqlChecksum checksum;
        if (!m_rows.writeColumn(m_blobs, piece.rowId, kBlob, [&](std::string_view bytes) {
                target.write(bytes);
                checksum.add(bytes);
            }))
            return;
        isRight &= checksum.is(piece.checksum, keyHash);
    }
    if (!isRight)
        addDoubt(record, "its checksum is wrong", result.noted["body with a wrong checksum"]);
    Body body = target.take();
    settleBody(record, body, Packing::byHeaders, kBodyInMemory, m_ctx.log);
    held.take(std::move(body));
}

bool SqlBodies::isOfKey(const SqlPiece &piece, std::int64_t keyHash) const {
    SqlChecksum checksum;
    return piece.checksum.value_or(0) != 0 &&
           m_rows.writeColumn(m_blobs, piece.rowId, kBlob,
                              [&checksum](std::string_view bytes) { checksum.add(bytes); }) &&
           checksum.is(piece.checksum, keyHash);
}

void addDoubt(UrlRecord &record, std::string_view what, std::uint64_t &count) {
    record.facts.add("body", std::string(what));
    ++count;
}

} // namespace nv
