#include "SearchedProject.h"
#include "db/marks/RecordTags.h"
#include "search/HitFinder.h"
#include "search/SearchFailure.h"
#include "search/SearchedRowReader.h"

#include <numeric>

namespace nv::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

/// Rows 1 to 5: a page, a visit of the same site, a cookie, a page in another language, a form.
struct SearchTest : testing::Test, SearchedProject {
    SearchTest() {
        add({{"URL", "http://www.harbour-news.example/tide0.html"},
             {"Host", "www.harbour-news.example"},
             {"WebPageTitle", "Tide tables"},
             {"HTMLBody", "High water at Dover; the tides of March, and a \"spring tide\"."},
             {"MetaData", "HTTP/1.1 200 OK\r\nServer: Barnacle/2.4\r\n"},
             {"CacheType", "Chrome Cache"},
             {"Browser", "Edge"}});
        add({{"URL", "http://www.harbour-news.example/weather.html"},
             {"Host", "www.harbour-news.example"},
             {"WebPageTitle", "Weather"},
             {"CacheType", "Chrome History"},
             {"Notes", "Seen with the suspect"}});
        add({{"URL", "http://shop.example/"},
             {"Host", "shop.example"},
             {"URLParameters", "basket=oilskin+jacket"},
             {"CacheType", "Firefox Cookie"}});
        add({{"URL", "http://gezeiten.example/Z%C3%BCrich"},
             {"Host", "gezeiten.example"},
             {"HTMLBody", "Ebbe und Flut in Z\u00FCrich \u2014 caf\u00E9, "
                          "\u041C\u043E\u0441\u043A\u0432\u0430"},
             {"CacheType", "Chrome Cache"}});
        const auto form = add({{"URL", "http://form.example/"}, {"Host", "form.example"}});
        FactList facts;
        facts.add("search_term", FactValue(std::string("buoy lights")));
        facts.add("source_table", FactValue(std::string("autofill")));
        RecordFacts(connection()).store(UrlId{form}, facts);
    }
    /// A search that says what it expected is in order.
    void foundUnlessRefused(const std::string &text) {
        try {
            found(text);
        } catch (const SearchFailure &) {
            return;
        }
    }
};

TEST_F(SearchTest, findsPartsOfValuesAndWordsOfTexts) {
    EXPECT_THAT(found("tide"), ElementsAre(1));
    EXPECT_THAT(found("HARBOUR-N"), ElementsAre(1, 2)) << "a part of an address";
    EXPECT_THAT(found("dover"), ElementsAre(1)) << "a word of a page";
    EXPECT_THAT(found("dove"), IsEmpty()) << "of a page a part is found only when it is asked for";
    EXPECT_THAT(found("dove*"), ElementsAre(1));
    EXPECT_THAT(found("*ove*"), ElementsAre(1));
    EXPECT_THAT(found("barnacle"), ElementsAre(1)) << "headers";
    EXPECT_THAT(found("suspect"), ElementsAre(2)) << "a note";
    EXPECT_THAT(found("buoy"), ElementsAre(5)) << "a fact";
    EXPECT_THAT(found("autofill"), IsEmpty()) << "where a record lies is no finding";
    EXPECT_THAT(found("oilskin"), ElementsAre(3));
    EXPECT_THAT(found("\"oilskin jacket\""), ElementsAre(3)) << "without the address' coding";
}

TEST_F(SearchTest, findsTermsOfAddressesByTheTextAsFound) {
    add({{"URL", "https://find.example/search?q=C+++AT&T+bomb&hl=de"},
         {"URLRawValue", "https://find.example/search?q=C%2B%2B+AT%26T+bomb&hl=de"},
         {"URLParameters", "q=C+++AT&T+bomb&hl=de"}});
    add({{"URL", "https://find.example/#q=F#+tides"},
         {"URLRawValue", "https://find.example/#q=F%23+tides"}});
    EXPECT_THAT(found("\"C++ AT&T bomb\""), ElementsAre(6));
    EXPECT_THAT(found("\"=F# tides\""), ElementsAre(7));
    EXPECT_THAT(found("\"C   AT\""), IsEmpty());
}

/// As the table shows them: by the second in which they lie, whatever the last bits of a float say.
TEST_F(SearchTest, aDateIsOfTheSecondInWhichItLies) {
    const std::int64_t midnight = Date::fromCivil({.year = 2024}).unixSeconds();
    const auto set = [this](int id, Date date) {
        SQLite::Statement update(connection(),
                                 "UPDATE URLs SET ActionDateUTC = ? WHERE URL_ID = ?");
        update.bind(1, date.days());
        update.bind(2, id);
        update.exec();
    };
    set(1, Date::fromUnixMicroseconds(midnight * 1'000'000 - 1));
    set(2, Date::fromUnixSeconds(midnight + 300 * 60).plusMinutes(-300));
    set(3, Date::fromDays(Date::fromUnixSeconds(midnight).days() - 1e-11)); // a sum gone astray
    EXPECT_THAT(found("before:2024 harbour"), ElementsAre(1));
    EXPECT_THAT(found("after:2024"), ElementsAre(2, 3));
    EXPECT_THAT(found("before:2024-01-01T00:00:01 after:2024"), ElementsAre(2, 3));
}

TEST_F(SearchTest, findsRowsByTheirTags) {
    EXPECT_THAT(found("tag:Important"), IsEmpty()) << "a project without tags";
    EXPECT_THAT(found("-tag:*"), ElementsAre(1, 2, 3, 4, 5));
    NamedTags tags(connection());
    RecordTags rows(connection());
    const auto add = [&](const std::string &name, const std::vector<std::int32_t> &ids) {
        const NamedTag tag =
            tags.add({.tagID = 0, .name = name, .color = {}, .position = 0, .note = {}});
        EXPECT_TRUE(rows.set(tag.tagID, ids, {}, task));
    };
    add("Important", {1, 3, 99}); // there is no row 99
    add("F\u00FCr die Anh\u00F6rung", {2, 3});
    EXPECT_THAT(found("tag:IMPORTANT"), ElementsAre(1, 3));
    EXPECT_THAT(found("tag:Import"), IsEmpty()) << "a whole name";
    EXPECT_THAT(found("tag:\"F\u00DCR DIE anh\u00F6rung\""), ElementsAre(2, 3));
    EXPECT_THAT(found("tag:* harbour"), ElementsAre(1, 2));
    EXPECT_THAT(found("-tag:*"), ElementsAre(4, 5));
    EXPECT_THAT(found("tag:important -host:shop"), ElementsAre(1));
    EXPECT_THAT(found("tag:important oilskin"), ElementsAre(3));
    EXPECT_THAT(found("tag:important /oil\\w+/"), ElementsAre(3));
    EXPECT_THAT(found("tag:\"x' OR 1 --\""), IsEmpty());
    tags.remove(tags.find("Important")->tagID);
    EXPECT_THAT(found("tag:Important"), IsEmpty()) << "the index keeps nothing of tags";
}

TEST_F(SearchTest, hashSetsAreAskedByName) {
    EXPECT_THAT(found("hashset:*"), IsEmpty());
    connection().exec("INSERT INTO RecordFacts VALUES (1, 'hashset_known', 'Library', 'MD5'), "
                      "(2, 'hashset_notable', 'my cases', 'MD5'), "
                      "(3, 'hashset_known', 'Library', 'MD5'), (3, 'etag', 'other', NULL)");
    EXPECT_THAT(found("hashset:library"), ElementsAre(1, 3));
    EXPECT_THAT(found("hashset:\"My Cases\""), ElementsAre(2));
    EXPECT_THAT(found("hashset:notable"), ElementsAre(2));
    EXPECT_THAT(found("hashset:known"), ElementsAre(1, 3));
    EXPECT_THAT(found("hashset:* -hashset:known"), ElementsAre(2));
    EXPECT_THAT(found("-hashset:*"), ElementsAre(4, 5));
    EXPECT_THAT(found("hashset:lib"), IsEmpty()) << "a whole name";
    EXPECT_THAT(found("hashset:other"), IsEmpty());
}

TEST_F(SearchTest, findsPhrasesInTheirOrder) {
    EXPECT_THAT(found("\"spring tide\""), ElementsAre(1));
    EXPECT_THAT(found("\"tide spring\""), IsEmpty());
    EXPECT_THAT(found("tide spring"), ElementsAre(1));
    EXPECT_THAT(found("\"tide tables\""), ElementsAre(1));
}

TEST_F(SearchTest, leavesOutWhatIsExcluded) {
    EXPECT_THAT(found("harbour -dover"), ElementsAre(2));
    EXPECT_THAT(found("-harbour"), ElementsAre(3, 4, 5));
    EXPECT_THAT(found("-host:example"), IsEmpty());
    EXPECT_THAT(found("harbour -/wea\\w+/"), ElementsAre(1));
}

TEST_F(SearchTest, limitsByHostBrowserAndKind) {
    EXPECT_THAT(found("host:shop"), ElementsAre(3));
    EXPECT_THAT(found("browser:edge"), ElementsAre(1));
    EXPECT_THAT(found("browser:chrome"), ElementsAre(2, 4)) << "where none is named, the family";
    EXPECT_THAT(found("kind:cookie"), ElementsAre(3));
    EXPECT_THAT(found("kind:\"chrome cache\" host:gez"), ElementsAre(4));
    EXPECT_THAT(found("kind:\"no such\""), IsEmpty());
}

TEST_F(SearchTest, limitsByDateInUtc) {
    addDated("http://a.example/", {.year = 2011, .month = 3, .day = 1});
    addDated("http://b.example/", {.year = 2011, .month = 3, .day = 31, .hour = 23, .minute = 59});
    addDated("http://c.example/", {.year = 2011, .month = 4, .day = 1});
    EXPECT_THAT(found("after:2011-03 before:2011-04"), ElementsAre(6, 7));
    EXPECT_THAT(found("after:2011-04-01"), ElementsAre(8));
    EXPECT_THAT(found("before:2011-03-01"), IsEmpty()) << "rows without a date are neither";
    EXPECT_THAT(found("-before:2012 host:shop"), ElementsAre(3));
}

TEST_F(SearchTest, looksThroughRowsForExpressionsAndShortTexts) {
    EXPECT_THAT(found("/tide[0-9]\\.html$/"), ElementsAre(1));
    EXPECT_THAT(found("/DOVER/"), ElementsAre(1));
    EXPECT_THAT(found("/(?-i)DOVER/"), IsEmpty());
    EXPECT_THAT(found("/^ebbe/ host:gez"), ElementsAre(4));
    EXPECT_THAT(found("ti"), ElementsAre(1)) << "two letters";
    EXPECT_THAT(found("w"), ElementsAre(1, 2));
}

TEST_F(SearchTest, knowsTheLettersOfAllAlphabets) {
    EXPECT_THAT(found("z\u00FCrich"), ElementsAre(4));
    EXPECT_THAT(found("Z\u00DCRICH"), ElementsAre(4));
    EXPECT_THAT(found("cafe"), ElementsAre(4)) << "words of pages are compared without accents";
    EXPECT_THAT(found("\u041C\u041E\u0421\u041A\u0412\u0410"), ElementsAre(4));
    EXPECT_THAT(found("*\u043E\u0441\u043A\u0432*"), ElementsAre(4));
}

TEST_F(SearchTest, takesNothingThatIsTypedForSyntaxOfTheDatabase) {
    for (const char *text : {"\"",
                             "\"\"\"\"",
                             "'",
                             "a'b",
                             "a\"b",
                             "tide OR dover",
                             "NEAR(tide)",
                             "tide:dover",
                             "Brief:tide",
                             "^tide",
                             "(tide",
                             "tide)",
                             "{tide}",
                             "tide AND NOT",
                             "+",
                             "-- ;",
                             "%",
                             "_",
                             "\\",
                             "\xF0\x9F\x8C\x8A",
                             "\xFF\xFE\xFD",
                             "tide;DROP TABLE URLs",
                             "***",
                             "*a*",
                             "???"})
        EXPECT_NO_THROW(foundUnlessRefused(text)) << text;
    EXPECT_THAT(found("tide OR dover"), IsEmpty());
    EXPECT_EQ(log.entries.size(), 0u);
}

TEST_F(SearchTest, looksThroughValuesAloneWhileItIsTyped) {
    EXPECT_THAT(found("tid", SearchScope::values), ElementsAre(1));
    EXPECT_THAT(found("dover", SearchScope::values), IsEmpty());
    EXPECT_THAT(found("*ove*", SearchScope::values), IsEmpty());
    EXPECT_THAT(found("/dover/", SearchScope::values), IsEmpty());
}

TEST_F(SearchTest, endsAtTheFirstRowsThatAreAskedFor) {
    SearchIndex search = index();
    RowMatch match(parseSearch("example"), SearchScope::values);
    EXPECT_THAT(findRows(connection(), search, match, task, 2).ids, ElementsAre(1, 2));
    EXPECT_THAT(scanRows(connection(), match, task, 2).ids, ElementsAre(1, 2));
}

TEST_F(SearchTest, countsByKindAndHost) {
    SearchIndex search = index();
    RowMatch match(parseSearch("-host:shop -host:form"));
    const FoundCounts counts = findRows(connection(), search, match, task).counts;
    EXPECT_THAT(counts.byKind, ElementsAre(Pair("Chrome Cache", 2), Pair("Chrome History", 1)));
    EXPECT_THAT(counts.byHost,
                ElementsAre(Pair("www.harbour-news.example", 2), Pair("gezeiten.example", 1)));
}

TEST_F(SearchTest, countsAKindOnceHoweverItIsWritten) {
    add({{"URL", "http://shop.example/a"}, {"CacheType", "IE CACHE"}});
    add({{"URL", "http://shop.example/b"}, {"CacheType", "IE Cache"}});
    add({{"URL", "http://shop.example/c"}, {"CacheType", "of another program"}});
    SearchIndex search = index();
    RowMatch match(parseSearch("shop.example -kind:cookies"));
    EXPECT_THAT(findRows(connection(), search, match, task).counts.byKind,
                ElementsAre(Pair("IE Cache", 2), Pair("of another program", 1)));
    EXPECT_THAT(found("kind:\"ie cache\""), ElementsAre(6, 7));
}

TEST_F(SearchTest, showsWhereATextStands) {
    SearchedRowReader reader(connection());
    ASSERT_TRUE(reader.goTo(1));
    RowMatch match(parseSearch("-moon dover"));
    const auto mark = match.firstMark(reader.row());
    ASSERT_TRUE(mark);
    EXPECT_EQ(mark->field, SearchField::page);
    const std::string &page = reader.row().at(SearchField::page);
    EXPECT_EQ(page.substr(mark->span.at, mark->span.length), "Dover");
    const Snippet snippet = snippetOf(page, mark->span);
    EXPECT_EQ(snippet.text.substr(snippet.mark.at, snippet.mark.length), "Dover");
    RowMatch two(parseSearch("tide /d\\w+r/"));
    EXPECT_EQ(two.marksIn(page, 10), (std::vector<TextSpan>{{14, 5}, {25, 4}, {55, 4}}));
    EXPECT_EQ(two.marksIn(page, 1).size(), 1u);
}

TEST(HitFinder, marksWordsHoweverTheyAreSpelled) {
    HitFinder hits(RowMatch(parseSearch("cafe \"low water\"")));
    const std::string text = "Caf\u00E9 by low, water";
    EXPECT_EQ(hits.marksIn(text), (std::vector<TextSpan>{{0, 5}, {9, 10}}));
    EXPECT_THAT(hits.formsIn(text), ElementsAre("Caf\u00E9", "low, water"));
    EXPECT_TRUE(hits.formsIn("").empty());
}

TEST(HitFinder, tellsEachSpellingOnceAndTheShorterOne) {
    SearchedRow row;
    row.at(SearchField::address) = "http://tides.example/TIDE?q=Tidewater";
    row.at(SearchField::page) = "Ebb-7, ebb-12, EBB-7";
    HitFinder hits(RowMatch(parseSearch("/ebb-[0-9]+/ tide -moon kind:cache")));
    EXPECT_THAT(hits.formsOf(row), ElementsAre("tide", "Ebb-7", "ebb-12"));
    HitFinder parts(RowMatch(parseSearch("/tide[a-z]*/")));
    EXPECT_THAT(parts.formsOf(row), ElementsAre("TIDE"));
    HitFinder none(RowMatch(parseSearch("kind:cache")));
    EXPECT_TRUE(none.formsOf(row).empty());
}

TEST(HitFinder, hasBoundsForWhatIsLongAndMany) {
    std::string text;
    for (int i = 0; i < 5000; ++i)
        text += "n" + std::to_string(i) + "x ";
    HitFinder many(RowMatch(parseSearch("/n[0-9]+x/")));
    EXPECT_EQ(many.marksIn(text).size(), HitFinder::kMostMarks);
    EXPECT_EQ(many.formsIn(text).size(), HitFinder::kMostForms);
    std::string wide;
    for (int i = 0; i < 1000; ++i)
        wide += "\u00FC";
    HitFinder whole(RowMatch(parseSearch("/.+/")));
    ASSERT_EQ(whole.formsIn("x" + wide).size(), 1u);
    EXPECT_EQ(whole.formsIn("x" + wide).front().size(), HitFinder::kLongestForm - 1);
}

TEST(Snippet, isCutBetweenLetters) {
    std::string text;
    for (int i = 0; i < 100; ++i)
        text += "\u00FC";
    text += "tide";
    for (int i = 0; i < 100; ++i)
        text += "\u00FC";
    for (std::size_t shift = 0; shift < 2; ++shift) {
        const std::string shifted = std::string(shift, 'x') + text;
        const Snippet snippet = snippetOf(shifted, {200 + shift, 4});
        EXPECT_TRUE(snippet.text.starts_with("\u2026\u00FC")) << snippet.text;
        EXPECT_TRUE(snippet.text.ends_with("\u00FC\u2026")) << snippet.text;
        EXPECT_EQ(snippet.text.substr(snippet.mark.at, snippet.mark.length), "tide");
    }
    const Snippet huge = snippetOf(std::string(10'000, 'a'), {0, 10'000});
    EXPECT_LT(huge.text.size(), 400u);
    EXPECT_LE(huge.mark.at + huge.mark.length, huge.text.size());
}

/// A new letter ends what was looked for by those before it, wherever that is.
TEST_F(SearchTest, loopsOverTheIndexEndWhenNobodyWaitsForThem) {
    constexpr int kRows = 25'000; // more than are gone to one by one
    connection().exec(fmt::format("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n "
                                  "WHERE i < {}) INSERT INTO URLs (URL, Host) SELECT "
                                  "'http://many.example/' || i, 'many.example' FROM n",
                                  kRows));
    SearchIndex search = index();
    IndexNews told;
    ASSERT_EQ(search.bringUpToDate(task, told), IndexEnd::ready);
    FoundIds all(kRows + 5);
    std::iota(all.begin(), all.end(), 1);
    for (const std::size_t rows : {all.size(), std::size_t{15'000}}) {
        CancelAfter soon(3);
        StillWanted wanted(soon);
        std::size_t shown = 0;
        search.eachRowOf({all.begin(), all.begin() + static_cast<std::ptrdiff_t>(rows)}, wanted,
                         [&](const RowFacts &) { ++shown; });
        EXPECT_TRUE(wanted.isOver());
        EXPECT_EQ(shown, 4 * StillWanted::kTurns - 1) << rows;
    }
    for (const char *text : {"many", "many example", "host:many", "-many", "many -example"}) {
        RowMatch match(parseSearch(text), SearchScope::all);
        CancelAfter soon(3);
        const SearchFound part = findIndexed(connection(), search, match, soon);
        EXPECT_TRUE(part.isCancelled) << text;
        EXPECT_THAT(part.ids, IsEmpty()) << text << ": of a part nobody can tell what is left out";
        EXPECT_FALSE(findIndexed(connection(), search, match, task).isCancelled) << text;
    }
    connection().exec("UPDATE URLs SET Notes = 'barometer' WHERE URL_ID = 1");
    CancelAfter soon(3);
    EXPECT_EQ(search.bringUpToDate(soon, told), IndexEnd::cancelled) << "before it compares";
    EXPECT_THAT(found("barometer"), ElementsAre(1));
}

} // namespace
} // namespace nv::test
