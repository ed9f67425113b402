#include "db/marks/RebuildAudit.h"
#include "db/sql/Dialect.h"
#include "rebuild/ReplaceTags.h"
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
    EXPECT_EQ(hostFromURL("http://www.host.com:8080/a"), "host.com");
    EXPECT_EQ(hostFromURL("HTTPS://host.com/a/b"), "host.com");
    EXPECT_EQ(hostFromURL("http://host.com"), ""); // no third "/"
    EXPECT_EQ(hostFromURL("ftp://host.com/a"), "");
    EXPECT_EQ(hostFromURL("htt"), "");
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
    Choice plainly(const std::string &text, const UrlRecord &of) {
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
    /// Those that are kept of them.
    Choice stored(const Choice &all, const std::string &text) {
        Choice kept;
        std::size_t exact = 0;
        for (const std::int64_t id : all)
            if (kept.size() - exact < kMostOptions)
                kept.push_back(id);
            else if (exact < kMostExactOptions && endsInText(get(UrlId{id}).URL, text)) {
                kept.push_back(id);
                ++exact;
            }
        return kept;
    }
    std::string scoreOf(std::size_t tagId) {
        return tag("coalesce(AccuracyScore, '')", "Tag_ID = " + std::to_string(tagId));
    }
};

TEST_F(TagOptionsTest, ofAWordThatIsEverywhereAreCutAndCounted) {
    for (int i = 1; i <= 120; ++i)
        add("http://one.example/us/" + std::to_string(i) + ".html", "", "Opera Cache");
    const UrlId last = add("http://one.example/flags/us?size=2", "", "Opera Cache");
    const UrlId id = add("http://one.example/page.html",
                         "<img src=\"us\" ><img src=\"flags/us\" > ", "Opera Cache");
    ASSERT_TRUE(rebuild(id));
    EXPECT_EQ(tag("AccuracyScore", "OriginalTag = 'us'"), "1:121");
    EXPECT_EQ(tag("TagURLID", "OriginalTag = 'us'"), "1");
    EXPECT_EQ(tag("AccuracyScore", "OriginalTag = 'flags/us'"), "1:1");
    EXPECT_EQ(optionsOf(id)[0].size(), kMostOptions + 1);
    EXPECT_EQ(optionsOf(id)[0].back(), number(last));
    ASSERT_EQ(project.log.entries.size(), 1u);
    EXPECT_EQ(project.log.entries[0].message,
              "record 122: a reference has more than 50 candidates, of which these are kept; the "
              "text \"us\" alone stands in 121 URLs");
    const auto notes = RebuildAudit(project.connection()).notes(id);
    ASSERT_EQ(notes.size(), 2u);
    EXPECT_EQ(notes.at(1).accuracyScore, "1:121");
    ASSERT_EQ(notes.at(1).candidates.size(), kMostNoted);
    EXPECT_EQ(notes.at(1).candidates[0], 1);
    EXPECT_EQ(notes.at(1).candidates[1], number(last)); // the best of the others
    EXPECT_EQ(notes.at(1).candidates[2], 2);
}

TEST_F(TagOptionsTest, ofEarlierPagesGoWithTheNext) {
    add("http://one.example/a/logo.gif", "GIF89a");
    const UrlId first = add("http://one.example/first.html", "<img src=\"logo.gif\" > ");
    const UrlId second = add("http://one.example/second.html", "<img src=\"a/logo.gif\" > ");
    ASSERT_TRUE(rebuild(first));
    EXPECT_EQ(project.number("SELECT count(*) FROM TagOptions"), 1);
    ASSERT_TRUE(rebuild(second));
    EXPECT_EQ(project.number("SELECT count(*) FROM TagOptions"), 1);
    EXPECT_EQ(project.number("SELECT URL_ID FROM Tags JOIN TagOptions USING (Tag_ID)"), 3);
    // What the audit shows of the first page stays.
    EXPECT_EQ(RebuildAudit(project.connection()).notes(first).at(1).candidates,
              std::vector<std::int64_t>{1});
}

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
    const UrlRecord of = get(id);
    for (const std::string &text : texts) {
        SQLite::Statement insert(project.connection(),
                                 "INSERT INTO Tags (URL_ID, OriginalTag) VALUES (?, ?)");
        insert.bind(1, number(id));
        insert.bind(2, text);
        insert.exec();
    }
    ASSERT_TRUE(findTagOptions(of, context()));
    const std::vector<Choice> options = optionsOf(id);
    ASSERT_EQ(options.size(), texts.size());
    std::size_t withOptions = 0;
    for (std::size_t i = 0; i < texts.size(); ++i) {
        const std::string text = searchTextOf(texts[i]);
        const Choice all = plainly(text, of);
        EXPECT_EQ(options[i], stored(all, text)) << texts[i];
        const bool isCut = all.size() > options[i].size();
        EXPECT_EQ(scoreOf(i + 1), isCut ? "0:" + std::to_string(all.size()) : "") << texts[i];
        withOptions += options[i].empty() ? 0 : 1;
    }
    EXPECT_GT(withOptions, 20u);
    ASSERT_EQ(project.log.entries.size(), 1u); // some texts stand in nearly all URLs
}

TEST_F(TagOptionsTest, ofAPageWithoutTagsAreNone) {
    const UrlId id = add("http://one.example/page.html", "page");
    EXPECT_TRUE(findTagOptions(get(id), context()));
    EXPECT_THAT(optionsOf(id), IsEmpty());
}

} // namespace
} // namespace nv
