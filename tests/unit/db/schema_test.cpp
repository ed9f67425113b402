#include "db/schema/Schema.h"
#include "support/TestProject.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

namespace nv {
namespace {

TEST(Schema, tablesHaveTheirColumnsInNumber) {
    const std::map<std::string, std::size_t> counts = {
        {"URLs", 78},    {"DefaultSettings", 2}, {"LinkAnalysis", 5}, {"SourceFiles", 15},
        {"Links", 4},    {"Tags", 15},           {"TagOptions", 4},   {"URLMetaData", 11},
        {"Keywords", 2}, {"URLSortTable", 2},    {"RecordFacts", 4}};
    EXPECT_EQ(schema::projectTables().size(), counts.size());
    for (const schema::Table &table : schema::projectTables())
        EXPECT_EQ(table.columns.size(), counts.at(std::string(table.name))) << table.name;
}

TEST(Schema, tablesStandInTheOrderOfTheirMaking) {
    const char *names[] = {
        "URLs",       "DefaultSettings", "LinkAnalysis", "SourceFiles",  "Links",      "Tags",
        "TagOptions", "URLMetaData",     "Keywords",     "URLSortTable", "RecordFacts"};
    for (std::size_t i = 0; i < std::size(names); ++i)
        EXPECT_EQ(schema::projectTables()[i].name, names[i]);
    EXPECT_EQ(schema::relationships().front().name, "URLsLinks");
    EXPECT_EQ(schema::relationships().back().name, "RecordFacts_Relationship");
}

TEST(Schema, sizesAreThoseThatAreKnown) {
    const schema::Table &urls = *schema::findTable("urls");
    EXPECT_EQ(schema::findColumn(urls, "User")->size, 255);
    EXPECT_EQ(schema::findColumn(urls, "Status")->size, 50);
    EXPECT_EQ(schema::findColumn(urls, "Action")->size, 30);
    EXPECT_EQ(schema::findColumn(urls, "Action")->type, schema::ColumnType::Memo);
    EXPECT_EQ(schema::findColumn(urls, "nothing"), nullptr);
    EXPECT_EQ(schema::findTable("nothing"), nullptr);
}

TEST(Schema, theValidationTextTellsAViewHowToShowAColumn) {
    const schema::Table &urls = *schema::findTable("URLs");
    EXPECT_EQ(schema::validationText(*schema::findColumn(urls, "PARDValue"), 56),
              "show:56:01000:PIAR Value");
    EXPECT_EQ(schema::validationText(*schema::findColumn(urls, "Action"), 3), "");
}

TEST(SchemaCatalogue, theProjectKeepsWhatSQLiteDoesNot) {
    test::TestProject project;
    EXPECT_EQ(project.number("SELECT count(*) FROM SchemaColumns"), 142);
    EXPECT_EQ(project.text("SELECT ValidationText || '|' || Properties || '|' || Type FROM "
                           "SchemaColumns WHERE TableName = 'URLs' AND Ordinal = 0"),
              "show:00:01000:URN|Autoincrement=true|Long");
    EXPECT_EQ(project.text("SELECT FromTable || '.' || FromColumn || '>' || ToTable || '.' || "
                           "ToColumn FROM SchemaRelationships WHERE RelationshipName = "
                           "'URLsLinks1'"),
              "URLs.URL_ID>LinkAnalysis.Child_ID");
    EXPECT_EQ(project.number("SELECT count(*) FROM SchemaRelationships"), 7);
    EXPECT_EQ(project.text("SELECT ColumnName FROM SchemaIndexes WHERE IndexName = 'URLIndex'"),
              "URL");
    EXPECT_EQ(project.number("SELECT count(*) FROM SchemaIndexes WHERE IsPrimaryKey"), 8);
}

TEST(SchemaCatalogue, everyTextIgnoresCaseAndEveryFlagIsNoUnlessSet) {
    test::TestProject project;
    project.connection().exec("INSERT INTO URLs (Host) VALUES ('Mail.YIMG.com')");
    EXPECT_EQ(project.number("SELECT count(*) FROM URLs WHERE Host = 'mail.yimg.com'"), 1);
    EXPECT_EQ(project.number("SELECT count(*) FROM URLs WHERE IsPicture = 0 AND Tagged = 0"), 1);
    EXPECT_EQ(project.text("SELECT typeof(ActionDateUTC) FROM URLs"), "null");
}

TEST(SchemaCatalogue, aTextLongerThanItsColumnIsKeptWhole) {
    test::TestProject project;
    project.connection().exec("INSERT INTO URLs (User) VALUES (hex(zeroblob(400)))");
    EXPECT_EQ(project.number("SELECT length(User) FROM URLs"), 800);
}

TEST(SchemaCatalogue, aNumberIsNeverGivenTwice) {
    test::TestProject project;
    project.connection().exec("INSERT INTO URLs DEFAULT VALUES; INSERT INTO URLs DEFAULT VALUES;"
                              "DELETE FROM URLs WHERE URL_ID = 2; INSERT INTO URLs DEFAULT VALUES");
    EXPECT_EQ(project.number("SELECT max(URL_ID) FROM URLs"), 3);
}

TEST(SchemaCatalogue, aRecordTakesItsFactsAlong) {
    test::TestProject project;
    project.connection().exec("INSERT INTO URLs DEFAULT VALUES; INSERT INTO URLs DEFAULT VALUES;"
                              "INSERT INTO RecordFacts (URL_ID, Name, Value) VALUES "
                              "(1, 'transition', 'typed'), (2, 'count', 3)");
    project.connection().exec("DELETE FROM URLs WHERE URL_ID = 1");
    EXPECT_EQ(project.text("SELECT group_concat(Name) FROM RecordFacts"), "count");
    EXPECT_THROW(project.connection().exec("INSERT INTO RecordFacts (URL_ID) VALUES (77)"),
                 SQLite::Exception);
}

TEST(SchemaCatalogue, theValueOfAFactStaysWhatItWas) {
    test::TestProject project;
    project.connection().exec("INSERT INTO URLs DEFAULT VALUES; INSERT INTO RecordFacts VALUES "
                              "(1, 'field_value', '007', 1.0), (1, 'count', 7, '1e3')");
    EXPECT_EQ(project.text("SELECT group_concat(typeof(Value) || Value || typeof(RawValue) || "
                           "RawValue) FROM RecordFacts"),
              "text007real1.0,integer7text1e3");
    EXPECT_EQ(project.number("SELECT count(*) FROM SchemaColumns WHERE Type = 'Variant'"), 2);
}

TEST(SchemaCatalogue, emptyingTheTagsOfAPageTakesTheirOptionsAlong) {
    test::TestProject project;
    project.connection().exec("INSERT INTO URLs DEFAULT VALUES; INSERT INTO Tags (URL_ID) VALUES "
                              "(1); INSERT INTO TagOptions (Tag_ID) VALUES (1), (1)");
    project.connection().exec("DELETE FROM Tags WHERE URL_ID = 1");
    EXPECT_EQ(project.number("SELECT count(*) FROM TagOptions"), 0);
    EXPECT_THROW(project.connection().exec("INSERT INTO LinkAnalysis (Parent_ID) VALUES (77)"),
                 SQLite::Exception);
}

} // namespace
} // namespace nv
