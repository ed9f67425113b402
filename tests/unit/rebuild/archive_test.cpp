#include "rebuild/Archive.h"
#include "unit/rebuild/RebuildFixture.h"

namespace nv {
namespace {

class ArchiveTest : public test::RebuildFixture {
  protected:
    /// A record whose rebuild folder holds a page and a picture, packed.
    UrlRecord packedPage() {
        UrlRecord record = get(add("http://host/page.html", "page"));
        const auto folder = rebuildFolderOf(record.URLID, context());
        std::filesystem::create_directories(folder);
        writeWhole(folder / "0000001.htm", "<html>caf\xE9</html>");
        writeWhole(folder / "0000002.gif", std::string("GIF\0\xFF", 5));
        EXPECT_TRUE(createCabinetFile(folder, record, context()));
        std::filesystem::remove_all(folder);
        return record;
    }
};

TEST_F(ArchiveTest, bringsBackWhatWasPacked) {
    packedPage();
    UrlRecord later = get(UrlId{1});
    ASSERT_TRUE(unpackCabinetFile(later, context()));
    EXPECT_EQ(fileOf(UrlId{1}, "0000001.htm"), "<html>caf\xE9</html>");
    EXPECT_EQ(fileOf(UrlId{1}, "0000002.gif"), std::string("GIF\0\xFF", 5));
    EXPECT_EQ(later.RunTimeRebuiltFilePath.filename(), "0000001.htm");
}

TEST_F(ArchiveTest, readsItsTrailerIndexAndNames) {
    const UrlRecord record = packedPage();
    const ByteView archive(record.CacheFileRebuiltBLOB);
    EXPECT_EQ(archive.u32le(archive.size() - 8), 2u);
    const std::uint32_t area = archive.u32le(archive.size() - 4);
    EXPECT_EQ(archive.sub(area, 4).raw(), "HASH");
    EXPECT_EQ(archive.u32le(area + 8), 12u + 11 + 2); // gap, name, gap, data
    EXPECT_EQ(readArchive(archive).fileItems.item(2).fileName, "0000002.gif");
}

TEST_F(ArchiveTest, needsAPage) {
    UrlRecord record = get(add("http://host/page.html", "page"));
    EXPECT_FALSE(createCabinetFile(evidenceFolder, record, context()));
    EXPECT_FALSE(unpackCabinetFile(record, context()));
    EXPECT_TRUE(project.log.entries.empty());
}

TEST_F(ArchiveTest, survivesDamage) {
    const Bytes sound = packedPage().CacheFileRebuiltBLOB;
    for (std::size_t at = 0; at < sound.size(); ++at)
        for (const int value : {0x00, 0x7F, 0x80, 0xFF}) {
            UrlRecord record = get(UrlId{1});
            record.CacheFileRebuiltBLOB = sound;
            record.CacheFileRebuiltBLOB[at] = static_cast<std::uint8_t>(value);
            unpackCabinetFile(record, context());
        }
    for (std::size_t cut = 0; cut < sound.size(); ++cut) {
        UrlRecord record = get(UrlId{1});
        record.CacheFileRebuiltBLOB.assign(sound.begin(),
                                           sound.begin() + static_cast<std::ptrdiff_t>(cut));
        unpackCabinetFile(record, context());
    }
    EXPECT_EQ(get(UrlId{1}).CacheFileRebuiltBLOB, sound);
}

TEST_F(ArchiveTest, keepsItsFilesInTheFolder) {
    UrlRecord record = packedPage();
    std::string bytes(ByteView(record.CacheFileRebuiltBLOB).raw());
    bytes.replace(bytes.find("0000002.gif"), 11, "../../a.gif");
    record.CacheFileRebuiltBLOB.assign(bytes.begin(), bytes.end());
    ASSERT_TRUE(unpackCabinetFile(record, context()));
    EXPECT_EQ(fileOf(UrlId{1}, "a.gif").size(), 5u);
    EXPECT_FALSE(std::filesystem::exists(project.folder.path() / "a.gif"));
}

} // namespace
} // namespace nv
