#include "support/TempFolder.h"
#include "support/builders/ExifJpeg.h"
#include "views/record/ExifPosition.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

TEST(Position, addressesOfMapsNameOne) {
    const Position harbour = {54.3213, -10.1349};
    for (const char *address :
         {"https://maps.example/@54.3213,-10.1349,17z", "geo:54.3213,-10.1349?z=3",
          "https://maps.example/?ll=54.3213,-10.1349&z=9",
          "https://maps.example/?q=54.3213%2C%20-10.1349",
          "https://www.a.example/maps/place/x/@54.3213,-10.1349,500m/data=1",
          "https://a.example/?ll=54.3213,-10.1349",
          "https://maps.example/#x=1&mlat=54.3213&mlon=-10.1349",
          "https://maps.example/p?LAT=54.3213&LON=-10.1349#top"})
        EXPECT_EQ(positionInAddress(address), harbour) << address;
}

TEST(Position, otherNumbersNameNone) {
    for (const char *address : {"",
                                "@",
                                "https://a.example/@1,2",
                                "https://a.example/?q=3.5",
                                "https://a.example/?q=1,2",
                                "https://a.example/?ll=91.5,0.5",
                                "https://a.example/?ll=1.5,180.5",
                                "https://a.example/?lat=1.5",
                                "https://a.example/?lat=1.5x&lon=2.5",
                                "geo:",
                                "geo:1.5",
                                "mailto:a@1.5",
                                "https://a.example/?plat=1.5&plon=2.5",
                                "https://a.example/?ll=nan,nan",
                                "https://a.example/?ll=1.5,-",
                                "https://a.example/?ll=.,.",
                                "https://a.example/pkg@12.5,3.2",
                                "https://a.example/@12.5,3.2,1z",
                                "https://maps.example/pkg@12.5,3.2,1z",
                                "https://maps.example/@12.5,3.2",
                                "https://a.example/?q=12.5,3.2",
                                "https://mapsite.example/?q=12.5,3.2"})
        EXPECT_EQ(positionInAddress(address), std::nullopt) << address;
}

TEST(Position, aHugeAddressCostsNoMoreThanItsBeginning) {
    std::string address = "https://a.example/?";
    for (int i = 0; i < 200'000; ++i)
        address += "@&ll=";
    EXPECT_EQ(positionInAddress(address), std::nullopt);
}

std::optional<Position> inPicture(const test::ExifJpeg &camera) {
    const test::TempFolder folder;
    return positionOf(ExifPicture(folder.write("p.jpg", camera.bytes())));
}

TEST(Position, picturesSayWhereTheyWereTaken) {
    const auto position =
        inPicture(test::ExifJpeg().position({33, 51, 3600}, 'S', {151, 12, 1800}, 'E'));
    ASSERT_TRUE(position);
    EXPECT_NEAR(position->latitude, -(33 + 51 / 60.0 + 36 / 3600.0), 1e-9);
    EXPECT_NEAR(position->longitude, 151 + 12 / 60.0 + 18 / 3600.0, 1e-9);
}

TEST(Position, aPictureThatSaysItBadlySaysNothing) {
    EXPECT_EQ(inPicture(test::ExifJpeg().ascii(0x010F, "Acme")), std::nullopt);
    EXPECT_EQ(inPicture(test::ExifJpeg().position({33, 0, 0}, '?', {151, 0, 0}, 'E')),
              std::nullopt);
    EXPECT_EQ(inPicture(test::ExifJpeg().position({95, 0, 0}, 'N', {151, 0, 0}, 'E')),
              std::nullopt);
}

} // namespace
} // namespace nv
