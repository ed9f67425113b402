#include "base/Text.h"
#include "readers/Registry.h"
#include "support/RecordGolden.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <set>

namespace nv {
namespace {

namespace fs = std::filesystem;

const fs::path kGolden = NV_GOLDEN_DIR;

class ReaderGolden : public testing::TestWithParam<test::GoldenFolder> {};

TEST_P(ReaderGolden, casesReadAsTheyAreWrittenDown) {
    test::checkGoldenCases(GetParam(), kGolden);
}

INSTANTIATE_TEST_SUITE_P(Formats, ReaderGolden, testing::ValuesIn(test::goldenFolders()),
                         [](const auto &folder) {
                             return replaceAll(folder.param.name, "-", "_");
                         });

TEST(GoldenCases, areThereForEveryFormatThatIsRead) {
    for (const Reader *reader : registry()) {
        SCOPED_TRACE(reader->key);
        if (!reader->read)
            continue;
        EXPECT_TRUE(fs::is_directory(test::soundCase(*reader, kGolden) / "input"));
        EXPECT_TRUE(fs::exists(test::artefactIn(test::soundCase(*reader, kGolden), *reader)));
    }
}

/// A folder that no row names would never be read.
TEST(GoldenCases, areAllRead) {
    std::set<std::string> named;
    for (const test::GoldenFolder &folder : test::goldenFolders())
        named.insert(folder.name);
    for (const auto &entry : fs::directory_iterator(kGolden)) {
        const bool isOfAFormat = entry.path().filename() != "report";
        EXPECT_EQ(named.contains(entry.path().filename().string()), isOfAFormat) << entry.path();
    }
}

} // namespace
} // namespace nv
