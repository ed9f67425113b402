#include "base/Md5.h"
#include "db/hashes/HashSets.h"
#include "import/ImportSink.h"
#include "support/FactsOf.h"
#include "support/TestProject.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

namespace fs = std::filesystem;

struct HashSetImportTest : testing::Test {
    HashSetImportTest() {
        const fs::path list = project.folder.write("list.txt", md5Hex("known") + "\n");
        test::MemoryTask quiet;
        EXPECT_TRUE(makeHashSet(
            {sets, {"ours", HashMeaning::notable, "", {}}, {list}, project.folder.path()}, quiet));
    }
    /// A row of a classic cache on its way into the project.
    UrlRecord saved(const std::string &content, HashLookup *lookup) {
        const fs::path file = project.folder.write("cache/file.txt", content);
        UrlRecord record;
        record.cacheType = "IE Cache";
        record.CacheFileExists = true;
        record.RootPath = evidence.rootOf(file);
        record.CacheFileRelativePath = evidence.relativeOf(file);
        const Extraction extraction{evidence, project.folder.path(), project.log};
        const ContentLooks looks = {Signatures::verify, false, lookup != nullptr};
        ContentProbe bodies;
        WriteBatch batch(project.connection());
        ImportSink sink(store, looks, extraction, bodies, batch, project.file, result);
        sink.lookUpIn(lookup);
        sink.save(record);
        return record;
    }

    test::TestProject project;
    RecordStore store = project.store();
    Evidence evidence{project.folder.path()};
    ArtefactResult result;
    fs::path sets = project.folder.path() / "sets";
};

TEST_F(HashSetImportTest, hashesClassicContentOnlyForThem) {
    EXPECT_EQ(test::factOf(saved("known", nullptr), "content_md5"), "-");
    HashLookup lookup(openHashSets(sets));
    const UrlRecord found = saved("known", &lookup);
    EXPECT_EQ(test::factOf(found, "content_md5"), md5Hex("known"));
    EXPECT_EQ(test::factOf(found, "hashset_notable"), "ours [MD5]");
    EXPECT_EQ(test::factOf(saved("other", &lookup), "hashset_notable"), "-");
    EXPECT_EQ(lookup.found()[0], 1U);
    EXPECT_EQ(project.number("SELECT count(*) FROM RecordFacts WHERE Name = 'hashset_notable'"), 1);
    EXPECT_TRUE(project.log.entries.empty());
}

/// Somebody may cut the file of the set while it is asked: its silence is no answer.
TEST_F(HashSetImportTest, aSetThatIsCutEndsTheImport) {
    HashLookup lookup(openHashSets(sets));
    fs::resize_file(hashSetPath(sets, "ours"), 4);
    EXPECT_THROW(saved("known", &lookup), StorageFailure);
}

} // namespace
} // namespace nv
