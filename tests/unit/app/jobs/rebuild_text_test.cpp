#include "app/jobs/RebuildText.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

RebuiltPage rebuiltPage(std::int64_t id, std::size_t replaced, std::size_t missing) {
    RebuiltPage page;
    page.urlID = UrlId{id};
    page.rebuilt = true;
    page.replaced = replaced;
    page.missing = missing;
    return page;
}

RebuiltPage notRebuilt(std::int64_t id, NotRebuilt why) {
    RebuiltPage page;
    page.urlID = UrlId{id};
    page.why = why;
    return page;
}

TEST(RebuildText, onePageIsToldWithItsReferences) {
    EXPECT_EQ(reportText({1, {rebuiltPage(17, 12, 3)}, false}),
              "Record 17 was rebuilt: 12 references replaced, 3 missing.");
    RebuiltPage exact = rebuiltPage(17, 12, 3);
    exact.method = RebuildMethod::exact;
    EXPECT_EQ(reportText({1, {exact}, false}),
              "Record 17 was rebuilt exactly: 12 references replaced, 3 missing.");
}

TEST(RebuildText, whatWasFoundAndNotRewrittenIsTold) {
    RebuiltPage page = rebuiltPage(17, 12, 3);
    page.notRewritten = 2;
    EXPECT_EQ(reportText({1, {page}, false}),
              "Record 17 was rebuilt: 12 references replaced, 3 missing, 2 not rewritten.");
}

TEST(RebuildText, onePageIsToldWithItsReason) {
    EXPECT_EQ(reportText({1, {notRebuilt(17, NotRebuilt::contentGone)}, false}),
              "Record 17 was not rebuilt: its cached content is gone.");
    EXPECT_EQ(reportText({1, {notRebuilt(17, NotRebuilt::noContent)}, false}),
              "Record 17 was not rebuilt: it has no cached content.");
    EXPECT_EQ(reportText({1, {notRebuilt(17, NotRebuilt::failed)}, false}),
              "Record 17 was not rebuilt: it failed; the error log tells why.");
}

TEST(RebuildText, aBatchCountsItsReasons) {
    EXPECT_EQ(
        reportText({4,
                    {rebuiltPage(1, 1, 0), notRebuilt(2, NotRebuilt::noReferences),
                     notRebuilt(3, NotRebuilt::noReferences), notRebuilt(4, NotRebuilt::wideIds)},
                    false}),
        "1 of 4 pages rebuilt. 2 not: it holds no reference that can be replaced. 1 not: a "
        "part has an id above 32767; switch on [BEYOND] WideRecordIds in the settings.");
}

TEST(RebuildText, thumbnailsThatWereNotDrawnAreTold) {
    RebuiltPage page = rebuiltPage(17, 12, 3);
    page.thumbnail = Redrawn::failed;
    EXPECT_EQ(
        reportText({1, {page}, false}),
        "Record 17 was rebuilt: 12 references replaced, 3 missing. Its thumbnail could not be "
        "drawn; the error log tells why.");
    EXPECT_EQ(reportText({3, {page, rebuiltPage(1, 0, 0), page}, false}),
              "3 of 3 pages rebuilt. 2 thumbnails could not be drawn; the error log tells why.");
}

TEST(RebuildText, aCancelledBatchSaysHowFarItCame) {
    EXPECT_EQ(reportText({3, {rebuiltPage(1, 1, 0)}, true}), "Cancelled: 1 of 3 pages rebuilt.");
    EXPECT_EQ(reportText({1, {}, true}), "Cancelled: 0 of 1 page rebuilt.");
}

} // namespace
} // namespace nv
