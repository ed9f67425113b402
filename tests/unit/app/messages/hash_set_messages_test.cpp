#include "app/messages/HashSetMessages.h"

#include <gmock/gmock.h>

namespace nv {
namespace {

using testing::HasSubstr;
using testing::Not;

HashMatch match(std::uint64_t rows, std::uint64_t withHash, std::uint64_t found) {
    HashMatch made;
    made.rowsOfProject = rows;
    made.rowsWithHash = withHash;
    made.rowsFound = found;
    return made;
}

TEST(HashSetMessages, aMatchTellsWhatWasComparedAndFound) {
    EXPECT_EQ(matchText(match(98311, 1204, 12), "How."),
              "Compared: 1,204 of 98,311 records, those with a hash. Found in a set: 12.");
    EXPECT_EQ(matchText(match(1, 1, 0), "How."),
              "Compared: 1 of 1 record, those with a hash. Found in a set: none.");
}

TEST(HashSetMessages, aMatchTellsWhatNothingIsKnownOf) {
    HashMatch some = match(5, 0, 0);
    some.bodiesWithoutHash = 3;
    some.withoutContent = 2;
    EXPECT_EQ(matchText(some, "How."),
              "Nothing was compared: of 5 records none has a hash.\n"
              "Nothing is said of 3 records with cached content that was not hashed when it was "
              "imported. How.\n"
              "Without content, so there is nothing to hash: 2 records.");
    EXPECT_THAT(matchText(match(5, 5, 0), "How."), Not(HasSubstr("How.")));
    EXPECT_EQ(matchText(match(0, 0, 0), "How."),
              "The project has no records yet: there is nothing to compare.");
}

} // namespace
} // namespace nv
