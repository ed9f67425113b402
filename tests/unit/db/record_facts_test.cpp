#include "db/project/StoredQueries.h"
#include "db/records/RecordFacts.h"
#include "db/schema/FactNames.h"
#include "db/schema/SchemaGaps.h"
#include "db/sql/Dialect.h"
#include "support/TestProject.h"

#include <gtest/gtest.h>

#include <set>

namespace nv {
namespace {

using namespace std::string_literals;

class RecordFactsTest : public testing::Test {
  protected:
    UrlId saved(const FactList &facts) {
        UrlRecord record;
        record.URL = "http://host/";
        record.facts = facts;
        store.saveRecord(record, project.file);
        EXPECT_NE(record.URLID, UrlId::none);
        return record.URLID;
    }
    std::int64_t rows() { return project.number("SELECT count(*) FROM RecordFacts"); }

    test::TestProject project;
    RecordStore store = project.store();
};

TEST(FactNames, areEachThereOnce) {
    const auto names = factNames();
    EXPECT_EQ(std::set(names.begin(), names.end()).size(), names.size());
    for (const std::string_view name : names)
        EXPECT_EQ(name.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789_"), name.npos)
            << name;
}

TEST(FactListTest, whatTheSourceLeavesEmptyIsNoFact) {
    FactList facts;
    facts.add("target_path", "");
    facts.add("count", {});
    EXPECT_TRUE(facts.empty());
    facts.add("transition", "", 99);
    facts.add("count", 0);
    EXPECT_EQ(facts.size(), 2u);
    EXPECT_EQ(*facts.begin(), (RecordFact{"transition", 99, {}})) << "a number without words";
}

TEST_F(RecordFactsTest, comeBackInTheirOrderAsTheyWere) {
    FactList facts;
    facts.add("transition", "typed", 33554433);
    facts.add("visit_duration", 1.5, 1'500'000);
    facts.add("field_value", "007");
    facts.add("url_chain", "http://a/");
    facts.add("url_chain", "http://b/");
    facts.add("path", "zero\0behind"s);
    const UrlId id = saved(facts);
    EXPECT_EQ(store.factsOf(id), facts);
    EXPECT_TRUE(store.getURL(id)->facts.empty()) << "they are read when they are asked for";
    EXPECT_EQ(project.text("SELECT group_concat(typeof(Value) || ' ' || typeof(RawValue), ', ') "
                           "FROM RecordFacts"),
              "text integer, real integer, text null, text null, text null, text null");
}

TEST_F(RecordFactsTest, manyAreStoredAsFewAre) {
    for (const std::int64_t count : {1, 2, 15, 16, 17, 40}) {
        FactList facts;
        for (std::int64_t i = 0; i < count; ++i)
            facts.add("url_chain", "http://host/" + std::to_string(i),
                      i % 3 == 0 ? FactValue() : i);
        EXPECT_EQ(store.factsOf(saved(facts)), facts) << count;
    }
    EXPECT_EQ(rows(), 1 + 2 + 15 + 16 + 17 + 40);
}

TEST_F(RecordFactsTest, aRecordWithoutFactsHasNoRows) {
    const UrlId id = saved({});
    EXPECT_EQ(rows(), 0);
    EXPECT_TRUE(store.factsOf(id).empty());
    EXPECT_TRUE(store.factsOf(UrlId{99}).empty());
}

TEST_F(RecordFactsTest, bytesThatAreNoTextAreRepaired) {
    FactList facts;
    facts.add("target_path", "caf\xE9'; DROP TABLE URLs; --");
    const UrlId id = saved(facts);
    EXPECT_EQ(std::get<std::string>(store.factsOf(id).begin()->value),
              "caf\u00E9'; DROP TABLE URLs; --");
}

TEST_F(RecordFactsTest, goWithTheirRecordWhenTheBatchIsTakenBack) {
    FactList facts;
    facts.add("count", 1);
    saved(facts);
    project.connection().exec("BEGIN");
    saved(facts);
    EXPECT_EQ(rows(), 2);
    project.connection().exec("ROLLBACK");
    EXPECT_EQ(rows(), 1);
    EXPECT_EQ(project.number("SELECT count(*) FROM URLs"), 1);
}

TEST_F(RecordFactsTest, areFoundByAnIndex) {
    SQLite::Statement plan(project.connection(),
                           "EXPLAIN QUERY PLAN SELECT * FROM RecordFacts WHERE URL_ID = 1");
    ASSERT_TRUE(plan.executeStep());
    EXPECT_NE(plan.getColumn("detail").getString().find("RecordFacts_Relationship"),
              std::string::npos);
}

TEST_F(RecordFactsTest, queriesReachThem) {
    FactList typed;
    typed.add("transition", "Typed", 1);
    typed.add("count", 12);
    typed.add("count", 99);
    FactList link;
    link.add("transition", "link", 0);
    link.add("count", 5);
    saved(typed);
    saved(link);
    saved({});
    const auto ids = [this](const std::string &condition) {
        return project.text(translate("SELECT group_concat(URL_ID) FROM (SELECT URL_ID FROM URLs "
                                      "WHERE " +
                                      condition + " ORDER BY URL_ID)"));
    };
    EXPECT_EQ(ids("Fact('transition') = 'typed'"), "1");
    EXPECT_EQ(ids("Fact('transition') LIKE '%I%'"), "2");
    EXPECT_EQ(ids("Fact('transition') IS NULL"), "3");
    EXPECT_EQ(ids("Fact('count') > 5"), "1") << "numbers compare as numbers";
    EXPECT_EQ(ids("Fact('count') = 99"), "") << "of several the first counts";
    EXPECT_EQ(ids("RawFact('transition') = 0"), "2");
    EXPECT_EQ(ids("RawFact('count') BETWEEN 1 AND 20"), "1,2");
    StoredQueries queries(project.connection());
    queries.save({"Typed ones", "SELECT * FROM URLs WHERE Fact('transition') = 'typed'"});
    EXPECT_EQ(project.number("SELECT URL_ID FROM [Typed ones]"), 1);
    EXPECT_EQ(queries.text("Typed ones"), "SELECT * FROM URLs WHERE Fact('transition') = 'typed'");
    queries.save({"Linked", "SELECT URL_ID FROM [_DEFAULT] WHERE Fact('transition') = 'link'"});
    EXPECT_EQ(project.number("SELECT URL_ID FROM Linked"), 2);
    SQLite::Statement plan(project.connection(),
                           "EXPLAIN QUERY PLAN " +
                               translate("SELECT URL_ID FROM URLs WHERE Fact('count') = 5"));
    std::string steps;
    while (plan.executeStep())
        steps += plan.getColumn("detail").getString() + "\n";
    EXPECT_NE(steps.find("SEARCH RecordFacts USING INDEX RecordFacts_Relationship"),
              std::string::npos)
        << steps;
    EXPECT_EQ(steps.find("B-TREE"), std::string::npos) << steps;
}

TEST_F(RecordFactsTest, aProjectOfAnEarlierBuildHasNone) {
    EXPECT_EQ(missingForImport(project.connection()), "");
    const UrlId id = saved({});
    project.connection().exec("DROP TABLE RecordFacts");
    RecordFacts facts(project.connection());
    EXPECT_TRUE(facts.of(id).empty());
    EXPECT_EQ(missingForImport(project.connection()), "table \"RecordFacts\"");
}

TEST(FactText, hasTheRawFormInBrackets) {
    EXPECT_EQ(factText(RecordFact{"transition", "typed", 1}), "typed [1]");
    EXPECT_EQ(factText(RecordFact{"count", 7, {}}), "7");
    EXPECT_EQ(factText(FactValue{1.5}), "1.5");
    EXPECT_EQ(factText(FactValue{}), "");
}

} // namespace
} // namespace nv
