#include "db/Dialect.h"
#include "rebuild/TagOptions.h"
#include "rebuild/UrlPatterns.h"
#include "unit/rebuild/RebuildFixture.h"

#include <gmock/gmock.h>

#include <random>

namespace nv {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(HostFromUrl, isWhatPagesAreToldApartBy) {
    EXPECT_EQ(HostFromURL("http://www.host.com:8080/a"), "host.com");
    EXPECT_EQ(HostFromURL("HTTPS://host.com/a/b"), "host.com");
    EXPECT_EQ(HostFromURL("http://host.com"), ""); // no third "/"
    EXPECT_EQ(HostFromURL("ftp://host.com/a"), "");
    EXPECT_EQ(HostFromURL("htt"), "");
}

TEST(SearchText, losesLeadingFoldersAndWhiteSpace) {
    EXPECT_EQ(searchTextOf(" ../../a b/logo.gif "), "ab/logo.gif");
    EXPECT_EQ(searchTextOf("./a/./logo.gif"), "a/logo.gif");
    EXPECT_EQ(searchTextOf("a/./logo.gif"), "a/./logo.gif");
    EXPECT_EQ(searchTextOf("./"), "./");
    EXPECT_EQ(searchTextOf("\tlogo\r\n.gif"), "logo.gif");
}

std::vector<std::size_t> found(UrlPatterns &patterns, std::string_view url) {
    std::vector<std::size_t> numbers;
    patterns.find(url, [&numbers](std::size_t number) { numbers.push_back(number); });
    std::sort(numbers.begin(), numbers.end());
    return numbers;
}

TEST(UrlPatterns, findTextsInEitherCaseOnceEach) {
    UrlPatterns patterns;
    EXPECT_EQ(patterns.add("images/logo.gif"), 0u);
    EXPECT_EQ(patterns.add("GIF"), 1u);
    EXPECT_EQ(patterns.add("l_go"), 2u);
    EXPECT_EQ(patterns.add("[invalid"), std::nullopt);
    EXPECT_EQ(patterns.add(""), 3u);
    EXPECT_THAT(found(patterns, "http://h/Images/LOGO.gif?images/logo.gif"),
                ElementsAre(0, 1, 2, 3));
    EXPECT_THAT(found(patterns, "short"), ElementsAre(3));
}

class TagOptionsTest : public test::RebuildFixture {
  protected:
    using Choice = std::vector<std::int64_t>;

    std::vector<Choice> optionsOf(UrlId id) {
        std::vector<Choice> options;
        SQLite::Statement tags(project.connection(), "SELECT Tag_ID FROM Tags ORDER BY Tag_ID");
        while (tags.executeStep()) {
            Choice &choice = options.emplace_back();
            SQLite::Statement rows(project.connection(), "SELECT TagURLID FROM TagOptions "
                                                         "WHERE Tag_ID = ? ORDER BY TagOption_ID");
            rows.bind(1, tags.getColumn(0).getInt64());
            while (rows.executeStep())
                choice.push_back(rows.getColumn(0).getInt64());
        }
        (void)id;
        return options;
    }

    Choice select(const std::string &sql) {
        Choice ids;
        SQLite::Statement rows(project.connection(), translate(sql));
        while (rows.executeStep())
            ids.push_back(rows.getColumn(0).getInt64());
        return ids;
    }

    /// One tag, searched for with the two queries as they were laid down.
    Choice plainly(const std::string &text, const URLClass &of) {
        const std::string base = "SELECT URL_ID FROM URLs WHERE URL LIKE '%" +
                                 replaceAll(text, "'", "''") + "%' AND UCase(CacheType) = '" +
                                 toUpper(of.cacheType) + "'";
        const std::string end = " ORDER BY URL_ID";
        try {
            const Choice ofHost = select(base + " AND (Host = '" + of.host + "' OR URL LIKE '%" +
                                         of.host + "%')" + end);
            return ofHost.empty() ? select(base + end) : ofHost;
        } catch (const std::exception &) {
            return {};
        }
    }
};

TEST_F(TagOptionsTest, areThoseOfThePlainWay) {
    std::mt19937 random(20111); // the same on every run
    const auto pick = [&random](const std::vector<std::string> &from) {
        return from[random() % from.size()];
    };
    const std::vector<std::string> hosts = {"one.example", "two.example", "a.one.example"};
    const std::vector<std::string> parts = {"a",        "B",   "logo",        "menu_x",
                                            "%20",      "[1]", "pic12345678", "'",
                                            "\xC3\xA9", "/",   ".",           "longer-than-a-key"};
    for (int i = 0; i < 400; ++i)
        add("http://" + pick(hosts) + "/" + pick(parts) + pick(parts) + "/" + pick(parts) + ".gif",
            "", i % 5 == 0 ? "Opera Cache" : "IE Cache");
    std::string html;
    std::vector<std::string> texts;
    for (int i = 0; i < 150; ++i)
        texts.push_back(pick(parts) + (i % 2 ? "/" : "") + pick(parts) + (i % 3 ? ".gif" : ""));
    const UrlId id = add("http://one.example/page.html", "page");
    const URLClass of = get(id);
    for (const std::string &text : texts) {
        SQLite::Statement insert(project.connection(),
                                 "INSERT INTO Tags (URL_ID, OriginalTag) VALUES (?, ?)");
        insert.bind(1, number(id));
        insert.bind(2, text);
        insert.exec();
    }
    ASSERT_TRUE(FindTagOptions(of, context()));
    const std::vector<Choice> options = optionsOf(id);
    ASSERT_EQ(options.size(), texts.size());
    std::size_t withOptions = 0;
    for (std::size_t i = 0; i < texts.size(); ++i) {
        EXPECT_EQ(options[i], plainly(searchTextOf(texts[i]), of)) << texts[i];
        withOptions += options[i].empty() ? 0 : 1;
    }
    EXPECT_GT(withOptions, 20u);
    EXPECT_TRUE(project.log.entries.empty());
}

TEST_F(TagOptionsTest, ofAPageWithoutTagsAreNone) {
    const UrlId id = add("http://one.example/page.html", "page");
    EXPECT_TRUE(FindTagOptions(get(id), context()));
    EXPECT_THAT(optionsOf(id), IsEmpty());
}

} // namespace
} // namespace nv
