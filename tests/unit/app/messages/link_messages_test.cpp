#include "app/messages/Messages.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

TEST(LinkMessagesTest, theQuestionStandsAsExaminersKnowIt) {
    const Message message = messages::useLinkAnalysis();
    EXPECT_EQ(message.title, "*** Using Link Analysis ***");
    EXPECT_EQ(message.choices, Choices::YesNo);
    EXPECT_EQ(message.text, R"(Norvelane will now scan the current project file for
matches between History URLs and hyperlinks found
embedded inside of cache web pages.

For each match that is made, a counter will increment
and the result will be displayed in the Links column,
for the related URL records.

NOTE:
If you did not choose the 'Parse Advanced Metadata'
option during the initial import process, then this 
analysis will produce no results.

If you still wish to use this feature, then
you will need to create a new project file and 
re-import the necessary files -- making sure this
time that the 'Parse Advanced Metadata' option
is selected.

Do you wish to continue with Link Analysis?)");
}

TEST(LinkMessagesTest, theResultIsFollowedByWhatElseHasToBeKnown) {
    EXPECT_EQ(messages::linkAnalysisResults(12, "").title, "Link Analysis Results");
    EXPECT_EQ(messages::linkAnalysisResults(12, "").text, "A total of 12 matches were made.");
    EXPECT_EQ(messages::linkAnalysisResults(0, "Note.").text,
              "A total of 0 matches were made.\n\nNote.");
}

TEST(LinkMessagesTest, otherTextsStandAsTheyAre) {
    EXPECT_EQ(messages::linkAnalysisFailed("why").title, "Link Analysis Error");
    EXPECT_EQ(messages::findingRecordFailed("why").title, "Error Finding Record");
    const Message gone = messages::linkRecordUnavailable();
    EXPECT_EQ(gone.title, "Link Record Unavailable");
    EXPECT_EQ(gone.text,
              "The selected URL entry could not be displayed because the existing query statement "
              "has excluded it from the results in the Table View.\n\nYou may wish to modify or "
              "limit the selected Filters or change the SQL statement manually.");
}

} // namespace
} // namespace nv
