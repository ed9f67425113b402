#include "import/ChoiceTable.h"
#include "unit/import/FirstFormats.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace nv {
namespace {

using Names = std::vector<std::string>;

Names namesOf(const std::vector<const SourceOption *> &boxes) {
    Names names;
    for (const SourceOption *box : boxes)
        names.emplace_back(box ? box->name : "-");
    return names;
}

TEST(ChoiceTable, hasARowForEachFamilyAndAColumnForEachGroup) {
    const ChoiceTable table = choiceTable(test::firstFormats());
    EXPECT_EQ(table.columns,
              (std::vector{RecordGroup::cache, RecordGroup::history, RecordGroup::cookies}));
    ASSERT_EQ(table.rows.size(), 5U);
    EXPECT_EQ(table.rows.front().family->name, "Internet Explorer");
    EXPECT_EQ(namesOf(table.rows.front().boxes),
              (Names{"chkCacheIE", "chkHistoryIE", "chkCookiesIE"}));
    EXPECT_EQ(table.rows.back().family->name, "Opera");
    EXPECT_EQ(namesOf(table.others),
              (Names{"chkHistoryNVD", "chkHistEx", "IncludeNetAnalysis", "chkHTMLFiles"}));
}

TEST(ChoiceTable, growsWithTheFormats) {
    static constexpr SourceOption marks = {"chkMarks", RecordGroup::bookmarks, &families::opera};
    static constexpr SourceOption notes = {"chkNotes", RecordGroup::other, nullptr, "Notes"};
    static constexpr Reader markFile = {
        .type = HistoryFileType{1000}, .key = "marks", .kind = "Marks", .option = &marks};
    static constexpr Reader noteFile = {
        .type = HistoryFileType{1001}, .key = "notes", .kind = "Notes", .option = &notes};
    std::vector<const Reader *> formats = test::firstFormats();
    formats.push_back(&markFile);
    formats.push_back(&noteFile);
    const ChoiceTable table = choiceTable(formats);
    EXPECT_EQ(table.columns.back(), RecordGroup::bookmarks);
    EXPECT_EQ(namesOf(table.rows.front().boxes).back(), "-");
    EXPECT_EQ(namesOf(table.rows.back().boxes).back(), "chkMarks");
    EXPECT_EQ(namesOf(table.others).back(), "chkNotes");
}

} // namespace
} // namespace nv
