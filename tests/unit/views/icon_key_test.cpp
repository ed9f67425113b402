#include "views/rows/IconKey.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

std::string_view byExtension(std::string_view extension, std::string_view category = {}) {
    return iconKey({false, false, false, "IE Cache", category, extension});
}

TEST(IconKey, looksAtTheKindOfRecordFirst) {
    EXPECT_EQ(iconKey({true, false, true, "", "", "jpg"}), "history");
    EXPECT_EQ(iconKey({false, true, false, "", "Pictures", "jpg"}), "history");
    EXPECT_EQ(iconKey({false, false, true, "", "", "txt"}), "cookie");
    EXPECT_EQ(iconKey({false, false, false, "IE Cookies", "", "txt"}), "cookie");
    EXPECT_EQ(iconKey({false, false, false, "IE Cache", "Cookies", "txt"}), "cookie");
}

TEST(IconKey, thenAtTheExtension) {
    EXPECT_EQ(byExtension("TXT"), "txt");
    EXPECT_EQ(byExtension("jpe"), "jpg");
    EXPECT_EQ(byExtension("jpeg"), "jpg");
    EXPECT_EQ(byExtension("jpg", "HTML"), "jpg");
    for (const char *own :
         {"bmp", "png", "tif", "gif",  "js",  "css",  "wav",  "mp3", "xls",  "doc", "ppt",
          "mdb", "wmv", "avi", "mpeg", "mpg", "swf",  "fla",  "zip", "gzip", "rar", "cab",
          "exe", "msi", "iso", "pdf",  "asp", "aspx", "html", "htm", "php",  "cgi"}) {
        EXPECT_EQ(byExtension(own), own);
        EXPECT_NE(iconFamily(own), IconFamily::Unknown) << own;
    }
}

TEST(IconKey, thenAtTheCategory) {
    EXPECT_EQ(byExtension("", "Pictures"), "Pictures");
    EXPECT_EQ(byExtension("ico", "Pictures"), "Pictures");
    EXPECT_EQ(byExtension("", "Multimedia"), "Multimedia");
    EXPECT_EQ(byExtension("", "HTML"), "HTML");
    EXPECT_EQ(byExtension("", "Scripts/HTML"), "Scripts/HTML");
    EXPECT_EQ(byExtension("", "Scripts, HTML"), "Scripts/HTML");
    EXPECT_EQ(byExtension("xyz", "Unheard of"), "");
}

TEST(IconKey, ofTodaysCachesGoesByWhatTheServerNamed) {
    const auto today = [](std::string_view type, std::string_view extension = {}) {
        return iconKey({false, false, false, "Chrome Cache", "", extension, type});
    };
    EXPECT_EQ(today("text/css"), "css");
    EXPECT_EQ(today("TEXT/HTML", "php"), "html");
    EXPECT_EQ(today("image/webp"), "Pictures");
    EXPECT_EQ(today("image/png", "php"), "png") << "a script of the server makes a picture";
    EXPECT_EQ(today("text/javascript"), "js");
    EXPECT_EQ(today("video/mp4"), "Multimedia");
    EXPECT_EQ(today("audio/ogg"), "wav");
    EXPECT_EQ(today("application/font-woff2", "woff2"), "font");
    EXPECT_EQ(iconFamily(today("font/woff2")), IconFamily::Font);
    EXPECT_EQ(familyName(IconFamily::Font), "font");
    EXPECT_EQ(today("application/octet-stream", "zip"), "zip") << "it says nothing";
    EXPECT_EQ(today("", "png"), "png");
    EXPECT_EQ(today("text/plain", "js"), "js");
    EXPECT_EQ(today("text/plain"), "txt");
    EXPECT_EQ(today("imag"), "");
    EXPECT_EQ(iconKey({false, false, false, "Firefox Cache", "", "", "text/css"}), "css");
    EXPECT_EQ(iconKey({false, false, false, "Chrome Site Cache", "", "", "text/css"}), "css");
    EXPECT_EQ(iconKey({true, false, false, "Chrome History", "", "", "text/css"}), "history");
}

TEST(IconKey, ofTheFirstBrowsersIsWhatItWas) {
    for (const char *kind : {"Opera Cache", "Safari Cache", "IE Cache", "Mac IE Cache"})
        EXPECT_EQ(iconKey({false, false, false, kind, "", "", "text/css"}), "") << kind;
    EXPECT_EQ(iconKey({false, false, false, "Opera Cache", "", "php", "image/png"}), "php");
}

TEST(IconFamily, joinsKeysThatShareAPicture) {
    EXPECT_EQ(iconFamily("jpg"), iconFamily("Pictures"));
    EXPECT_EQ(iconFamily("zip"), iconFamily("cab"));
    EXPECT_EQ(iconFamily("html"), iconFamily("HTML"));
    EXPECT_EQ(iconFamily(""), IconFamily::Unknown);
    EXPECT_EQ(familyName(iconFamily("history")), "history");
    EXPECT_EQ(familyName(iconFamily("php")), "web-page");
    EXPECT_EQ(familyName(IconFamily::Unknown), "unknown");
}

} // namespace
} // namespace nv
