#include "readers/HttpHeaders.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

using namespace std::string_view_literals;

TEST(HttpHeaders, standInLines) {
    EXPECT_EQ(headersInLines("HTTP/1.1 200 OK\0Age: 1\0\0"sv), "HTTP/1.1 200 OK\r\nAge: 1\r\n");
    EXPECT_EQ(headersInLines("HTTP/1.1 200 OK"sv), "HTTP/1.1 200 OK\r\n");
    EXPECT_EQ(headersInLines(""sv), "");
    EXPECT_EQ(headersInLines("\0\0"sv), "");
}

TEST(HttpHeaders, tellTheTypeOfTheContent) {
    EXPECT_EQ(mimeTypeOf("HTTP/1.1 200 OK\r\ncontent-TYPE:  Text/HTML ; charset=x\r\nA: b\r\n"),
              "text/html");
    EXPECT_EQ(mimeTypeOf("Content-Type: image/gif"), "image/gif");
    EXPECT_EQ(mimeTypeOf("Content-Type:"), "");
    EXPECT_EQ(mimeTypeOf("X-Content-Type: image/gif\r\n"), "");
    EXPECT_EQ(mimeTypeOf(""), "");
}

} // namespace
} // namespace nv
