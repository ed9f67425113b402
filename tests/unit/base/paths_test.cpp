#include "base/Files.h"
#include "base/Paths.h"
#include "support/TempFolder.h"
#include "support/WorkingFolder.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

namespace fs = std::filesystem;

TEST(WholePath, ofABareNameLiesInTheWorkingFolderWhetherItIsThereOrNot) {
    const test::TempFolder folder;
    folder.write("here.txt", "x");
    fs::create_directory(folder.path() / "inner");
    const fs::path root = fs::canonical(folder.path());
    const test::WorkingFolder in(folder.path() / "inner");
    EXPECT_EQ(wholePath("new.csv"), root / "inner" / "new.csv");
    EXPECT_EQ(wholePath("../here.txt"), root / "here.txt");
    EXPECT_EQ(wholePath("../no/../new.csv"), root / "new.csv");
    EXPECT_EQ(wholePath("./a/b/"), root / "inner" / "a" / "b");
    EXPECT_EQ(wholePath("/"), "/");
    EXPECT_EQ(wholePath(""), "");
}

TEST(WholePath, followsLinksAlsoToWhatIsNotThereYet) {
    const test::TempFolder folder;
    const fs::path root = fs::canonical(folder.path());
    fs::create_directory(root / "evidence");
    fs::create_directory_symlink("evidence", root / "link");
    fs::create_symlink("evidence/new.csv", root / "dangling");
    fs::create_symlink("ring", root / "ring");
    EXPECT_EQ(wholePath(root / "link" / "x.csv"), root / "evidence" / "x.csv");
    EXPECT_EQ(wholePath(root / "dangling"), root / "evidence" / "new.csv");
    EXPECT_EQ(wholePath(root / "ring"), root / "ring");
}

TEST(PathFromText, findsNamesThatAreNoUtf8) {
    const test::TempFolder folder;
    const fs::path ansi = folder.write("caf\xE9/\xFC.dat", "1");
    const fs::path both = folder.write("d\xC3\xA9j\xC3\xA0/vu\xE9.dat", "2");
    for (const fs::path &path : {ansi, both, ansi.parent_path()})
        EXPECT_EQ(pathFromText(textOf(path)), path) << textOf(path);
    EXPECT_EQ(pathFromText(textOf(both.parent_path()) + "/" + textOf(both.filename())), both);
    EXPECT_EQ(pathFromText(textOf(ansi) + "x"), std::nullopt);
    EXPECT_EQ(pathFromText((folder.path() / "caf?").string()), std::nullopt);
    EXPECT_EQ(pathFromText(""), std::nullopt);
}

TEST(PathFromText, takesTheFolderThatHoldsTheRest) {
    const test::TempFolder folder;
    folder.write("caf\xC3\xA9/other", "1");
    const fs::path file = folder.write("caf\xE9/wanted", "2");
    EXPECT_EQ(pathFromText(folder.path().string() + "/caf\xC3\xA9/wanted"), file);
}

} // namespace
} // namespace nv
