#include "db/marks/NamedTags.h"
#include "db/marks/RecordTags.h"
#include "unit/views/MadeProject.h"
#include "views/limits/TagLimit.h"
#include "views/table/UrlTable.h"
#include "views/tags/TagHistory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace nv {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct TagLimitTest : testing::Test {
    TagLimitTest() {
        for (int row = 0; row < 6; ++row)
            project.add({{"URL", std::string("http://host/")},
                         {"ActionDateLocal", 40000.0 + row},
                         {"ActionDateUTC", 40000.0 + row}});
    }
    std::int64_t add(const std::string &name, const RowIds &ids, const std::string &note = {}) {
        const NamedTag tag =
            NamedTags(project.db())
                .add({.tagID = 0, .name = name, .color = {}, .position = 0, .note = {}});
        EXPECT_TRUE(RecordTags(project.db()).set(tag.tagID, ids, note, task));
        return tag.tagID;
    }
    RowIds kept(const TagLimit &limit) {
        RowIds ids{6, 5, 4, 3, 2, 1};
        EXPECT_EQ(keepTagged(project.db(), limit, task, ids), Walk::Finished);
        RowIds asked;
        const std::string query = "SELECT URL_ID FROM URLs WHERE " +
                                  conditionOf(limit, project.db()) + " ORDER BY URL_ID DESC";
        EXPECT_EQ(collectIds(project.db(), {query, ""}, task, asked), Walk::Finished);
        EXPECT_EQ(ids, asked);
        return ids;
    }

    test::MadeProject project;
    test::MemoryTask task;
};

TEST_F(TagLimitTest, leavesRowsWithOneOfTheTagsInTheirOrder) {
    EXPECT_THAT(kept({{1}, false}), IsEmpty()) << "an older project has no tags";
    EXPECT_THAT(kept({{}, true}), ElementsAre(6, 5, 4, 3, 2, 1));
    const std::int64_t first = add("Important", {1, 4});
    const std::int64_t second = add("Later", {4, 5});
    EXPECT_THAT(kept({{first}, false}), ElementsAre(4, 1));
    EXPECT_THAT(kept({{first, second}, false}), ElementsAre(5, 4, 1));
    EXPECT_THAT(kept({{}, true}), ElementsAre(6, 3, 2));
    EXPECT_THAT(kept({{first}, true}), ElementsAre(6, 4, 3, 2, 1));
    EXPECT_THAT(kept({{99}, false}), IsEmpty());
}

TEST_F(TagLimitTest, aCancelLeavesAll) {
    const std::int64_t first = add("Important", {1, 4});
    RowIds ids{1, 2};
    test::CancelAfter stopped(0);
    EXPECT_EQ(keepTagged(project.db(), {{first}, false}, stopped, ids), Walk::Cancelled);
    EXPECT_THAT(ids, ElementsAre(1, 2));
}

TEST_F(TagLimitTest, theTableHidesOtherRowsAndCountsThem) {
    const std::int64_t first = add("Important", {1, 4}, "why");
    add("Later", {4});
    UrlTable table(project.db(), project.log, project.zone);
    table.tags = TagLimit{{first}, false};
    ASSERT_EQ(table.loadURLs(task), LoadResult::Loaded);
    EXPECT_THAT(table.ids(), ElementsAre(1, 4));
    EXPECT_EQ(table.hiddenCount(), 4u);
    EXPECT_EQ(table.cell(0, UrlColumn::TagNames), "Important");
    EXPECT_EQ(table.cell(1, UrlColumn::TagNames), "Important, Later");
    EXPECT_EQ(table.machineCell(1, UrlColumn::TagNames), Cell("Important, Later"));
    ASSERT_EQ(table.tagsOf(0).size(), 1u);
    EXPECT_EQ(table.tagsOf(0)[0].note, "why");
    table.tags.reset();
    ASSERT_EQ(table.loadURLs(task), LoadResult::Loaded);
    EXPECT_EQ(table.rowCount(), 6u);
    EXPECT_TRUE(table.machineCell(1, UrlColumn::TagNames).isNothing());
    const FindResult found = table.find({"later", {UrlColumn::Id, UrlColumn::TagNames}}, 0, task);
    EXPECT_EQ(found.end, FindEnd::found);
    EXPECT_EQ(found.place, 3u);
    EXPECT_EQ(found.column, UrlColumn::TagNames);
}

TEST_F(TagLimitTest, aProjectWithoutTagsHasTheColumnEmpty) {
    UrlTable table(project.db(), project.log, project.zone);
    ASSERT_EQ(table.loadURLs(task), LoadResult::Loaded);
    EXPECT_EQ(table.cell(0, UrlColumn::TagNames), "");
    EXPECT_EQ(table.find({"x", {UrlColumn::TagNames}}, 0, task).end, FindEnd::notThere);
}

TEST_F(TagLimitTest, tagsAreFlippedAndPutIntoWords) {
    const std::vector<NamedTag> tags = {
        {.tagID = 3, .name = "Important", .color = {}, .position = 1, .note = {}},
        {.tagID = 7, .name = "Later", .color = {}, .position = 2, .note = {}}};
    TagLimit limit = tagLimitOf(tags, "Later");
    EXPECT_EQ(limit, (TagLimit{{7}, false}));
    EXPECT_TRUE(tagLimitOf(tags, "Of nobody").isEmpty());
    flipAll(limit, tagLimitOf(tags, ""));
    flipAll(limit, tagLimitOf(tags, "Important"));
    EXPECT_EQ(tagLimitText(tags, limit), "Later or Important or (untagged)");
    EXPECT_TRUE(hasAll(limit, tagLimitOf(tags, "")));
    flipAll(limit, tagLimitOf(tags, ""));
    flipAll(limit, tagLimitOf(tags, "Later"));
    EXPECT_EQ(limit, (TagLimit{{3}, false}));
    EXPECT_FALSE(hasAll(limit, tagLimitOf(tags, "Later")));
    EXPECT_FALSE(hasAll(limit, tagLimitOf(tags, "Of nobody")));
    EXPECT_EQ(tagLimitText({}, limit), "(deleted)");
}

struct TagHistoryTest : TagLimitTest {
    TagChange set(std::int64_t tag, const RowIds &ids) {
        return *RecordTags(project.db()).set(tag, ids, {}, task);
    }
    RowIds rowsOf(std::int64_t tag) { return RecordTags(project.db()).rowsOf(tag); }
    TagHistory history;
};

TEST_F(TagHistoryTest, takesBackAndDoesAgain) {
    const std::int64_t tag = add("Important", {});
    EXPECT_FALSE(history.undo(project.db(), task));
    history.add(set(tag, {1, 2}));
    history.add(set(tag, {2, 3}));
    history.add(set(tag, {1})); // which it had
    EXPECT_TRUE(history.undo(project.db(), task));
    EXPECT_THAT(rowsOf(tag), ElementsAre(1, 2));
    EXPECT_TRUE(history.undo(project.db(), task));
    EXPECT_THAT(rowsOf(tag), IsEmpty());
    EXPECT_FALSE(history.canUndo());
    EXPECT_TRUE(history.redo(project.db(), task));
    EXPECT_THAT(rowsOf(tag), ElementsAre(1, 2));
    history.add(set(tag, {6}));
    EXPECT_FALSE(history.canRedo()) << "what was taken back before another change is gone";
}

TEST_F(TagHistoryTest, aCancelChangesNothing) {
    const std::int64_t tag = add("Important", {});
    history.add(set(tag, {1}));
    test::CancelAfter stopped(0);
    EXPECT_FALSE(history.undo(project.db(), stopped));
    EXPECT_THAT(rowsOf(tag), ElementsAre(1));
    EXPECT_TRUE(history.canUndo());
}

} // namespace
} // namespace nv
