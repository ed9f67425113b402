#include "base/Text.h"
#include "readers/Evidence.h"
#include "support/FailingReads.h"
#include "support/TempFolder.h"
#include "support/WorkingFolder.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

TEST(Evidence, splitsAPathAtTheBaseFolder) {
    const Evidence evidence("/case/evidence");
    EXPECT_EQ(evidence.rootOf("/case/evidence/a/b"), "/case/evidence/");
    EXPECT_EQ(evidence.relativeOf("/case/evidence/a/b"), "a/b");
    EXPECT_EQ(evidence.rootOf("/case/evidence2/a"), "/");
    EXPECT_EQ(evidence.relativeOf("/case/evidence2/a"), "case/evidence2/a");
    EXPECT_EQ(Evidence("").rootOf("/x/y"), "/");
}

TEST(Evidence, findsFilesOfAWindowsIndexWithoutRegardToCase) {
    const test::TempFolder folder;
    const auto file = folder.write("Content.IE5/AB12CD34/page[1].htm", "x");
    const Evidence evidence(folder.path());
    EXPECT_EQ(evidence.find(folder.path() / "Content.IE5", "ab12cd34\\PAGE[1].HTM"), file);
    EXPECT_EQ(evidence.find(folder.path() / "Content.IE5", "ab12cd34\\other.htm"), std::nullopt);
    EXPECT_EQ(evidence.find(folder.path() / "Content.IE5", "ab12cd34"), std::nullopt);
}

TEST(Evidence, prefersTheExactNameAmongSeveral) {
    const test::TempFolder folder;
    const auto lower = folder.write("a.txt", "1");
    const auto upper = folder.write("A.TXT", "2");
    const Evidence evidence(folder.path());
    EXPECT_EQ(evidence.find(folder.path(), "a.txt"), lower);
    EXPECT_EQ(evidence.find(folder.path(), "A.TXT"), upper);
}

TEST(Evidence, isNotLedOutOfTheFolder) {
    const test::TempFolder outside;
    outside.write("secret.txt", "x");
    const test::TempFolder folder;
    folder.write("inner/a.txt", "x");
    std::filesystem::create_symlink(outside.path() / "secret.txt", folder.path() / "link.txt");
    const Evidence evidence(folder.path());
    EXPECT_EQ(evidence.find(folder.path() / "inner", "..\\inner\\a.txt"), std::nullopt);
    EXPECT_EQ(evidence.find(folder.path(), "link.txt"), std::nullopt);
    EXPECT_EQ(evidence.find(folder.path(), ""), std::nullopt);
}

TEST(Evidence, knowsWhatLiesInItThroughLinks) {
    const test::TempFolder folder;
    folder.write("evidence/a.txt", "x");
    folder.write("evidence2/b.txt", "x");
    const auto evidence = folder.path() / "evidence";
    const auto link = folder.path() / "link";
    std::filesystem::create_directory_symlink(evidence, link);
    EXPECT_TRUE(liesInEvidence(evidence, evidence));
    EXPECT_TRUE(liesInEvidence(evidence / "new" / "case.nvp", evidence));
    EXPECT_TRUE(liesInEvidence(link / "case.nvp", evidence));
    EXPECT_TRUE(liesInEvidence(evidence / "case.nvp", link));
    EXPECT_FALSE(liesInEvidence(folder.path() / "evidence2" / "b.txt", evidence));
    EXPECT_FALSE(liesInEvidence(folder.path(), evidence));
    EXPECT_FALSE(liesInEvidence(evidence, ""));
    EXPECT_FALSE(liesInEvidence(evidence, "/"));
}

TEST(Evidence, knowsThatBareNamesLieInIt) {
    const test::TempFolder folder;
    folder.write("evidence/a.txt", "x");
    const auto evidence = folder.path() / "evidence";
    const test::WorkingFolder in(evidence);
    EXPECT_TRUE(liesInEvidence("case.nvp", evidence));
    EXPECT_TRUE(liesInEvidence("new/folder", evidence));
    EXPECT_TRUE(liesInEvidence("case.nvp", "."));
    EXPECT_FALSE(liesInEvidence("../case.nvp", evidence));
}

TEST(Evidence, isAlsoTheFolderThatShowsAsTheSameText) {
    const test::TempFolder folder;
    const auto cafe = folder.path() / "caf\xC3\xA9";
    const auto ansi = folder.write("caf\xC3\xA9/b\xE9se/a.txt", "x").parent_path();
    const auto utf8 = folder.write("caf\xC3\xA9/b\xC3\xA9se/a.txt", "x").parent_path();
    const auto link = folder.path() / "link";
    std::filesystem::create_directory_symlink(ansi, link);
    EXPECT_TRUE(liesInEvidence(link / "new.txt", utf8));
    EXPECT_TRUE(liesInEvidence(utf8 / "\xC3\xBC.txt", ansi));
    EXPECT_TRUE(liesInEvidence(ansi / "\xFC.txt", ansi));
    EXPECT_FALSE(liesInEvidence(cafe / "b\xC3\xA8se" / "a.txt", ansi));
    EXPECT_FALSE(liesInEvidence(cafe, ansi));
}

TEST(Evidence, partsPathsWhoseNamesAreNoUtf8) {
    const test::TempFolder folder;
    const auto file = folder.write("caf\xC3\xA9/na\xEFve/a.txt", "x");
    const Evidence evidence(folder.path() / "caf\xC3\xA9");
    EXPECT_EQ(evidence.relativeOf(file), "na\u00EFve/a.txt");
    EXPECT_EQ(evidence.find(evidence.rootOf(file), evidence.relativeOf(file)), file);
    const Evidence inner(file.parent_path());
    EXPECT_EQ(inner.find(inner.rootOf(file), "a.txt"), file) << "the root is a text too";
}

TEST(Evidence, keepsTheTextOfAFolderBesideANameThatIsNoUtf8) {
    const test::TempFolder folder;
    const auto file = folder.write("s\xC3\xBC\xC3\x9F/w\xF6.html", "x");
    const Evidence evidence(folder.path());
    EXPECT_EQ(evidence.relativeOf(file), "s\u00FC\u00DF/w\u00F6.html");
    EXPECT_EQ(evidence.find(folder.path(), evidence.relativeOf(file)), file);
}

TEST(Evidence, opensForReading) {
    const test::TempFolder folder;
    const auto file = folder.write("a/b.txt", "0123456789");
    const Evidence evidence(folder.path());
    const EvidenceFile opened = evidence.open(file);
    EXPECT_EQ(opened.path(), file);
    EXPECT_EQ(opened.size(), 10u);
    EXPECT_EQ(ByteView(opened.read(8, 5)).raw(), "89");
    EXPECT_EQ(ByteView(evidence.head(file, 3)).raw(), "012");
    EXPECT_EQ(ByteView(evidence.whole(file)).raw(), "0123456789");
}

TEST(Evidence, readsFilesOfWhichTheSystemTellsNoSize) {
    const std::filesystem::path told = "/proc/self/mountinfo";
    const Evidence evidence({});
    const EvidenceFile opened = evidence.open(told);
    ASSERT_EQ(opened.size(), 0u);
    const Bytes whole = evidence.whole(told);
    EXPECT_GT(whole.size(), 100u);
    EXPECT_EQ(opened.read(10, 50), Bytes(whole.begin() + 10, whole.begin() + 60));
    std::size_t counted = 0;
    EXPECT_TRUE(inBlocks(opened, [&counted](std::string_view block) {
        counted += block.size();
        return true;
    }));
    EXPECT_EQ(counted, whole.size());
}

TEST(Evidence, answersQuestionsOfPlaces) {
    const test::TempFolder folder;
    const auto file = folder.write("a/b.txt", "0123");
    const auto link = folder.path() / "link";
    std::filesystem::create_symlink(file, link);
    const Evidence evidence(folder.path());
    EXPECT_EQ(evidence.kindOf(file), PlaceKind::file);
    EXPECT_EQ(evidence.kindOf(link), PlaceKind::file);
    EXPECT_EQ(evidence.kindOf(folder.path()), PlaceKind::folder);
    EXPECT_EQ(evidence.kindOf(folder.path() / "gone"), PlaceKind::nothing);
    EXPECT_EQ(evidence.kindOf("/dev/null"), PlaceKind::special);
    EXPECT_TRUE(evidence.isPlainFile(file));
    EXPECT_FALSE(evidence.isPlainFile(link));
    EXPECT_TRUE(evidence.isPlainFolder(file.parent_path()));
    EXPECT_FALSE(evidence.isPlainFolder(file));
    EXPECT_EQ(evidence.linkText(link), std::filesystem::read_symlink(link).string());
    EXPECT_EQ(evidence.linkText(file), "");
    EXPECT_EQ(evidence.factsOf(file).size, 4u);
    EXPECT_TRUE(evidence.factsOf(file).created.has());
    EXPECT_TRUE(evidence.factsOf(file).lastAccessed.has());
    EXPECT_FALSE(evidence.factsOf(folder.path() / "gone").isThere);
    EXPECT_FALSE(evidence.factsOf(folder.path() / "gone").created.has());
}

/// What the step at `failing` ends in.
template <class Body>
std::string failureOfStep(std::size_t failing, Body &&body) {
    const test::TempFolder folder;
    const auto file = folder.write("b.txt", "0123");
    test::FailingReads bad(failing);
    const Evidence evidence(folder.path(), &bad);
    try {
        body(evidence, file);
    } catch (const EvidenceFailure &failure) {
        EXPECT_EQ(failure.file(), bad.failed);
        return replaceAll(failure.what(), folder.path().string(), "");
    }
    return {};
}

TEST(Evidence, makesOneKindOfFailureOfAllThatCannotBeRead) {
    const auto whole = [](const Evidence &evidence, const auto &file) {
        return static_cast<void>(evidence.whole(file));
    };
    EXPECT_EQ(failureOfStep(0, whole), "cannot open \"/b.txt\": Input/output error");
    EXPECT_EQ(failureOfStep(1, whole), "cannot read \"/b.txt\": Input/output error");
    EXPECT_EQ(failureOfStep(2, whole), "");
    EXPECT_EQ(failureOfStep(0,
                            [](const Evidence &evidence, const auto &file) {
                                static_cast<void>(evidence.contentsOf(file.parent_path()));
                            }),
              "cannot list \"\": Input/output error");
    EXPECT_THROW(static_cast<void>(Evidence({}).open("/nowhere/at/all")), EvidenceFailure);
}

TEST(Evidence, notesTheFoldersInWhichItCannotLook) {
    const test::TempFolder folder;
    folder.write("a/b.txt", "0123");
    test::FailingReads bad(1);
    const Evidence evidence(folder.path(), &bad);
    EXPECT_EQ(evidence.find(folder.path() / "gone", "b.txt"), std::nullopt);
    EXPECT_TRUE(evidence.unlisted().empty());
    EXPECT_EQ(evidence.find(folder.path() / "a", "b.txt"), std::nullopt);
    EXPECT_EQ(evidence.find(folder.path() / "a", "c.txt"), std::nullopt);
    ASSERT_EQ(evidence.unlisted().size(), 1u);
    EXPECT_EQ(evidence.unlisted()[0].path, folder.path() / "a");
}

} // namespace
} // namespace nv
