#include "base/Base64.h"
#include "unit/reports/CaseReportFixture.h"

namespace nv::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

using CaseRedactionTest = CaseReportFixture;

TEST_F(CaseRedactionTest, rowsOfAHostAndAPersonAreLeftOut) {
    addHistory("http://www.tide.example/secret", 1);
    const UrlId two = addHistory("http://other.example/?from=www.tide.example", 2);
    set(two, "Referrer", "http://www.TIDE.example/");
    const UrlId three = addHistory("http://third.example/", 3);
    set(three, "Person", "Quill");
    const std::string html = redacted({"leave out host=tide.example", "leave out person=quill"});
    EXPECT_THAT(html, AllOf(HasSubstr("<dt>Rows left out</dt><dd>2</dd>"),
                            HasSubstr("<dt>Rows</dt><dd>1</dd>"), HasSubstr("1 host, 1 person")));
    EXPECT_EQ(filesWith("tide.example"), 0u);
    EXPECT_EQ(filesWith("TIDE.example"), 0u);
    EXPECT_EQ(filesWith("third.example"), 0u);
    EXPECT_EQ(rowsReported(project.connection()), 1);
    EXPECT_THAT(file("history.csv"), HasSubstr("http://other.example/?from=www.[redacted]"));
}

TEST_F(CaseRedactionTest, whatAnAddressHoldsInBase64IsRedacted) {
    const std::string code = base64(viewOf("https://secretbank.example/of/quillon"));
    addHistory("http://r.example/b64?d=" + code + "&n=1", 1);
    const std::string html = redacted({"leave out host=secretbank.example", "blur value=quillon"});
    EXPECT_EQ(filesWith(code.substr(0, 20)), 0u);
    for (const char *name : {"history-1.htm", "cards-1.htm", "history.csv"})
        EXPECT_THAT(file(name), HasSubstr("http://r.example/b64?d=[redacted]&")) << name;
    EXPECT_THAT(html, Not(HasSubstr("<dt>Places in texts</dt><dd>0")));
}

TEST_F(CaseRedactionTest, aBlurredHostTellsNothingOfItsRows) {
    const UrlId site = add("http://tide.example/page.html",
                           "<html><title>Low water</title>Nobody may read this</html> ");
    set(site, "WebPageTitle", "Low water");
    const std::string html = redacted({"blur host=tide.example"});
    EXPECT_THAT(html, AllOf(HasSubstr("<dt>Rows left out</dt><dd>0</dd>"),
                            HasSubstr("<dt>Contents left out</dt><dd>1</dd>")));
    for (const char *gone : {"tide.example", "Low water", "Nobody may read this"})
        EXPECT_EQ(filesWith(gone), 0u) << gone;
    EXPECT_THAT(file("cards-1.htm"), HasSubstr("Its content was left out on purpose."));
}

TEST_F(CaseRedactionTest, aValueGoesOutOfRebuiltPagesAndTheirParts) {
    const UrlId site =
        add("http://host/page.html",
            "<!DOCTYPE html><html><title>Inbox</title><img src=\"pic/logo.gif\" >"
            "<p title=\"of Mara Quill\">For Mara&nbsp;Quill and mara quill</p></html> ");
    add("http://host/pic/logo.gif", "GIF89a by Mara Quill");
    add("http://host/note.txt", "a note of MARA QUILL, plain");
    ASSERT_TRUE(rebuild(site));
    const std::string html = redacted({"blur value=mara quill"});
    EXPECT_EQ(filesWith("Mara Quill"), 0u);
    EXPECT_EQ(filesWith("mara quill"), 0u);
    EXPECT_EQ(filesWith("MARA QUILL"), 0u);
    EXPECT_THAT(file("0000001.NVR/0000001.htm"), HasSubstr("of [redacted]"));
    EXPECT_THAT(file("0000001.NVR/0000002.gif"), AllOf(HasSubstr("GIF89a"), Not(HasSubstr("by"))));
    EXPECT_THAT(file("0000003.NVR/0000003.txt"), HasSubstr("a note of [redacted], plain"));
    EXPECT_EQ(file("pictures/0000002.gif"), "");
    EXPECT_EQ(file("pictures/0000002-blurred.jpg"), "JPEG");
    EXPECT_THAT(html, AllOf(HasSubstr("<dt>Pictures blurred</dt><dd>1</dd>"),
                            HasSubstr("<dt>Pictures left out</dt><dd>1</dd>"),
                            HasSubstr("<dt>Pages and texts changed</dt><dd>2</dd>")));
    EXPECT_FALSE(fs::exists(temp / "~blur" / "0000002.gif"));
}

TEST_F(CaseRedactionTest, aPageWhoseWordsCantBeTakenOutIsLeftOut) {
    const UrlId site =
        add("http://host/page.html", "<!DOCTYPE html><html><title>Inbox</title><img "
                                     "src=\"gone.gif\" ><p>se<b>cr</b>et</p></html> ");
    ASSERT_TRUE(rebuild(site));
    const std::string html = redacted({"blur value=secret"});
    EXPECT_THAT(html, Not(HasSubstr("<dt>Contents left out</dt><dd>0</dd>")));
    EXPECT_FALSE(fs::exists(folder.path / "0000001.NVR"));
    EXPECT_THAT(file("cards-1.htm"), HasSubstr("Its page was left out on purpose."));
}

TEST_F(CaseRedactionTest, aChosenPictureGoesWhereverItsBytesStand) {
    add("http://host/face.gif", "GIF89a the face");
    add("http://mirror/copy.gif", "GIF89a the face");
    const UrlId site = add("http://mirror/page.html",
                           "<!DOCTYPE html><html><title>x</title><img src=\"copy.gif\" ></html> ");
    ASSERT_TRUE(rebuild(site));
    const std::string html = redacted({"leave out picture=1"});
    EXPECT_EQ(filesWith("the face"), 0u);
    EXPECT_THAT(html, HasSubstr("<dt>Pictures left out</dt><dd>3</dd>"));
    EXPECT_THAT(file("cards-1.htm"), HasSubstr("Its picture was left out on purpose."));
}

TEST_F(CaseRedactionTest, aPageThatHoldsAChosenPictureAsDataIsLeftOut) {
    add("http://host/face.gif", "GIF89a the face");
    const UrlId site = add("http://host/page.html",
                           "<!DOCTYPE html><html><title>x</title><img "
                           "src=\"data:image/gif;base64,R0lGODlhIHRoZSBmYWNl\" ></html> ");
    ASSERT_TRUE(rebuild(site));
    makeCase();
    EXPECT_EQ(filesWith("R0lGODlhIHRoZSBmYWNl"), 1u);
    EXPECT_THAT(redacted({"blur picture=1"}),
                Not(HasSubstr("<dt>Contents left out</dt><dd>0</dd>")));
    EXPECT_EQ(filesWith("R0lGODlhIHRoZSBmYWNl"), 0u);
}

TEST_F(CaseRedactionTest, aPictureThatCantBeDrawnIsLeftOutNotShown) {
    add("http://host/face.gif", "GIF89a broken face");
    EXPECT_THAT(redacted({"blur picture=1"}), HasSubstr("<dt>Pictures left out</dt><dd>1</dd>"));
    EXPECT_EQ(filesWith("broken face"), 0u);
    drawing = nullptr;
    redacted({"blur picture=1"});
    EXPECT_EQ(filesWith("broken face"), 0u);
}

TEST_F(CaseRedactionTest, theCoverSaysWhatNothingFits) {
    addHistory("http://tide.example/", 1);
    EXPECT_THAT(redacted({"leave out host=tide.exampel", "blur person=Maara"}),
                AllOf(HasSubstr("Nothing was redacted. Chosen were 1 host, 1 person. Nothing in "
                                "this report fits any of these: 1 host, 1 person."),
                      Not(HasSubstr("On purpose"))));
    EXPECT_THAT(redacted({"blur host=tide.example", "blur person=Maara"}),
                AllOf(HasSubstr("On purpose this report doesn't show all"),
                      HasSubstr("Nothing in this report fits 1 of these: 1 person.")));
    EXPECT_THAT(redacted({"blur host=tide.example"}), Not(HasSubstr("Nothing in this report")));
}

} // namespace
} // namespace nv::test
