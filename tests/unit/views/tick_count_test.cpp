#include "support/TestProject.h"
#include "views/rows/TickCount.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <gtest/gtest.h>

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

} // namespace
} // namespace nv
