// Where Options lets the program write: of new projects, and beside evidence.
#include "OptionsFixture.h"

#include <gmock/gmock.h>

namespace nv {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using OptionsPlacesTest = test::OptionsFixture;

TEST_F(OptionsPlacesTest, aNewProjectsPathMustBeValid) {
    Options options = readNewProjectOptions(*program, zones());
    const OptionsOccasion fresh{.newProject = true, .closeOpenProject = {}, .overwriteAgreed = {}};
    for (const char *wrong : {"", "none/case.nvp", "case.txt"}) {
        options.projectDBPath = *wrong ? folder.path() / wrong : fs::path();
        examiner.expect("invalid-project-path");
        EXPECT_EQ(applyOptions(*program, options, fresh).focus, OptionsField::project) << wrong;
    }
    EXPECT_EQ(examiner.heard.back().text,
              "The selected PROJECT file path is invalid or does not exist.");
    EXPECT_EQ(examiner.heard.back().title, "Invalid File Path");
    options.projectDBPath = folder.path() / "new.nvp";
    options.rootPath = folder.path() / "none";
    examiner.expect("invalid-base-folder");
    EXPECT_EQ(applyOptions(*program, options, fresh).focus, OptionsField::base);
    options.rootPath.clear();
    EXPECT_TRUE(applyOptions(*program, options, fresh).applied);
    EXPECT_EQ(ini("FILE PATHS", "LastProjectDBPath"), (folder.path() / "new.nvp").string());
}

TEST_F(OptionsPlacesTest, anExistingFileIsAskedAboutBeforeAnythingElse) {
    Options options = readNewProjectOptions(*program, zones());
    options.projectDBPath = folder.write("kept.nvp", "x");
    options.verifyFileSignatures = false;
    OptionsOccasion fresh{.newProject = true, .closeOpenProject = {}, .overwriteAgreed = {}};
    examiner.expect("overwrite-project", Answer::No);
    EXPECT_FALSE(applyOptions(*program, options, fresh).applied);
    EXPECT_TRUE(state().verifyFileSignatures);
    EXPECT_THAT(examiner.heard.back().text, HasSubstr("The project file entered already exists."));
    EXPECT_THAT(examiner.heard.back().text, HasSubstr("Do you want to overwrite the file?"));
    EXPECT_EQ(examiner.heard.back().title, "File Already Exists");
    examiner.expect("overwrite-project", Answer::Yes);
    EXPECT_TRUE(applyOptions(*program, options, fresh).applied);
    fresh.overwriteAgreed = options.projectDBPath;
    EXPECT_TRUE(applyOptions(*program, options, fresh).applied) << "asked in the file dialog";
}

TEST_F(OptionsPlacesTest, theOpenProjectNeverGetsTheNewOnesValues) {
    openCase();
    const auto zone = state().gmtZone.tzTimeZoneID;
    Options options = readNewProjectOptions(*program, zones());
    options.timeZoneID = 20;
    options.projectDBPath = folder.path() / "none" / "new.nvp";
    bool closed = false;
    const OptionsOccasion fresh{.newProject = true,
                                .closeOpenProject =
                                    [&] {
                                        closed = true;
                                        closeProject(*program);
                                    },
                                .overwriteAgreed = {}};
    examiner.expect("invalid-project-path");
    EXPECT_FALSE(applyOptions(*program, options, fresh).applied);
    EXPECT_FALSE(closed);
    EXPECT_EQ(state().gmtZone.tzTimeZoneID, zone);
    options.projectDBPath = folder.path() / "new.nvp";
    EXPECT_TRUE(applyOptions(*program, options, fresh).applied);
    EXPECT_TRUE(closed);
    EXPECT_EQ(state().gmtZone.tzTimeZoneID, 20);
    openProject(*program, folder.path() / "case.nvp");
    EXPECT_EQ(inProject("LastTimeZoneID"), std::to_string(zone));
    EXPECT_EQ(inProject("DateFormat"), "");
}

TEST_F(OptionsPlacesTest, aNewProjectIsOfferedAFileThatIsntThere) {
    settings("[FILE PATHS]\nProject=" + folder.path().string() + "\n");
    start();
    EXPECT_EQ(readNewProjectOptions(*program, zones()).projectDBPath, folder.path() / "Case.nvp");
    folder.write("Case.nvp", "x");
    EXPECT_EQ(readNewProjectOptions(*program, zones()).projectDBPath, folder.path() / "Case 2.nvp");
}

TEST_F(OptionsPlacesTest, nothingThatIsWrittenMayLieInTheEvidence) {
    openCase();
    const fs::path evidence = folder.path() / "evidence";
    fs::create_directories(evidence / "inner");
    setRootPath(*program, evidence);
    const std::pair<fs::path Options::*, OptionsField> places[] = {
        {&Options::tempFolderPath, OptionsField::temp},
        {&Options::templatesPath, OptionsField::templates},
        {&Options::publishTempFolder, OptionsField::publish}};
    for (const auto &[member, field] : places) {
        Options options = shown();
        options.*member = evidence / "inner";
        examiner.expect("lies-in-evidence");
        const OptionsOutcome outcome = applyOptions(*program, options);
        EXPECT_FALSE(outcome.applied);
        EXPECT_EQ(outcome.focus, field);
        EXPECT_EQ(examiner.heard.back().text, "\"" + (evidence / "inner").string() +
                                                  "\" lies in the evidence folder " +
                                                  evidence.string() + ": nothing is written there");
    }
    EXPECT_EQ(ini("FILE PATHS", "PublishFolder"), "(none)");
    Options options = shown();
    options.agencyLogoPath = evidence / "logo.jpg"; // is only read
    EXPECT_TRUE(apply(options));
}

TEST_F(OptionsPlacesTest, aTempFolderThatHoldsTheEvidenceIsRefused) {
    openCase();
    fs::create_directories(folder.path() / "scratch" / "evidence");
    setRootPath(*program, folder.path() / "scratch" / "evidence");
    Options options = shown();
    options.tempFolderPath = folder.path() / "scratch";
    examiner.expect("temp-folder-holds-evidence");
    EXPECT_EQ(applyOptions(*program, options).focus, OptionsField::temp);
}

TEST_F(OptionsPlacesTest, foldersOfTheProgramAmongTheEvidenceBlockNothingThatIsntChanged) {
    openCase();
    setRootPath(*program, folder.path()); // a machine that is examined by itself
    Options options = shown();
    options.galleryIncludeHTML = false;
    EXPECT_TRUE(apply(options));
    EXPECT_FALSE(state().galleryIncludeHTML);
}

TEST_F(OptionsPlacesTest, aNewProjectNeverStandsAmongTheEvidence) {
    openCase();
    fs::create_directories(folder.path() / "evidence");
    fs::create_directories(folder.path() / "open");
    setRootPath(*program, folder.path() / "open");
    Options options = readNewProjectOptions(*program, zones());
    options.rootPath = folder.path() / "evidence";
    bool closed = false;
    const OptionsOccasion fresh{
        .newProject = true, .closeOpenProject = [&] { closed = true; }, .overwriteAgreed = {}};
    for (const char *where : {"evidence", "open"}) { // its own, and that of the open project
        options.projectDBPath = folder.path() / where / "new.nvp";
        examiner.expect("lies-in-evidence");
        EXPECT_EQ(applyOptions(*program, options, fresh).focus, OptionsField::project);
        EXPECT_FALSE(closed);
        EXPECT_FALSE(fs::exists(options.projectDBPath));
    }
}

TEST_F(OptionsPlacesTest, pathsThatCantBeLookedAtAreInvalid) {
    openCase();
    Options options = shown();
    for (const std::string &odd :
         {std::string(5000, 'x'), std::string("no\nsuch"), std::string()}) {
        options.tempFolderPath = odd;
        examiner.expect("invalid-temp-folder");
        EXPECT_FALSE(apply(options));
    }
    options = readNewProjectOptions(*program, zones());
    options.projectDBPath = folder.path() / (std::string(5000, 'x') + ".nvp");
    const OptionsOccasion fresh{.newProject = true, .closeOpenProject = {}, .overwriteAgreed = {}};
    options.projectDBPath = fs::path(std::string(5000, 'x')) / "case.nvp";
    examiner.expect("invalid-project-path");
    EXPECT_EQ(applyOptions(*program, options, fresh).focus, OptionsField::project);
}

} // namespace
} // namespace nv
