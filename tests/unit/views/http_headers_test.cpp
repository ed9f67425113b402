#include "views/record/HttpHeaders.h"

#include <gmock/gmock.h>

namespace nv {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(HttpHeaders, areOneALine) {
    EXPECT_THAT(httpHeaderLines("HTTP/1.1 200 OK\r\nContent-Type: text/html\r\n\r\n~U:mara\r\n"),
                ElementsAre("HTTP/1.1 200 OK", "Content-Type: text/html", "", "~U:mara"));
    EXPECT_THAT(httpHeaderLines("a\nb\rc"), ElementsAre("a", "b", "c"));
}

TEST(HttpHeaders, partFirefoxsOwnWordsFromTheResponse) {
    EXPECT_THAT(
        httpHeaderLines("request-method GET response-head HTTP/1.1 200 OK\r\nServer: x\r\n"),
        ElementsAre("request-method GET response-head", "HTTP/1.1 200 OK", "Server: x"));
}

TEST(HttpHeaders, ofNothingAreNone) {
    EXPECT_THAT(httpHeaderLines(""), IsEmpty());
    EXPECT_THAT(httpHeaderLines("\r\n\r\n "), IsEmpty());
}

} // namespace
} // namespace nv
