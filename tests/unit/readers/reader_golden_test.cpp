#include "base/Text.h"
#include "readers/chrome/History.h"
#include "readers/firefox/CacheParse.h"
#include "readers/firefox/MorkHistory.h"
#include "readers/firefox/Places.h"
#include "readers/opera/Cache.h"
#include "readers/opera/History.h"
#include "readers/safari/Cache.h"
#include "readers/safari/History.h"
#include "support/RecordGolden.h"

#include <gtest/gtest.h>

#include <array>

namespace nv {
namespace {

struct Format {
    const char *key; ///< the folder of its cases
    const char *file;
    ReadResult (*read)(ReadContext &);
    std::size_t leastCases;
};

constexpr std::array kFormats = {
    Format{"chrome-history", "History", ParseChromeHistoryFile, 5},
    Format{"firefox-cache", "_CACHE_MAP_", ParseFirefoxCache, 7},
    Format{"firefox-mork-history", "history.dat", ParseMorkFile, 6},
    Format{"firefox3-history", "places.sqlite", ParseFirefox3HistoryFile, 5},
    Format{"opera-cache", "dcache4.url", ParseOperaCache, 4},
    Format{"opera-history", "global_history.dat", ParseOperaHistoryFile, 4},
    Format{"opera-history-typed", "typed_history.xml", ParseOperaHistoryFile, 3},
    Format{"safari-cache", "Cache.db", ParseSafariCacheFile, 5},
    Format{"safari-history", "History.plist", ParseSafariHistoryFile, 5},
};

class ReaderGolden : public testing::TestWithParam<Format> {};

TEST_P(ReaderGolden, casesReadAsTheyAreWrittenDown) {
    const Format &format = GetParam();
    test::checkGoldenCases(
        {std::filesystem::path(NV_GOLDEN_DIR) / format.key, format.file, format.read},
        format.leastCases);
}

INSTANTIATE_TEST_SUITE_P(Formats, ReaderGolden, testing::ValuesIn(kFormats),
                         [](const auto &format) { return replaceAll(format.param.key, "-", "_"); });

} // namespace
} // namespace nv
