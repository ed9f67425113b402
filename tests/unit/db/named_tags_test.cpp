#include "base/Digest.h"
#include "base/Storage.h"
#include "db/marks/NamedTags.h"
#include "db/marks/RecordTags.h"
#include "db/sql/Connection.h"
#include "support/TestProject.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <iostream>
#include <numeric>
#include <stdexcept>

namespace nv {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

struct NamedTagsTest : testing::Test, test::TestProject {
    NamedTagsTest() { addRows(20); }
    void addRows(int count) {
        connection().exec("WITH RECURSIVE n(v) AS (SELECT 1 UNION ALL SELECT v + 1 FROM n WHERE v "
                          "< " +
                          std::to_string(count) + ") INSERT INTO URLs (URL) SELECT v FROM n");
    }
    NamedTag add(const std::string &name) {
        return tags.add({.tagID = 0, .name = name, .color = {}, .position = 0, .note = {}});
    }
    std::vector<std::string> names() {
        std::vector<std::string> all;
        for (const NamedTag &tag : tags.list())
            all.push_back(tag.name);
        return all;
    }
    using Ids = std::vector<std::int32_t>;
    TagChange set(const NamedTag &tag, const Ids &ids, const std::string &note = {}) {
        return rows.set(tag.tagID, ids, note, task).value();
    }
    std::string tagsOf(std::int64_t id) {
        RowTagReader reader(connection());
        std::string text;
        for (const RowTag &each : reader.of(UrlId{id}))
            text += "[" + each.tag.name + (each.note.empty() ? "" : ": " + each.note) + "]";
        return text;
    }

    NamedTags tags{connection()};
    RecordTags rows{connection()};
    Unwatched task;
};

TEST_F(NamedTagsTest, aProjectHasNoneAndNoTableOfThem) {
    EXPECT_THAT(tags.list(), IsEmpty());
    EXPECT_FALSE(tags.find("Important"));
    EXPECT_THAT(tags.counts(), IsEmpty());
    EXPECT_EQ(tagsOf(1), "");
    EXPECT_THAT(rows.rowsOf(1), IsEmpty());
    EXPECT_TRUE(rows.take(1, Ids{1}, task)->isNothing());
    EXPECT_EQ(rows.countOf(1, Ids{1}, task), 0u);
    EXPECT_FALSE(connection().tableExists("NamedTags"));
    EXPECT_FALSE(connection().tableExists("RecordTags"));
}

TEST_F(NamedTagsTest, standInTheOrderOfTheirMakingWithColoursOfTheirOwn) {
    const NamedTag first = add("Important");
    const NamedTag second = add("Later");
    EXPECT_EQ(first.position, 1);
    EXPECT_EQ(second.position, 2);
    EXPECT_NE(first.color, second.color);
    EXPECT_TRUE(isTagColor(first.color));
    EXPECT_THAT(names(), ElementsAre("Important", "Later"));
    EXPECT_EQ(tags.find("IMPORTANT")->tagID, first.tagID);
    tags.reorder({second.tagID});
    EXPECT_THAT(names(), ElementsAre("Later", "Important"));
    EXPECT_EQ(number("SELECT count(*) FROM SchemaColumns WHERE TableName = 'NamedTags'"), 5);
}

TEST_F(NamedTagsTest, takeNamesThatAreNoSql) {
    const std::string hostile = "'); DROP TABLE URLs; -- \"[x]\" %_ \u202E ä\u202C";
    const NamedTag tag = add(hostile);
    set(tag, {3}, hostile);
    EXPECT_EQ(tags.find(hostile)->tagID, tag.tagID);
    EXPECT_EQ(tagsOf(3), "[" + hostile + ": " + hostile + "]");
    EXPECT_EQ(number("SELECT count(*) FROM URLs"), 20);
}

TEST_F(NamedTagsTest, refuseNamesAndColoursThatCannotBe) {
    add("Important");
    for (const char *name : {"", " ", " a", "a ", "a\nb", "a\tb", "important", "\x7f"})
        EXPECT_THROW(add(name), std::invalid_argument) << name;
    EXPECT_THROW(add(std::string(101, 'a')), std::invalid_argument);
    EXPECT_NO_THROW(add(std::string(100, 'a')));
    EXPECT_THROW(tags.add({.tagID = 0, .name = "b", .color = "red", .position = 0, .note = {}}),
                 std::invalid_argument);
    for (const char *color : {"#12345", "#1234567", "123456#", "#12345g", "#12345\xC3"})
        EXPECT_FALSE(isTagColor(color)) << color;
    EXPECT_TRUE(isTagColor("#12aBcF"));
}

TEST_F(NamedTagsTest, areRenamedAndRecolouredWithTheirRows) {
    NamedTag tag = add("Important");
    add("Other");
    set(tag, {1, 2});
    tag.name = "IMPORTANT";
    tag.color = "#000000";
    tag.note = "for the hearing";
    tags.change(tag);
    EXPECT_EQ(tags.find(tag.tagID)->name, "IMPORTANT");
    EXPECT_EQ(tags.find(tag.tagID)->color, "#000000");
    EXPECT_EQ(tags.find(tag.tagID)->note, "for the hearing");
    EXPECT_EQ(tagsOf(2), "[IMPORTANT]");
    tag.name = "other";
    EXPECT_THROW(tags.change(tag), std::invalid_argument);
}

TEST_F(NamedTagsTest, aRowHasSeveralEachWithANote) {
    const NamedTag first = add("Important");
    const NamedTag second = add("Later");
    set(second, {4, 2, 4});
    const TagChange change = set(first, {5, 4}, "see photo");
    EXPECT_THAT(change.ids, ElementsAre(4, 5));
    EXPECT_EQ(tagsOf(4), "[Important: see photo][Later]");
    EXPECT_EQ(tagsOf(2), "[Later]");
    EXPECT_THAT(tags.counts(), ElementsAre(Pair(first.tagID, 2), Pair(second.tagID, 2)));
    EXPECT_EQ(rows.countOf(first.tagID, Ids{1, 2, 3, 4, 5}, task), 2u);
    EXPECT_EQ(number("SELECT count(*) FROM URLs WHERE Tagged <> 0"), 0) << "the tick is another";
    EXPECT_EQ(number("SELECT count(*) FROM Tags"), 0) << "so are the references of pages";
}

TEST_F(NamedTagsTest, settingAgainKeepsTheNoteUnlessThereIsAnother) {
    const NamedTag tag = add("Important");
    set(tag, {1, 2}, "first");
    EXPECT_TRUE(set(tag, {1}).isNothing());
    EXPECT_EQ(tagsOf(1), "[Important: first]");
    const TagChange change = set(tag, {1, 3}, "second");
    EXPECT_THAT(change.ids, ElementsAre(3));
    EXPECT_THAT(change.earlierNotes, ElementsAre(Pair(1, "first")));
    EXPECT_EQ(tagsOf(1), "[Important: second]");
    EXPECT_TRUE(rows.undo(change, task));
    EXPECT_EQ(tagsOf(1), "[Important: first]");
    EXPECT_EQ(tagsOf(3), "");
    EXPECT_TRUE(rows.redo(change, task));
    EXPECT_EQ(tagsOf(1), "[Important: second]");
    EXPECT_EQ(tagsOf(3), "[Important: second]");
}

TEST_F(NamedTagsTest, takingAwayIsUndoneWithItsNotes) {
    const NamedTag tag = add("Important");
    const NamedTag other = add("Other");
    set(tag, {1}, "why");
    set(tag, {2});
    set(other, {1}, "stays");
    const auto change = rows.take(tag.tagID, Ids{3, 2, 1}, task);
    EXPECT_THAT(change->ids, ElementsAre(1, 2));
    EXPECT_EQ(tagsOf(1), "[Other: stays]");
    EXPECT_TRUE(rows.undo(*change, task));
    EXPECT_EQ(tagsOf(1), "[Important: why][Other: stays]");
    EXPECT_EQ(tagsOf(2), "[Important]");
    EXPECT_TRUE(rows.redo(*change, task));
    EXPECT_EQ(tagsOf(2), "");
}

TEST_F(NamedTagsTest, goWithTheirRowsWhenTheyAreDeleted) {
    const NamedTag tag = add("Important");
    const NamedTag other = add("Other");
    set(tag, {1, 2});
    set(other, {2});
    tags.remove(tag.tagID);
    EXPECT_THAT(names(), ElementsAre("Other"));
    EXPECT_EQ(tagsOf(2), "[Other]");
    EXPECT_EQ(number("SELECT count(*) FROM RecordTags"), 1);
    EXPECT_EQ(number("SELECT count(*) FROM URLs"), 20);
    EXPECT_GT(add("Important").tagID, other.tagID) << "its key isn't given again";
}

TEST_F(NamedTagsTest, aCancelLeavesNothing) {
    addRows(50'000);
    const NamedTag tag = add("Important");
    Ids all(50'000);
    std::iota(all.begin(), all.end(), 1);
    for (const int after : {0, 3, 7}) {
        test::CancelAfter stopped(after);
        EXPECT_FALSE(rows.set(tag.tagID, all, {}, stopped)) << after;
        EXPECT_THAT(tags.counts(), IsEmpty()) << after;
    }
    set(tag, all);
    test::CancelAfter stopped(7);
    EXPECT_FALSE(rows.take(tag.tagID, all, stopped));
    EXPECT_EQ(tags.counts()[tag.tagID], 50'000);
}

TEST_F(NamedTagsTest, aMillionRowsTakeSeconds) {
    const NamedTag tag = add("Important");
    Ids all(1'000'000); // rows needn't be there: only their numbers are asked
    std::iota(all.begin(), all.end(), 1);
    const auto begin = std::chrono::steady_clock::now();
    const TagChange change = set(tag, all, "all of it");
    const auto seconds = [&begin] {
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    };
    RecordProperty("SecondsToSet", std::to_string(seconds()));
    std::cout << "set in " << seconds() << " s\n";
    EXPECT_EQ(tags.counts()[tag.tagID], 1'000'000);
    EXPECT_TRUE(rows.undo(change, task));
    std::cout << "undone in " << seconds() << " s\n";
    EXPECT_THAT(tags.counts(), IsEmpty());
    EXPECT_LT(seconds(), 60.0);
}

TEST_F(NamedTagsTest, whatSomebodyElseHasStoredIsTakenAsItIs) {
    set(add("Important"), {1});
    connection().exec(
        "INSERT INTO NamedTags (Name, Color, Position) VALUES (NULL, 'javascript:', -5), "
        "('important', '#12', 'x'), (x'00ff', NULL, NULL); "
        "INSERT INTO RecordTags (NamedTag_ID, URL_ID) VALUES (1, 1), (1, 1), (99, 1), (1, 'x'), "
        "(1, 99999999999), (NULL, NULL), (1, 1.5)");
    for (const NamedTag &tag : tags.list())
        EXPECT_TRUE(isTagColor(tag.color)) << tag.color;
    EXPECT_EQ(tags.list().size(), 4u);
    EXPECT_EQ(tagsOf(1), "[Important]");
    EXPECT_THAT(rows.rowsOf(1), ElementsAre(1));
    EXPECT_EQ(rows.take(1, Ids{1}, task)->ids, (Ids{1}));
    EXPECT_EQ(tagsOf(1), "");
}

TEST_F(NamedTagsTest, aProjectThatIsOnlyReadIsntChanged) {
    set(add("Important"), {1});
    database.closeDB();
    const auto hash = hashesOfFile(database.filePath)->sha256;
    const auto project = connect(database.filePath, Access::read);
    NamedTags kept(*project);
    EXPECT_EQ(kept.list().size(), 1u);
    const std::int64_t tagID = kept.list()[0].tagID;
    EXPECT_THROW(kept.add({.tagID = 0, .name = "b", .color = {}, .position = 0, .note = {}}),
                 StorageFailure);
    EXPECT_THROW(kept.remove(tagID), StorageFailure);
    EXPECT_THROW(RecordTags(*project).set(tagID, Ids{2}, {}, task), StorageFailure);
    EXPECT_THROW(RecordTags(*project).take(tagID, Ids{1}, task), StorageFailure);
    EXPECT_EQ(hashesOfFile(database.filePath)->sha256, hash);
}

} // namespace
} // namespace nv
