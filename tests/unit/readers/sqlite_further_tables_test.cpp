#include "base/Files.h"
#include "readers/sqlite/FurtherTables.h"
#include "support/SqliteHistoryReading.h"
#include "support/builders/SqliteFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>

namespace nv {
namespace {

using test::SqliteFile;
using testing::HasSubstr;

constexpr std::array<std::string_view, 2> kColumns = {"name", "of_another_version"};
constexpr SqliteReader kReader = {"FurtherTablesTest.read()", "", "", ""};

void save(ReadContext &ctx, std::string_view table, std::int64_t rowId, const Row &row) {
    UrlRecord record;
    record.Reference_ID = rowId;
    record.cacheType = table;
    record.URL = row.text(0) + row.text(1);
    if (record.URL == "bad")
        throw EvidenceDamage("this row is bad");
    ctx.sink.save(record);
}

struct Unwilling final : TaskMonitor {
    void describe(const TaskHeading &) override {}
    bool advance(double) override { return false; }
    bool wantsStep() const override { return false; }
    void show(const TaskStep &) override {}
};

/// Table `rows` in the order of its row ids, `keys` in that of its key.
ReadResult readBoth(ReadContext &ctx) {
    return readSqliteFile(ctx, kReader, [&ctx](EvidenceDatabase &database) {
        ReadResult result;
        FurtherTables tables(ctx, database, kReader.procedure, result);
        const auto takerFor = [&ctx](std::string_view table) {
            return
                [&ctx, table](std::int64_t rowId, const Row &row) { save(ctx, table, rowId, row); };
        };
        const bool wentOn = tables.each("rows", kColumns, {0, 0.5}, takerFor("rows")) &&
                            tables.eachByKey("keys", kColumns, {0.5, 1}, takerFor("keys")) &&
                            tables.each("last", kColumns, takerFor("last"));
        EXPECT_EQ(wentOn, result.state != ReadState::cancelled);
        return result;
    });
}

class SqliteFurtherTables : public testing::Test {
  protected:
    std::filesystem::path path() const { return folder.path() / "t.sqlite"; }
    std::string read() {
        reading.read(readBoth, path());
        std::string told;
        for (const UrlRecord &record : reading.records())
            told += record.cacheType + std::to_string(record.Reference_ID) + record.URL + " ";
        return told;
    }
    void overwrite(const std::string &what, char with) const {
        std::string bytes = test::contentsOf(folder.path()).at(path().string());
        const std::size_t at = bytes.find(what);
        ASSERT_NE(at, bytes.npos);
        constexpr std::size_t kPage = 512;
        bytes.replace(at / kPage * kPage, kPage, kPage, with);
        writeWhole(path(), bytes);
    }

    test::TempFolder folder;
    test::SqliteHistoryReading reading;
};

TEST_F(SqliteFurtherTables, walksTablesWithAndWithoutRowIds) {
    SqliteFile(path())
        .run("CREATE TABLE rows(name); INSERT INTO rows(rowid,name) VALUES(7,'b'),(3,'a')")
        .run("CREATE TABLE keys(name TEXT PRIMARY KEY) WITHOUT ROWID")
        .run("INSERT INTO keys VALUES('z'),('y')");
    EXPECT_EQ(read(), "rows3a rows7b keys1y keys2z ");
    EXPECT_EQ(reading.result.state, ReadState::complete);
}

TEST_F(SqliteFurtherTables, aTableThatIsMissingHasNoRows) {
    SqliteFile(path()).run("CREATE TABLE last(name); INSERT INTO last VALUES('x')");
    EXPECT_EQ(read(), "last1x ");
    EXPECT_EQ(reading.result.state, ReadState::complete);
    EXPECT_TRUE(reading.log.entries.empty());
}

TEST_F(SqliteFurtherTables, givesRowsThatHaveNoneOfTheColumns) {
    SqliteFile(path())
        .run("CREATE TABLE rows(other); INSERT INTO rows VALUES(1)")
        .run("CREATE TABLE keys(other PRIMARY KEY) WITHOUT ROWID; INSERT INTO keys VALUES(1),(2)");
    EXPECT_EQ(read(), "rows1 keys1 keys2 ");
}

TEST_F(SqliteFurtherTables, aRowThatFailsIsPassedOver) {
    SqliteFile(path())
        .run("CREATE TABLE rows(name); INSERT INTO rows VALUES('a'),('bad'),('c')")
        .run("CREATE TABLE keys(name TEXT PRIMARY KEY) WITHOUT ROWID")
        .run("INSERT INTO keys VALUES('bad'),('x')");
    EXPECT_EQ(read(), "rows1a rows3c keys2x ");
    EXPECT_EQ(reading.result.passedOver.at("damaged record of table rows"), 1u);
    EXPECT_EQ(reading.result.passedOver.at("damaged record of table keys"), 1u);
}

TEST_F(SqliteFurtherTables, whatIsLostOfOneIsNotLostOfTheOthers) {
    SqliteFile(path(), 512)
        .run("CREATE TABLE rows(name); INSERT INTO rows VALUES('a')")
        .run("CREATE TABLE keys(name TEXT PRIMARY KEY) WITHOUT ROWID")
        .run("CREATE TABLE last(name); INSERT INTO last VALUES('x')")
        .run("INSERT INTO keys VALUES('the damaged page')")
        .close();
    overwrite("the damaged page", '\xEE');
    EXPECT_EQ(read(), "rows1a last1x ");
    EXPECT_EQ(reading.result.state, ReadState::cutShort);
    EXPECT_THAT(reading.result.reason,
                HasSubstr("in table \"keys\": database disk image is malformed behind row 0"));
}

/// A table without row ids has none by which each() could walk it.
TEST_F(SqliteFurtherTables, whatCannotBeWalkedCostsItsOwnRowsAlone) {
    SqliteFile(path())
        .run("CREATE TABLE rows(name TEXT PRIMARY KEY) WITHOUT ROWID; INSERT INTO rows VALUES('a')")
        .run("CREATE TABLE last(name); INSERT INTO last VALUES('x')");
    EXPECT_EQ(read(), "last1x ");
    EXPECT_EQ(reading.result.state, ReadState::cutShort);
    EXPECT_THAT(reading.result.reason, HasSubstr("table \"rows\" can't be read: "));
}

TEST_F(SqliteFurtherTables, isCancelledInTablesOfEitherForm) {
    const std::string keys = "CREATE TABLE keys(name TEXT PRIMARY KEY) WITHOUT ROWID; "
                             "INSERT INTO keys VALUES('y'),('z')";
    for (const std::string &sql :
         {keys, std::string("CREATE TABLE rows(name); INSERT INTO rows VALUES('a'),('b')")}) {
        std::filesystem::remove(path());
        SqliteFile(path()).run(sql);
        Unwilling task;
        reading.read(readBoth, path(), task);
        EXPECT_TRUE(reading.records().empty()) << sql;
        EXPECT_EQ(reading.result.state, ReadState::cancelled) << sql;
        EXPECT_TRUE(reading.result.reason.empty()) << sql;
    }
}

TEST(ReadingPart, isTheWholeButForItsTask) {
    test::SqliteHistoryReading reading;
    test::TempFolder folder;
    reading.secrets = reading.classicOnly = reading.deleted = true;
    SqliteFile(folder.path() / "t.sqlite").run("CREATE TABLE t(a)");
    const auto read = [](ReadContext &ctx) -> ReadResult {
        CountingSink sink(ctx.sink);
        const ReadContext counted = withSink(ctx, sink);
        const ReadingPart part(counted, {0.5, 1});
        EXPECT_TRUE(part.context.secrets && part.context.classicOnly && part.context.deleted);
        EXPECT_EQ(&part.context.file, &ctx.file);
        EXPECT_EQ(&part.context.log, &ctx.log);
        EXPECT_NE(&part.context.task, &ctx.task);
        UrlRecord record;
        part.context.sink.save(record);
        EXPECT_EQ(sink.saved(), 1u);
        return {};
    };
    reading.read(read, folder.path() / "t.sqlite");
    EXPECT_EQ(reading.records().size(), 1u);
}

} // namespace
} // namespace nv
