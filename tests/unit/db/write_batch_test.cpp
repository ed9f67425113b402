#include "base/Files.h"
#include "db/sql/ReadOnlyConnection.h"
#include "db/sql/WriteBatch.h"
#include "support/TestProject.h"

#include <gtest/gtest.h>

#include <thread>

namespace nv {
namespace {

struct WriteBatchTest : testing::Test {
    void addKeyword() { project.connection().exec("INSERT INTO Keywords (Keyword) VALUES ('a')"); }
    std::int64_t seenByOthers() {
        return openReadOnly(project.database.filePath)
            ->execAndGet("SELECT count(*) FROM Keywords")
            .getInt64();
    }
    test::TestProject project;
};

TEST_F(WriteBatchTest, keepsWhatWasWrittenWhenItEnds) {
    {
        WriteBatch batch(project.connection());
        addKeyword();
        batch.written();
        EXPECT_EQ(seenByOthers(), 0);
    }
    EXPECT_EQ(seenByOthers(), 1);
}

TEST_F(WriteBatchTest, keepsWhatWasWrittenWhenTheTaskFails) {
    const auto failing = [this] {
        WriteBatch batch(project.connection());
        addKeyword();
        throw std::runtime_error("a reader gave up");
    };
    EXPECT_THROW(failing(), std::runtime_error);
    EXPECT_EQ(seenByOthers(), 1);
}

TEST_F(WriteBatchTest, commitsByItselfAfterAMoment) {
    WriteBatch batch(project.connection());
    addKeyword();
    std::this_thread::sleep_for(std::chrono::milliseconds(260));
    batch.written();
    EXPECT_EQ(seenByOthers(), 1);
    addKeyword();
    batch.commit();
    EXPECT_EQ(seenByOthers(), 2);
}

TEST_F(WriteBatchTest, writesWithoutABatchAreSeenAtOnce) {
    addKeyword();
    EXPECT_EQ(seenByOthers(), 1);
}

TEST_F(WriteBatchTest, tellsEachTimeThatAllIsKept) {
    int kept = 0;
    WriteBatch batch(project.connection(), [&kept] { ++kept; });
    addKeyword();
    batch.written();
    EXPECT_EQ(kept, 0);
    batch.commit();
    EXPECT_EQ(kept, 1);
    addKeyword();
    EXPECT_TRUE(batch.end());
    EXPECT_EQ(kept, 2);
    EXPECT_EQ(seenByOthers(), 2);
    EXPECT_TRUE(batch.end());
}

TEST_F(WriteBatchTest, tellsThatTheDatabaseGaveUpWhatWasWritten) {
    int kept = 0;
    WriteBatch batch(project.connection(), [&kept] { ++kept; });
    addKeyword();
    project.connection().exec("ROLLBACK"); // as it does by itself on some errors of a disk
    EXPECT_FALSE(batch.end());
    EXPECT_EQ(kept, 0);
    EXPECT_EQ(seenByOthers(), 0);
}

TEST_F(WriteBatchTest, aFullDiskIsTheEndOfTheTask) {
    project.connection().exec("PRAGMA max_page_count=1"); // as many as are in use
    WriteBatch batch(project.connection());
    EXPECT_THROW(
        {
            auto store = project.store();
            for (int i = 0; i < 1000; ++i) {
                UrlRecord record;
                record.HTMLBody.assign(10'000, 'x');
                store.saveRecord(record, project.file);
            }
        },
        StorageFailure);
    EXPECT_TRUE(project.log.entries.empty());
}

} // namespace
} // namespace nv
