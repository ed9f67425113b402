#include "db/project/ProjectFields.h"
#include "support/TestProject.h"
#include "views/table/TableLayout.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

namespace nv {
namespace {

using Kept = std::map<std::string, std::string, std::less<>>;

TableLayout restored(const Kept &kept) {
    TableLayout layout;
    layout.restore([&](std::string_view name) {
        const auto found = kept.find(name);
        return found == kept.end() ? std::string() : found->second;
    });
    return layout;
}

Kept saved(const TableLayout &layout) {
    Kept kept;
    layout.save([&](std::string_view name, std::string_view value) {
        kept.emplace(std::string(name), std::string(value));
    });
    return kept;
}

TEST(TableLayout, startsAsTheColumnsAreListed) {
    const TableLayout layout;
    EXPECT_EQ(layout.order().size(), kTableColumnCount);
    EXPECT_EQ(layout.shownColumns().size(), 48u);
    EXPECT_EQ(layout.position(UrlColumn::Host), 27);
    EXPECT_TRUE(layout.hidden(UrlColumn::FileId));
}

TEST(TableLayout, comesBackAsItWasSaved) {
    TableLayout layout;
    layout.setHidden(UrlColumn::Host, true);
    layout.setHidden(UrlColumn::FileId, false);
    layout.move(UrlColumn::Value, 2);
    layout.move(UrlColumn::Tag, 50);
    layout.setWidthTwips(UrlColumn::Value, 9000);
    const Kept kept = saved(layout);
    EXPECT_EQ(kept.at("COL_URL_HOST_ColIsHidden"), "True");
    EXPECT_EQ(kept.at("COL_URL_FILEID_ColIsHidden"), "False");
    EXPECT_EQ(kept.at("COL_URL_VALUE_ColPos"), "1"); // the tick column left the front
    EXPECT_EQ(kept.at("COL_URL_VALUE_ColWidth"), "9000");

    const TableLayout again = restored(kept);
    EXPECT_EQ(again.order(), layout.order());
    EXPECT_TRUE(again.hidden(UrlColumn::Host));
    EXPECT_FALSE(again.hidden(UrlColumn::FileId));
    EXPECT_EQ(again.widthTwips(UrlColumn::Value), 9000);
}

TEST(TableLayout, leavesWhatIsMissingOrMakesNoSense) {
    const TableLayout layout = restored({{"COL_URL_HOST_ColIsHidden", "Perhaps"},
                                         {"COL_URL_HOST_ColPos", "-1"},
                                         {"COL_URL_URL_ColPos", "3"},
                                         {"COL_URL_ID_ColPos", "12x"},
                                         {"COL_URL_TYPE_ColPos", "99999999999999"},
                                         {"COL_URL_VALUE_ColWidth", "-20"},
                                         {"COL_URL_USER_ColWidth", "1000000"}});
    EXPECT_EQ(layout.order(), TableLayout().order());
    EXPECT_FALSE(layout.hidden(UrlColumn::Host));
    EXPECT_EQ(layout.widthTwips(UrlColumn::Value), 5000);
    EXPECT_EQ(layout.widthTwips(UrlColumn::User), 1300);
}

TEST(TableLayout, takesOneKeptPositionExactly) {
    const TableLayout layout = restored({{"COL_URL_HOST_ColPos", "1"}});
    EXPECT_EQ(layout.position(UrlColumn::Host), 1);
    EXPECT_EQ(layout.position(UrlColumn::Tag), 0);
    EXPECT_EQ(layout.position(UrlColumn::Icon), 2);
}

TEST(TableLayout, putsColumnsOfOnePositionSideBySide) {
    const TableLayout layout =
        restored({{"COL_URL_HOST_ColPos", "4"}, {"COL_URL_USER_ColPos", "4"}});
    EXPECT_EQ(layout.position(UrlColumn::User), 4);
    EXPECT_EQ(layout.position(UrlColumn::Host), 5);
}

TEST(TableLayout, putsPositionsBeyondTheEndAtTheEnd) {
    const TableLayout layout =
        restored({{"COL_URL_HOST_ColPos", "900"}, {"COL_URL_USER_ColPos", "800"}});
    EXPECT_EQ(layout.position(UrlColumn::User), 56);
    EXPECT_EQ(layout.position(UrlColumn::Host), 57);
    EXPECT_EQ(layout.order().size(), kTableColumnCount);
}

TEST(TableLayout, givesAShownColumnAWidth) {
    TableLayout layout;
    EXPECT_EQ(layout.widthTwips(UrlColumn::KeywordFlag), 0);
    layout.setHidden(UrlColumn::KeywordFlag, false);
    EXPECT_GT(layout.widthTwips(UrlColumn::KeywordFlag), 0);
}

TEST(TableLayout, keepsThatAColumnIsAsWideAsWhatItHolds) {
    TableLayout layout;
    EXPECT_FALSE(layout.isFitted(UrlColumn::Value));
    layout.fit(UrlColumn::Value);
    EXPECT_TRUE(layout.isFitted(UrlColumn::Value));
    EXPECT_TRUE(restored(saved(layout)).isFitted(UrlColumn::Value));
    EXPECT_EQ(restored(saved(layout)), layout);
    layout.setWidthTwips(UrlColumn::Value, 900);
    EXPECT_FALSE(layout.isFitted(UrlColumn::Value));
}

TEST(TableLayout, survivesACloseAndAnOpenOfTheProject) {
    test::TestProject project;
    {
        TableLayout layout;
        layout.setHidden(UrlColumn::Host, true);
        layout.move(UrlColumn::Value, 1);
        ProjectFields fields(project.connection(), project.log);
        layout.save(
            [&](std::string_view name, std::string_view value) { fields.remember(name, value); });
    }
    project.database.closeDB();
    project.database.open();
    const ProjectFields fields(project.connection(), project.log);
    TableLayout layout;
    layout.restore([&](std::string_view name) { return fields.getDefault(name); });
    EXPECT_TRUE(layout.hidden(UrlColumn::Host));
    EXPECT_EQ(layout.position(UrlColumn::Value), 1);
    EXPECT_TRUE(project.log.entries.empty());
}

} // namespace
} // namespace nv
