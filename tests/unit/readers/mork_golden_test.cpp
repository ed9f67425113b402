#include "readers/firefox/MorkHistory.h"
#include "support/RecordGolden.h"
#include "time/DateFormat.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

TEST(MorkGolden, casesReadAsTheyAreWrittenDown) {
    using Record = const URLClass &;
    test::checkGoldenCases(
        {std::filesystem::path(NV_GOLDEN_DIR) / "firefox-mork-history",
         "history.dat",
         ParseMorkFile,
         {{"MapFileOffset", [](Record r) { return std::to_string(r.MapFileOffset); }},
          {"Status", [](Record r) { return r.Status; }},
          {"ActionDateUTC", [](Record r) { return isoUtc(r.ActionDateUTC); }},
          {"OtherDate", [](Record r) { return isoUtc(r.OtherDate); }},
          {"OtherDateMeaning", [](Record r) { return r.OtherDateMeaning; }},
          {"Visits", [](Record r) { return std::to_string(r.Visits); }},
          {"Typed", [](Record r) { return std::string(r.Typed ? "typed" : ""); }},
          {"URL", [](Record r) { return r.URL; }},
          {"host", [](Record r) { return r.host; }},
          {"URLParameters", [](Record r) { return r.URLParameters; }},
          {"CacheFileName", [](Record r) { return r.CacheFileName; }},
          {"HistoryVersion", [](Record r) { return r.HistoryVersion; }}}},
        6);
}

} // namespace
} // namespace nv
