#include "unit/reports/ReportFixture.h"

// Whether a report tells that its evidence isn't there any more, or isn't what it was.
namespace nv::test {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;

using ReportEvidenceTest = ReportFixture;

TEST_F(ReportEvidenceTest, contentThatIsGoneOrNotWhatWasImportedIsCounted) {
    set(add("http://host/a.gif", ""), "CacheFileExists", "1");
    hashThen(add("http://host/b.gif", "GIF89a two"), "GIF89a TWO");
    hashThen(add("http://host/c.gif", "GIF89a three"), "GIF89a three");
    EXPECT_EQ(countOf(make(0), "The content is NOT what was imported"), 1u);
    EXPECT_THAT(notes, ElementsAre("1 cached file could not be read; their cards say so.",
                                   "The content of 1 record is NOT what was imported; their cards "
                                   "say so. Ids: 2."));
    make(1);
    EXPECT_TRUE(notes.empty()) << "a tabular report hands no content over";
}

TEST_F(ReportEvidenceTest, partsOfARebuiltPageThatAreGoneOrChangedAreTold) {
    const UrlId site =
        add("http://host/page.html",
            "<!DOCTYPE html><html><title>Inbox</title><img src=\"pic/logo.gif\" ></html> ");
    const UrlId part = add("http://host/pic/logo.gif", "GIF89a logo");
    ASSERT_TRUE(rebuild(site));
    hashThen(part, "GIF89a LOGO");
    EXPECT_THAT(make(0), HasSubstr("The content is NOT what was imported"));
    EXPECT_THAT(notes, ElementsAre(HasSubstr("The content of 2 records is NOT what")))
        << "of the page and of its picture";
    const UrlRecord picture = get(part);
    ASSERT_TRUE(fs::remove(picture.RootPath + picture.CacheFileRelativePath));
    EXPECT_THAT(make(0), HasSubstr("Not all parts of the rebuilt page could be brought"));
    EXPECT_THAT(notes, ElementsAre(HasSubstr("1 cached file could not be read"),
                                   HasSubstr("1 rebuilt page could not be brought")));
}

} // namespace
} // namespace nv::test
