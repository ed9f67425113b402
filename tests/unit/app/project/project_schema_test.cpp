#include "app/project/Project.h"
#include "base/Files.h"
#include "unit/app/ProjectCommandsFixture.h"

// What a project of this build holds beside those of earlier ones.
namespace nv {
namespace {

struct ProjectSchemaTest : test::ProjectCommandsTest {};

TEST_F(ProjectSchemaTest, saveAsTakesFactsAndOriginsAlong) {
    commands.openFile(path, OpenMode::newAtPath);
    db().connection().exec("INSERT INTO SourceFiles(Browser, Person, ClassicOnly) VALUES "
                           "('Brave', 'alice', 1); "
                           "INSERT INTO URLs(SourceFile_ID, Browser) VALUES (1, 'Brave'); "
                           "INSERT INTO RecordFacts VALUES (1, 'count', 3, '3')");
    dialogs.answer = folder.path() / "copy.nvp";
    EXPECT_TRUE(commands.saveAs());
    EXPECT_EQ(
        db().connection()
            .execAndGet(
                "SELECT S.Person || S.ClassicOnly || U.Browser || F.Name || typeof(F.Value) || "
                "typeof(F.RawValue) FROM SourceFiles S JOIN URLs U USING "
                "(SourceFile_ID) JOIN RecordFacts F USING (URL_ID)")
            .getString(),
        "alice1Bravecountintegertext");
}

TEST_F(ProjectSchemaTest, aProjectWithoutTheTablesOfThisBuildIsOlderAndTakesNoImport) {
    commands.openFile(path, OpenMode::newAtPath);
    EXPECT_NO_THROW(requireSchema(*program));
    db().connection().exec("DROP TABLE RecordFacts");
    commands.closeFile();
    examiner.expect("older-project");
    examiner.expect("run-upgrade-wizard", Answer::No);
    examiner.expect("version-check-can-be-turned-off");
    EXPECT_TRUE(commands.openFile(path, OpenMode::existing));
    try {
        requireSchema(*program);
        ADD_FAILURE() << "what no table takes would be lost";
    } catch (const StorageFailure &failure) {
        EXPECT_NE(std::string(failure.what()).find("table \"RecordFacts\""), std::string::npos);
    }
}

} // namespace
} // namespace nv
