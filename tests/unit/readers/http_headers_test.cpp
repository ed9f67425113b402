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

TEST(HttpHeaders, tellTheEncodingOfTheContent) {
    EXPECT_EQ(charsetOf("Content-Type: text/html; a=b; Charset=\"UTF-8\"\r\n"), "UTF-8");
    EXPECT_EQ(charsetOf("Content-Type: text/html\r\n"), "");
    EXPECT_EQ(charsetOf(""), "");
}

TEST(HttpHeaders, tellTheStatus) {
    EXPECT_EQ(statusOf("HTTP/1.1 304 Not Modified\r\nA: b"), 304);
    EXPECT_EQ(statusOf("HTTP/2 200"), 200);
    for (const char *none : {"", "HTTP/1.1", "HTTP/1.1 ", "HTTP/1.1 20", "HTTP/1.1 2x0", "A: 200"})
        EXPECT_EQ(statusOf(none), 0) << none;
}

TEST(HttpHeaders, mayHaveALineSeveralTimes) {
    using List = std::vector<std::string_view>;
    EXPECT_EQ(headerValues("Via: a\r\nVIA:b\nViable: c", "via"), (List{"a", "b"}));
    EXPECT_EQ(headerValues("", "via"), List{});
}

} // namespace
} // namespace nv
