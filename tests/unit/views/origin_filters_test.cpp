#include "MadeProject.h"
#include "db/records/UrlRecord.h"
#include "views/limits/OriginChoices.h"
#include "views/rows/IdLoader.h"
#include "views/rows/RecordFilters.h"

// Whose records the table shows.
namespace nv {
namespace {

TEST(OriginFilters, recordsOfOthersAreHiddenWhateverIsTicked) {
    UrlRecord record;
    record.Browser = "Microsoft Edge";
    record.Profile = "Default";
    record.Person = "alice";
    RecordFilters filters = firstFilters();
    EXPECT_TRUE(filterRecord(filters, record));
    filters.browser = "microsoft edge";
    filters.person = "alice";
    EXPECT_TRUE(filterRecord(filters, record));
    EXPECT_FALSE(filterRecord(filters, UrlRecord())) << "nobody knows whose it is";
    filters.profile = "Profile 1";
    EXPECT_FALSE(filterRecord(filters, record));
    filters.profile = "Def";
    EXPECT_FALSE(filterRecord(filters, record)) << "a part of the name isn't it";
    record.IsCookie = true;
    EXPECT_FALSE(filterRecord(filters, record));
}

struct OriginFiltersTest : testing::Test, test::MadeProject {
    RowIds byColumns(const RowIds &from, const RecordFilters &filters) {
        Unwatched task;
        RowIds left;
        EXPECT_EQ(filterIds(db(), from, filters, task, left), Walk::Finished);
        return left;
    }
};

TEST_F(OriginFiltersTest, findsByColumnsWhoseRecordsTheyAre) {
    RowIds from;
    for (const char *browser : {"Chromium", "Brave", ""})
        for (const char *person : {"alice", "Bob", ""})
            from.push_back(static_cast<std::int32_t>(
                add({{"Browser", browser}, {"Person", person}, {"Profile", "Default"}})));
    RecordFilters filters = firstFilters();
    filters.enableFilters = true;
    filters.person = "BOB";
    EXPECT_EQ(byColumns(from, filters), (RowIds{2, 5, 8}));
    filters.browser = "Brave";
    EXPECT_EQ(byColumns(from, filters), (RowIds{5}));
    filters.profile = "Default";
    EXPECT_EQ(byColumns(from, filters), (RowIds{5}));
}

TEST_F(OriginFiltersTest, theChoicesAreWhatWasImported) {
    for (const char *browser : {"Chromium", "Brave", "Chromium", ""})
        insert("SourceFiles", {{"Browser", browser}, {"Person", "alice"}});
    insert("SourceFiles", {{"Profile", "Default"}});
    const OriginChoices choices = originChoicesOf(db());
    EXPECT_EQ(choices.browsers, (std::vector<std::string>{"Brave", "Chromium"}));
    EXPECT_EQ(choices.profiles, (std::vector<std::string>{"Default"}));
    EXPECT_EQ(choices.persons, (std::vector<std::string>{"alice"}));
    db().exec("PRAGMA legacy_alter_table = ON; " // as of an earlier build
              "ALTER TABLE SourceFiles DROP COLUMN Browser");
    EXPECT_TRUE(originChoicesOf(db()).browsers.empty());
}

} // namespace
} // namespace nv
