#include "search/FoundIds.h"

#include <gmock/gmock.h>

#include <limits>

namespace nv::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

FoundIds kept(const FoundIds &found, std::vector<std::int32_t> list) {
    keepOnly(found, list);
    return list;
}

TEST(FoundIds, aListKeepsItsOrder) {
    EXPECT_THAT(kept({2, 3, 9}, {9, 8, 3, 1, 2}), ElementsAre(9, 3, 2));
    EXPECT_THAT(kept({5}, {4, 5, 6}), ElementsAre(5));
    EXPECT_THAT(kept({5}, {}), IsEmpty());
    EXPECT_THAT(kept({}, {4, 5, 6}), IsEmpty());
}

/// Few ids that lie far apart take no room for all that lies between them.
TEST(FoundIds, idsMayLieFarApartAndBelowZero) {
    constexpr std::int32_t kLeast = std::numeric_limits<std::int32_t>::min();
    constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();
    EXPECT_THAT(kept({kLeast, -1, kMost}, {kMost, 0, -1, kLeast, 7}),
                ElementsAre(kMost, -1, kLeast));
    EXPECT_THAT(kept({-3, -2, -1}, {kMost, kLeast, -2, 5, -4, 0}), ElementsAre(-2));
}

TEST(FoundIds, whatWasFoundIsLeftOut) {
    std::vector<std::int32_t> list = {9, 8, 3, 1, 2};
    leaveOut({2, 3, 9}, list);
    EXPECT_THAT(list, ElementsAre(8, 1));
    leaveOut({}, list);
    leaveOut({std::numeric_limits<std::int32_t>::min(), 8}, list);
    EXPECT_THAT(list, ElementsAre(1));
}

TEST(FoundIds, aListIsPutInOrder) {
    EXPECT_THAT(sortedIds({}), IsEmpty());
    EXPECT_THAT(sortedIds({1, 2, 2}), ElementsAre(1, 2, 2));
    EXPECT_THAT(sortedIds({5, -3, 4}), ElementsAre(-3, 4, 5));
    EXPECT_THAT(sortedIds({5, -3, 5, 4}), ElementsAre(-3, 4, 5, 5)) << "a query may give one twice";
    constexpr std::int32_t kLeast = std::numeric_limits<std::int32_t>::min();
    constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();
    EXPECT_THAT(sortedIds({kMost, 0, kLeast}), ElementsAre(kLeast, 0, kMost));
}

TEST(FoundIds, listsAreJoinedAndTakenFromEachOther) {
    EXPECT_THAT(bothOf({1, 2, 4}, {2, 3, 4}), ElementsAre(2, 4));
    EXPECT_THAT(eitherOf({1, 4}, {2, 4}), ElementsAre(1, 2, 4));
    EXPECT_THAT(without({1, 2, 4}, {2, 3}), ElementsAre(1, 4));
}

} // namespace
} // namespace nv::test
