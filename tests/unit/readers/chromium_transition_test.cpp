#include "db/records/RecordFacts.h"
#include "readers/chrome/shared/StoredDate.h"
#include "readers/chrome/shared/Transition.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

namespace nv {
namespace {

TEST(ChromiumTransition, isReadFromSignedAndUnsignedNumbers) {
    EXPECT_EQ(transitionText(0), "link");
    EXPECT_EQ(transitionText(1), "typed");
    EXPECT_EQ(transitionText(10), "keyword generated");
    EXPECT_EQ(transitionText(0x32000001), "typed, from the address bar, chain start, chain end");
    EXPECT_EQ(transitionText(-2013265919), transitionText(0x88000001));
    EXPECT_EQ(transitionText(-1610612736), "link, chain end, server redirect");
    EXPECT_EQ(transitionText(0x41800008), "reload, blocked, back or forward, client redirect");
}

TEST(ChromiumTransition, saysOfUnknownKindsThatTheyAre) {
    EXPECT_EQ(transitionText(11), "kind 11");
    EXPECT_EQ(transitionText(0xFF), "kind 255");
    EXPECT_EQ(transitionText(std::int64_t{1} << 32), "");
    EXPECT_EQ(transitionText(std::numeric_limits<std::int64_t>::min()), "");
}

TEST(ChromiumTransition, isShortInTheStatus) {
    EXPECT_EQ(transitionStatus(0x32000001), "typed");
    EXPECT_EQ(transitionStatus(0x71000007), "form, back or forward, client redirect");
}

TEST(ChromiumTransition, isTypedOnlyWhenTheKindSaysSo) {
    EXPECT_TRUE(isTypedTransition(0x32000001));
    EXPECT_FALSE(isTypedTransition(0x32000005));
    EXPECT_FALSE(isTypedTransition((std::int64_t{1} << 32) + 1));
}

std::string dateFact(std::int64_t stored) {
    FactList facts;
    addChromeDate(facts, "start_time", stored);
    return facts.empty() ? "-" : factText(*facts.begin());
}

TEST(ChromiumDate, keepsItsFractionAndWhatIsStored) {
    EXPECT_EQ(dateFact(13411731600000000), "2026-01-01 09:00:00 [13411731600000000]");
    EXPECT_EQ(dateFact(13411731600000070), "2026-01-01 09:00:00.000070 [13411731600000070]");
    EXPECT_EQ(dateFact(0), "-") << "never happened";
    EXPECT_EQ(dateFact(-1), "1600-12-31 23:59:59.999999 [-1]");
}

TEST(ChromiumDate, thatIsNoneStaysAsItIsStored) {
    EXPECT_EQ(dateFact(std::numeric_limits<std::int64_t>::max()), "9223372036854775807");
    EXPECT_FALSE(chromeDate(std::numeric_limits<std::int64_t>::max()).has());
}

} // namespace
} // namespace nv
