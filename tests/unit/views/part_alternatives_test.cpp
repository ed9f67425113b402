#include "db/marks/PartChoices.h"
#include "rebuild/LocalNames.h"
#include "unit/rebuild/exact/ExactFixture.h"
#include "views/record/PartAlternatives.h"

#include <gmock/gmock.h>

namespace nv {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class PartAlternativesTest : public test::ExactFixture {
  protected:
    /// Of the page's only reference.
    PartQuestion question(UrlId html) {
        const auto all = notes(html);
        return all.size() == 1 ? partQuestion(get(html), all.front(), project.connection())
                               : PartQuestion();
    }
    static std::vector<std::string> lines(const PartQuestion &question) {
        std::vector<std::string> all;
        for (const PartAlternative &one : question.alternatives)
            all.push_back(fmt::format("{} {}", number(one.id), one.rule));
        return all;
    }
};

TEST_F(PartAlternativesTest, offersWhatTheRulesFindTheOneThatStandsThereFirst) {
    put({.url = "https://host/a.png?v=1", .body = "one", .day = 39999});
    put({.url = "https://host/a.png?v=2", .body = "two", .day = 40001.5});
    put({.url = "https://host/a.png?v=2", .body = "three", .day = 40000});
    put({.url = "https://host/a.png?v=2", .body = ""});
    put({.url = "https://host/b.png?v=2", .body = "other"});
    const UrlId html = putPage("<img src='/a.png?v=2#x'>");
    ASSERT_TRUE(rebuild(html));
    const PartQuestion asked = question(html);
    EXPECT_EQ(asked.page, html);
    EXPECT_EQ(asked.address, "https://host/a.png?v=2");
    EXPECT_FALSE(asked.kept);
    EXPECT_THAT(lines(asked), ElementsAre("3 without fragment", "2 without fragment",
                                          "1 same path, other query"));
    EXPECT_EQ(asked.alternatives[1].url, "https://host/a.png?v=2");
    EXPECT_EQ(asked.alternatives[1].kind, "Opera Cache");
    EXPECT_EQ(asked.alternatives[1].seconds, 129'600);
    EXPECT_EQ(asked.alternatives[1].time, Date::fromDays(40001.5));
}

TEST_F(PartAlternativesTest, offersWhatHasTheSameLetters) {
    put({.url = "https://host/caf\u00E9.png", .body = "one"});
    put({.url = "https://host/caf%C3%A9.png", .body = "two"});
    const UrlId html = putPage("<img src='/caf\u00E9.png'>");
    ASSERT_TRUE(rebuild(html));
    EXPECT_THAT(lines(question(html)), ElementsAre("2 exact address", "1 same address, decoded"));
}

TEST_F(PartAlternativesTest, saysWhatWasChosenBefore) {
    put({.url = "https://host/a.png", .body = "one", .day = 40000});
    put({.url = "https://host/a.png", .body = "two", .day = 40009});
    put({.url = "https://elsewhere/b.png", .body = "three"});
    const UrlId html = putPage("<img src=/a.png>");
    const auto partAfter = [&](std::optional<UrlId> answer) {
        PartChoices choices(project.connection());
        if (answer)
            choices.choose(html, "https://host/a.png", *answer);
        else
            choices.forget(html, "https://host/a.png");
        EXPECT_TRUE(rebuild(html));
        return notes(html).at(0).part;
    };
    ASSERT_TRUE(rebuild(html));
    EXPECT_EQ(partAfter(UrlId{2}), UrlId{2});
    EXPECT_EQ(question(html).kept, UrlId{2});
    EXPECT_THAT(lines(question(html)), ElementsAre("2 chosen by the examiner", "1 exact address"));
    EXPECT_EQ(partAfter(UrlId{3}), UrlId{3});
    EXPECT_EQ(partAfter(UrlId::none), UrlId::none);
    EXPECT_EQ(question(html).kept, UrlId::none);
    EXPECT_EQ(partAfter(std::nullopt), UrlId{1});
    EXPECT_FALSE(question(html).kept);
}

TEST_F(PartAlternativesTest, offersNothingForWhatIsNowhere) {
    const UrlId html = putPage("<img src=/a.png>");
    ASSERT_TRUE(rebuild(html));
    EXPECT_THAT(question(html).alternatives, IsEmpty());
}

TEST_F(PartAlternativesTest, saysWhyARecordIsNoPart) {
    put({.url = "https://host/a.png", .body = "one"});
    put({.url = "https://host/b.png", .body = ""});
    SQLite::Database &database = project.connection();
    EXPECT_EQ(whyNoPart(UrlId{1}, database), "");
    EXPECT_EQ(whyNoPart(UrlId{2}, database), "Record 2 has no cached content.");
    EXPECT_EQ(whyNoPart(UrlId{77}, database), "The project has no record 77.");
}

TEST(PartNote, tellsPartsOfAnotherAddress) {
    const auto isOther = [](const std::string &rule) {
        PartNote note;
        note.rule = rule;
        return isOfAnotherAddress(note);
    };
    EXPECT_TRUE(isOther(partrule::kOtherQuery));
    EXPECT_TRUE(isOther(partrule::kSameSet));
    EXPECT_TRUE(isOther(partrule::kDecoded));
    EXPECT_TRUE(isOther(std::string(partrule::kRedirect) + partrule::kOtherQuery));
    EXPECT_FALSE(isOther(partrule::kExact));
    EXPECT_FALSE(isOther(partrule::kChosen));
    EXPECT_FALSE(isOther(partrule::kNone));
}

TEST(TimeApart, hasTwoUnitsAtMost) {
    EXPECT_EQ(timeApart(0), "same second");
    EXPECT_EQ(timeApart(1), "1 s later");
    EXPECT_EQ(timeApart(-61), "1 min 1 s earlier");
    EXPECT_EQ(timeApart(3600), "1 h later");
    EXPECT_EQ(timeApart(3605), "1 h later");
    EXPECT_EQ(timeApart(-(2 * 86'400 + 4 * 3'600 + 59)), "2 d 4 h earlier");
    EXPECT_EQ(timeApart(std::numeric_limits<std::int64_t>::min()),
              "106751991167300 d 15 h earlier");
}

} // namespace
} // namespace nv
