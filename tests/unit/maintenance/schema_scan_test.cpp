#include "UpgradeFixture.h"

namespace nv {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

struct SchemaScanTest : test::UpgradeFixture {};

TEST_F(SchemaScanTest, aProjectOfThisBuildFitsAndIsStamped) {
    const SchemaScan found = scan();
    EXPECT_TRUE(found.complete);
    EXPECT_THAT(linesOf(found), IsEmpty());
    EXPECT_THAT(found.leftBehind, IsEmpty());
    EXPECT_TRUE(upgrade().isStampOlder());
    upgrade().stampWhenOlder();
    EXPECT_FALSE(upgrade().isStampOlder());
    EXPECT_EQ(text("SELECT group_concat(DefaultName || '=' || DefaultValue, ' ') FROM "
                   "DefaultSettings WHERE DefaultName LIKE 'App%'"),
              "AppMajor=0 AppMinor=1 AppRevision=0");
    EXPECT_THAT(log.entries, IsEmpty());
}

TEST_F(SchemaScanTest, aScanChangesNoByte) {
    const std::string before = bytes(path);
    EXPECT_THAT(linesOf(scan()), IsEmpty());
    EXPECT_EQ(bytes(path), before) << "whoever only looks leaves the stamp as it is";
    EXPECT_THAT(filesBeside(), testing::UnorderedElementsAre("case.nvp", "Temp"));
}

TEST_F(SchemaScanTest, aProjectThatBearsTheStampIsNotWritten) {
    upgrade().stampWhenOlder();
    const std::string before = bytes(path);
    upgrade().stampWhenOlder();
    EXPECT_EQ(bytes(path), before);
    build = {0, 0, 9};
    upgrade().stampWhenOlder();
    EXPECT_EQ(bytes(path), before) << "a later build's stamp stays";
}

TEST_F(SchemaScanTest, aDatabaseOfAnotherProgramIsRefusedAndStaysAsItIs) {
    change("PRAGMA application_id = 252006674");
    const std::string before = bytes(path);
    EXPECT_THROW(scan(), StorageFailure);
    test::MemoryTask task;
    EXPECT_THROW(static_cast<void>(upgrade().fix(task)), StorageFailure);
    upgrade().stampWhenOlder();
    EXPECT_EQ(bytes(path), before);
    EXPECT_THAT(filesBeside(), testing::UnorderedElementsAre("case.nvp", "Temp"));
}

TEST_F(SchemaScanTest, aMissingTableIsOneRow) {
    change("DROP TABLE URLMetaData; DROP TABLE Keywords");
    EXPECT_THAT(linesOf(scan()), ElementsAre("URLMetaData Table URLMetaData Missing",
                                             "Keywords Table Keywords Missing"));
}

TEST_F(SchemaScanTest, missingIndexesColumnsAndKeysAreFoundByName) {
    change("DROP INDEX URLIndex");
    dropColumn("Notes");
    change("DROP TABLE TagOptions; CREATE TABLE TagOptions (TagOption_ID INTEGER PRIMARY KEY, "
           "Tag_ID INTEGER, Option TEXT)");
    EXPECT_THAT(linesOf(scan()),
                ElementsAre("URLs Index URLIndex Missing", "URLs Column Notes Missing",
                            "TagOptions Index TagOptions_Relationship Missing",
                            "TagOptions Column TagURLID Missing",
                            "TagOptions Key TagOption_ID_PK Missing",
                            "TagOptions Key TagOptions_Relationship Missing"));
}

TEST_F(SchemaScanTest, anotherSizeIsAMismatchAndAnotherTypeIsNot) {
    change("UPDATE sqlite_master SET sql = replace(sql, '\"Host\" VARCHAR(255)', "
           "'\"Host\" VARCHAR(100)') WHERE name = 'URLs'");
    change("UPDATE sqlite_master SET sql = replace(sql, '\"Visits\" INTEGER', "
           "'\"Visits\" TEXT') WHERE name = 'URLs'");
    change("UPDATE SchemaColumns SET DefinedSize = 40 WHERE ColumnName = 'Action'");
    EXPECT_THAT(linesOf(scan()),
                ElementsAre("URLs Column Action Size Mismatch", "URLs Column Host Size Mismatch"));
}

TEST_F(SchemaScanTest, whatOnlyTheProjectHasIsNoDifference) {
    change("CREATE TABLE Mine (a); INSERT INTO Mine VALUES (1); "
           "ALTER TABLE URLs ADD COLUMN Extra TEXT; CREATE VIEW Own AS SELECT 1");
    EXPECT_THAT(linesOf(scan()), IsEmpty());
}

TEST_F(SchemaScanTest, whatAFixWouldLeaveBehindIsSaid) {
    change("CREATE TABLE Mine (a); INSERT INTO Mine VALUES (1); CREATE TABLE Empty (a); "
           "INSERT INTO Keywords (Keyword) VALUES ('a'), ('b'); "
           "ALTER TABLE URLs ADD COLUMN Extra TEXT; CREATE VIEW Own AS SELECT 1; "
           "DROP INDEX URLIndex");
    EXPECT_THAT(scan().leftBehind,
                ElementsAre("Column \"Extra\" of table \"URLs\"", "Table \"Keywords\" with 2 rows",
                            "Table \"Mine\" with 1 row", "View \"Own\""));
}

TEST_F(SchemaScanTest, theStatusNamesWhatIsCompared) {
    test::MemoryTask task;
    upgrade().scan(task);
    std::vector<std::string> texts;
    for (const TaskStep &step : task.steps)
        texts.push_back(step.topMessage);
    EXPECT_THAT(texts, testing::Contains("Comparing Index: URLIndex"));
    EXPECT_THAT(texts, testing::Contains("Comparing Column: URL_ID"));
    EXPECT_THAT(texts, testing::Contains("Comparing Key: URL_ID_PK"));
}

TEST_F(SchemaScanTest, aStoppedScanIsNotComplete) {
    change("DROP INDEX URLIndex");
    const std::string before = bytes(path);
    test::CancelAfter task(5);
    EXPECT_FALSE(upgrade().scan(task).complete);
    EXPECT_EQ(bytes(path), before);
    EXPECT_THAT(filesBeside(), testing::UnorderedElementsAre("case.nvp", "Temp"));
}

TEST_F(SchemaScanTest, aLeftoverOfAnEarlierRunIsNoHindrance) {
    writeWhole(temp / "~adoxschema1", "not a database");
    EXPECT_TRUE(scan().complete);
    EXPECT_FALSE(std::filesystem::exists(temp / "~adoxschema1"));
}

TEST_F(SchemaScanTest, whatIsNoDatabaseIsRefused) {
    writeWhole(path, std::string(5000, 'x'));
    EXPECT_THROW(scan(), StorageFailure);
    writeWhole(path, ""); // SQLite takes it for a database
    EXPECT_THROW(scan(), StorageFailure);
    std::filesystem::remove(path);
    EXPECT_THROW(scan(), StorageFailure);
    EXPECT_FALSE(std::filesystem::exists(path));
}

TEST_F(SchemaScanTest, aProjectWithoutItsMainTableIsScanned) {
    dropViews();
    change("DROP TABLE URLs");
    EXPECT_THAT(linesOf(scan()), ElementsAre("URLs Table URLs Missing"));
}

TEST_F(SchemaScanTest, oddNamesInAProjectAreNamesOnly) {
    change("CREATE TABLE \"a\"\"; DROP TABLE URLs; --\" (\"x'\" TEXT); "
           "INSERT INTO \"a\"\"; DROP TABLE URLs; --\" VALUES (1); DROP INDEX URLIndex");
    EXPECT_THAT(scan().leftBehind, ElementsAre(HasSubstr("DROP TABLE URLs; --")));
    EXPECT_EQ(text("SELECT count(*) FROM URLs"), "2");
}

} // namespace
} // namespace nv
