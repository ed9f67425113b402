#include "base/Files.h"
#include "support/TempFolder.h"
#include "support/builders/ExifJpeg.h"
#include "views/record/Exif.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace nv::test {
namespace {

class ExifTest : public testing::Test {
  protected:
    std::string value(std::string_view name, const std::string &bytes) {
        const ExifPicture picture(folder.write("picture.jpg", bytes));
        return Exif::getEXIFValue(name, picture);
    }

    TempFolder folder;
    ExifJpeg camera = ExifJpeg()
                          .ascii(0x010F, "Acme")
                          .ascii(0x0110, "C-100 Z\xE9")
                          .number(0x0112, 6)
                          .ascii(0x0132, "2009:02:13 18:31:30")
                          .ascii(0x013C, "beige box")
                          .rational(0x829A, 1, 60)
                          .rational(0x9206, 7, 1)
                          .number(0x9209, 0x19)
                          .undefined(0xA300, "\x03");
};

TEST_F(ExifTest, namesAreInAlphabeticalOrderAndOnce) {
    const auto names = exifTagNames();
    const auto before = [](const ExifTagName &a, const ExifTagName &b) {
        return std::ranges::lexicographical_compare(
            a.name, b.name, [](char x, char y) { return std::tolower(x) < std::tolower(y); });
    };
    EXPECT_TRUE(std::ranges::is_sorted(names, before));
    EXPECT_EQ(std::ranges::adjacent_find(names, {}, &ExifTagName::name), names.end());
    EXPECT_EQ(names.size(), 145U);
    EXPECT_EQ(names.front().name, "Aperture");
    EXPECT_EQ(names.back().name, "YResolution");
}

TEST_F(ExifTest, valuesArePlainText) {
    const std::string bytes = camera.bytes();
    EXPECT_EQ(value("EquipMake", bytes), "Acme");
    EXPECT_EQ(value("EquipModel", bytes), "C-100 Zé"); // Windows-1252, as cameras of the time wrote
    EXPECT_EQ(value("Orientation", bytes), "6");
    EXPECT_EQ(value("DateTime", bytes), "2009:02:13 18:31:30");
    EXPECT_EQ(value("ExposureTime", bytes), "1/60");
    EXPECT_EQ(value("SubjectDist", bytes), "7");
    EXPECT_EQ(value("Flash", bytes), "25");
    EXPECT_EQ(value("FileSource", bytes), "3");
}

TEST_F(ExifTest, aTagThatTheLibraryHasNoNameForIsRead) {
    EXPECT_EQ(value("HostComputer", camera.bytes()), "beige box");
}

TEST_F(ExifTest, nothingIsAddedThatThePictureDoesNotHave) {
    for (const char *name : {"XResolution", "ResolutionUnit", "ColorSpace", "Ver", "FPXVer",
                             "YCbCrPositioning", "CompConfig"})
        EXPECT_EQ(value(name, camera.bytes()), "") << name;
}

TEST_F(ExifTest, aNameIsComparedExactly) {
    EXPECT_EQ(value("equipmake", camera.bytes()), "");
    EXPECT_EQ(value("EquipMake ", camera.bytes()), "");
    EXPECT_EQ(value("Make", camera.bytes()), "");
    EXPECT_EQ(value("", camera.bytes()), "");
}

TEST_F(ExifTest, namesOfThePositionDontTakeOtherTagsOfTheirNumber) {
    EXPECT_EQ(value("GpsLatitudeRef", ExifJpeg().ascii(0x0001, "N").bytes()), "");
}

TEST_F(ExifTest, theBlockIsFoundAfterOtherSegmentsAndInTiffFiles) {
    EXPECT_EQ(value("EquipMake", camera.bytes(40)), "Acme");
    EXPECT_EQ(value("EquipMake", camera.tiff()), "Acme");
}

TEST_F(ExifTest, filesWithoutABlockHaveNoValues) {
    for (const std::string &bytes :
         {std::string(), std::string("\xFF\xD8\xFF\xD9"), std::string("GIF89a"),
          std::string("\xFF\xD8\xFF\xE1\0\0", 6), std::string("\xFF\xD8\xFF\xE1\xFF\xFF", 6)})
        EXPECT_EQ(value("EquipMake", bytes), "");
    EXPECT_THROW(ExifPicture(folder.path() / "gone.jpg"), FileFailure);
}

TEST_F(ExifTest, damagedBlocksEndInNothingWorseThanFewerValues) {
    const std::string whole = camera.bytes();
    const auto readAll = [&](const std::string &bytes) {
        const ExifPicture picture(folder.write("damaged.jpg", bytes));
        std::size_t length = 0;
        for (const ExifTagName &row : exifTagNames())
            length += Exif::getEXIFValue(row.name, picture).size();
        EXPECT_LT(length, 200'000U);
    };
    for (std::size_t cut = 0; cut < whole.size(); ++cut)
        readAll(whole.substr(0, cut));
    for (std::size_t at = 0; at < whole.size(); ++at)
        for (const char damage : {'\x00', '\x7F', '\x80', '\xFF'}) {
            std::string bytes = whole;
            bytes[at] = damage;
            readAll(bytes);
        }
}

TEST_F(ExifTest, aValueThatClaimsMillionsOfNumbersIsNotWrittenOut) {
    std::string numbers(60'000, '\x01');
    EXPECT_LT(value("MakerNote", ExifJpeg().undefined(0x927C, numbers).bytes()).size(), 400U);
}

} // namespace
} // namespace nv::test
