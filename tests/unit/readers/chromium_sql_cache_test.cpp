#include "base/Files.h"
#include "readers/chrome/cache/SqlCache.h"
#include "readers/sqlite/PagedRows.h"
#include "support/BodyOf.h"
#include "support/FactText.h"
#include "support/FileReading.h"
#include "support/Places.h"
#include "support/builders/ChromiumSql.h"
#include "support/builders/SqliteFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

namespace nv {
namespace {

namespace fs = std::filesystem;
using test::fact;
using testing::HasSubstr;

struct SqlCache : testing::Test {
    SqlCache() {
        fs::copy(test::goldenFolder() / "chromium-sql-cache/three-parts/input", folder());
        for (const auto &entry : fs::directory_iterator(folder()))
            fs::permissions(entry.path(), fs::perms::owner_write, fs::perm_options::add);
    }
    fs::path folder() const { return disk.path() / "Cache_Data"; }
    const std::vector<UrlRecord> &read() { return reading.read(parseChromiumSqlCache, folder()); }
    SQLite::Database change(const char *part) const {
        return {(folder() / part).native(), SQLite::OPEN_READWRITE};
    }
    std::string body(const UrlRecord &record) const {
        return test::bodyOf(fetchSqlBody, record, disk.path()).value_or("none");
    }

    test::TempFolder disk;
    test::FileReading reading;
};

TEST_F(SqlCache, bodiesComeFromThePagesAndFromACopyAlike) {
    const std::vector<UrlRecord> records = read();
    ASSERT_EQ(records.size(), 8U);
    std::vector<std::string> bodies;
    for (const UrlRecord &record : records)
        bodies.push_back(body(record));
    EXPECT_EQ(bodies[2], std::string(1500, 'A') + std::string(1500, 'B'));
    for (const char *part : {"sqldb0", "sqldb1", "sqldb2"})
        change(part).exec("DROP INDEX index_blobs_res_id_start");
    for (std::size_t i = 0; i < records.size(); ++i)
        EXPECT_EQ(body(records[i]), bodies[i]) << i;
}

TEST_F(SqlCache, checksumsAreCompared) {
    SQLite::Database part = change("sqldb0");
    const std::string head =
        part.execAndGet("SELECT head FROM resources WHERE res_id = 1").getString();
    const std::string piece =
        part.execAndGet("SELECT blob FROM blobs WHERE res_id = 1 ORDER BY start").getString();
    constexpr std::uint32_t kHash = 0x8765'4321;
    const auto set = [&](std::int64_t ofHead, std::int64_t ofPiece) {
        SQLite::Statement first(
            part, "UPDATE resources SET check_sum = ?, cache_key_hash = ? WHERE res_id = 1");
        first.bind(1, ofHead);
        first.bind(2, std::int64_t{kHash});
        first.exec();
        SQLite::Statement second(part, "UPDATE blobs SET check_sum = ? WHERE res_id = 1");
        second.bind(1, ofPiece);
        second.exec();
    };
    const std::size_t records = read().size();
    set(test::sqlChecksum(head, kHash), test::sqlChecksum(piece, kHash));
    EXPECT_EQ(fact(read().at(0), "body"), "");
    set(test::sqlChecksum(head, kHash) + 1, test::sqlChecksum(piece, kHash));
    EXPECT_EQ(fact(read().at(0), "body"), "the checksum of the answer's head is wrong");
    set(test::sqlChecksum(head, kHash), test::sqlChecksum(piece, kHash) + 1);
    EXPECT_EQ(fact(read().at(0), "body"), "its checksum is wrong");
    EXPECT_EQ(reading.result.noted.at("body with a wrong checksum"), 1U);
    EXPECT_EQ(read().size(), records) << "the record stays";
}

TEST_F(SqlCache, rowsInFreedPagesAreRemnants) {
    SQLite::Database part = change("sqldb0");
    part.exec("PRAGMA secure_delete=OFF");
    part.exec("WITH RECURSIVE n(i) AS (SELECT 100 UNION ALL SELECT i + 1 FROM n WHERE i < 140) "
              "INSERT INTO resources SELECT i, 13430000000000000, 0, 9, 9, 0, 0, 1, "
              "'1/0/https://gone.example/' || i || '/' || hex(zeroblob(100)), head FROM n, "
              "(SELECT head FROM resources WHERE res_id = 1)");
    part.exec("DELETE FROM resources WHERE res_id >= 100");
    const auto &records = read();
    std::size_t remnants = 0;
    for (const UrlRecord &record : records)
        if (record.URL.starts_with("https://gone.example/")) {
            ++remnants;
            EXPECT_EQ(record.cacheType, "Chrome Cache Remnant");
            EXPECT_EQ(record.Status, "Recovered");
            EXPECT_THAT(fact(record, "recovered_from"), HasSubstr("of sqldb0, which was freed"));
            EXPECT_TRUE(record.ActionDateUTC.has());
            EXPECT_EQ(record.CacheFileSize, 0);
        }
    EXPECT_EQ(records.size(), 8U + remnants);
    EXPECT_GT(remnants, 10U);
    EXPECT_EQ(reading.result.state, ReadState::complete);
}

/// Rows of table resources, and a body of each, in a table that has others.
struct DeletedRows : SqlCache {
    static constexpr int kFirst = 100;
    static constexpr int kEnd = 108;

    DeletedRows() {
        // All rows of the table in one page: none moves when others go.
        part.exec("PRAGMA page_size=4096");
        part.exec("VACUUM");
        part.exec("PRAGMA secure_delete=OFF");
        for (int id = kFirst; id < kEnd; ++id)
            insert(id);
    }
    void insert(int id) {
        const std::string head =
            part.execAndGet("SELECT head FROM resources WHERE res_id = 3").getString();
        SQLite::Statement entry(
            part, "INSERT INTO resources SELECT ?, 13430000000000000 + ?, 0, 9, 9, 0, ?, ?, "
                  "'1/0/https://gone.example/' || ?, head FROM resources WHERE res_id = 3");
        entry.bind(1, id);
        entry.bind(2, id);
        entry.bind(3, std::int64_t{test::sqlChecksum(head, hash(id))});
        entry.bind(4, std::int64_t{hash(id)});
        entry.bind(5, id);
        entry.exec();
        const std::string bytes = bodyOf(id);
        SQLite::Statement piece(part, "INSERT INTO blobs(res_id, start, end, check_sum, blob) "
                                      "VALUES(?, 0, 9, ?, ?)");
        piece.bind(1, id);
        piece.bind(2, std::int64_t{test::sqlChecksum(bytes, hash(id))});
        piece.bind(3, bytes.data(), static_cast<int>(bytes.size()));
        piece.exec();
    }
    static std::uint32_t hash(int id) { return 0x1000'0000U + static_cast<std::uint32_t>(id); }
    static std::string bodyOf(int id) { return "body  " + std::to_string(id); }
    std::vector<UrlRecord> ofGone() {
        std::vector<UrlRecord> found;
        for (const UrlRecord &record : read())
            if (record.URL.starts_with("https://gone.example/"))
                found.push_back(record);
        return found;
    }
    void checkRemnant(const UrlRecord &record) const {
        EXPECT_EQ(record.cacheType, "Chrome Cache Remnant");
        EXPECT_THAT(fact(record, "recovered_from"), HasSubstr("of sqldb0, amid its free space"));
        EXPECT_TRUE(record.ActionDateUTC.has());
        EXPECT_EQ(fact(record, "body"), "");
        EXPECT_EQ(body(record), "body  " + record.URL.substr(record.URL.size() - 3));
    }
    SQLite::Database part = change("sqldb0");
};

TEST_F(DeletedRows, amidAPagesFreeSpaceAreRemnantsWithTheirBodies) {
    for (const char *which : {"res_id = 101", "res_id IN (103, 104)", "res_id >= 100"}) {
        part.exec(std::string("DELETE FROM resources WHERE ") + which);
        const auto gone =
            part.execAndGet("SELECT count(*) FROM blobs WHERE res_id >= 100 AND res_id NOT IN "
                            "(SELECT res_id FROM resources)")
                .getInt64();
        std::int64_t recovered = 0;
        for (const UrlRecord &record : ofGone())
            if (record.Status == "Recovered") {
                ++recovered;
                checkRemnant(record);
            }
        EXPECT_EQ(recovered, gone) << which;
        EXPECT_EQ(reading.result.state, ReadState::complete);
    }
}

TEST_F(DeletedRows, copiesOfRowsThatAreThereAreNone) {
    part.exec("UPDATE resources SET hints = 300 WHERE res_id = 102");
    part.exec("UPDATE resources SET hints = 70000 WHERE res_id = 105");
    EXPECT_EQ(ofGone().size(), static_cast<std::size_t>(kEnd - kFirst));
}

TEST_F(DeletedRows, bodiesAloneAreRowsWithoutAnAddress) {
    part.exec("PRAGMA secure_delete=ON");
    part.exec("DELETE FROM resources WHERE res_id >= 100");
    EXPECT_TRUE(ofGone().empty());
    int bodies = 0;
    for (const UrlRecord &record : reading.sink.records)
        if (record.URL.empty() && record.DataBlockFile == "sqldb0") {
            ++bodies;
            EXPECT_EQ(record.cacheType, "Chrome Cache Remnant");
            EXPECT_EQ(record.Status, "Recovered");
            EXPECT_THAT(fact(record, "recovered_from"), HasSubstr("1 piece in table blobs"));
            EXPECT_EQ(body(record), bodyOf(static_cast<int>(record.Reference_ID)));
        }
    EXPECT_EQ(bodies, kEnd - kFirst);
}

TEST_F(DeletedRows, aShortPieceIsTold) {
    part.exec("UPDATE blobs SET blob = substr(blob, 1, 5) WHERE res_id = 103");
    for (const UrlRecord &record : ofGone())
        if (record.Reference_ID == 103) {
            EXPECT_EQ(fact(record, "body"), "5 bytes, by the places of its pieces 9");
            EXPECT_EQ(fact(record, "byte_ranges"), "0-4; missing 5-8");
            EXPECT_EQ(record.CacheFileSize, 5);
            EXPECT_EQ(body(record), "body ");
        }
    EXPECT_EQ(reading.result.noted.at("body whose pieces have other lengths than the table tells"),
              1U);
}

TEST_F(DeletedRows, inDamagedPagesLeadNowhere) {
    part.exec("DELETE FROM resources WHERE res_id >= 100");
    const Bytes whole = readWhole(folder() / "sqldb0");
    for (std::size_t at = 100; at < whole.size(); at += 1777)
        for (const char value : {'\0', '\x7F', '\xFF'}) {
            std::string damaged(ByteView(whole).raw());
            for (std::size_t i = at; i < damaged.size() && i < at + 12; ++i)
                damaged[i] = value;
            writeWhole(folder() / "sqldb0", damaged);
            EXPECT_LE(read().size(), 100U);
        }
}

TEST_F(SqlCache, aMissingPartLosesWhatLayInIt) {
    fs::remove(folder() / "sqldb1");
    EXPECT_EQ(read().size(), 5U);
    EXPECT_EQ(reading.result.state, ReadState::cutShort);
    EXPECT_THAT(reading.result.reason, HasSubstr("2 of 3 parts"));
    ASSERT_FALSE(reading.log.entries.empty());
}

TEST_F(SqlCache, aDamagedPartLosesNoOther) {
    for (const std::string &bytes :
         {std::string(), std::string("no database"), std::string(5000, '\xFF')}) {
        writeWhole(folder() / "sqldb1", bytes);
        reading.result = {};
        EXPECT_EQ(read().size(), 5U) << bytes.size();
        EXPECT_NE(reading.result.state, ReadState::complete);
        EXPECT_THAT(reading.result.reason, HasSubstr("sqldb1"));
    }
}

TEST_F(SqlCache, eachColumnMayHoldAnything) {
    SQLite::Database part = change("sqldb0");
    part.exec("UPDATE resources SET last_used = 'word', body_end = -9223372036854775807, "
              "doomed = x'00', cache_key = x'FF00FE', head = 'text' WHERE res_id = 1");
    part.exec("UPDATE blobs SET start = -1, end = 9223372036854775807 WHERE blob_id = 1");
    part.exec("UPDATE blobs SET start = 'a' WHERE blob_id = 2");
    ASSERT_EQ(read().size(), 8U);
    for (const UrlRecord &record : reading.sink.records)
        EXPECT_LE(body(record).size(), 3000U);
}

TEST_F(SqlCache, cancellingEndsTheReading) {
    test::CancelAfter watcher(2);
    reading.read(parseChromiumSqlCache, folder(), watcher);
    EXPECT_EQ(reading.result.state, ReadState::cancelled);
}

/// Reads the bytes of a file as PagedRows wants them.
struct Pages {
    explicit Pages(const fs::path &file)
        : evidence({}), source(evidence.open(file)), rows(source) {}
    Evidence evidence;
    EvidenceFile source;
    PagedRows rows;
};

struct PagedRowsTest : testing::TestWithParam<int> {
    static std::string blob(int i) {
        return std::string(static_cast<std::size_t>(i * i * 3 % 9000), static_cast<char>(i));
    }
    fs::path make() const {
        const fs::path path = disk.path() / "db";
        test::SqliteFile file(path, GetParam());
        file.run("CREATE TABLE blobs(id INTEGER PRIMARY KEY, res, start, blob)");
        file.run("CREATE INDEX places ON blobs(res, start)");
        file.run("BEGIN");
        auto insert = file.prepare("INSERT INTO blobs VALUES(?, ?, ?, ?)");
        for (int i = 1; i <= kRows; ++i) {
            const std::string bytes = blob(i);
            insert.bind(1, i * 7);
            insert.bind(2, i / 10);
            insert.bind(3, 100 - i);
            insert.bind(4, bytes.data(), static_cast<int>(bytes.size()));
            insert.exec();
            insert.reset();
        }
        file.run("COMMIT");
        return path;
    }
    static constexpr int kRows = 300;
    test::TempFolder disk;
};

TEST_P(PagedRowsTest, findRowsAsADatabaseDoes) {
    const Pages pages(make());
    const std::uint64_t table = pages.rows.rootOf("blobs");
    const std::uint64_t index = pages.rows.rootOf("places");
    ASSERT_GT(table, 0U);
    ASSERT_GT(index, 0U);
    for (int i = 1; i <= kRows; ++i) {
        std::string bytes;
        EXPECT_EQ(pages.rows.columnSize(table, i * 7, 3), blob(i).size());
        EXPECT_TRUE(pages.rows.writeColumn(table, i * 7, 3,
                                           [&bytes](std::string_view part) { bytes += part; }));
        EXPECT_EQ(bytes, blob(i)) << i;
    }
    EXPECT_EQ(pages.rows.columnSize(table, 8, 3), 0U);
    for (int group = 1; group < kRows / 10; ++group) {
        const auto rows = pages.rows.indexRows(index, group, 100);
        ASSERT_EQ(rows.size(), 10U) << group;
        for (std::size_t i = 0; i < rows.size(); ++i)
            EXPECT_EQ(rows[i].back(), (group * 10 + 9 - static_cast<int>(i)) * 7) << "by start";
    }
    EXPECT_TRUE(pages.rows.indexRows(index, 1000, 100).empty());
    EXPECT_EQ(pages.rows.indexRows(index, 1, 4).size(), 4U);
}

TEST_P(PagedRowsTest, comeToAnEndInDamagedFiles) {
    const fs::path path = make();
    const Bytes whole = readWhole(path);
    for (std::size_t at = 0; at < whole.size(); at += whole.size() / 300) {
        std::string damaged(ByteView(whole).raw());
        for (std::size_t i = at; i < damaged.size() && i < at + 16; ++i)
            damaged[i] = static_cast<char>(i % 3);
        writeWhole(path, damaged);
        const Pages pages(path);
        const std::uint64_t table = pages.rows.rootOf("blobs");
        static_cast<void>(pages.rows.indexRows(pages.rows.rootOf("places"), 3, 1000));
        static_cast<void>(pages.rows.writeColumn(table, 70, 3, [](std::string_view) {}));
    }
}

INSTANTIATE_TEST_SUITE_P(PageSizes, PagedRowsTest, testing::Values(512, 1024, 4096, 65536));

} // namespace
} // namespace nv
