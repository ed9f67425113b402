#include "cli/CliCase.h"
#include "support/builders/ExifJpeg.h"

namespace nv::test {
namespace {

namespace fs = std::filesystem;

/// A cache of a page (row 1), a photograph (row 2) and a page whose file is gone (row 3).
class ViewerCliTest : public CliCase {
  protected:
    ViewerCliTest() {
        IndexDat index;
        index.folder("ABCDEFGH");
        addCached(index, "http://host/page.html", "page[1].htm",
                  "<html><meta charset=utf-8>caf\xC3\xA9 \x1B[2J</html>");
        addCached(index, "http://host/photo.jpg", "photo[1].jpg",
                  ExifJpeg().ascii(0x010F, "Acme").ascii(0x0110, "C-100").bytes());
        addCached(index, "http://host/gone.html", "gone[1].htm", "x");
        fs::remove(evidence / "ABCDEFGH" / "gone[1].htm");
        import(index);
    }
};

TEST_F(ViewerCliTest, aNoteIsWrittenPrintedAndTakenAway) {
    EXPECT_EQ(cli({"note", project, "1"}).out, "");
    EXPECT_EQ(cli({"note", project, "1", "seen by 'A'"}).exit, 0);
    const CliResult note = cli({"note", project, "1"});
    EXPECT_EQ(note.out, "seen by 'A'\n");
    EXPECT_NE(note.err.find("last changed 2"), std::string::npos) << note.err;
    EXPECT_EQ(cli({"note", project, "1", "--delete"}).exit, 0);
    EXPECT_EQ(cli({"note", project, "1"}).out, "");
    EXPECT_EQ(cli({"note", project, "1", "text", "--delete"}).exit, 1);
    EXPECT_EQ(cli({"note", project, "99"}).exit, 1);
    EXPECT_EQ(cli({"note", project, "99", "text"}).exit, 1);
}

TEST_F(ViewerCliTest, bytesOfTheContentAndOfTheSourceFileAreShown) {
    EXPECT_EQ(cli({"hex", project, "1", "--length", "6"}).out,
              "00000000  3C 68 74 6D 6C 3E                                <html>\n");
    EXPECT_EQ(cli({"hex", project, "1", "--offset", "0x1", "--length", "4"}).out,
              "00000001  68 74 6D 6C                                      html\n");
    EXPECT_EQ(cli({"hex", project, "1", "--offset", "99999"}).out, "");
    const CliResult source = cli({"hex", project, "1", "--source", "--length", "4"});
    EXPECT_NE(source.out.find("URL "), std::string::npos) << source.out << source.err;
    EXPECT_EQ(cli({"hex", project, "1", "--offset", "x"}).exit, 1);
    EXPECT_EQ(cli({"hex", project, "99"}).exit, 1);
}

TEST_F(ViewerCliTest, everyPlaceOfATextOrOfBytesIsFound) {
    const CliResult text = cli({"hex", project, "1", "--find", "HTML", "--ignore-case"});
    EXPECT_EQ(text.exit, 0);
    EXPECT_NE(text.err.find("2 matches"), std::string::npos) << text.err;
    EXPECT_EQ(text.out.substr(0, 8), "00000001");
    EXPECT_NE(cli({"hex", project, "1", "--find", "HTML"}).err.find("0 matches"),
              std::string::npos);
    EXPECT_NE(cli({"hex", project, "1", "--find-bytes", "C3 A9"}).err.find("1 match"),
              std::string::npos);
    EXPECT_EQ(cli({"hex", project, "1", "--find-bytes", "C3 A"}).exit, 1);
    EXPECT_EQ(cli({"hex", project, "1", "--find-bytes", "C3", "--find", "x"}).exit, 1);
}

TEST_F(ViewerCliTest, exifValuesAreShownByTheirNames) {
    const CliResult exif = cli({"exif", project, "2", "--format", "tsv"});
    EXPECT_EQ(exif.exit, 0) << exif.err;
    EXPECT_EQ(exif.out, "tag\tvalue\nEquipMake\tAcme\nEquipModel\tC-100\n");
    const CliResult none = cli({"exif", project, "1"});
    EXPECT_EQ(none.exit, 0);
    EXPECT_NE(none.err.find("no EXIF data"), std::string::npos);
}

TEST_F(ViewerCliTest, textIsDecodedAndCantDriveTheTerminal) {
    const CliResult text = cli({"text", project, "1"});
    EXPECT_EQ(text.exit, 0) << text.err;
    EXPECT_NE(text.out.find("café"), std::string::npos) << text.out;
    EXPECT_EQ(text.out.find('\x1B'), std::string::npos);
    EXPECT_EQ(text.err, "utf-8 (meta tag)\n");
}

TEST_F(ViewerCliTest, contentThatIsGoneIsSaidWithItsPlace) {
    for (const char *command : {"text", "hex", "exif"}) {
        const CliResult run = cli({command, project, "3"});
        EXPECT_EQ(run.exit, 2) << command;
        EXPECT_NE(run.err.find("gone[1].htm"), std::string::npos) << run.err;
    }
}

TEST_F(ViewerCliTest, showHasThePropertiesAndThoseOfThePicture) {
    const CliResult show = cli({"show", project, "2"});
    EXPECT_EQ(show.exit, 0) << show.err;
    EXPECT_NE(show.out.find("EXIF-EquipMake          Acme\n"), std::string::npos) << show.out;
    EXPECT_NE(show.out.find(" [UTC]\n"), std::string::npos) << show.out;
    EXPECT_EQ(show.out.find("\nTyped"), std::string::npos);
}

} // namespace
} // namespace nv::test
