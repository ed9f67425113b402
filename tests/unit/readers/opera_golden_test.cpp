#include "readers/opera/Cache.h"
#include "readers/opera/History.h"
#include "support/RecordGolden.h"
#include "time/DateFormat.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

using Record = const URLClass &;
const std::filesystem::path kGolden = NV_GOLDEN_DIR;

TEST(OperaGolden, cachesReadAsTheyAreWrittenDown) {
    test::checkGoldenCases(
        {kGolden / "opera-cache",
         "dcache4.url",
         ParseOperaCache,
         {{"MapFileOffset", [](Record r) { return std::to_string(r.MapFileOffset); }},
          {"Status", [](Record r) { return r.Status; }},
          {"ActionDateUTC", [](Record r) { return isoUtc(r.ActionDateUTC); }},
          {"MIMEType", [](Record r) { return r.MIMEType; }},
          {"URL", [](Record r) { return r.URL; }},
          {"host", [](Record r) { return r.host; }},
          {"CacheFileName", [](Record r) { return r.CacheFileName; }},
          {"CacheFileRelativePath", [](Record r) { return r.CacheFileRelativePath; }},
          {"CacheFileSize", [](Record r) { return std::to_string(r.CacheFileSize); }},
          {"Exists", [](Record r) { return std::string(r.CacheFileExists ? "exists" : ""); }},
          {"Kind",
           [](Record r) {
               return std::string(r.IsPicture ? "picture" : r.IsWebPage ? "page" : "");
           }},
          {"Packed", [](Record r) { return std::string(r.GZipEncoded ? "gzip" : ""); }}}},
        4);
}

std::vector<test::GoldenColumn> historyColumns() {
    return {{"MapFileOffset", [](Record r) { return std::to_string(r.MapFileOffset); }},
            {"Status", [](Record r) { return r.Status; }},
            {"ActionDateUTC", [](Record r) { return isoUtc(r.ActionDateUTC); }},
            {"Typed", [](Record r) { return std::string(r.Typed ? "typed" : ""); }},
            {"URL", [](Record r) { return r.URL; }},
            {"host", [](Record r) { return r.host; }},
            {"URLParameters", [](Record r) { return r.URLParameters; }},
            {"WebpageTitle", [](Record r) { return r.WebpageTitle; }}};
}

TEST(OperaGolden, historiesReadAsTheyAreWrittenDown) {
    test::checkGoldenCases(
        {kGolden / "opera-history", "global_history.dat", ParseOperaHistoryFile, historyColumns()},
        4);
}

TEST(OperaGolden, typedAddressesReadAsTheyAreWrittenDown) {
    test::checkGoldenCases({kGolden / "opera-history-typed", "typed_history.xml",
                            ParseOperaHistoryFile, historyColumns()},
                           3);
}

} // namespace
} // namespace nv
