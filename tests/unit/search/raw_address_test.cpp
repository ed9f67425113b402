#include "SearchedProject.h"
#include "search/HitFinder.h"
#include "search/KeywordRun.h"
#include "search/KeywordTexts.h"
#include "search/SearchedRowReader.h"

namespace nv::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Rows 1 to 4: an address with escapes, one of another scheme, one with more beside it, and one
/// of which only the cleaned up form is known.
struct RawAddressTest : testing::Test, SearchedProject {
    RawAddressTest() {
        add({{"URL", "https://example.com/a b/c?q=\u00FCber#frag"},
             {"URLRawValue", "https://example.com/a%20b%2Fc?q=%C3%BCber#frag"}});
        add({{"URL", "example.com"}, {"URLRawValue", "mailto:ann@example.com"}});
        add({{"URL", "https://tides.example/low"},
             {"URLRawValue", "O^partitionKey=%28https%2Cquay.example%29,:https://tides.example/"
                             "low"}});
        add({{"URL", "https://example.com/a b/c?q=\u00FCber"}});
    }
    void addFact(std::int32_t row, const std::string &name, const FactValue &value,
                 const FactValue &raw = {}) {
        FactList facts;
        facts.addStored({name, value, raw});
        RecordFacts(connection()).store(UrlId{row}, facts);
    }
    SearchedRow read(std::int32_t id) {
        SearchedRowReader reader(connection());
        EXPECT_TRUE(reader.goTo(id));
        return reader.row();
    }
    std::string placeOf(std::int32_t id, const std::string &text) {
        const SearchedRow row = read(id);
        const auto mark = RowMatch(parseSearch(text)).firstMark(row);
        return !mark ? "nowhere"
                     : fmt::format("{}: {}", fieldWord(mark->field),
                                   row.at(mark->field).substr(mark->span.at, mark->span.length));
    }
    KeywordFound keywords(const std::string &list) {
        KeywordTexts terms(parseKeywords(list, "list"));
        return findKeywords(connection(), terms, task);
    }
};

TEST_F(RawAddressTest, isFoundAsTheArtefactHasIt) {
    for (const SearchScope scope : {SearchScope::all, SearchScope::values}) {
        EXPECT_THAT(found("https://example.com/a%20b%2Fc?q=%C3%BCber#frag", scope), ElementsAre(1));
        EXPECT_THAT(found("*b%2fc*", scope), ElementsAre(1, 4)) << "the last one without escapes";
        EXPECT_THAT(found("b%2", scope), ElementsAre(1));
        EXPECT_THAT(found("%2F", scope), ElementsAre(1)) << "signs alone are taken as they stand";
    }
    EXPECT_THAT(found("/a%20b%2Fc\\?/"), ElementsAre(1));
    EXPECT_THAT(found("example.com -%2Fc"), ElementsAre(2));
    EXPECT_EQ(placeOf(1, "%2F"), "Raw address: %2F");
    EXPECT_EQ(placeOf(1, "a%20b%2Fc"), "Address: a b/c");
}

TEST_F(RawAddressTest, isFoundWithoutItsEscapesAndTheOtherWayRound) {
    EXPECT_THAT(found("\u00FCber"), ElementsAre(1, 4));
    EXPECT_THAT(found("q=%c3%bcber"), ElementsAre(1, 4));
    EXPECT_THAT(found("q=%FCber"), ElementsAre(1, 4)) << "in the code page of old forms";
    EXPECT_THAT(found("\"a%20b\""), ElementsAre(1, 4));
    EXPECT_THAT(found("(https,quay.example)"), ElementsAre(3));
    EXPECT_THAT(found("100%"), IsEmpty());
    EXPECT_THAT(found("%zz"), IsEmpty());
}

TEST_F(RawAddressTest, keepsTheSchemesThatTheAddressLost) {
    add({{"URL", "1"}, {"URLRawValue", "magnet:?xt=urn:btih:0a&dn=Tide%20tables"}});
    add({{"URL", "https://v.example/a"}, {"URLRawValue", "view-source:https://v.example/a"}});
    EXPECT_THAT(found("mailto"), ElementsAre(2));
    EXPECT_THAT(found("ann@example.com"), ElementsAre(2));
    EXPECT_THAT(found("magnet"), ElementsAre(5));
    EXPECT_THAT(found("\"tide tables\""), ElementsAre(5));
    EXPECT_THAT(found("view-source:https"), ElementsAre(6));
    EXPECT_THAT(found("/^view-source:/"), ElementsAre(6));
    EXPECT_EQ(placeOf(2, "mailto"), "Raw address: mailto");
}

TEST_F(RawAddressTest, takesNoRoomWhereItSaysNothingMore) {
    add({{"URL", "https://same.example/x"}, {"URLRawValue", "https://same.example/x"}});
    EXPECT_EQ(read(5).at(SearchField::rawAddress), "");
    std::string values;
    joinValues(read(5), values);
    EXPECT_EQ(values, "https://same.example/x\n");
    joinValues(read(2), values);
    EXPECT_EQ(values, "mailto:ann@example.com\n") << "the address is a part of it";
    joinValues(read(1), values);
    EXPECT_EQ(values, "https://example.com/a b/c?q=\u00FCber#frag\n"
                      "https://example.com/a%20b%2Fc?q=%C3%BCber#frag\n");
}

TEST_F(RawAddressTest, factsWithEscapesAreFoundByWhatTheySay) {
    addFact(2, "from_url", "https://quay.example/tide%20tables?x=%C3%A4");
    EXPECT_THAT(found("\"tide tables\""), ElementsAre(2));
    EXPECT_THAT(found("tables?x=\u00E4"), ElementsAre(2));
    EXPECT_THAT(found("tide%20tables"), ElementsAre(2));
    addFact(3, "target", "https://quay.example/tide tables");
    EXPECT_THAT(found("tide%20tables"), ElementsAre(2, 3));
}

TEST_F(RawAddressTest, listsOfCodedTermsFindIt) {
    const KeywordFound coded = keywords("https://example.com/a%20b%2Fc?q=%C3%BCber\nmailto:\n%2F");
    EXPECT_THAT(coded.rows, ElementsAre(2, 1, 1));
    EXPECT_THAT(coded.times, ElementsAre(2, 1, 1));
    ASSERT_EQ(coded.hits.size(), 4U);
    EXPECT_EQ(coded.hits[0].field, SearchField::address);
    EXPECT_EQ(coded.hits[1].field, SearchField::rawAddress);
    const KeywordFound plain = keywords("example.com\ntides.example");
    EXPECT_THAT(plain.rows, ElementsAre(3, 1));
    EXPECT_THAT(plain.times, ElementsAre(3, 1)) << "the raw address says the same once more";
}

TEST_F(RawAddressTest, viewersMarkEachSpelling) {
    HitFinder hits(RowMatch(parseSearch("a%20b")));
    EXPECT_EQ(hits.marksIn("x a%20b and A B"), (std::vector<TextSpan>{{2, 5}, {12, 3}}));
    EXPECT_THAT(hits.formsOf(read(1)), ElementsAre("a%20b", "a b"));
}

/// Facts of a row, and terms, are texts of their own.
TEST_F(RawAddressTest, anchorsHoldForEachFact) {
    addFact(2, "note", "top.example said https://top.example too");
    addFact(3, "first", "before");
    addFact(3, "partition", "https://top.example");
    addFact(3, "transition", "typed", std::int64_t{33});
    EXPECT_THAT(found("/^https:..top\\.example$/"), ElementsAre(3));
    EXPECT_THAT(found("/^typed$/"), ElementsAre(3));
    EXPECT_THAT(found("/^33$/"), ElementsAre(3)) << "what the artefact has for it";
    EXPECT_THAT(found("/before\\shttps/"), IsEmpty()) << "no match goes from one to the next";
    EXPECT_EQ(placeOf(3, "/^https:..top\\.example$/"), "Facts: https://top.example");
    const KeywordFound list = keywords("/^https:..top\\.example$/\n/^[a-z]+$/\n/\\A33\\z/");
    EXPECT_THAT(list.rows, ElementsAre(1, 1, 1));
    EXPECT_THAT(list.times, ElementsAre(1, 2, 1));
    const SearchedRow row = read(3);
    for (const KeywordHit &hit : list.hits) {
        if (hit.row == 3 && hit.term == 0) {
            EXPECT_EQ(row.at(hit.field).substr(hit.first.at, hit.first.length),
                      "https://top.example");
        }
    }
    EXPECT_THAT(HitFinder(RowMatch(parseSearch("/^typed$/"))).formsOf(row), ElementsAre("typed"));
}

/// A name keeps its letters in another language's capitals.
TEST_F(RawAddressTest, theTurkishLettersAreOne) {
    const auto big = add({{"WebPageTitle", "\u0130stanbul"}, {"HTMLBody", "\u0130zmir limani"}});
    const auto small = add({{"WebPageTitle", "\u0131ss\u0131z"}, {"HTMLBody", "kap\u0131lar"}});
    const auto apart = add({{"WebPageTitle", "i\u0307stanbul I\u0307STANBUL"}});
    const auto dot = add({{"WebPageTitle", "e\u0307: \u0117"}});
    for (const char *text : {"istanbul", "ISTANBUL", "\u0130STANBUL", "\u0131stanbul"})
        EXPECT_THAT(found(text), ElementsAre(big, apart)) << text;
    EXPECT_THAT(found("ISSIZ"), ElementsAre(small));
    EXPECT_THAT(found("\u0130SS\u0130Z"), ElementsAre(small));
    EXPECT_THAT(found("izmir"), ElementsAre(big)) << "a word of a page";
    EXPECT_THAT(found("KAPILAR"), ElementsAre(small));
    EXPECT_THAT(found("*pila*"), ElementsAre(small)) << "a part of one";
    EXPECT_THAT(found("*zmir lim*"), ElementsAre(big));
    EXPECT_THAT(found("\u0117"), ElementsAre(dot)) << "other letters keep their dot";
    EXPECT_EQ(placeOf(apart, "istanbul"), "Title: i\u0307stanbul");
    const KeywordFound list = keywords("istanbul\n\"ISSIZ\"");
    EXPECT_THAT(list.rows, ElementsAre(2, 1));
    EXPECT_THAT(list.times, ElementsAre(3, 1));
}

} // namespace
} // namespace nv::test
