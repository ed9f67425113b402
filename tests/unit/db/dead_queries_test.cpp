#include "db/project/DeadQueries.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace nv {
namespace {

TEST(DeadQueries, areThoseThatCanFindNothing) {
    KeywordLists keywords;
    keywords.adultContent = {"word"};
    std::vector<std::string> dead;
    for (const StoredQuery &query : firstQueries(2026, 11, keywords))
        if (isDeadQuery(query))
            dead.push_back(query.name);
    EXPECT_EQ(dead, (std::vector<std::string>{"Child Exploitation", "Movie Files (Cache only)",
                                              "Movie Files (any source)", "Linked URLs"}));
}

TEST(DeadQueries, oneThatWasRewrittenIsNone) {
    EXPECT_FALSE(isDeadQuery({"Linked URLs", "SELECT * FROM URLs"}));
    EXPECT_FALSE(isDeadQuery({"My own", "SELECT * FROM URLs WHERE Visits > 2"}));
}

} // namespace
} // namespace nv
