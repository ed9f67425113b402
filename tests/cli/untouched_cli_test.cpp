#include "base/Files.h"
#include "base/Md5.h"
#include "cli/CliRun.h"
#include "support/TempFolder.h"
#include "support/builders/ExifJpeg.h"
#include "support/builders/IndexDat.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace nv::test {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

/// Two cached files, a page (row 1) and a photograph (row 2), whose hash is written down in a
/// report: whoever looks at the project later must find the same one.
class UntouchedCliTest : public testing::Test {
  protected:
    UntouchedCliTest() {
        IndexDat index;
        index.folder("ABCDEFGH");
        add(index, "page[1].htm", "<html><title>T</title><img src='photo[1].jpg'></html>");
        add(index, "photo[1].jpg", ExifJpeg().ascii(0x010F, "Acme").bytes());
        writeWhole(evidence / "index.dat", index.bytes());
        EXPECT_EQ(run({"import", project, evidence.string(), "--kinds", "ie-cache"}).exit, 0);
        before = *fileMD5(project);
    }
    void add(IndexDat &index, const std::string &name, const std::string &content) {
        fs::create_directories(evidence / "ABCDEFGH");
        writeWhole(evidence / "ABCDEFGH" / name, content);
        index.add({.url = "http://host/" + name,
                   .secondDate = fileTime(2011, 3, 1, 12),
                   .fileSize = static_cast<std::uint32_t>(content.size()),
                   .folder = 0,
                   .fileName = name});
    }
    CliResult run(std::vector<std::string> arguments) {
        return runCli(arguments, folder.path() / "home");
    }
    std::string at(const char *name) { return (folder.path() / name).string(); }
    /// Files whose names begin with that of the project.
    std::size_t filesOfProject() {
        std::size_t count = 0;
        for (const auto &entry : fs::directory_iterator(folder.path()))
            count += entry.path().filename().string().starts_with("case.nvp") ? 1 : 0;
        return count;
    }

    TempFolder folder;
    fs::path evidence = folder.path() / "evidence";
    std::string project = (folder.path() / "case.nvp").string();
    std::string before;
};

TEST_F(UntouchedCliTest, commandsThatLookLeaveEveryByteOfTheProject) {
    const std::vector<std::vector<std::string>> calls = {
        {"list", project},
        {"summary", project},
        {"list", project, "--filter", "CacheURLs", "--format", "csv"},
        {"list", project, "--query", "TOP 25 URLs"},
        {"hosts", project},
        {"timeline", project},
        {"show", project, "1"},
        {"show", project, "2", "--format", "jsonl"},
        {"explain", project, "1"},
        {"extract", project, "2", at("photo.jpg")},
        {"extract", project, "1", "-"},
        {"query", project, "SELECT * FROM URLs"},
        {"queries", project},
        {"queries", "show", project, "_DEFAULT"},
        {"gallery", project, "--out", at("gallery.html")},
        {"hex", project, "1"},
        {"hex", project, "1", "--find", "title"},
        {"hex", project, "1", "--source"},
        {"text", project, "1"},
        {"exif", project, "2"},
        {"links", project, "--url", "1"},
        {"note", project, "1"},
        {"trail", project},
        {"upgrade", project},
        {"options", "get", "--project", project}};
    for (const auto &call : calls) {
        const CliResult result = run(call);
        EXPECT_EQ(result.exit, 0) << call.front() << ": " << result.err;
        EXPECT_EQ(*fileMD5(project), before) << call.front();
        EXPECT_EQ(filesOfProject(), 1U) << call.front();
    }
}

TEST_F(UntouchedCliTest, theAuditOfARebuiltPageLeavesThemToo) {
    EXPECT_EQ(run({"rebuild", project, "1", "--out", at("pages"), "--no-thumbnails"}).exit, 0);
    const auto rebuilt = *fileMD5(project);
    EXPECT_EQ(run({"audit", project, "1"}).exit, 0);
    EXPECT_EQ(run({"template", "list"}).exit, 0);
    EXPECT_EQ(*fileMD5(project), rebuilt);
}

TEST_F(UntouchedCliTest, aProjectOnAReadOnlyMediumCanBeLookedAt) {
    fs::permissions(project, fs::perms::owner_read | fs::perms::group_read);
    for (const char *command : {"list", "hosts", "queries", "trail"})
        EXPECT_EQ(run({command, project}).exit, 0) << command;
    EXPECT_EQ(*fileMD5(project), before);
}

TEST_F(UntouchedCliTest, afterTheEvidenceWasMovedRowsFollowWhenTheNewPlaceIsNamed) {
    fs::rename(evidence, folder.path() / "moved");
    EXPECT_EQ(run({"extract", project, "2", at("gone.jpg")}).exit, 2);
    EXPECT_EQ(run({"options", "set", "RootPath", at("moved"), "--project", project}).exit, 0);
    EXPECT_THAT(run({"query", project, "SELECT DISTINCT RootPath FROM URLs"}).out,
                HasSubstr(at("moved")));
    EXPECT_EQ(run({"extract", project, "2", at("there.jpg")}).exit, 0);
}

} // namespace
} // namespace nv::test
