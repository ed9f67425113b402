// folder    = "index": "SQLCacheTruncate" number of parts | "sqldb0" | "sqldb1" ...
// resources = res_id last_used body_end doomed cache_key head       an entry
// blobs     = blob_id res_id start end checksum blob                pieces of its body

#include "readers/chrome/cache/SqlCache.h"

#include "base/Files.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "readers/FactSource.h"
#include "readers/Limits.h"
#include "readers/chrome/cache/CacheRow.h"
#include "readers/chrome/cache/SqlBodies.h"
#include "readers/chrome/cache/SqlChecksum.h"
#include "readers/chrome/cache/SqlRemnants.h"
#include "readers/chrome/shared/MetaTable.h"
#include "readers/chrome/shared/Stamps.h"
#include "readers/sqlite/EvidenceCopy.h"
#include "readers/sqlite/FurtherTables.h"
#include "readers/sqlite/PagedRows.h"
#include "readers/sqlite/SqliteReading.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <utility>
#include <vector>

namespace nv {

namespace fs = std::filesystem;

namespace {

constexpr SqliteReader kReader = {"ChromiumSqlCache.read()", "PARSING CHROMIUM CACHE", "SQL cache",
                                  "chromeCache-32.gif"};
constexpr std::string_view kPart = "sqldb";

constexpr std::array<std::string_view, 8> kColumns = {"res_id",    "last_used",     "body_end",
                                                      "doomed",    "cache_key",     "head",
                                                      "check_sum", "cache_key_hash"};
enum Column : std::size_t { kId, kLastUsed, kBodyEnd, kDoomed, kKey, kHead, kChecksum, kKeyHash };

constexpr std::array<std::string_view, 4> kPieceColumns = {"res_id", "start", "end", "check_sum"};
enum PieceColumn : std::size_t { kEntry, kStart, kEnd, kPieceChecksum };
constexpr std::size_t kBlob = SqlBodies::kBlob;

bool isPart(std::string_view name) {
    return name.starts_with(kPart) && name.size() > kPart.size() &&
           std::ranges::all_of(name.substr(kPart.size()),
                               [](char c) { return c >= '0' && c <= '9'; });
}

std::uint64_t atLeastZero(std::optional<std::int64_t> number) {
    return static_cast<std::uint64_t>(std::max<std::int64_t>(number.value_or(0), 0));
}

/// One of the databases.
class PartReading {
  public:
    PartReading(ReadContext &ctx, const fs::path &folder, std::string file)
        : m_ctx(ctx), m_folder(folder), m_file(std::move(file)),
          m_source(ctx.evidence.open(ctx.file.fullPath)), m_rows(m_source),
          m_bodies(ctx, m_rows, kReader.procedure),
          m_remnants(ctx, {m_folder, m_file, m_rows, m_bodies}) {}

    ReadResult read(EvidenceDatabase &database) {
        const auto version = schemaVersion(m_ctx, database);
        m_version = version ? fmt::format("SQL {}", *version) : "SQL";
        ReadResult result;
        FurtherTables tables(m_ctx, database, kReader.procedure, result);
        const bool isRead =
            tables.each("blobs", kPieceColumns,
                        [this](std::int64_t id, const Row &row) { addPiece(id, row); }) &&
            tables.each("resources", kColumns, [this, &result](std::int64_t id, const Row &row) {
                save(id, row, result);
            });
        if (isRead && !database.hasTable("resources"))
            addDamage(result, "there is no table resources");
        m_ctx.file.version = m_version;
        if (isRead)
            m_count += m_remnants.save(std::move(m_pieces), result);
        return result;
    }

  private:
    void addPiece(std::int64_t id, const Row &row) {
        const std::uint64_t start = atLeastZero(row.number(kStart));
        const std::uint64_t end = atLeastZero(row.number(kEnd));
        m_pieces[row.number(kEntry).value_or(0)].push_back(
            {{start, end < start ? 0 : end - start}, id, row.number(kPieceChecksum)});
    }

    void save(std::int64_t id, const Row &row, ReadResult &result) {
        std::vector<SqlPiece> pieces = std::move(m_pieces[id]);
        m_pieces.erase(id);
        const SqlBodies::Measure measure = m_bodies.measure(pieces);
        const auto key = row.bytes(kKey);
        const auto head = row.bytes(kHead);
        const std::string_view keyBytes = key ? key->raw() : std::string_view();
        m_remnants.know(id, keyBytes, head ? head->raw() : std::string_view());
        m_ctx.file.version = m_version;
        UrlRecord record = chromeEntryRecord(m_ctx, {m_folder, m_file, 0, measure.size, {}},
                                             keyBytes, head.value_or(ByteView()));
        record.HistoryFilePath = textOf(m_folder);
        record.Reference_ID = id;
        addStamp(record.facts, "last_used", row.number(kLastUsed));
        addSource(record.facts, "resources", id);
        m_bodies.addDoubts(record, pieces, measure, atLeastZero(row.number(kBodyEnd)), result);
        if (row.truth(kDoomed))
            makeChromeRemnant(record, "a row that the browser had marked to delete it");
        SqlChecksum ofHead;
        ofHead.add(head ? head->raw() : std::string_view());
        if (!ofHead.is(row.number(kChecksum), row.number(kKeyHash)))
            addDoubt(record, "the checksum of the answer's head is wrong",
                     result.noted["answer with a wrong checksum"]);
        HeldBody held(m_ctx.content);
        if (measure.size > 0 && measure.isInPages)
            m_bodies.hold(record, pieces, row.number(kKeyHash), held, result);
        m_ctx.sink.save(record);
        ++m_count;
        if (m_ctx.task.wantsStep())
            m_ctx.task.show(
                {{}, 0, 0, fmt::format("Record {} {}", m_count, record.URL), m_count, m_count});
    }

    ReadContext &m_ctx;
    const fs::path &m_folder;
    std::string m_file;
    std::string m_version;
    EvidenceFile m_source;
    PagedRows m_rows;
    SqlBodies m_bodies;
    SqlRemnants m_remnants;
    SqlRemnants::Pieces m_pieces;
    std::int64_t m_count = 0;
};

/// How many parts the file "index" tells of; nothing when it doesn't.
std::optional<std::size_t> partsByIndex(const ReadContext &ctx, const fs::path &folder) {
    constexpr std::string_view kMark = "SQLCacheTruncate";
    const auto index = ctx.evidence.find(folder, "index");
    const Bytes bytes = index ? ctx.evidence.head(*index, kMark.size() + 4) : Bytes();
    const std::string_view text = ByteView(bytes).raw();
    if (!text.starts_with(kMark))
        return std::nullopt;
    const std::string_view number = text.substr(kMark.size());
    std::size_t parts = 0;
    const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), parts);
    return error == std::errc() ? std::optional(parts) : std::nullopt;
}

void addResult(ReadResult &whole, const ReadResult &part) {
    for (const auto &[reason, count] : part.passedOver)
        whole.passedOver[reason] += count;
    for (const auto &[reason, count] : part.noted)
        whole.noted[reason] += count;
    whole.notReached += part.notReached;
    if (part.state == ReadState::cancelled)
        whole.state = part.state;
    else if (part.state != ReadState::complete)
        addDamage(whole, part.reason);
}

/// The pieces by the pages of the file. False when they give another size than the record has.
bool writePages(const EvidenceFile &file, const UrlRecord &record, BodyTarget &target) {
    const PagedRows rows(file);
    const std::uint64_t index = rows.rootOf("index_blobs_res_id_start");
    const std::uint64_t table = rows.rootOf("blobs");
    std::uint64_t written = 0;
    const auto pieces = rows.indexRows(index, record.Reference_ID, limits::kChromeStretches);
    std::uint64_t told = 0;
    for (const auto &piece : pieces)
        if (piece.size() == 3) // entry, start, row id
            told += rows.columnSize(table, piece[2], kBlob);
    if (told != static_cast<std::uint64_t>(record.CacheFileSize))
        return false;
    for (const auto &piece : pieces)
        if (!rows.writeColumn(table, piece[2], kBlob, [&](std::string_view bytes) {
                target.write(bytes);
                written += bytes.size();
            }))
            break;
    return written > 0;
}

bool writeByQuery(const Evidence &evidence, const fs::path &file, std::int64_t id,
                  BodyTarget &target) {
    const EvidenceCopy copy(evidence, file, target.file().parent_path());
    EvidenceDatabase database(copy.path(), copy.size());
    SQLite::Statement query =
        database.prepare("SELECT blob FROM blobs WHERE res_id = ? ORDER BY start");
    query.bind(1, id);
    std::uint64_t written = 0;
    while (query.executeStep()) {
        const SQLite::Column blob = query.getColumn(0);
        const auto size = static_cast<std::size_t>(blob.getBytes());
        target.write({static_cast<const char *>(blob.getBlob()), size});
        written += size;
    }
    return written > 0;
}

} // namespace

ReadResult parseChromiumSqlCache(ReadContext &ctx) {
    const fs::path folder = ctx.evidence.kindOf(ctx.file.fullPath) == PlaceKind::folder
                                ? ctx.file.fullPath
                                : ctx.file.fullPath.parent_path();
    std::vector<fs::path> parts;
    for (const fs::path &file : ctx.evidence.contentsOf(folder).files)
        if (isPart(toLower(textOf(file.filename()))))
            parts.push_back(file);
    ReadResult result;
    double done = 0;
    for (const fs::path &part : parts) {
        HistoryFile file = ctx.file;
        file.fullPath = part;
        const auto count = static_cast<double>(parts.size());
        SubTask task(ctx.task, done / count, (done + 1) / count);
        ReadContext own{file,    ctx.evidence, ctx.content, ctx.clock,       ctx.scratch, ctx.sink,
                        ctx.log, task,         ctx.deleted, ctx.classicOnly, ctx.secrets};
        const auto read = [&](EvidenceDatabase &database) {
            return PartReading(own, folder, textOf(part.filename())).read(database);
        };
        addResult(result, readSqliteFile(own, kReader, read));
        ctx.file.version = file.version;
        if (result.state == ReadState::cancelled)
            return result;
        ++done;
    }
    const auto unread = std::optional<std::size_t>(0);
    const auto told = trapped(ctx.log, Severity::Warning, kReader.procedure, kContactSupport,
                              unread, [&] { return partsByIndex(ctx, folder); });
    if (told == unread)
        ++result.noted["index that doesn't tell how many parts there are"];
    if (told.value_or(0) > parts.size()) {
        addDamage(result,
                  fmt::format("{}: {} of {} parts are there", textOf(folder), parts.size(), *told));
        ctx.log.write({result.reason, std::string(kReader.procedure), Severity::Serious,
                       std::string(kContactSupport)});
    }
    return result;
}

bool fetchSqlBody(const UrlRecord &record, const Evidence &evidence, BodyTarget &target) {
    const auto folder = evidence.byText(record.CacheRootPath);
    const auto found = folder && record.CacheFileSize > 0 && isPart(toLower(record.DataBlockFile))
                           ? evidence.find(*folder, record.DataBlockFile)
                           : std::nullopt;
    if (!found)
        return false;
    return writePages(evidence.open(*found), record, target) ||
           writeByQuery(evidence, *found, record.Reference_ID, target);
}

} // namespace nv
