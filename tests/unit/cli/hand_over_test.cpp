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

TEST(HandOver, oneFileHoldsThePageAndLeavesNothingBesides) {
    const test::TempFolder folder;
    const fs::path page =
        folder.write("scratch/0000001.NVR/0000001.htm", "<img src=0000002.gif>page");
    folder.write("scratch/0000001.NVR/0000002.gif", "GIF89a");
    const fs::path out = folder.path() / "out";
    {
        const test::SmallFiles full(100); // bytes
        EXPECT_THROW(static_cast<void>(handOverSingle(page, out)), StorageFailure);
    }
    EXPECT_TRUE(fs::is_empty(out));
    EXPECT_TRUE(handOverSingle(page, out));
    EXPECT_FALSE(fs::exists(page));
    EXPECT_EQ(std::distance(fs::directory_iterator(out), fs::directory_iterator()), 1);
    const Bytes html = readWhole(out / "0000001.html");
    EXPECT_NE(ByteView(html).raw().find("src=\"data:image/gif;base64,R0lGODlh\""),
              std::string::npos);
}

} // namespace
} // namespace nv::cli
