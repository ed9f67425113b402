#include "base/Digest.h"
#include "import/HashesBeside.h"
#include "import/ImportRun.h"
#include "import/ImportTrail.h"
#include "import/Scan.h"
#include "readers/Registry.h"
#include "support/LiveHistory.h"
#include "support/Places.h"
#include "support/TestProject.h"
#include "support/Unprivileged.h"
#include "support/builders/ChromiumBlocks.h"
#include "support/builders/ChromiumCache.h"
#include "support/builders/FirefoxSiteCache.h"
#include "support/builders/SnappyFrames.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <map>

namespace nv {
namespace {

namespace fs = std::filesystem;
using testing::Contains;
using testing::HasSubstr;
using testing::UnorderedElementsAre;

/// Keeps what it is told.
struct Gaps final : GapLog {
    void write(const Failure &) override {}
    void unread(const fs::path &file, const std::string &) override { files.push_back(file); }
    std::vector<fs::path> files;
};

struct HashesBesideTest : testing::Test {
    /// What an import hashes beside its artefacts: their names, and SHA-256.
    std::map<std::string, std::string> imported() {
        ImportSettings job;
        job.startingDirectory = place;
        test::MemoryTask task;
        job.historyFiles = scan(job, task, project.log).historyFiles;
        OpenedFiles opened;
        const Evidence evidence(place, &opened);
        const ImportRun run{project.connection(),
                            project.projectZone(),
                            evidence,
                            project.clock,
                            project.log,
                            task,
                            project.folder.path(),
                            readerFor,
                            nullptr,
                            &opened};
        summary = runImport(run, job);
        std::map<std::string, std::string> hashes;
        for (const ArtefactResult &artefact : summary.artefacts)
            for (const FileBeside &file : artefact.beside)
                hashes[textOf(file.path.filename())] = file.sha256Hash;
        return hashes;
    }
    static std::string hashOf(const fs::path &file) { return hashesOfFile(file).value().sha256; }

    test::TestProject project;
    fs::path place = project.folder.path() / "evidence";
    ImportSummary summary;
};

TEST_F(HashesBesideTest, filesOfABlockCacheAreHashedAndNoOthers) {
    test::ChromiumBlocks files;
    test::ChromiumAnswer answer;
    answer.requested = answer.answered = 13346640000000000;
    files.add({"1/0/https://a.example/big.txt", answer.bytes(), std::string(20000, 'a'),
               answer.requested, answer.requested});
    files.write(place / "Cache");
    project.folder.write("evidence/other.bin", "nobody reads it");
    const auto hashes = imported();
    for (const char *name : {"data_0", "data_1", "f_000001"})
        EXPECT_THAT(hashes, Contains(std::pair(name, hashOf(place / "Cache" / name))));
    EXPECT_FALSE(hashes.contains("index")) << "it is the artefact";
    EXPECT_FALSE(hashes.contains("other.bin"));
    EXPECT_EQ(summary.hashedBeside(), hashes.size());
}

TEST_F(HashesBesideTest, aLogOfADatabaseIsHashed) {
    const fs::path profile = place / "Default";
    test::writeLiveHistory(project.folder.path() / "live", profile);
    EXPECT_THAT(imported(),
                UnorderedElementsAre(std::pair("History-wal", hashOf(profile / "History-wal"))));
}

TEST_F(HashesBesideTest, bodiesThatASiteKeepsAreHashed) {
    const fs::path site = place / "storage/default/https+++app.example/cache";
    test::FirefoxSiteCacheFiles files(site);
    const std::string name = test::FirefoxSiteCacheFiles::bodyName(test::FirefoxSiteEntry().body);
    files.add({}).addBody(name, test::snappyFrames("the body of it"));
    files.close();
    const auto hashes = imported();
    ASSERT_EQ(hashes.size(), 1U);
    EXPECT_EQ(hashes.begin()->second, hashOf(site / "morgue" / name));
}

struct HashesOfOpenedTest : testing::Test {
    test::TempFolder folder;
    OpenedFiles opened;
    Evidence evidence{folder.path(), &opened};
    Workers workers;
    HistoryFiles artefacts;
    Gaps gaps;
};

TEST_F(HashesOfOpenedTest, aFileIsHashedOnceAnImport) {
    const fs::path file = folder.write("Local State", "{}");
    HashesBeside beside(evidence, opened, workers, artefacts);
    static_cast<void>(evidence.head(file, 1));
    const auto first = beside.take(gaps);
    ASSERT_EQ(first.size(), 1U);
    EXPECT_EQ(first[0].fileSize, 2U);
    EXPECT_EQ(first[0].md5Hash, hashesOfFile(file).value().md5);
    static_cast<void>(evidence.head(file, 1));
    EXPECT_TRUE(beside.take(gaps).empty());
}

TEST_F(HashesOfOpenedTest, whatLiesInAnArtefactThatIsAFolderIsInItsHash) {
    artefacts.add({}).fullPath = folder.path() / "cache2";
    static_cast<void>(evidence.head(folder.write("cache2/entries/0A", "one"), 1));
    EXPECT_TRUE(HashesBeside(evidence, opened, workers, artefacts).take(gaps).empty());
}

TEST_F(HashesOfOpenedTest, aFileThatCannotBeReadIsNamedAndTheOthersAreHashed) {
    const fs::path good = folder.write("data_0", "one");
    const fs::path bad = folder.write("data_1", "two");
    HashesBeside beside(evidence, opened, workers, artefacts);
    for (const fs::path &file : {good, bad})
        static_cast<void>(evidence.head(file, 1));
    fs::permissions(bad, fs::perms::none);
    const test::Unprivileged nobody(folder.path());
    const auto files = beside.take(gaps);
    fs::permissions(bad, fs::perms::owner_all);
    ASSERT_EQ(files.size(), 2U);
    EXPECT_EQ(files[0].sha256Hash, hashesOfFile(good).value().sha256);
    EXPECT_EQ(files[1].sha256Hash, "");
    EXPECT_THAT(files[1].failure, HasSubstr("data_1"));
    EXPECT_THAT(gaps.files, testing::ElementsAre(bad));
    ArtefactResult artefact;
    artefact.path = "/case/index";
    artefact.readerKey = "chrome-cache";
    EXPECT_THAT(trailEntry(files[1], artefact).detail,
                HasSubstr("read for /case/index (chrome-cache); not hashed: "));
}

} // namespace
} // namespace nv
