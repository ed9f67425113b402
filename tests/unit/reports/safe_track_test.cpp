#include "base/Base64.h"
#include "reports/pages/SafePage.h"
#include "reports/pages/SafeTrack.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace nv {
namespace {

using testing::HasSubstr;
using testing::Not;

constexpr const char *kTiming = "00:00.000 --> 00:09.000 line:0 align:start\n";

TEST(SafeTrack, cuesStay) {
    const std::string track =
        std::string("WEBVTT\n\n") + kTiming + "<v Anna>a <b>b</b> <00:01.000>&amp; c\nd\n";
    EXPECT_EQ(guardedTrack(track), track);
}

TEST(SafeTrack, allElseGoes) {
    const std::string text =
        "\xEF\xBB\xBFWEBVTT - title\r\nX: y\r\n\r\nSTYLE\r\n::cue{background:url(http://live/)}\r\n"
        "\r\nREGION\r\nid:a\r\n\r\nNOTE http://live/ --> \r\n\r\n7\r\n" +
        std::string(kTiming) +
        "<img src=http://live/>a<b onclick='x'>b</b><<i>c-->d\r\n<x>\r\n\r\nlost\r\n";
    const std::string made = guardedTrack(text);
    EXPECT_EQ(made, std::string("WEBVTT\n\n") + kTiming + "ab</b>&lt;<i>c--&gt;d\n");
    EXPECT_EQ(guardedTrack(made), made);
}

TEST(SafeTrack, whatIsNoneIsEmpty) {
    EXPECT_EQ(guardedTrack(""), "");
    EXPECT_EQ(guardedTrack("<html>WEBVTT"), "");
    EXPECT_EQ(guardedTrack(std::string("WEBVTT\n\0", 8)), "");
    EXPECT_EQ(guardedTrack("WEBVTT"), "WEBVTT\n");
    EXPECT_EQ(guardedTrack("WEBVTT\n\na\nREGION00:08.000 -->000\na\n"), "WEBVTT\n");
}

TEST(SafeTrack, hugeTextsTakeTheirTime) {
    const std::string open(2'000'000, '<');
    EXPECT_THAT(guardedTrack(std::string("WEBVTT\n\n") + kTiming + open), Not(HasSubstr("<<")));
    EXPECT_EQ(guardedTrack("WEBVTT\n\n" + std::string(2'000'000, '\n')), "WEBVTT\n");
}

TEST(SafeTrack, pagesKeepTracksAsDataOnly) {
    const PageFolder folder{{"0000002.vtt", PartKind::plain}};
    const auto guarded = [&](const std::string &src) {
        return guardedPage("<video><track default kind=subtitles src=\"" + src + "\"></video>",
                           PageForm::html, References(folder));
    };
    EXPECT_THAT(guarded("0000002.vtt"), HasSubstr("<track default=\"\" kind=\"subtitles\"/>"));
    const std::string data =
        guarded("data:text/vtt,WEBVTT%0A%0ASTYLE%0A::cue%7Ba:url(http://live)%7D");
    EXPECT_THAT(data, HasSubstr("src=\"data:text/vtt;base64,V0VCVlRUCg==\""));
    EXPECT_THAT(guarded("data:text/html,WEBVTT"), Not(HasSubstr("src=")));
}

TEST(SafePageParts, placesOfDrawingsAsDataStay) {
    const std::string page =
        guardedPage("<p style=\"filter:url('data:image/svg+xml,<svg><filter id=a /></svg>#a')\">"
                    "<p style=\"mask:url('data:image/svg+xml,<svg></svg>#a&quot;)')\">",
                    PageForm::html, References(PageFolder()));
    EXPECT_THAT(page, HasSubstr("#a&quot;)"));
    EXPECT_THAT(page, Not(HasSubstr("#a\\")));
}

TEST(SafePageParts, framesThatStandForObjectsHaveNoBorder) {
    const PageFolder folder{{"0000004.htm", PartKind::page}};
    const std::string page =
        guardedPage("<object data=0000004.htm></object>", PageForm::html, References(folder));
    EXPECT_THAT(page, HasSubstr("<iframe src=\"0000004.htm\" frameborder=\"0\"></iframe>"));
    EXPECT_EQ(guardedPage(page, PageForm::html, References(folder)), page);
}

} // namespace
} // namespace nv
