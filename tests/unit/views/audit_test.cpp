#include "rebuild/Templates.h"
#include "unit/rebuild/RebuildFixture.h"
#include "views/record/Audit.h"

#include <gmock/gmock.h>

namespace nv {
namespace {

using testing::ElementsAre;

class AuditTest : public test::RebuildFixture {
  protected:
    std::vector<AuditRow> audit(UrlId id) {
        const UrlRecord record = get(id);
        return loadAudit(record, rebuildFolderOf(id, context()), context())
            .value_or(std::vector<AuditRow>());
    }
    static std::vector<std::string> states(const std::vector<AuditRow> &rows) {
        std::vector<std::string> all;
        for (const AuditRow &row : rows)
            all.push_back(row.originalValue + ": " + row.state);
        return all;
    }
    void forgetNotes() { project.connection().exec("DROP TABLE RebuildAudit"); }
    /// A picture in two places, of which only one is rewritten, and two that aren't found so.
    UrlId site() {
        add("http://host/a/logo.gif", "GIF89a", "Opera Cache");
        add("http://host/a/back.gif", "GIF89a", "Opera Cache");
        return add("http://host/page.html",
                   "<body style=\"background:url(a/logo.gif)\"><img src=\"a/logo.gif\" >"
                   "<b style=\"background:url(a/back.gif)\"><img src=\"a/gone.gif\" > ",
                   "Opera Cache");
    }
};

TEST_F(AuditTest, tellsAReferenceThatThePageDoesNotNameAPartFor) {
    const UrlId id = site();
    ASSERT_TRUE(rebuild(id));
    const auto rows = audit(id);
    EXPECT_THAT(states(rows),
                testing::UnorderedElementsAre("a/logo.gif: 0000001.gif",
                                              "a/logo.gif: Not rewritten: 0000001.gif",
                                              "a/back.gif: Not rewritten: 0000002.gif",
                                              "a/gone.gif: Missing or Invalid Tag"));
    EXPECT_EQ(std::count_if(rows.begin(), rows.end(),
                            [](const AuditRow &row) { return row.isReplaced(); }),
              1);
}

TEST_F(AuditTest, countsWhatAnEqualReferenceOrAnotherRuleHasTakenAlong) {
    add("http://host/a/logo.gif", "GIF89a", "Opera Cache");
    const UrlId id = add("http://host/page.html",
                         "<img src=\"a/logo.gif\" ><img src='A/logo.gif' >"
                         "<b style=\"background: url(a/logo.gif)\"> ",
                         "Opera Cache");
    ASSERT_TRUE(rebuild(id));
    const auto rows = audit(id);
    ASSERT_EQ(rows.size(), 4u); // two rules find the style
    for (const AuditRow &row : rows)
        EXPECT_TRUE(row.isReplaced()) << row.number;
}

TEST_F(AuditTest, goesByTheTextForRebuildsOfEarlierVersions) {
    const UrlId id = site();
    ASSERT_TRUE(rebuild(id));
    forgetNotes();
    const auto rows = audit(id);
    for (const AuditRow &row : rows) {
        EXPECT_EQ(row.isReplaced(), row.originalValue == "a/logo.gif") << row.number;
        EXPECT_EQ(row.score, "");
        EXPECT_EQ(row.partUrl().empty(), row.tagURLID == 0);
    }
}

TEST_F(AuditTest, showsScoreAndCandidatesWithTheirUrls) {
    add("http://host/logo.gif.html", "no picture");
    add("http://host/a/logo.gif?x=1", "GIF89a");
    add("http://host/b/logo.gif.old", "GIF89a");
    const UrlId id =
        add("http://host/page.html", "<img src=\"logo.gif\" ><img src=\"gone.gif\" > ");
    ASSERT_TRUE(rebuild(id));
    add("http://host/another.html", "<img src=\"logo.gif\" > ");
    ASSERT_TRUE(rebuild(UrlId{5})); // whose options take the place of those of the first page
    const auto rows = audit(id);
    ASSERT_EQ(rows.size(), 2u);
    EXPECT_EQ(rows[0].score, "1:3");
    EXPECT_EQ(rows[0].partUrl(), "http://host/logo.gif.html");
    EXPECT_EQ(rows[0].otherCandidates(),
              "2 http://host/a/logo.gif?x=1 | 3 http://host/b/logo.gif.old");
    EXPECT_EQ(rows[1].score, "0:0");
    EXPECT_EQ(rows[1].partUrl(), "");
    EXPECT_EQ(rows[1].otherCandidates(), "");
}

TEST_F(AuditTest, saysHowManyCandidatesItDoesNotShow) {
    for (int i = 1; i <= 120; ++i)
        add("http://host/us/" + std::to_string(i), "", "Opera Cache");
    const UrlId id = add("http://host/page.html", "<img src=\"us\" > ", "Opera Cache");
    ASSERT_TRUE(rebuild(id));
    EXPECT_THAT(audit(id).at(0).otherCandidates(), testing::EndsWith("| 109 more"));
}

TEST_F(AuditTest, countsAPartThatATemplateHasBrought) {
    add("http://host/a/logo.gif", "GIF89a");
    const UrlId id = add("http://host/page.html", "<img src=\"a/logo.gif\" > ");
    ASSERT_TRUE(rebuild(id));
    const auto folder = project.folder.path() / "templates";
    ASSERT_EQ(createTemplate(page, folder, "1", IfTemplateExists::refuse, context()),
              TemplateResult::made);
    project.connection().exec("UPDATE URLs SET CacheFileRelativePath = 'gone' WHERE URL_ID = 1");
    UrlRecord record = get(add("http://host/other.html", "page"));
    ASSERT_TRUE(
        rebuildFromTemplate(record, templatePathOf(page, folder), context(), project.clock));
    EXPECT_THAT(states(audit(record.URLID)), ElementsAre("a/logo.gif: 0000001.gif"));
    EXPECT_TRUE(audit(record.URLID)[0].isReplaced());
}

} // namespace
} // namespace nv
