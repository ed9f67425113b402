#include "MadeProject.h"
#include "views/record/ViewerContent.h"
#include "views/tags/Notes.h"

#include <gtest/gtest.h>

namespace nv::test {
namespace {

class NotesTest : public testing::Test, protected MadeProject {
  protected:
    NoteStored store(std::int64_t id, const std::string &text) {
        return storeNote(db(), UrlId{id}, text, clock, log).stored;
    }
};

TEST_F(NotesTest, aNoteIsStoredWithTheTimeOfNow) {
    const auto id = add({{"URL", "http://host/"}});
    EXPECT_EQ(readNote(db(), UrlId{id})->notes, "");
    EXPECT_FALSE(readNote(db(), UrlId{id})->notesDateTime.has());
    EXPECT_EQ(store(id, "'; DROP TABLE URLs; -- café\nline"), NoteStored::stored);
    const auto note = readNote(db(), UrlId{id});
    EXPECT_EQ(note->notes, "'; DROP TABLE URLs; -- café\nline");
    EXPECT_EQ(note->notesDateTime, Date::fromCivil({2011, 6, 15, 12, 0, 0}));
    EXPECT_EQ(store(id, ""), NoteStored::stored);
    EXPECT_EQ(readNote(db(), UrlId{id})->notes, "");
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(NotesTest, aRowThatWasDeletedMeanwhileIsTold) {
    EXPECT_EQ(store(7, "text"), NoteStored::rowGone);
    EXPECT_FALSE(readNote(db(), UrlId{7}));
    const Message message = noteMessage({NoteStored::rowGone, {}});
    EXPECT_EQ(message.title, "URL Unvailable");
    EXPECT_EQ(message.text, "The selected record could not be found.");
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(NotesTest, aFailureIsLoggedAndTold) {
    const auto id = add({{"URL", "http://host/"}});
    db().exec("PRAGMA query_only = 1");
    const NoteOutcome outcome = storeNote(db(), UrlId{id}, "text", clock, log);
    EXPECT_EQ(outcome.stored, NoteStored::failed);
    EXPECT_EQ(noteMessage(outcome).title, "Error Storing Note");
    ASSERT_EQ(log.entries.size(), 1U);
    EXPECT_EQ(log.entries[0].procedure, "MainForm.NotesText_Validate()");
}

TEST(ViewerClassTest, clearingForgetsTheRecordButNotTheReport) {
    ViewerContent viewer{"report", "picture", "hex", "text", "browser"};
    viewer.clearAll();
    EXPECT_EQ(viewer.picturePath + viewer.hexFilePath + viewer.textContent + viewer.browserURL, "");
    EXPECT_EQ(viewer.reportURL, "report");
}

} // namespace
} // namespace nv::test
