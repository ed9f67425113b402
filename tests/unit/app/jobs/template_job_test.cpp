#include "app/jobs/ImportJob.h"
#include "app/jobs/TemplateJob.h"
#include "app/project/Project.h"
#include "base/Digest.h"
#include "base/Files.h"
#include "db/trail/CaseTrail.h"
#include "import/Scan.h"
#include "rebuild/TemplateList.h"
#include "support/UrlIds.h"
#include "support/builders/WebSite.h"
#include "unit/app/ProgramFixture.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <gmock/gmock.h>

namespace nv {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;

/// The example site in an imported project; its page and its frame are the first two records.
struct TemplateJobTest : test::ProgramFixture {
    TemplateJobTest() {
        start();
        const fs::path evidence = folder.path() / "evidence";
        test::writeSite(test::exampleSite(), test::SiteCache::internetExplorer, evidence);
        EXPECT_TRUE(createProject(*program, folder.path() / "case.nvp"));
        setRootPath(*program, evidence);
        fs::create_directories(scratch);
        program->import.startingDirectory = evidence.string();
        program->import.historyFiles = scan(program->import, task, program->log).historyFiles;
        static_cast<void>(runImportJob(*program, task, scratch));
        setTitle(1, "Harbour News");
        setTitle(2, "Tides");
        program->state.templatesPath = templates;
    }
    void setTitle(int id, const std::string &title) {
        SQLite::Statement row(program->state.projectDB.connection(),
                              "UPDATE URLs SET WebPageTitle = ? WHERE URL_ID = ?");
        row.bind(1, title);
        row.bind(2, id);
        row.exec();
    }
    void rebuild(std::int64_t number) {
        RecordTools tools(*program, task, scratch);
        EXPECT_TRUE(rebuildPage(*program, tools, UrlId{number})->rebuilt);
    }
    TemplatesMade create(std::initializer_list<std::int64_t> numbers) {
        RecordTools tools(*program, task, scratch);
        return createTemplates(*program, tools, test::urlIds(numbers));
    }
    LaidTemplates lay(std::initializer_list<std::int64_t> numbers, std::vector<fs::path> files) {
        RecordTools tools(*program, task, scratch);
        return rebuildFromTemplates(*program, tools, test::urlIds(numbers), files);
    }
    bool isRebuilt(std::int64_t number) {
        RecordTools tools(*program, task, scratch);
        return tools.record(UrlId{number})->CacheFileRebuilt;
    }
    /// The template of the page.
    fs::path made() {
        rebuild(1);
        return create({1}).last;
    }

    Unwatched task;
    fs::path scratch = folder.path() / "scratch";
    fs::path templates = folder.path() / "templates";
};

TEST_F(TemplateJobTest, matchesTitlesUnlessTurnedOff) {
    EXPECT_TRUE(program->state.templateMatchByTitle);
    settings("[BEYOND]\nTemplateMatchByTitle=False\n");
    EXPECT_FALSE(start().state.templateMatchByTitle);
}

TEST_F(TemplateJobTest, makesTemplatesOfRebuiltPagesOnly) {
    rebuild(1);
    const TemplatesMade all = create({1, 2});
    EXPECT_EQ(all.last, templates / "index.html.NVT");
    EXPECT_EQ(madeText(all), "1 of 2 templates made. 1 not: a template is made of a rebuilt page.");
    const auto rows = listTemplates(templates, program->log);
    ASSERT_EQ(rows.size(), 1u);
    EXPECT_EQ(rows[0].webpageTitle, "Harbour News");
    EXPECT_GT(rows[0].files, 10u);
    EXPECT_EQ(rows[0].bytes, fs::file_size(all.last));
    EXPECT_GT(rows[0].changed.time_since_epoch().count(), 0);
}

TEST_F(TemplateJobTest, bringsBackARebuildOfAnEarlierRun) {
    rebuild(1);
    fs::remove_all(scratch);
    fs::create_directories(scratch);
    EXPECT_EQ(madeText(create({1})), "1 of 1 template made.");
}

TEST_F(TemplateJobTest, whatIsLaidIsInTheCaseTrail) {
    const fs::path file = made();
    const LaidTemplates laid = lay({1, 2}, {file});
    const TrailEntry entry = CaseTrail(program->state.projectDB.connection()).entries().back();
    EXPECT_EQ(entry.action, "Template");
    EXPECT_EQ(entry.detail, laidText(laid));
    EXPECT_EQ(entry.rowCount, 1);
    EXPECT_EQ(entry.filePath, file.string());
    EXPECT_EQ(entry.sha256Hash, hashesOfFile(file).value().sha256);
}

TEST_F(TemplateJobTest, asksBeforeATemplateIsOverwritten) {
    const fs::path file = made();
    const auto before = listTemplates(templates, program->log)[0].bytes;
    setTitle(1, "Another Title");
    examiner.expect("template-exists", Answer::No);
    EXPECT_EQ(madeText(create({1})),
              "0 of 1 template made. 1 not: the template that was there is kept.");
    EXPECT_EQ(examiner.heard.back().title, "Template Aleady Exists");
    EXPECT_EQ(examiner.heard.back().text, "The following template already exists:\n\n" +
                                              file.string() +
                                              "\n\nDo you wish to overwrite this file?");
    EXPECT_EQ(listTemplates(templates, program->log)[0].webpageTitle, "Harbour News");
    examiner.expect("template-exists", Answer::Yes);
    EXPECT_EQ(create({1}).results[TemplateResult::made], 1u);
    EXPECT_EQ(listTemplates(templates, program->log)[0].webpageTitle, "Another Title");
    EXPECT_EQ(listTemplates(templates, program->log)[0].bytes, before);
}

TEST_F(TemplateJobTest, laysTemplatesOverPagesOfTheirTitle) {
    const fs::path file = made();
    EXPECT_EQ(laidText(lay({2}, {file})),
              "0 of 1 page rebuilt from the template. 1 not: its title is another than the "
              "template's.");
    EXPECT_FALSE(isRebuilt(2));
    setTitle(2, " HARBOUR news ");
    EXPECT_EQ(laidText(lay({2}, {file})), "1 of 1 page rebuilt from the template.");
    EXPECT_TRUE(isRebuilt(2));
}

TEST_F(TemplateJobTest, laysOneOverAnyPageWhenTitlesDontMatter) {
    const fs::path file = made();
    program->state.templateMatchByTitle = false;
    EXPECT_EQ(lay({2, 3}, {file}).results[Laid::rebuilt], 2u);
}

TEST_F(TemplateJobTest, aTemplateThatDoesntFitTakesNothingFromOneThatDid) {
    const fs::path file = made();
    setTitle(2, "Harbour News");
    fs::copy_file(file, templates / "other.NVT");
    std::string bytes(ByteView(readWhole(file)).raw());
    bytes.replace(0x400, 7, "Another");
    writeWhole(templates / "other.NVT", bytes);
    EXPECT_EQ(lay({2}, {file, templates / "other.NVT"}).results[Laid::rebuilt], 1u);
}

TEST_F(TemplateJobTest, whatIsNoTemplateChangesNothing) {
    program->state.templateMatchByTitle = false;
    fs::create_directories(templates);
    writeWhole(templates / "short.NVT", "NV");
    writeWhole(templates / "empty.NVT", std::string(0x1000, '\0'));
    EXPECT_EQ(lay({2}, {templates / "short.NVT"}).results[Laid::failed], 1u);
    EXPECT_EQ(laidText(lay({2}, {templates / "empty.NVT"})),
              "0 of 1 page rebuilt from the template. 1 not: the template holds no page.");
    EXPECT_EQ(lay({2}, {templates / "gone.NVT"}).results[Laid::failed], 1u);
    EXPECT_FALSE(isRebuilt(2));
    const auto rows = listTemplates(templates, program->log);
    ASSERT_EQ(rows.size(), 2u);
    EXPECT_FALSE(rows[0].isTemplate());
    EXPECT_FALSE(rows[1].isTemplate());
}

TEST_F(TemplateJobTest, cancelLeavesTheRemainingPages) {
    const fs::path file = made();
    program->state.templateMatchByTitle = false;
    test::CancelAfter stops(1);
    RecordTools tools(*program, stops, scratch);
    const std::vector<UrlId> ids = test::urlIds({2, 3});
    const std::vector<fs::path> files = {file};
    const LaidTemplates laid = rebuildFromTemplates(*program, tools, ids, files);
    EXPECT_TRUE(laid.cancelled);
    EXPECT_THAT(laidText(laid), HasSubstr("Cancelled: 1 of 2"));
    EXPECT_TRUE(isRebuilt(2));
    EXPECT_FALSE(isRebuilt(3));
}

TEST_F(TemplateJobTest, renamesWithinTheFolder) {
    const fs::path file = made();
    const auto renamed = renameTemplate(*program, file, " ../Inbox: one.nvt ");
    EXPECT_EQ(renamed, templates / "Inbox one.NVT");
    EXPECT_THAT(templatesIn(templates), ElementsAre(templates / "Inbox one.NVT"));
    EXPECT_EQ(renameTemplate(*program, *renamed, "Inbox one"), std::nullopt); // it has it already
    examiner.expect("templates-failed");
    EXPECT_EQ(renameTemplate(*program, *renamed, " ?.. "), std::nullopt);
    EXPECT_EQ(examiner.heard.back().title, "Error Managing Templates");
}

TEST_F(TemplateJobTest, asksBeforeANameTakesAnothersPlace) {
    const fs::path file = made();
    fs::copy_file(file, templates / "other.NVT");
    examiner.expect("template-exists", Answer::No);
    EXPECT_EQ(renameTemplate(*program, file, "other"), std::nullopt);
    EXPECT_EQ(templatesIn(templates).size(), 2u);
    examiner.expect("template-exists", Answer::Yes);
    EXPECT_EQ(renameTemplate(*program, file, "other"), templates / "other.NVT");
    EXPECT_THAT(templatesIn(templates), ElementsAre(templates / "other.NVT"));
}

TEST_F(TemplateJobTest, deletesAfterAsking) {
    const fs::path file = made();
    examiner.expect("delete-template", Answer::No);
    EXPECT_FALSE(deleteTemplate(*program, file));
    EXPECT_EQ(examiner.heard.back().text, "Delete the selected template?\n\n" + file.string());
    examiner.expect("delete-template", Answer::Yes);
    EXPECT_TRUE(deleteTemplate(*program, file));
    EXPECT_TRUE(templatesIn(templates).empty());
}

TEST_F(TemplateJobTest, tellsOfATemplateThatIsGone) {
    const fs::path gone = templates / "gone.NVT";
    examiner.expect("template-missing");
    EXPECT_FALSE(deleteTemplate(*program, gone));
    EXPECT_EQ(examiner.heard.back().title, "Template Missing");
    EXPECT_EQ(examiner.heard.back().text,
              "The selected template no longer exists:\n\n" + gone.string());
    examiner.expect("template-missing");
    EXPECT_EQ(renameTemplate(*program, gone, "a"), std::nullopt);
}

} // namespace
} // namespace nv
