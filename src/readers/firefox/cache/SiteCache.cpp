// folder           = "caches.sqlite" | "morgue": {0 to 255}: {UUID}.final
// storage          = namespace key cache_id      a cache's name in UTF-16; 1 is the browser's own
// entries          = id request_* response_* cache_id
// response_headers = name value entry_id         request_headers = name value entry_id
// security_info    = id data (base64)            response_url_list = url entry_id
// A body lies in the folder that the last byte of its UUID names, in Snappy's frames.

#include "readers/firefox/cache/SiteCache.h"

#include "base/Base64.h"
#include "base/Files.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "readers/CachedBody.h"
#include "readers/EvidenceGaps.h"
#include "readers/FactSource.h"
#include "readers/HeldBody.h"
#include "readers/Limits.h"
#include "readers/ReadingPart.h"
#include "readers/Unpacker.h"
#include "readers/firefox/cache/CacheBody.h"
#include "readers/firefox/cache/SiteCacheRecord.h"
#include "readers/sqlite/FurtherTables.h"
#include "readers/sqlite/KeptMessage.h"
#include "readers/sqlite/SchemaVersion.h"
#include "readers/sqlite/SqliteReading.h"

#include <fmt/format.h>
#include <unicode/unistr.h>

#include <array>
#include <map>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace nv {

namespace {

namespace fs = std::filesystem;

constexpr SqliteReader kReader = {"ParserClass.ParseFirefoxSiteCache()",
                                  "PARSING MOZILLA FIREFOX CACHE", "Caches of a site",
                                  "firefox-32.gif"};
constexpr std::string_view kBodyName = "~site_body";

// The stretches of the task.
constexpr Stretch kBeside = {0, 0.05};
constexpr Stretch kEntries = {0.05, 1};

struct CacheName {
    std::string name;
    bool isOfBrowser = false;
};

/// UTF-16, little-endian, as the browser's machine has it.
std::string nameOf(ByteView key) {
    icu::UnicodeString text;
    for (std::uint64_t at = 0; key.has(at, 2); at += 2)
        text.append(static_cast<char16_t>(key.u16le(at)));
    std::string name;
    return text.toUTF8String(name);
}

/// Unpacks a body's file. What is wrong with it; empty for nothing. Throws FileFailure.
std::string unpackInto(const EvidenceFile &file, BodyTarget &target) {
    const auto unpacker = snappyUnpacker();
    std::uint64_t size = 0;
    const Unpacker::Take take = [&](std::string_view piece) {
        if (piece.size() > limits::kUnpackedBytes - size)
            return false;
        size += piece.size();
        target.write(piece);
        return true;
    };
    static_cast<void>(
        inBlocks(file, [&](std::string_view block) { return unpacker->feed(block, take); }));
    if (!unpacker->problem().empty())
        return fmt::format("only its first {} bytes: {}", size, unpacker->problem());
    return unpacker->isWhole() ? ""
                               : fmt::format("only its first {} bytes: its file ends there", size);
}

class SiteCacheReading {
  public:
    SiteCacheReading(ReadContext &ctx, EvidenceDatabase &database)
        : m_ctx(ctx), m_database(database), m_folder(ctx.file.fullPath.parent_path()),
          m_bodies(ctx.log, kReader.procedure, textOf(ctx.file.fullPath)) {}

    ReadResult read() {
        const auto version = userVersion(m_database);
        noteSchemaVersion(m_ctx, "caches", version);
        m_ctx.file.version = version ? fmt::format("site cache {}", *version) : "site cache";
        ReadResult beside;
        if (!readBeside(beside))
            return beside;
        ReadingPart part(m_ctx, kEntries);
        ReadResult result =
            mainRows(m_database, "entries", kSiteCacheColumns, part.context, kReader.procedure,
                     [this](std::int64_t id, const Row &row) { save(id, row); });
        addLosses(result, beside);
        if (beside.state != ReadState::complete)
            addDamage(result, beside.reason);
        if (result.state != ReadState::cancelled)
            saveRemnants(result);
        tell(result);
        if (result.state == ReadState::failed && m_remnants > 0)
            result.state = ReadState::cutShort;
        return result;
    }

  private:
    bool readBeside(ReadResult &result) {
        constexpr std::array<std::string_view, 3> kStorage = {"namespace", "key", "cache_id"};
        constexpr std::array<std::string_view, 3> kHeaders = {"name", "value", "entry_id"};
        constexpr std::array<std::string_view, 2> kUrls = {"url", "entry_id"};
        constexpr std::array<std::string_view, 2> kSecurity = {"id", "data"};
        ReadingPart part(m_ctx, kBeside);
        FurtherTables tables(part.context, m_database, kReader.procedure, result);
        const auto addHeader = [this](std::string SiteCacheEntry::*into) {
            return [this, into](std::int64_t, const Row &row) {
                std::string line = fmt::format("{}: {}\r\n", row.text(0), row.text(1));
                if (hasRoomFor(line))
                    m_entries[row.number(2).value_or(0)].*into += line;
            };
        };
        return tables.eachByKey("storage", kStorage,
                                [this](std::int64_t, const Row &row) { addCache(row); }) &&
               tables.each("security_info", kSecurity,
                           [this](std::int64_t, const Row &row) { addSecurity(row); }) &&
               tables.each("response_headers", kHeaders, addHeader(&SiteCacheEntry::headers)) &&
               tables.each("request_headers", kHeaders,
                           addHeader(&SiteCacheEntry::requestHeaders)) &&
               tables.each("response_url_list", kUrls, [this](std::int64_t, const Row &row) {
                   std::string url = row.text(0);
                   if (hasRoomFor(url))
                       m_entries[row.number(1).value_or(0)].urls.push_back(std::move(url));
               });
    }

    bool hasRoomFor(std::string_view text) {
        constexpr std::size_t kAround = 64; // that it costs besides
        const std::size_t left = limits::kFirefoxSiteTexts - m_texts;
        if (text.size() + kAround > left) {
            ++m_leftOut;
            return false;
        }
        m_texts += text.size() + kAround;
        return true;
    }

    void addCache(const Row &row) {
        const auto key = row.bytes(1);
        m_caches[row.number(2).value_or(0)] = {key ? nameOf(*key) : std::string(),
                                               row.number(0).value_or(0) == 1};
    }

    void addSecurity(const Row &row) {
        const auto data = row.bytes(1);
        const std::string bytes = data ? fromBase64(data->raw()) : std::string();
        if (auto certificate = certificateIn(viewOf(bytes)))
            m_certificates[row.number(0).value_or(0)] = *std::move(certificate);
    }

    /// All that the tables beside it say of an entry, which isn't needed again.
    SiteCacheEntry entryOf(std::int64_t id, const Row &row) {
        SiteCacheEntry entry;
        if (auto known = m_entries.extract(id))
            entry = std::move(known.mapped());
        const auto cache = row.number(static_cast<std::size_t>(SiteCacheColumn::cache));
        if (const auto found = m_caches.find(cache.value_or(0)); found != m_caches.end()) {
            entry.cacheName = found->second.name;
            entry.isOfBrowser = found->second.isOfBrowser;
        }
        const auto security = row.number(static_cast<std::size_t>(SiteCacheColumn::security));
        if (const auto found = m_certificates.find(security.value_or(0));
            found != m_certificates.end())
            entry.certificate = found->second;
        return entry;
    }

    void save(std::int64_t id, const Row &row) {
        UrlRecord record = siteCacheRecord(m_ctx, row, entryOf(id, row));
        record.Reference_ID = id;
        addSource(record.facts, "entries", id);
        if (record.ActionDateUTC.has())
            ++m_dated;
        m_named.insert(toLower(
            siteBodyFile(row.text(static_cast<std::size_t>(SiteCacheColumn::requestBody)))));
        const std::string body = row.text(static_cast<std::size_t>(SiteCacheColumn::body));
        const std::string file = siteBodyFile(body);
        m_named.insert(toLower(file));
        if (!body.empty() && file.empty())
            record.facts.add("body", fmt::format("\"{}\" names no file", body.substr(0, 100)));
        saveWithBody(record, file);
    }

    void saveWithBody(UrlRecord &record, const std::string &file) {
        HeldBody held(m_ctx.content);
        if (!file.empty())
            m_bodies.attempt(0,
                             [&] { tellingGaps(m_ctx.log, [&] { addBody(record, file, held); }); });
        m_ctx.sink.save(record);
    }

    void addBody(UrlRecord &record, const std::string &file, HeldBody &held) {
        const auto found = m_ctx.evidence.find(m_folder, file);
        setSiteBody(record, file, 0);
        if (!found) {
            record.facts.add("body", "its file isn't there");
            ++m_gone;
            return;
        }
        BodyTarget target(m_ctx.scratch / kBodyName, kBodyInMemory);
        const std::string problem = unpackInto(m_ctx.evidence.open(*found), target);
        Body body = target.take();
        const std::uint64_t size = body.isInMemory ? body.bytes.size() : scratch::sizeOf(body.file);
        record.CacheFileSize = static_cast<std::int64_t>(size);
        record.CacheFileExists = size > 0;
        if (!problem.empty()) {
            record.facts.add("body", problem);
            ++m_damaged;
        }
        settleBody(record, body, Packing::byHeaders, kBodyInMemory, m_ctx.log);
        held.take(std::move(body));
    }

    /// Bodies that no entry names, in the order of their folders.
    void saveRemnants(ReadResult &result) {
        const auto morgue = m_folder / "morgue";
        if (m_ctx.evidence.kindOf(morgue) != PlaceKind::folder)
            return;
        RecordTrap folders(m_ctx.log, kReader.procedure, textOf(morgue));
        const auto each = [&](const fs::path &folder) {
            for (const fs::path &file : m_ctx.evidence.contentsOf(folder).files) {
                const std::string name =
                    fmt::format("morgue/{}/{}", textOf(folder.filename()), textOf(file.filename()));
                if (!m_named.contains(toLower(name)))
                    saveRemnant(name);
            }
        };
        folders.attempt(0, [&] {
            for (const fs::path &folder : m_ctx.evidence.contentsOf(morgue).folders)
                folders.attempt(0, [&] { tellingGaps(m_ctx.log, [&] { each(folder); }); });
        });
        if (folders.failed() > 0)
            addDamage(result, fmt::format("{} could not be listed whole", textOf(morgue)));
    }

    void saveRemnant(const std::string &name) {
        UrlRecord record = siteRemnantRecord(m_ctx, name);
        saveWithBody(record, name);
        ++m_remnants;
    }

    void tell(ReadResult &result) const {
        const auto note = [&result](const char *what, std::uint64_t count) {
            if (count > 0)
                result.noted[what] += count;
        };
        note("entry dated by the server's header, since the browser keeps no date of it", m_dated);
        note("body whose file isn't there", m_gone);
        note("body whose file is damaged or cut short", m_damaged);
        note("body that couldn't be read", m_bodies.failed());
        note("header or address left out, since there are more than any site has", m_leftOut);
    }

    ReadContext &m_ctx;
    EvidenceDatabase &m_database;
    fs::path m_folder;
    RecordTrap m_bodies;
    std::map<std::int64_t, CacheName> m_caches;
    std::map<std::int64_t, Certificate> m_certificates;
    std::unordered_map<std::int64_t, SiteCacheEntry> m_entries;
    std::unordered_set<std::string> m_named; ///< files of bodies, in lower case
    std::size_t m_texts = 0;
    std::uint64_t m_leftOut = 0;
    std::uint64_t m_remnants = 0;
    std::uint64_t m_dated = 0;
    std::uint64_t m_gone = 0;
    std::uint64_t m_damaged = 0;
};

} // namespace

ReadResult parseFirefoxSiteCache(ReadContext &ctx) {
    return readSqliteFile(ctx, kReader, [&ctx](EvidenceDatabase &database) {
        return SiteCacheReading(ctx, database).read();
    });
}

bool fetchFirefoxSiteBody(const UrlRecord &record, const Evidence &evidence, BodyTarget &target) {
    if (record.DataBlockFile.empty())
        return false;
    const auto file =
        inFirefoxCacheFolder(record, evidence, record.CacheFolderName + "/" + record.DataBlockFile);
    if (!file)
        return false;
    static_cast<void>(unpackInto(evidence.open(*file), target));
    return true;
}

} // namespace nv
