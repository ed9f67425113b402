#include "base/Files.h"
#include "base/Text.h"
#include "reports/exports/ExportRows.h"
#include "support/TempFolder.h"
#include "unit/views/MadeProject.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

// Characters beyond Windows-1252 in delimited text.
namespace nv {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

struct ExportCodingTest : testing::Test {
    ExportCodingTest() {
        project.add({{"URL", "http://a.example/"}, {"WebPageTitle", "caf\u00E9"}});
        project.add({{"URL", "http://b.example/"}, {"WebPageTitle", "?"}});
        job.selectedColumns = columnsFromString("URL|COL_URL_VALUE;Title|COL_URL_WEBPAGE_TITLE;");
        job.exportAllColumns = false;
        job.outputFilePath = out;
        table.loadURLs(nobody);
        table.sortBy(UrlColumn::Id, SortDirection::Ascending, nobody);
    }
    std::string written() {
        EXPECT_EQ(exportRows(job, table, folder.path(), nobody), ExportEnd::exported);
        return std::string(ByteView(readWhole(out)).raw());
    }
    std::ptrdiff_t files() {
        return std::distance(fs::directory_iterator(folder.path()), fs::directory_iterator());
    }

    test::MadeProject project;
    Unwatched nobody;
    UrlTable table{project.db(), project.log, project.zone};
    Export job;
    test::TempFolder folder;
    fs::path out = folder.path() / "out.txt";
};

TEST_F(ExportCodingTest, whatItHoldsIsWrittenInIt) {
    EXPECT_EQ(written(), "URL|Title\r\nhttp://a.example/|caf\xE9\r\nhttp://b.example/|?\r\n");
    EXPECT_EQ(job.counts.charactersBeyond, 0);
    EXPECT_THAT(notesOf(job), IsEmpty());
}

TEST_F(ExportCodingTest, whatItCantHoldIsWrittenInUtf8) {
    const std::string title = "\u041F\u0440\u0438\u043B\u0438\u0432\u044B";
    project.db().exec("UPDATE URLs SET WebPageTitle = '" + title + "' WHERE URL_ID = 2");
    table.refreshRows();
    EXPECT_EQ(written(), "\xEF\xBB\xBFURL|Title\r\nhttp://a.example/|caf\u00E9\r\n"
                         "http://b.example/|" +
                             title + "\r\n");
    EXPECT_EQ(job.counts.charactersBeyond, 7);
    EXPECT_THAT(notesOf(job), ElementsAre(HasSubstr("7 characters")));
    EXPECT_EQ(files(), 1) << "nothing is left beside it";
}

/// What was handed on before in the shorter coding is coded anew.
TEST_F(ExportCodingTest, aLateCharacterChangesTheWholeFile) {
    project.db().exec("DELETE FROM URLs");
    const std::string accents = "caf\u00E9? " + std::string(2000, 'x');
    project.db().exec("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < "
                      "1500) INSERT INTO URLs (URL, WebPageTitle) SELECT 'http://a.example/' || i, "
                      "CASE i WHEN 1500 THEN char(0x4E2D) ELSE '" +
                      accents + "' END FROM n");
    table.loadURLs(nobody);
    const std::string text = written();
    EXPECT_TRUE(text.starts_with("\xEF\xBB\xBFURL|"));
    std::size_t whole = 0;
    for (const std::string_view line : split(text, '\n'))
        whole += line.find(accents) != std::string_view::npos ? 1U : 0U;
    EXPECT_EQ(whole, 1499U);
    EXPECT_THAT(text, HasSubstr("|\u4E2D\r\n"));
    EXPECT_EQ(job.counts.charactersBeyond, 1);
    EXPECT_EQ(files(), 1);
}

} // namespace
} // namespace nv
