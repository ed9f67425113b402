#include "app/jobs/TagJob.h"
#include "db/trail/CaseTrail.h"
#include "unit/app/ProjectCommandsFixture.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <gmock/gmock.h>

namespace nv::test {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

/// A new project of two rows, with tags that are changed as the window does.
struct TagJobTest : ProjectCommandsTest {
    TagJobTest() {
        commands.openFile(path, OpenMode::newAtPath);
        db().connection().exec("INSERT INTO URLs (URL) VALUES ('http://a/'), ('http://b/')");
    }
    void tag(const NamedTag &tag, std::vector<std::int32_t> ids, const std::string &note) {
        auto change = tagRows(*program, {tag, true, note}, ids, nobody);
        ASSERT_TRUE(change);
        history.add(std::move(*change));
    }
    /// Those of notes since the last call.
    std::vector<std::string> newNotes() {
        std::vector<std::string> details;
        std::size_t count = 0;
        for (const TrailEntry &entry : CaseTrail(db().connection()).entries())
            if (entry.action == "Note" && ++count > m_told)
                details.push_back(entry.detail);
        m_told = count;
        return details;
    }

    Unwatched nobody;
    TagHistory history;

  private:
    std::size_t m_told = 0;
};

TEST_F(TagJobTest, notesThatAreTakenBackAndDoneAgainAreInTheTrail) {
    const NamedTag harbour =
        makeTag(*program, {.tagID = 0, .name = "Harbour", .color = {}, .position = 0, .note = {}});
    tag(harbour, {2}, "first");
    EXPECT_THAT(newNotes(), ElementsAre(StartsWith("tag \"Harbour\" of 1 row: note of 5 characters "
                                                   "written, SHA-256 ")));
    tag(harbour, {1, 2}, "second one");
    EXPECT_THAT(newNotes(), ElementsAre(AllOf(HasSubstr("of 2 rows: note of 10 characters"),
                                              HasSubstr(": URL_ID 1, 2"))));
    ASSERT_TRUE(undoTagging(*program, history, nobody));
    EXPECT_THAT(newNotes(),
                ElementsAre(HasSubstr("of 1 row: note taken away: URL_ID 1"),
                            AllOf(HasSubstr("note of 5 characters"), HasSubstr(": URL_ID 2"))));
    ASSERT_TRUE(redoTagging(*program, history, nobody));
    EXPECT_THAT(newNotes(), ElementsAre(HasSubstr("of 2 rows: note of 10 characters")));
    tag(harbour, {1, 2}, "");
    EXPECT_TRUE(newNotes().empty()) << "they keep what they have";
}

} // namespace
} // namespace nv::test
