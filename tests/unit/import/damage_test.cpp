#include "support/RecordGolden.h"
#include "unit/import/ImportFixture.h"

#include <filesystem>

namespace nv {
namespace {

namespace fs = std::filesystem;

// Every reader, through the driver, on files that are cut or have a byte changed. The readers' own
// tests go through all positions; here is what all must have in common.

constexpr std::size_t kPositions = 240;

/// The first bytes, where headers are, and places spread over the rest.
std::vector<std::size_t> positionsIn(std::size_t size) {
    std::vector<std::size_t> positions;
    const std::size_t stride = size * 2 / kPositions + 1;
    for (std::size_t at = 0; at < size; at += at < kPositions / 2 ? 1 : stride)
        positions.push_back(at);
    return positions;
}

class DamageTest : public test::ImportFixture, public testing::WithParamInterface<const Reader *> {
  protected:
    /// Imports the bytes and checks what holds for any import, whatever is in the file.
    void importDamaged(const std::string &bytes, const std::string &what) {
        writeWhole(file.FullPath, bytes);
        file.FileSize = bytes.size();
        file.HistoryFileType = GetParam()->type;
        job.HistoryFiles.Clear();
        job.HistoryFiles.Add(file);
        const std::int64_t before = rows();
        Unwatched task;
        const ImportSummary summary = import(task, readerFor);
        const ArtefactResult &result = summary.artefacts.at(0);
        EXPECT_EQ(summary.failure, "") << what;
        EXPECT_EQ(rows() - before, static_cast<std::int64_t>(result.rowsSaved)) << what;
        EXPECT_EQ(result.rowsLost, 0u) << what;
        EXPECT_LE(result.rowsSaved, 1000u) << what;
        EXPECT_TRUE(result.state == ArtefactState::complete || !result.reason.empty()) << what;
        for (const Failure &failure : project.log.entries)
            EXPECT_NE(failure.procedure, "ImportForm.ImportFiles()") << what << failure.message;
        project.log.entries.clear();
    }

    /// The format's sound case: a copy of its files is what is damaged.
    std::string soundFile() {
        const fs::path sound = test::soundCase(*GetParam(), NV_GOLDEN_DIR);
        const fs::path copy = project.folder.path() / "damaged";
        fs::create_directory(copy);
        fs::copy(sound / "input", copy / "input", fs::copy_options::recursive);
        file.FullPath = test::artefactIn(copy, *GetParam());
        file.FileName = textOf(file.FullPath.filename());
        file.FileParentPath = textOf(file.FullPath.parent_path());
        const Bytes bytes = readWhole(file.FullPath);
        return std::string(ByteView(bytes).raw());
    }

    /// How many records the case has, by its expected.tsv.
    static std::int64_t soundRecords() {
        const Bytes bytes = readWhole(test::soundCase(*GetParam(), NV_GOLDEN_DIR) / "expected.tsv");
        std::int64_t records = -1; // the first line that isn't the reading's own is the head
        for (const std::string_view line : split(ByteView(bytes).raw(), '\n'))
            records += line.empty() || line.starts_with('@') ? 0 : 1;
        return records;
    }

    HistoryFile file;
};

TEST_P(DamageTest, isSurvived) {
    const std::string sound = soundFile();
    importDamaged(sound, "sound");
    EXPECT_EQ(rows(), soundRecords());
    for (const std::size_t at : positionsIn(sound.size())) {
        importDamaged(sound.substr(0, at), "cut at " + std::to_string(at));
        for (const int value : {0x00, 0x7F, 0x80, 0xFF}) {
            std::string damaged = sound;
            damaged[at] = static_cast<char>(value);
            importDamaged(damaged, std::to_string(value) + " at " + std::to_string(at));
        }
    }
    EXPECT_EQ(project.text("PRAGMA integrity_check"), "ok");
}

std::vector<const Reader *> formatsThatAreRead() {
    std::vector<const Reader *> formats;
    for (const Reader *reader : registry())
        if (reader->read)
            formats.push_back(reader);
    return formats;
}

INSTANTIATE_TEST_SUITE_P(Readers, DamageTest, testing::ValuesIn(formatsThatAreRead()),
                         [](const auto &format) {
                             return replaceAll(format.param->key, "-", "_");
                         });

} // namespace
} // namespace nv
