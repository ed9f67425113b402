#include "import/ChoiceTable.h"
#include "import/ImportRun.h"
#include "import/Scan.h"
#include "support/RecordGolden.h"
#include "support/TestProject.h"
#include "unit/import/ImportFixture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

namespace nv {
namespace {

// The reader that docs/adding-a-reader.md makes, in a program that was built from its blocks. This
// program holds the tests of all formats too, so that the guide's format passes them or the guide
// says what is missing.

class Guide : public test::ImportFixture {};

TEST_F(Guide, makesAReaderThatIsOfferedFoundAndRead) {
    const auto others = choiceTable().others;
    EXPECT_TRUE(std::ranges::any_of(
        others, [](const SourceOption *option) { return option->name == "chkFooFiles"; }));
    EXPECT_NE(maskText(job).find("foo*.hst"), std::string::npos);

    const Reader &reader = *readerByKey("foo-history");
    const auto sound = test::artefactIn(test::soundCase(reader, NV_GOLDEN_DIR), reader);
    const test::TempFolder evidence;
    std::filesystem::copy(sound, evidence.path() / "foo.hst");
    job.StartingDirectory = evidence.path();
    Unwatched task;
    job.HistoryFiles = scan(job, task, project.log).HistoryFiles;
    ASSERT_EQ(job.HistoryFiles.Count(), 1U);
    const ImportSummary summary = import(task, readerFor);
    EXPECT_EQ(summary.artefacts.at(0).readerKey, "foo-history");
    EXPECT_EQ(summary.artefacts.at(0).state, ArtefactState::complete);
    EXPECT_EQ(project.number("SELECT Count(*) FROM URLs WHERE CacheType = 'Foo Visit'"), 2);
}

TEST_F(Guide, makesAKindThatIsKnown) {
    ASSERT_NE(recordKind("FOO VISIT"), nullptr);
    EXPECT_EQ(groupOf("Foo Visit"), RecordGroup::history);
    EXPECT_EQ(familyOf("Foo Visit"), &families::opera);
}

TEST_F(Guide, makesAFormatThatIsFuzzed) {
    ASSERT_EQ(::setenv("NV_FORMAT", "foo-history", 1), 0);
    const Reader &reader = *readerByKey("foo-history");
    Bytes bytes = readWhole(test::artefactIn(test::soundCase(reader, NV_GOLDEN_DIR), reader));
    LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
    bytes.resize(bytes.size() - 3);
    LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
}

} // namespace
} // namespace nv
