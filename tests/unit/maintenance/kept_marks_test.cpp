#include "UpgradeFixture.h"
#include "db/marks/RecordTags.h"
#include "db/marks/SearchResults.h"

namespace nv {
namespace {

using testing::IsEmpty;

/// What an examiner has marked goes along when a project is fixed.
struct KeptMarksTest : test::UpgradeFixture {
    KeptMarksTest() { change("DROP INDEX URLIndex; DROP TABLE URLMetaData"); }
};

TEST_F(KeptMarksTest, whatSearchesHaveFoundGoesAlong) {
    {
        SQLite::Database project(path.string(), SQLite::OPEN_READWRITE);
        SearchResult result;
        result.name = "Tide";
        result.kind = "Search";
        result.rowCount = 1;
        SearchResults(project).add(result, 1, [](std::size_t) {
            return ResultHit{2, "tide", "Page", 3};
        });
    }
    EXPECT_THAT(scan().leftBehind, IsEmpty());
    ASSERT_EQ(fix().end, FixEnd::fixed);
    SQLite::Database project(path.string(), SQLite::OPEN_READWRITE);
    const auto kept = SearchResults(project).find("tide");
    ASSERT_TRUE(kept);
    const auto hits = SearchResults(project).hits(*kept);
    ASSERT_EQ(hits.size(), 1u);
    EXPECT_EQ(hits[0].urlID, 2);
    EXPECT_EQ(hits[0].term, "tide");
    EXPECT_EQ(hits[0].hits, 3);
    EXPECT_EQ(project.execAndGet("SELECT group_concat(URL_ID) FROM Tide").getString(), "2")
        << "its stored query has gone along";
    SearchResults(project).remove(*kept);
    EXPECT_TRUE(SearchResults(project).list().empty());
}

TEST_F(KeptMarksTest, namedTagsGoAlongWithTheirRowsAndNotes) {
    Unwatched task;
    {
        SQLite::Database project(path.string(), SQLite::OPEN_READWRITE);
        const NamedTag tag = NamedTags(project).add({.tagID = 0,
                                                     .name = "Für \"später\"",
                                                     .color = "#123456",
                                                     .position = 0,
                                                     .note = "for the hearing"});
        const std::vector<std::int32_t> ids{1, 2};
        EXPECT_TRUE(RecordTags(project).set(tag.tagID, ids, "why", task));
    }
    EXPECT_THAT(scan().leftBehind, IsEmpty());
    ASSERT_EQ(fix().end, FixEnd::fixed);
    SQLite::Database project(path.string(), SQLite::OPEN_READWRITE);
    const auto kept = NamedTags(project).find("Für \"später\"");
    ASSERT_TRUE(kept);
    EXPECT_EQ(kept->color, "#123456");
    EXPECT_EQ(kept->note, "for the hearing");
    EXPECT_EQ(NamedTags(project).counts()[kept->tagID], 2);
    RowTagReader reader(project);
    EXPECT_EQ(reader.of(UrlId{2}).at(0).note, "why");
}

} // namespace
} // namespace nv
