#include "base/Files.h"
#include "cli/HandOver.h"
#include "support/SmallFiles.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

namespace nv::cli {
namespace {

namespace fs = std::filesystem;

TEST(HandOver, aPageThatDoesntFitTheDiskLeavesWhatWasThere) {
    const test::TempFolder folder;
    const fs::path page = folder.write("scratch/0000001.NVR/0000001.htm", "<html>page</html>");
    folder.write("scratch/0000001.NVR/0000002.gif", std::string(2000, 'x'));
    const fs::path out = folder.path() / "out";
    const fs::path before = folder.write("out/0000001.NVR/before.htm", "of before");
    {
        const test::SmallFiles full(1000); // bytes
        EXPECT_THROW(handOver(page, out), StorageFailure);
    }
    EXPECT_TRUE(fs::exists(before));
    fs::remove_all(before.parent_path());
    EXPECT_TRUE(fs::is_empty(out));
    handOver(page, out);
    EXPECT_TRUE(fs::exists(out / "0000001.NVR" / "0000002.gif"));
    EXPECT_FALSE(fs::exists(page));
}

} // namespace
} // namespace nv::cli
