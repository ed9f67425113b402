#include "MadeProject.h"
#include "views/record/ViewerChoice.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

struct ViewerChoiceTest : testing::Test, test::MadeProject {
    ViewedRecord viewed(Fields fields) {
        const auto record = viewedRecord(db(), UrlId{add(fields)});
        EXPECT_TRUE(record);
        return record.value_or(ViewedRecord());
    }
    /// The names of the panes that have something, the best one first.
    static std::string panesOf(const ViewedRecord &record) {
        std::string text;
        const auto best = bestViewer(record);
        for (const ViewerName &each : kViewers) {
            if (!hasSomething(each.viewer, record))
                continue;
            const std::string name = std::string(each.pane.substr(0, each.pane.size() - 4));
            text = best == each.viewer ? name + "! " + text : text + name + ' ';
        }
        return text;
    }
    static Value of(std::int64_t number) { return number; }
};

TEST_F(ViewerChoiceTest, theBestOneGoesByTheContent) {
    const auto cached = [this](const char *category) {
        return panesOf(viewed({{"Category", category}, {"CacheFileExists", of(1)}}));
    };
    EXPECT_EQ(cached("HTML"), "Browser! Text Hex ");
    EXPECT_EQ(cached("Scripts, HTML"), "Browser! Text Hex ");
    EXPECT_EQ(cached("PICTURES"), "Picture! Browser Hex ");
    EXPECT_EQ(cached("Javascripts"), "Text! Hex ");
    EXPECT_EQ(cached(""), "Text! Hex ");
    EXPECT_EQ(cached("Movies, Animation"), "Hex! ");
}

TEST_F(ViewerChoiceTest, withoutContentNoneIsBest) {
    EXPECT_EQ(panesOf(viewed({{"Category", "HTML"}, {"HistoryFilePath", "/e/History"}})), "Hex ");
    EXPECT_EQ(panesOf(viewed({})), "");
}

TEST_F(ViewerChoiceTest, notesLinksAndRebuiltPagesAreMarked) {
    EXPECT_EQ(panesOf(viewed({{"Notes", "seen"}})), "Notes ");
    EXPECT_EQ(panesOf(viewed({{"CacheFileRebuilt", of(1)}})), "Browser! Audit ");
    const std::int64_t id = add({});
    insert("LinkAnalysis", {{"Parent_ID", add({})}, {"Child_ID", id}});
    EXPECT_EQ(panesOf(viewedRecord(db(), UrlId{id}).value()), "Links ");
    EXPECT_FALSE(viewedRecord(db(), UrlId{999}));
}

/// A tab that can be typed into doesn't look as if it couldn't.
TEST_F(ViewerChoiceTest, notesAreOfUseWhereTheyCanBeWritten) {
    ViewedRecord record = viewed({});
    EXPECT_TRUE(isOfUse(Viewer::Notes, record));
    EXPECT_FALSE(isOfUse(Viewer::Text, record));
    record.mayNote = false;
    EXPECT_FALSE(isOfUse(Viewer::Notes, record));
    record = viewed({{"Notes", "seen"}});
    record.mayNote = false;
    EXPECT_TRUE(isOfUse(Viewer::Notes, record));
}

} // namespace
} // namespace nv
