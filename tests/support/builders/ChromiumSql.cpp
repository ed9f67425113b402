#include "support/builders/ChromiumSql.h"

#include "base/Files.h"
#include "support/builders/ChromiumCache.h"

#include <fmt/format.h>

#include <algorithm>
#include <zlib.h>

namespace nv::test {

namespace {

constexpr const char *kTables =
    "CREATE TABLE resources(res_id INTEGER NOT NULL PRIMARY KEY AUTOINCREMENT,last_used INTEGER "
    "NOT NULL,hints INTEGER NOT NULL,body_end INTEGER NOT NULL,bytes_usage INTEGER NOT NULL,doomed "
    "INTEGER NOT NULL,check_sum INTEGER NOT NULL,cache_key_hash INTEGER NOT NULL,cache_key TEXT "
    "NOT NULL,head BLOB);"
    "CREATE TABLE blobs(blob_id INTEGER NOT NULL PRIMARY KEY AUTOINCREMENT,res_id INTEGER NOT "
    "NULL,start INTEGER NOT NULL,end INTEGER NOT NULL,check_sum INTEGER NOT NULL,blob BLOB NOT "
    "NULL);"
    "CREATE INDEX index_resources_cache_key_hash_doomed ON resources(cache_key_hash, doomed);"
    "CREATE INDEX index_live_resources_last_used_bytes_usage ON resources(last_used, bytes_usage) "
    "WHERE doomed=0;"
    "CREATE INDEX index_live_resources_hints ON resources(hints) WHERE hints!=0 AND doomed=0;"
    "CREATE UNIQUE INDEX index_blobs_res_id_start ON blobs(res_id, start);"
    "CREATE TABLE meta(key LONGVARCHAR NOT NULL UNIQUE PRIMARY KEY, value LONGVARCHAR);";

/// Bodies are kept in pieces of at most this many bytes.
constexpr std::size_t kPiece = std::size_t{512} << 10;

int sizeOf(std::string_view bytes) {
    return static_cast<int>(bytes.size());
}

} // namespace

std::int32_t sqlChecksum(std::string_view bytes, std::uint32_t keyHash) {
    std::string checked(bytes);
    for (const unsigned shift : {24U, 16U, 8U, 0U})
        checked.push_back(static_cast<char>(keyHash >> shift));
    return static_cast<std::int32_t>(crc32_z(
        crc32(0, nullptr, 0), reinterpret_cast<const Bytef *>(checked.data()), checked.size()));
}

ChromiumSql::ChromiumSql(const std::filesystem::path &folder) {
    m_parts.resize(kParts);
    for (std::size_t i = 0; i < kParts; ++i) {
        m_parts[i].file = std::make_unique<SqliteFile>(folder / fmt::format("sqldb{}", i));
        m_parts[i].file->run("PRAGMA auto_vacuum=2").run(kTables).run("BEGIN");
    }
    writeWhole(folder / "index", fmt::format("SQLCacheTruncate{}", kParts));
}

void ChromiumSql::add(const ChromiumSqlEntry &entry) {
    const std::uint32_t keyHash = chromiumKeyHash(entry.key);
    const auto hash = static_cast<std::int32_t>(keyHash);
    Part &part = m_parts[keyHash % kParts];
    const auto size = static_cast<std::int64_t>(entry.body.size());
    const std::int64_t usage =
        size + static_cast<std::int64_t>(entry.head.size() + entry.key.size());
    SQLite::Statement row = part.file->prepare(
        "INSERT INTO resources(last_used,hints,body_end,bytes_usage,doomed,check_sum,"
        "cache_key_hash,cache_key,head) VALUES(?,0,?,?,0,?,?,?,?)");
    SQLite::bind(row, entry.lastUsed, size, usage, sqlChecksum(entry.head, keyHash), hash,
                 entry.key);
    row.bind(7, entry.head.data(), sizeOf(entry.head));
    row.exec();
    ++part.entries;
    part.bytes += usage;
    for (std::size_t at = 0; at < entry.body.size(); at += kPiece) {
        const std::string piece = entry.body.substr(at, kPiece);
        SQLite::Statement blob = part.file->prepare(
            "INSERT INTO blobs(res_id,start,end,check_sum,blob) VALUES(?,?,?,?,?)");
        SQLite::bind(blob, part.entries, static_cast<std::int64_t>(at),
                     static_cast<std::int64_t>(at + piece.size()), sqlChecksum(piece, keyHash));
        blob.bind(5, piece.data(), sizeOf(piece));
        blob.exec();
    }
}

void ChromiumSql::finish() {
    for (Part &part : m_parts) {
        part.file->run(fmt::format("INSERT INTO meta VALUES('mmap_status','-1'),('version','8'),"
                                   "('last_compatible_version','8'),('SharedCacheEnabled','0'),"
                                   "('EntryCount','{}'),('TotalSize','{}')",
                                   part.entries, part.bytes));
        part.file->run("COMMIT").close();
    }
}

} // namespace nv::test
