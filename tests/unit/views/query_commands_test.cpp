#include "MadeProject.h"
#include "db/project/StoredQueries.h"
#include "views/queries/QueryCommands.h"
#include "views/queries/QueryMessages.h"
#include "views/rows/UrlQuery.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace nv {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::Not;

constexpr const char *kVisits = "SELECT * FROM URLs WHERE Visits > 3";
constexpr const char *kHosts = "SELECT * FROM URLs WHERE Host = 'a'";

/// A window that only remembers.
struct MemoryView final : QueryView {
    std::string statement() const override { return box; }
    void showStatement(const std::string &sql) override { box = sql; }
    void showQueries(const std::vector<std::string> &queries,
                     const std::string &selected) override {
        names = queries;
        selector = selected;
    }
    std::string enterQueryName(const Message &prompt) override {
        prompts.push_back(prompt);
        return name;
    }
    void statementChanged() override { ++changes; }
    void loadURLs() override { ++loads; }

    std::string box;
    std::vector<std::string> names;
    std::string selector;
    std::string name; ///< what the examiner types
    std::vector<Message> prompts;
    int changes = 0;
    int loads = 0;
};

struct QueryCommandsTest : testing::Test {
    QueryCommandsTest() { commands.start(); }
    bool apply(const std::string &sql) {
        view.box = sql;
        return commands.btnApplyQuery();
    }
    std::string stored(std::string_view name) {
        return StoredQueries(made.db()).text(name).value_or("(none)");
    }
    bool save(const std::string &sql, const std::string &name) {
        view.box = sql;
        view.name = name;
        return commands.btnSaveQuery();
    }

    test::MadeProject made;
    QueryDefinitions state;
    test::ScriptedExaminer examiner;
    MemoryView view;
    QueryCommands commands{made.db(), state, made.log, examiner, view};
};

TEST_F(QueryCommandsTest, aProjectStartsWithItsDefaultQuery) {
    EXPECT_EQ(view.box, kDefaultQueryText);
    EXPECT_EQ(state.currentSQLDef, kDefaultQueryText);
    EXPECT_EQ(state.lastSQLDef, "");
    EXPECT_EQ(state.activeQueryName, "");
    EXPECT_EQ(view.loads, 0);
    commands.btnUndoQuery(); // nothing to go back to
    EXPECT_EQ(view.loads, 0);
    StoredQueries(made.db()).save({"_DEFAULT", kVisits});
    commands.start();
    EXPECT_EQ(view.box, kVisits);
    EXPECT_EQ(state.currentSQLDef, kVisits);
}

TEST_F(QueryCommandsTest, validateTellsOfBothOutcomes) {
    examiner.expect("statement-valid");
    commands.btnValidateSQL();
    EXPECT_EQ(examiner.heard.back().title, "No Errors");
    EXPECT_EQ(examiner.heard.back().text, "The current SQL statement is valid.");
    view.box = "SELECT colour FROM URLs";
    examiner.expect("statement-invalid");
    commands.btnValidateSQL();
    EXPECT_EQ(examiner.heard.back().title, "Invalid Query Statement");
    EXPECT_EQ(examiner.heard.back().text, "no such column: colour");
    EXPECT_EQ(view.loads, 0);
}

TEST_F(QueryCommandsTest, applyKeepsTheStatementAsTheDefaultQuery) {
    ASSERT_TRUE(apply(" SELECT *\r\nFROM URLs WHERE Visits > 3\n"));
    EXPECT_EQ(state.currentSQLDef, kVisits);
    EXPECT_EQ(state.lastSQLDef, kDefaultQueryText);
    EXPECT_EQ(state.activeQueryName, "_DEFAULT");
    EXPECT_EQ(stored("_DEFAULT"), kVisits);
    EXPECT_EQ(view.loads, 1);
    EXPECT_EQ(view.changes, 1);
    ASSERT_TRUE(apply(kVisits)); // the same again marks nothing
    EXPECT_EQ(view.loads, 2);
    EXPECT_EQ(view.changes, 1);
    EXPECT_EQ(state.lastSQLDef, kVisits);
}

TEST_F(QueryCommandsTest, aWrongStatementChangesNothing) {
    ASSERT_TRUE(apply(kVisits));
    for (const char *bad : {"SELECT colour FROM URLs", "DELETE FROM URLs", "", "VACUUM"}) {
        examiner.expect("bad-definition");
        EXPECT_FALSE(apply(bad)) << bad;
    }
    EXPECT_EQ(examiner.heard.back().title, "Bad Definition");
    EXPECT_EQ(examiner.heard.back().text, "The current SQL Query Definition is invalid!\n"
                                          "All queries must begin with SELECT and contain \n"
                                          "the ALL (*) wildcard character.");
    examiner.expect("statement-not-kept"); // it would select from itself
    EXPECT_FALSE(apply("SELECT * FROM _DEFAULT WHERE Visits > 5"));
    EXPECT_EQ(state.currentSQLDef, kVisits);
    EXPECT_EQ(state.lastSQLDef, kDefaultQueryText);
    EXPECT_EQ(stored("_DEFAULT"), kVisits);
    EXPECT_EQ(view.loads, 1);
}

TEST_F(QueryCommandsTest, aStatementWhoseRowsTheTableCantShowIsNotApplied) {
    for (const char *blind :
         {"SELECT Host FROM URLs", "SELECT count(*) FROM URLs", "SELECT URL_ID AS n FROM URLs"}) {
        examiner.expect("bad-definition");
        EXPECT_FALSE(apply(blind)) << blind;
        EXPECT_EQ(made.log.entries.back().message,
                  "the statement gives no URL_ID, by which the table shows its rows");
        EXPECT_EQ(stored("_DEFAULT"), kDefaultQueryText);
        EXPECT_EQ(state.currentSQLDef, kDefaultQueryText);
        EXPECT_EQ(state.lastSQLDef, "");
    }
    EXPECT_EQ(view.loads, 0);
    examiner.expect("statement-valid"); // as a statement there is nothing wrong with it
    commands.btnValidateSQL();
    EXPECT_TRUE(apply("SELECT url_id, Host FROM URLs"));
    EXPECT_TRUE(apply("SELECT * FROM URLs INNER JOIN Links ON URLs.URL_ID = Links.URL_ID"));
}

TEST_F(QueryCommandsTest, whatTheTableRunsIsWhatTheBoxShows) {
    made.db().exec("DROP VIEW Facebook;"
                   "CREATE VIEW \"Facebook\" AS SELECT * FROM URLs WHERE Host <> 'facebook.com'");
    commands.loadStoredQueries("Facebook");
    EXPECT_EQ(view.box, "SELECT * FROM URLs WHERE Host <> 'facebook.com'");
    EXPECT_EQ(state.currentSQLDef, view.box);
    commands.loadStoredQuery("facebook");
    EXPECT_EQ(view.box, state.currentSQLDef);
}

TEST_F(QueryCommandsTest, undoGoesOneStepBackAndComesAgain) {
    ASSERT_TRUE(apply(kVisits) && apply(kHosts));
    commands.btnUndoQuery();
    EXPECT_EQ(view.box, kVisits);
    EXPECT_EQ(state.currentSQLDef, kVisits);
    EXPECT_EQ(stored("_DEFAULT"), kVisits);
    EXPECT_EQ(view.loads, 3);
    commands.btnUndoQuery();
    EXPECT_EQ(view.box, kHosts);
    EXPECT_EQ(stored("_DEFAULT"), kHosts);
    EXPECT_EQ(state.lastSQLDef, kVisits);
}

TEST_F(QueryCommandsTest, defaultPutsTheFirstStatementBack) {
    ASSERT_TRUE(apply(kVisits));
    commands.btnDefaultQuery();
    EXPECT_EQ(view.box, kDefaultQueryText);
    EXPECT_EQ(view.selector, "_DEFAULT");
    EXPECT_EQ(stored("_DEFAULT"), kDefaultQueryText);
    EXPECT_EQ(view.loads, 2);
    commands.btnUndoQuery();
    EXPECT_EQ(view.box, kVisits);
}

TEST_F(QueryCommandsTest, defaultTellsOfFailures) {
    made.db().exec("DROP TABLE StoredQueries");
    examiner.expect("default-query-failed");
    commands.btnDefaultQuery();
    EXPECT_EQ(examiner.heard.back().title, "Error Resetting Default Query");
    ASSERT_FALSE(made.log.entries.empty());
    EXPECT_EQ(made.log.entries.back().procedure, "MainForm.btnDefaultQuery_Click()");
    EXPECT_EQ(view.loads, 0);
}

TEST_F(QueryCommandsTest, theGridWritesIntoTheBoxOnly) {
    const std::vector<QueryRow> rows{{"Host", "equals", "a", ""}};
    EXPECT_FALSE(commands.formatQuerySQL({}, {}));
    EXPECT_EQ(view.box, kDefaultQueryText);
    EXPECT_TRUE(commands.formatQuerySQL(rows, {}));
    EXPECT_EQ(view.box, "SELECT * FROM URLs WHERE (Host = 'a')  ");
    EXPECT_EQ(state.currentSQLDef, kDefaultQueryText);
}

TEST_F(QueryCommandsTest, theSelectorListsAllButTheDefaultAndSystemNames) {
    EXPECT_THAT(view.names, Contains("Facebook"));
    EXPECT_THAT(view.names, Contains("_Tagged Items"));
    EXPECT_THAT(view.names, Not(Contains("_DEFAULT")));
    EXPECT_EQ(view.names.size(), StoredQueries(made.db()).list().size() - 1);
}

TEST_F(QueryCommandsTest, choosingANameChangesTheBoxOnly) {
    commands.loadStoredQuery("facebook");
    EXPECT_EQ(view.box, stored("Facebook"));
    EXPECT_EQ(state.currentSQLDef, kDefaultQueryText);
    EXPECT_EQ(state.activeQueryName, "");
    EXPECT_EQ(view.loads, 0);
    commands.loadStoredQuery("no such");
    EXPECT_EQ(view.box, stored("Facebook"));
}

TEST_F(QueryCommandsTest, loadingWithANamePutsItInForce) {
    commands.loadStoredQueries("facebook");
    EXPECT_EQ(view.box, stored("Facebook"));
    EXPECT_EQ(state.currentSQLDef, stored("Facebook"));
    EXPECT_EQ(state.lastSQLDef, kDefaultQueryText);
    EXPECT_EQ(state.activeQueryName, "Facebook");
    EXPECT_EQ(view.selector, "Facebook");
    EXPECT_EQ(view.loads, 1);
    EXPECT_EQ(stored("_DEFAULT"), kDefaultQueryText);
}

TEST_F(QueryCommandsTest, savingSelectsAndRunsTheNewQuery) {
    EXPECT_TRUE(save(kVisits, " Often "));
    EXPECT_EQ(view.prompts.at(0).title, "Save Query");
    EXPECT_EQ(view.prompts.at(0).text, "Enter name of query:");
    EXPECT_EQ(stored("Often"), kVisits);
    EXPECT_EQ(view.selector, "Often");
    EXPECT_EQ(state.activeQueryName, "Often");
    EXPECT_EQ(view.loads, 1);
}

TEST_F(QueryCommandsTest, savingAsksBeforeItReplaces) {
    ASSERT_TRUE(save(kVisits, "Mine"));
    examiner.expect("query-exists", Answer::No);
    EXPECT_FALSE(save(kHosts, "MINE"));
    EXPECT_EQ(examiner.heard.back().title, "Query Exists");
    EXPECT_EQ(examiner.heard.back().text, "A query with the specified name already exists.\n"
                                          "Overwrite existing query?");
    EXPECT_EQ(stored("Mine"), kVisits);
    examiner.expect("query-exists", Answer::Yes);
    EXPECT_TRUE(save(kHosts, "Mine"));
    EXPECT_EQ(stored("Mine"), kHosts);
    EXPECT_EQ(StoredQueries(made.db()).list().back().name, "Mine");
}

TEST_F(QueryCommandsTest, reservedAndEmptyNamesAreRefused) {
    for (const char *name : {"_DEFAULT", "_default", "_Default", "_", "_mine"}) {
        examiner.expect("reserved-query");
        EXPECT_FALSE(save(kVisits, name)) << name;
    }
    EXPECT_EQ(examiner.heard.back().title, "Invalid Query Name");
    EXPECT_EQ(examiner.heard.back().text, "This is a reserved query which cannot be modified or\n"
                                          "deleted. Please choose another name for your query.");
    EXPECT_FALSE(save(kVisits, ""));
    EXPECT_FALSE(save(kVisits, "  "));
    EXPECT_EQ(stored("_DEFAULT"), kDefaultQueryText);
    examiner.expect("bad-query-definition");
    EXPECT_FALSE(save("SELECT", "Mine"));
    EXPECT_EQ(examiner.heard.back().text, "The current query statement is invalid.");
    EXPECT_EQ(stored("Mine"), "(none)");
}

TEST_F(QueryCommandsTest, namesWithATildeAreSavedButNotListed) {
    EXPECT_TRUE(save(kVisits, "a~b"));
    EXPECT_EQ(stored("a~b"), kVisits);
    EXPECT_THAT(view.names, Not(Contains("a~b")));
}

TEST_F(QueryCommandsTest, namesOfTablesCantBeTaken) {
    examiner.expect("saving-query-failed");
    EXPECT_FALSE(save(kVisits, "URLs"));
    EXPECT_EQ(examiner.heard.back().title, "Error Saving Query");
    EXPECT_EQ(made.log.entries.back().procedure, "MainForm.btnSaveQuery_Click()");
    EXPECT_TRUE(save(kVisits, "it's \"odd\"]; DROP TABLE URLs; --"));
    EXPECT_TRUE(made.db().tableExists("URLs"));
}

TEST_F(QueryCommandsTest, deletingAsksAndSparesReservedQueries) {
    ASSERT_TRUE(save(kVisits, "Mine"));
    examiner.expect("delete-stored-query", Answer::No);
    EXPECT_FALSE(commands.deleteStoredQuery("Mine"));
    EXPECT_EQ(stored("Mine"), kVisits);
    examiner.expect("delete-stored-query", Answer::Yes);
    EXPECT_TRUE(commands.deleteStoredQuery("mine"));
    EXPECT_EQ(examiner.heard.back().title, "Delete Stored Query");
    EXPECT_EQ(stored("Mine"), "(none)");
    EXPECT_THAT(view.names, Not(Contains("Mine")));
    EXPECT_EQ(state.activeQueryName, ""); // it was the active one: the default one is loaded
    EXPECT_EQ(view.box, kDefaultQueryText);
    EXPECT_EQ(view.loads, 2);
    examiner.expect("reserved-query-not-deleted");
    EXPECT_FALSE(commands.deleteStoredQuery("_Tagged Items"));
    EXPECT_EQ(examiner.heard.back().text, "This is a reserved query which cannot be modified or\n"
                                          "deleted.\n"
                                          "Please choose another name for your query.");
}

TEST_F(QueryCommandsTest, deletingCanBeSilentForcedAndWithoutAReload) {
    ASSERT_TRUE(save(kVisits, "Mine"));
    EXPECT_TRUE(commands.deleteStoredQuery("Mine", {.reload = false, .force = true}));
    EXPECT_THAT(view.names, Not(Contains("Mine"))); // an active one is always taken off
    ASSERT_TRUE(save(kVisits, "Other"));
    commands.btnDefaultQuery();
    EXPECT_TRUE(commands.deleteStoredQuery("Other", {.reload = false, .force = true}));
    EXPECT_THAT(view.names, Contains("Other"));
    EXPECT_TRUE(commands.deleteStoredQuery("_Tagged Items", {.silent = true}));
    EXPECT_THAT(view.names, Not(Contains("_Tagged Items")));
    EXPECT_FALSE(commands.deleteStoredQuery("no such", {.silent = true}));
}

TEST_F(QueryCommandsTest, aQuickSortsStatementIsInForceAfterIt) {
    commands.takeStatement(kSortChoices[4].query);
    EXPECT_EQ(view.box, "SELECT * FROM URLs ORDER BY Visits DESC, ActionDateUTC ASC");
    EXPECT_EQ(stored("_DEFAULT"), view.box);
    EXPECT_EQ(state.currentSQLDef, view.box);
    EXPECT_EQ(view.selector, "_DEFAULT");
    EXPECT_EQ(view.loads, 0);
}

TEST_F(QueryCommandsTest, whatTheTableLoadsByItselfIsInForce) {
    commands.takeActiveQuery("Facebook");
    EXPECT_EQ(view.box, stored("Facebook"));
    EXPECT_EQ(view.selector, "Facebook");
    EXPECT_EQ(state.activeQueryName, "Facebook");
    EXPECT_EQ(view.loads, 0);
    commands.takeActiveQuery("");
    EXPECT_EQ(view.box, kDefaultQueryText);
    EXPECT_EQ(state.activeQueryName, "");
    EXPECT_EQ(state.lastSQLDef, stored("Facebook"));
}

TEST_F(QueryCommandsTest, theDialogsStatementGoesIntoTheBox) {
    state.customQueryDef = kHosts;
    commands.takeCustomQuery();
    EXPECT_EQ(view.box, kHosts);
    EXPECT_EQ(state.currentSQLDef, kDefaultQueryText);
}

} // namespace
} // namespace nv
