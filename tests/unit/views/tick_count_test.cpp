#include "support/TestProject.h"
#include "views/rows/TickCount.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <utility>

namespace nv {
namespace {

TEST(TickCount, readsTicksOnceUntilOneChanges) {
    test::TestProject project;
    project.connection().exec("INSERT INTO URLs (URL_ID, Tagged) VALUES (1, 1), (2, 0), (3, 1)");
    TickCount ticks;
    ticks.count(project.connection(), {3, 2});
    EXPECT_EQ(ticks.all(), 2);
    EXPECT_EQ(ticks.shown(), 1);
    project.connection().exec("UPDATE URLs SET Tagged = 1 WHERE URL_ID = 2");
    ticks.note(true, true);
    EXPECT_EQ(ticks.all(), 3);
    EXPECT_EQ(ticks.shown(), 2);
    ticks.count(project.connection(), {1});
    EXPECT_EQ(ticks.all(), 3) << "what was noted is read again";
    EXPECT_EQ(ticks.shown(), 1);
    project.connection().exec("UPDATE URLs SET Tagged = 0");
    ticks.count(project.connection(), {1, 2, 3});
    EXPECT_EQ(ticks.shown(), 3) << "nobody has told of it";
    ticks.forget();
    ticks.count(project.connection(), {1, 2, 3});
    EXPECT_EQ(ticks.all(), 0);
}

TEST(TickCount, readsTheSameByItsIndex) {
    test::TestProject project;
    SQLite::Database &db = project.connection();
    db.exec("INSERT INTO URLs (URL_ID, Tagged) VALUES (1, 1), (2, 0), (3, -1), (4, NULL)");
    Unwatched task;
    EXPECT_EQ(ensureTickIndex(db, task), IndexState::Made);
    EXPECT_EQ(ensureTickIndex(db, task), IndexState::Present);
    const auto counted = [&] {
        TickCount ticks;
        ticks.count(db, {3, 2, 4});
        return std::pair(ticks.all(), ticks.shown());
    };
    EXPECT_EQ(counted(), std::pair(std::int64_t{2}, std::int64_t{1}));
    db.exec("UPDATE URLs SET Tagged = 1 WHERE URL_ID = 4; UPDATE URLs SET Tagged = 0 WHERE URL_ID "
            "= 1; INSERT INTO URLs (URL_ID, Tagged) VALUES (9, 1); DELETE FROM URLs WHERE URL_ID = "
            "3");
    EXPECT_EQ(counted(), std::pair(std::int64_t{2}, std::int64_t{1}));
    db.exec("INSERT INTO URLs (URL_ID, Tagged) VALUES (2000, 1)"); // far from the others
    {
        TickCount ticks;
        ticks.count(db, {2000, 1999, 9, 8});
        EXPECT_EQ(ticks.all(), 3);
        EXPECT_EQ(ticks.shown(), 2);
    }
    db.exec("DELETE FROM URLs WHERE URL_ID = 2000");
    for (const char *other : {"URLs(Tagged) WHERE Tagged = 5", "URLs(Notes)"}) {
        db.exec(fmt::format("DROP INDEX URLTickIndex; CREATE INDEX URLTickIndex ON {}", other));
        EXPECT_EQ(counted(), std::pair(std::int64_t{2}, std::int64_t{1})) << other;
    }
}

TEST(TickCount, itsIndexIsTakenByNoOtherStatement) {
    test::TestProject project;
    Unwatched task;
    EXPECT_EQ(ensureTickIndex(project.connection(), task), IndexState::Made);
    for (const char *query : {"SELECT URL_ID FROM URLs WHERE Tagged <> 0",
                              "SELECT count(*) FROM URLs WHERE Tagged = 1 AND URL_ID <> 5"}) {
        SQLite::Statement plan(project.connection(), fmt::format("EXPLAIN QUERY PLAN {}", query));
        while (plan.executeStep())
            EXPECT_THAT(plan.getColumn(3).getString(),
                        testing::Not(testing::HasSubstr("URLTickIndex")));
    }
}

} // namespace
} // namespace nv
