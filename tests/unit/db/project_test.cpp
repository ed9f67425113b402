#include "base/Md5.h"
#include "base/Trap.h"
#include "db/project/ProjectDatabase.h"
#include "db/project/ProjectFields.h"
#include "db/project/StoredQueries.h"
#include "db/schema/Schema.h"
#include "db/sql/Dialect.h"
#include "db/sql/ReadOnlyConnection.h"
#include "support/SmallFiles.h"
#include "support/TempFolder.h"
#include "support/TestDoubles.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <gtest/gtest.h>

#include <fstream>

namespace nv {
namespace {

struct ProjectTest : testing::Test {
    ProjectTest() {
        project.filePath = folder.path() / "case.nvp";
        project.keywordFolder = folder.path();
        folder.write("adult-content.txt", "# a comment\nterm one # why\r\n\nit's\n");
        folder.write("child-exploitation.txt", "");
    }
    void create() { ASSERT_TRUE(project.createDatabaseProject()); }
    std::string get(const std::string &sql) {
        return project.connection().execAndGet(sql).getString();
    }
    test::TempFolder folder;
    test::MemoryLog log;
    test::FixedClock clock;
    ProjectDatabase project{log, clock};
};

TEST_F(ProjectTest, aNewProjectHasEveryTableWithItsColumnsAndDescriptions) {
    create();
    for (const schema::Table &table : schema::projectTables()) {
        SQLite::Statement columns(project.connection(),
                                  "PRAGMA table_info(" + std::string(table.name) + ")");
        for (const schema::Column &column : table.columns) {
            ASSERT_TRUE(columns.executeStep()) << table.name << "." << column.name;
            EXPECT_EQ(columns.getColumn("name").getString(), column.name);
        }
        EXPECT_FALSE(columns.executeStep()) << table.name;
    }
    EXPECT_EQ(get("SELECT count(*) FROM pragma_table_info('URLs')"), "78");
    EXPECT_EQ(get("SELECT Description FROM SchemaColumns WHERE ColumnName = 'ThumbnailCreated'"),
              "The last time this thumbail was created");
    EXPECT_EQ(get("SELECT Label FROM SchemaColumns WHERE ColumnName = 'PARDValue'"), "PIAR Value");
    EXPECT_EQ(get("SELECT DefinedSize FROM SchemaColumns WHERE ColumnName = 'OtherDateMeaning'"),
              "50");
    EXPECT_EQ(get("SELECT count(*) FROM URLs"), "0");
    EXPECT_FALSE(project.connection().tableExists("FlaggedURLs"));
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(ProjectTest, keysIndexesAndRelationshipsCarryTheirNames) {
    create();
    const std::string urls = get("SELECT sql FROM sqlite_master WHERE name = 'URLs'");
    EXPECT_NE(urls.find("URL_ID_PK"), std::string::npos);
    EXPECT_NE(urls.find("SourceFilesURLs_Relationship"), std::string::npos);
    EXPECT_EQ(get("SELECT tbl_name FROM sqlite_master WHERE name = 'URLIndex'"), "URLs");
    const std::string analysis = get("SELECT sql FROM sqlite_master WHERE name = 'LinkAnalysis'");
    for (const char *name : {"ParentChild_ID_PK", "\"URLsLinks\"", "URLsLinks1"})
        EXPECT_NE(analysis.find(name), std::string::npos) << name;
    EXPECT_THROW(project.connection().exec("INSERT INTO Links(URL_ID) VALUES (77)"),
                 SQLite::Exception);
}

TEST_F(ProjectTest, everyStoredQueryRunsAsAView) {
    create();
    const auto queries = StoredQueries(project.connection()).list();
    ASSERT_EQ(queries.size(), 38u);
    EXPECT_EQ(queries.front().name, "_DEFAULT");
    EXPECT_EQ(queries.front().sql, "SELECT * FROM URLs ORDER BY ActionDateLocal ASC");
    EXPECT_EQ(queries.back().name, "_Tagged Items");
    for (const StoredQuery &query : queries) {
        SQLite::Statement view(project.connection(), "SELECT * FROM " + quotedName(query.name));
        EXPECT_FALSE(view.executeStep()) << query.name;
    }
    EXPECT_EQ(StoredQueries(project.connection()).text("XXX Content (in URLs)"),
              "SELECT * FROM URLs WHERE URL LIKE '%term one%' OR URL LIKE '%it''s%' ORDER BY "
              "ActionDateLocal ASC");
}

TEST_F(ProjectTest, theQueriesOfAllMoviesAndMusicFindWhatImportingWrites) {
    create();
    project.connection().exec("INSERT INTO URLs (Category) VALUES ('Movies, Animation'), "
                              "('Music, Audio'), ('Audio'), ('Movies'), ('Pictures')");
    EXPECT_EQ(get("SELECT count(*) FROM [Movies (all)]"), "1");
    EXPECT_EQ(get("SELECT count(*) FROM [Music (all)]"), "2");
}

TEST_F(ProjectTest, activityQueriesWrapIntoTheYearBefore) {
    const auto sqlOf = [](int year, int month, std::string_view name) {
        for (const StoredQuery &query : firstQueries(year, month, {}))
            if (query.name == name)
                return query.sql;
        return std::string();
    };
    EXPECT_NE(sqlOf(2011, 1, "_Activity for Last Month").find("#12/1/2010#"), std::string::npos);
    EXPECT_NE(sqlOf(2011, 2, "_Activity for Last Month").find("#1/1/2011#"), std::string::npos);
    EXPECT_NE(sqlOf(2011, 6, "_Activity for Last 6 Months").find("#12/1/2010#"), std::string::npos);
    EXPECT_NE(sqlOf(2011, 6, "_Activity for Last 12 Months").find("#6/1/2010#"), std::string::npos);
}

TEST_F(ProjectTest, aBrokenQueryLeavesEverythingAsItWas) {
    create();
    StoredQueries queries(project.connection());
    queries.save({"Mine", "SELECT * FROM URLs WHERE Visits > 3"});
    for (const char *bad : {"SELECT nothing FROM URLs", "SELECT * FROM nowhere", "SELECT",
                            "SELECT * FROM Mine", "SELECT 1; DROP TABLE URLs"})
        EXPECT_THROW(queries.save({"Mine", bad}), std::exception) << bad;
    EXPECT_EQ(queries.text("mine"), "SELECT * FROM URLs WHERE Visits > 3");
    EXPECT_EQ(get("SELECT count(*) FROM Mine"), "0");
    for (const char *taken : {"URLs", "StoredQueries", "sqlite_x", "URLIndex"})
        EXPECT_THROW(queries.save({taken, "SELECT 1"}), SQLite::Exception) << taken;
    EXPECT_EQ(queries.list().size(), 39u);
    project.connection().exec("BEGIN; COMMIT"); // no transaction was left open
    queries.save({"it's \"odd\"", "SELECT 1"});
    EXPECT_EQ(get("SELECT * FROM \"it's \"\"odd\"\"\""), "1");
    queries.remove("it's \"odd\"");
    EXPECT_EQ(queries.text("it's \"odd\""), std::nullopt);
}

TEST_F(ProjectTest, theTextOfAQueryIsAsItWasWritten) {
    create();
    StoredQueries queries(project.connection());
    for (const char *text :
         {"SELECT * FROM URLs WHERE ActionDateUTC > #1/15/2009# ; ", "SELECT TOP 3 * FROM [URLs]",
          "SELECT * FROM URLs /* mine */", "SELECT * FROM URLs WHERE Host = \"a\" -- b",
          " SELECT /* why */ Len(URL) AS n FROM URLs"}) {
        queries.save({"It's \"odd\"", text});
        EXPECT_EQ(queries.text("it's \"ODD\""), text);
        EXPECT_EQ(queries.list().back().sql, text);
    }
    for (const StoredQuery &query : firstQueries(2026, 11, {{"a'b"}, {"c[d"}}))
        EXPECT_EQ(queries.text(query.name).value_or("").substr(0, 7), "SELECT ") << query.name;
}

TEST_F(ProjectTest, ofAViewThatSomebodyChangedItsOwnStatementIsShown) {
    create();
    StoredQueries queries(project.connection());
    queries.save({"Mine", "SELECT * FROM URLs WHERE Visits > 3"});
    project.connection().exec(
        "DROP VIEW Mine; CREATE VIEW \"Mine\" AS SELECT * FROM URLs LIMIT 1;"
        "UPDATE StoredQueries SET SQLText = 'no ''end' WHERE Name = 'Phishing'");
    EXPECT_EQ(queries.text("Mine"), "SELECT * FROM URLs LIMIT 1");
    EXPECT_EQ(queries.list().back().sql, "SELECT * FROM URLs LIMIT 1");
    EXPECT_EQ(queries.text("Phishing").value_or("").find("SELECT * FROM URLs WHERE"), 0u);
    project.connection().exec("DROP VIEW Mine; CREATE VIEW mine(URL_ID) AS SELECT 1");
    EXPECT_EQ(queries.text("Mine"), "CREATE VIEW mine(URL_ID) AS SELECT 1");
    project.connection().exec("DROP VIEW Mine");
    EXPECT_EQ(queries.text("Mine"), "SELECT * FROM URLs WHERE Visits > 3");
    queries.save({"Mine", "SELECT * FROM URLs"});
    EXPECT_EQ(queries.text("Mine"), "SELECT * FROM URLs");
}

TEST_F(ProjectTest, resetDEFAULTQueryRestoresTheFirstText) {
    create();
    StoredQueries queries(project.connection());
    queries.save({"_DEFAULT", "SELECT * FROM URLs WHERE Visits > 3"});
    queries.resetDEFAULTQuery();
    EXPECT_EQ(queries.text("_DEFAULT"), kDefaultQueryText);
    queries.remove("_DEFAULT");
    EXPECT_EQ(queries.text("_DEFAULT"), std::nullopt);
    queries.resetDEFAULTQuery();
    EXPECT_EQ(queries.text("_DEFAULT"), kDefaultQueryText);
    EXPECT_EQ(get("SELECT count(*) FROM _DEFAULT"), "0");
}

TEST_F(ProjectTest, settingsReadBackAndAMissingOneIsEmpty) {
    create();
    ProjectFields fields(project.connection(), log);
    EXPECT_EQ(fields.getDefault("LastTimeZoneID"), "");
    EXPECT_EQ(fields.defaultNumber("LastTimeZoneID"), std::nullopt);
    EXPECT_TRUE(fields.saveDefaultSetting("LastTimeZoneID", "15"));
    EXPECT_TRUE(fields.saveDefaultSetting("lasttimezoneid", " 20 "));
    EXPECT_EQ(fields.getDefault("LastTimeZoneID"), "20");
    EXPECT_TRUE(fields.saveDefaultSetting("x'; DROP TABLE URLs; --", "1"));
    EXPECT_EQ(fields.getDefault("x'; DROP TABLE URLs; --"), "1");
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(ProjectTest, fieldsAreReadAndWrittenByKey) {
    create();
    project.connection().exec("INSERT INTO URLs(URL_ID, URL, Visits) VALUES (7, ' x ', 3)");
    ProjectFields fields(project.connection(), log);
    EXPECT_EQ(fields.getDB3Field("URL", "URLs", "URL_ID", "7"), "x");
    EXPECT_EQ(fields.getDB3Field("URL", "URLs", "URL_ID", "8"), "");
    EXPECT_TRUE(fields.putDBField("1", "7", "URL_ID", "URLs", "Tagged"));
    EXPECT_EQ(get("SELECT count(*) FROM URLs WHERE Tagged = 1"), "1");
    EXPECT_FALSE(fields.putDBField("1", "8", "URL_ID", "URLs", "Tagged", Severity::Low));
    ASSERT_EQ(log.entries.size(), 1u);
    EXPECT_EQ(log.entries[0].severity, Severity::Low);
    EXPECT_EQ(log.entries[0].recommendation, kNotSerious);
    EXPECT_EQ(fields.getDB3Field("URL FROM URLs; --", "URLs", "URL_ID", "7"), "");
    EXPECT_EQ(log.entries.back().procedure, "ADO.GetDB3Field()");
}

TEST_F(ProjectTest, fieldsUnderstandDatesAndFlags) {
    create();
    project.connection().exec("INSERT INTO URLs(URL_ID) VALUES (7)");
    ProjectFields fields(project.connection(), log);
    EXPECT_EQ(fields.getDB3Field("NotesDateTime", "URLs", "URL_ID", "7"), "");
    EXPECT_TRUE(fields.putDBField("1/15/2009 3:00 PM", "7", "URL_ID", "URLs", "NotesDateTime"));
    EXPECT_EQ(get("SELECT NotesDateTime FROM URLs"), "39828.625");
    EXPECT_EQ(fields.getDB3Field("NotesDateTime", "URLs", "URL_ID", "7"), "2009-01-15 15:00:00");
    EXPECT_TRUE(fields.putDBField("", "7", "URL_ID", "URLs", "NotesDateTime"));
    EXPECT_EQ(get("SELECT typeof(NotesDateTime) FROM URLs"), "null");
    EXPECT_TRUE(fields.putDBField("True", "7", "URL_ID", "URLs", "Tagged"));
    EXPECT_EQ(get("SELECT Tagged FROM URLs"), "1");
    EXPECT_TRUE(fields.putDBField("false", "7", "URL_ID", "URLs", "Tagged"));
    EXPECT_EQ(get("SELECT Tagged FROM URLs"), "0");
}

TEST_F(ProjectTest, closesIntoOneSoundFileAndOpensAgain) {
    create();
    project.connection().exec("INSERT INTO URLs(URL) VALUES ('http://x/')");
    project.closeDB();
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), {}), 3);
    project.open();
    EXPECT_EQ(get("SELECT URL FROM _DEFAULT"), "http://x/");
    EXPECT_EQ(get("PRAGMA integrity_check"), "ok");
    EXPECT_EQ(get("PRAGMA page_size"), "8192");
}

TEST_F(ProjectTest, whatIsOpenedForReadingKeepsItsBytes) {
    create();
    EXPECT_FALSE(project.isReadOnly());
    project.closeDB();
    const auto before = fileMD5(project.filePath);
    project.open(Access::read);
    EXPECT_TRUE(project.isReadOnly());
    EXPECT_EQ(get("SELECT count(*) FROM URLs"), "0");
    EXPECT_THROW(project.connection().exec("DELETE FROM StoredQueries"), SQLite::Exception);
    project.closeDB();
    EXPECT_FALSE(project.isOpen());
    EXPECT_EQ(fileMD5(project.filePath), before);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), {}), 3);
}

TEST_F(ProjectTest, onlyAKeywordQueryWithoutTermsLacksThem) {
    create();
    const StoredQueries queries(project.connection());
    EXPECT_TRUE(lacksTerms(*queries.text("Child Exploitation"))) << "its list is empty";
    EXPECT_FALSE(lacksTerms(*queries.text("XXX Content (in URLs)")));
    EXPECT_FALSE(lacksTerms(*queries.text("Webmail")));
    EXPECT_FALSE(lacksTerms("SELECT * FROM URLs WHERE Tagged = False"));
}

TEST_F(ProjectTest, likeOfTheConnectionKnowsListsAndRefusesOpenOnes) {
    create();
    project.connection().exec("INSERT INTO URLs(URL) VALUES ('b7'), ('d7'), (NULL)");
    EXPECT_EQ(get("SELECT count(*) FROM URLs WHERE URL LIKE '[a-c]_'"), "1");
    EXPECT_THROW(get("SELECT count(*) FROM URLs WHERE URL LIKE '[a'"), SQLite::Exception);
    StoredQueries(project.connection()).save({"Lists", "SELECT * FROM URLs WHERE URL LIKE '[d]%'"});
    EXPECT_EQ(get("SELECT count(*) FROM Lists"), "1");
}

TEST_F(ProjectTest, aReadOnlyConnectionReadsAndDoesNothingElse) {
    create();
    project.connection().exec("INSERT INTO URLs(URL) VALUES ('http://x/')");
    const auto reader = openReadOnly(project.filePath);
    EXPECT_EQ(reader->execAndGet("SELECT URL FROM _DEFAULT").getString(), "http://x/");
    for (const char *sql :
         {"DELETE FROM URLs", "INSERT INTO Keywords DEFAULT VALUES", "DROP TABLE URLs",
          "PRAGMA journal_mode=DELETE", "ATTACH ':memory:' AS a", "CREATE TEMP TABLE t(a)",
          "SELECT load_extension('x')", "VACUUM"})
        EXPECT_THROW(reader->exec(sql), SQLite::Exception) << sql;
    EXPECT_EQ(get("SELECT count(*) FROM URLs"), "1");
    EXPECT_THROW(openReadOnly(folder.path() / "none.nvp"), StorageFailure);
    EXPECT_THROW(openReadOnly(folder.write("x.nvp", std::string(5000, 'x'))), StorageFailure);
    EXPECT_THROW(openReadOnly(folder.write("empty.nvp", "")), StorageFailure);
}

/// What is said when `body` meets a full disk.
template <class Body>
std::string saidOnFullDisk(Body &&body) {
    const test::SmallFiles full(4096); // less than a page of the project
    try {
        std::forward<Body>(body)();
    } catch (const StorageFailure &failure) {
        return failure.what();
    }
    return {};
}

TEST_F(ProjectTest, aFullDiskIsNamedWithTheFile) {
    create();
    const std::string name = "\"" + project.filePath.string() + "\"";
    StoredQueries queries(project.connection());
    EXPECT_EQ(saidOnFullDisk([&] { queries.resetDEFAULTQuery(); }).find(name + " on the disk \""),
              0u);
    EXPECT_EQ(
        saidOnFullDisk([&] { queries.remove(kDefaultQueryName); }).find(name + " on the disk \""),
        0u);
    project.closeDB();
    EXPECT_EQ(saidOnFullDisk([&] { project.open(); }).find(name + ": on the disk \""), 0u);
    EXPECT_EQ(saidOnFullDisk([&] { project.open(Access::read); }), "");
}

} // namespace
} // namespace nv
