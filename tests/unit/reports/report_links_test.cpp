#include "unit/reports/ReportFixture.h"

#include <regex>

// What a report leads to: its own files, and nothing else without a click.
namespace nv::test {
namespace {

namespace fs = std::filesystem;

/// Full of ways out, and of a part that is there.
constexpr const char *kRestless =
    "<!DOCTYPE html><html><head><base href='http://live/'><title>Out</title>"
    "<meta http-equiv='refresh' content='0;url=http://live/'>"
    "<link rel='prefetch' href='http://live/a'><link rel=stylesheet href='/style/a.css'>"
    "<style>@import '//live/a.css'; body{background:url(/a.gif)}</style></head>"
    "<body background='../a.gif'><img src=\"pic/logo.gif\" ><img src='/images/a.gif'>"
    "<img srcset='//live/a 2x' src=\"gone.gif\" ><iframe src='http://live/'></iframe>"
    "<svg><image xlink:href='//live/a.svg'/></svg><object data='file:///etc/passwd'></object>"
    "<form action='http://live/'></form></body></html> ";

class ReportLinksTest : public ReportFixture {
  protected:
    ReportLinksTest() {
        for (const char *name : {"firefox.gif", "safari.gif", "opera.gif", "chrome.gif"})
            writeWhole(images / name, "picture");
        rebuild(add("http://host/page.html", kRestless));
        add("http://host/pic/logo.gif", "GIF89a logo");
        rebuild(UrlId{1});
        add("http://host/other.html", kRestless);
        addHistory("http://host/visited?a='1'&b=\"2\"", 7);
        addHistory("javascript:alert(1)", 8, "Opera History");
        addHistory("file:///C:/secret.txt", 9, "IE Weekly");
        addHistory("//live/server", 10);
        project.connection().exec("INSERT INTO LinkAnalysis (Parent_ID, Child_ID) VALUES (1, 4)");
    }
    /// Every address that `html` names in an attribute or a style, without entities.
    static std::vector<std::string> addressesOf(const std::string &html) {
        static const std::regex address(
            "(?:[\\s'\"/"
            ":](?:src|href|background|data|poster|srcset)\\s*=\\s*['\"]?|url\\(\\s*['\"]?|"
            "@import\\s*['\"])([^'\"\\s>)]*)",
            std::regex::icase);
        std::vector<std::string> all;
        for (std::sregex_iterator at(html.begin(), html.end(), address), end; at != end; ++at)
            all.push_back((*at)[1]);
        return all;
    }
    /// `html` lies in the report's folder or in one below it.
    std::size_t checkPage(const fs::path &html) {
        std::size_t local = 0;
        const bool own = html.parent_path() == made.path;
        for (const std::string &address : addressesOf(textAt(html))) {
            const bool isLink = address.starts_with("http:") || address.starts_with("file:");
            if (address == "data:," || (own && (isLink || address.empty())))
                continue;
            const fs::path target = (html.parent_path() / address).lexically_normal();
            const auto within = target.lexically_relative(made.path).native();
            EXPECT_FALSE(within.starts_with("..")) << html << " " << address;
            EXPECT_TRUE(fs::is_regular_file(target)) << html << " " << address;
            ++local;
        }
        return local;
    }
    /// The count of links to files of the report.
    std::size_t checkAll() {
        std::size_t local = 0;
        for (const fs::directory_entry &entry : fs::recursive_directory_iterator(made.path)) {
            EXPECT_FALSE(entry.is_symlink()) << entry.path();
            if (entry.path().extension() != ".htm" || entry.path() == made.unfinished())
                continue;
            EXPECT_THAT(textAt(entry.path()).substr(0, 400),
                        testing::HasSubstr("Content-Security-Policy"));
            local += checkPage(entry.path());
        }
        return local;
    }
};

TEST_F(ReportLinksTest, aGraphicalReportLeadsToItsOwnFilesOnly) {
    make(0, [](ReportWriter &each) {
        each.includeAudit = each.includeLinkAnalysis = each.includeCaseTrail = true;
    });
    EXPECT_GE(checkAll(), 15u);
    const std::string html = inReport("0000001.NVR/0000001.htm");
    EXPECT_THAT(html, testing::HasSubstr("src=\"0000002.gif\""));
    EXPECT_THAT(html, testing::Not(testing::HasSubstr("http-equiv='refresh'")));
    EXPECT_THAT(html, testing::HasSubstr("base-uri 'none'"));
}

TEST_F(ReportLinksTest, aTabularReportLeadsToItsOwnFilesOnly) {
    make(1, [](ReportWriter &each) { each.includeCaseTrail = true; });
    EXPECT_GE(checkAll(), 4u);
}

TEST_F(ReportLinksTest, ownPagesFetchPicturesOfTheirFolderOnly) {
    make(0);
    make(1);
    const std::regex picture("<img src='(?:images|pictures|\\d{7}\\.NVR)/[^'/]+'");
    for (const int type : {0, 1}) {
        const std::string html = textAt(made.index(type));
        const auto begin = std::sregex_iterator(html.begin(), html.end(), picture);
        EXPECT_EQ(static_cast<std::size_t>(std::distance(begin, std::sregex_iterator())),
                  countOf(html, "<img "));
        for (const char *fetching : {"<script", "<link", "<base", "<iframe", "<object", "<embed",
                                     "refresh", "url(", "srcset", "@import", "<svg"})
            EXPECT_EQ(countOf(html, fetching), 0u) << fetching;
    }
}

TEST_F(ReportLinksTest, hostileTextsStayTextInBothKinds) {
    const std::string hostile("<script>\"'`\0\x01\xE2\x80\xAE"
                              "gnp.exe\r\n=cmd|' /C calc'!A0",
                              43);
    SQLite::Statement change(project.connection(),
                             "UPDATE URLs SET WebPageTitle = ?1, User = ?1, Notes = ?1, "
                             "CacheFolderName = ?1, Action = ?1, HistoryVersion = ?1");
    change.bind(1, hostile);
    change.exec();
    set(UrlId{4}, "URL", "http://host/\xED\xA0\x80" + std::string(1'000'000, 'x') + hostile);
    for (const int type : {0, 1}) {
        const std::string html =
            make(type, [](ReportWriter &each) { each.includeLinkAnalysis = true; });
        EXPECT_EQ(countOf(html, "<script"), 0u);
        EXPECT_EQ(html.find('\0'), std::string::npos);
        EXPECT_EQ(countOf(html, "\xE2\x80\xAE"), 0u) << "turns around what is read";
        EXPECT_THAT(html, testing::HasSubstr(std::string(1'000'000, 'x')));
        EXPECT_TRUE(isUtf8(html));
    }
}

} // namespace
} // namespace nv::test
