#include "app/jobs/RecordContent.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace nv {
namespace {

using testing::HasSubstr;

UrlRecord inCache() {
    UrlRecord record;
    record.RootPath = "/evidence";
    record.CacheRootPath = "/evidence/Cache/Cache_Data";
    record.DataBlockFile = "f_000002";
    record.CacheFileSize = 30;
    return record;
}

TEST(RecordContent, ofAMissingBodyNamesItsPlaceOnce) {
    UrlRecord record = inCache();
    EXPECT_THAT(missingContent(record),
                HasSubstr("\"f_000002\" of the cache in /evidence/Cache/Cache_Data"));
    record.CacheRootPath = "/Cache/Cache_Data";
    EXPECT_THAT(missingContent(record), HasSubstr("in /evidence/Cache/Cache_Data"));
    record.RootPath.clear();
    EXPECT_THAT(missingContent(record), HasSubstr("in /Cache/Cache_Data"));
}

TEST(RecordContent, ofAnAnswerWithoutABodyIsToldPlainly) {
    UrlRecord record = inCache();
    record.CacheFileSize = 0;
    record.MetaData = "HTTP/1.1 302 Found\r\nLocation: /b\r\n";
    EXPECT_EQ(missingContent(record),
              "no cached content: the cache has no body with the answer \"HTTP/1.1 302 Found\"");
    record.CacheFileSize = 30;
    EXPECT_THAT(missingContent(record), HasSubstr("expected 30 bytes"));
}

} // namespace
} // namespace nv
