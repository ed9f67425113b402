#include "views/IconKey.h"

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
