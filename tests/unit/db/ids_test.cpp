#include "db/sql/BindId.h"
#include "support/TestProject.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>
#include <gtest/gtest.h>

#include <type_traits>

namespace nv {
namespace {

static_assert(!std::is_convertible_v<UrlId, SourceFileId>);
static_assert(!std::is_convertible_v<UrlId, std::int64_t>);
static_assert(!std::is_convertible_v<std::int64_t, UrlId>);

TEST(Ids, arePrintedAsNumbers) {
    EXPECT_EQ(fmt::format("{} {:0>7} {:>4}", UrlId{17}, UrlId{42}, SourceFileId{3}),
              "17 0000042    3");
}

TEST(Ids, areBoundAndCompared) {
    test::TestProject project;
    SQLite::Statement row(project.connection(), "SELECT ?, ?");
    bindId(row, 1, UrlId{std::int64_t{1} << 40});
    bindId(row, 2, SourceFileId{7});
    ASSERT_TRUE(row.executeStep());
    EXPECT_EQ(UrlId{row.getColumn(0).getInt64()}, UrlId{std::int64_t{1} << 40});
    EXPECT_EQ(row.getColumn(1).getInt64(), 7);
    EXPECT_GT(UrlId{2}, UrlId::none);
}

} // namespace
} // namespace nv
