#include "base/Text.h"
#include "readers/firefox/CacheParse.h"
#include "support/RecordGolden.h"
#include "time/DateFormat.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

TEST(FirefoxCacheGolden, casesReadAsTheyAreWrittenDown) {
    using Record = const URLClass &;
    test::checkGoldenCases(
        {std::filesystem::path(NV_GOLDEN_DIR) / "firefox-cache",
         "_CACHE_MAP_",
         ParseFirefoxCache,
         {{"URL", [](Record r) { return r.URL; }},
          {"host", [](Record r) { return r.host; }},
          {"URLParameters", [](Record r) { return r.URLParameters; }},
          {"CacheFileName", [](Record r) { return r.CacheFileName; }},
          {"ActionDateUTC", [](Record r) { return isoUtc(r.ActionDateUTC); }},
          {"OtherDate", [](Record r) { return isoUtc(r.OtherDate); }},
          {"Visits", [](Record r) { return std::to_string(r.Visits); }},
          {"HistoryVersion", [](Record r) { return r.HistoryVersion; }},
          {"MapFileOffset", [](Record r) { return std::to_string(r.MapFileOffset); }},
          {"RecordSize", [](Record r) { return std::to_string(r.RecordSize); }},
          {"DataBlockFile", [](Record r) { return r.DataBlockFile; }},
          {"DataBlockFileOffset", [](Record r) { return std::to_string(r.DataBlockFileOffset); }},
          {"CacheFileSize", [](Record r) { return std::to_string(r.CacheFileSize); }},
          {"MetaData", [](Record r) { return replaceAll(r.MetaData, "\r\n", "\\r\\n"); }}}},
        7);
}

} // namespace
} // namespace nv
