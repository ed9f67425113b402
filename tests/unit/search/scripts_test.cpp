#include "SearchedProject.h"
#include "search/SearchedRowReader.h"

namespace nv::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Texts of all scripts, and the ways in which addresses code them.
struct ScriptsTest : testing::Test, SearchedProject {
    ScriptsTest() { add({{"URL", "http://a.example/"}, {"HTMLBody", "High water at Dover"}}); }
};

/// Their words stand one behind the other, and a vowel may be a mark.
TEST_F(ScriptsTest, findsWordsOfScriptsWithoutSpacesWithinPages) {
    const auto chinese = add({{"HTMLBody", "\u4ECA\u5929\u5929\u6C14\u5F88\u597D"}});
    const auto thai =
        add({{"HTMLBody", "\u0E09\u0E31\u0E19\u0E01\u0E34\u0E19\u0E02\u0E49\u0E32\u0E27"}});
    const auto japanese = add({{"HTMLBody", "\u6E2F\u306E\u30BF\u30A4\u30C9\u8868"}});
    const auto korean = add({{"HTMLBody", "\uC11C\uC6B8\uC5D0\uC11C \uC628 \uD3B8\uC9C0"}});
    EXPECT_THAT(found("\u5929\u6C14"), ElementsAre(chinese));
    EXPECT_THAT(found("\"\u5929\u6C14\u5F88\""), ElementsAre(chinese));
    EXPECT_THAT(found("\u0E01\u0E34\u0E19"), ElementsAre(thai)) << "to eat";
    EXPECT_THAT(found("\u0E02\u0E49\u0E32\u0E27"), ElementsAre(thai)) << "rice";
    EXPECT_THAT(found("\u30BF\u30A4\u30C9"), ElementsAre(japanese));
    EXPECT_THAT(found("\uC11C\uC6B8"), ElementsAre(korean)) << "with an ending";
    const auto mixed = add({{"HTMLBody", "2011\u5E74\u4F7F\u7528Barnacles\u6D4F\u89C8\u5668"}});
    EXPECT_THAT(found("barnacles"), ElementsAre(mixed)) << "a name among letters of theirs";
    EXPECT_THAT(found("2011"), ElementsAre(mixed));
    EXPECT_THAT(found("barnac"), IsEmpty());
    EXPECT_THAT(found("\u96E8"), IsEmpty());
    EXPECT_THAT(found("dove"), IsEmpty()) << "words of other scripts stay words";
}

TEST_F(ScriptsTest, findsSignsWithoutAWordWithinPages) {
    const auto boat = add({{"HTMLBody", "Out at sea \U0001F30A again"}});
    const auto price = add({{"MetaData", "X-Price: 5 \u20AC\u20AC\u20AC"}});
    EXPECT_THAT(found("\U0001F30A"), ElementsAre(boat));
    EXPECT_THAT(found("\u20AC\u20AC\u20AC"), ElementsAre(price));
    EXPECT_THAT(found("***"), IsEmpty());
}

/// Some systems store names of files with their accents taken apart.
TEST_F(ScriptsTest, findsLettersWithMarksHoweverTheyAreCoded) {
    const auto apart = add({{"URL", "file:///Users/ada/Mu%CC%88ller.pdf"}});
    const auto one = add({{"WebPageTitle", "M\u00FCller & Sons"}});
    EXPECT_THAT(found("M\u00FCller"), ElementsAre(apart, one));
    EXPECT_THAT(found("mu\u0308LLER"), ElementsAre(apart, one));
    EXPECT_THAT(found("*\u00FCll*"), ElementsAre(apart, one));
    EXPECT_THAT(found("m\u00FC"), ElementsAre(apart, one)) << "row by row";
    EXPECT_THAT(found("muller"), IsEmpty()) << "of values accents are a part";
    RowMatch match(parseSearch("M\u00FCller"));
    SearchedRowReader reader(connection());
    ASSERT_TRUE(reader.goTo(apart));
    const auto mark = match.firstMark(reader.row());
    ASSERT_TRUE(mark);
    EXPECT_EQ(snippetOf(reader.row().at(mark->field), mark->span).text.substr(mark->span.at),
              "Mu\u0308ller.pdf");
    EXPECT_EQ(match.marksIn("mu\u0308ller and m\u00FCller", 10).size(), 2U);
}

/// The index knows the accents of Latin letters alone, and takes others off only where they stand
/// apart.
TEST_F(ScriptsTest, wordsOfPagesAreComparedWithoutAccentsInAllScripts) {
    const auto russian = add({{"HTMLBody", "\u041D\u043E\u0432\u044B\u0439 \u0440\u0430\u0439\u043E"
                                           "\u043D, \u0435\u0449\u0451"}});
    const auto apart = add({{"HTMLBody", "\u043D\u043E\u0432\u044B\u0438\u0306"}});
    const auto greek =
        add({{"HTMLBody", "\u0391\u03B8\u03AE\u03BD\u03B1 \u0391\u0398\u0397\u039D\u0391"}});
    const auto german = add({{"MetaData", "X-City: D\u00FCsseldorf Stra\u00DFe"}});
    EXPECT_THAT(found("\u043D\u043E\u0432\u044B\u0439"), ElementsAre(russian, apart));
    EXPECT_THAT(found("\u043D\u043E\u0432\u044B\u0438\u0306"), ElementsAre(russian, apart));
    EXPECT_THAT(found("\"\u043D\u043E\u0432\u044B\u0439 \u0440\u0430\u0439\u043E\u043D\""),
                ElementsAre(russian));
    EXPECT_THAT(found("\u0435\u0449\u0435"), ElementsAre(russian)) << "as people write it";
    EXPECT_THAT(found("\u0440\u0430\u0439*"), ElementsAre(russian));
    EXPECT_THAT(found("-\u0440\u0430\u0439\u043E\u043D \u043D\u043E\u0432\u044B\u0439"),
                ElementsAre(apart));
    EXPECT_THAT(found("\u03B1\u03B8\u03B7\u03BD\u03B1"), ElementsAre(greek));
    EXPECT_THAT(found("\u0391\u0398\u0389\u039D\u0391"), ElementsAre(greek));
    EXPECT_THAT(found("dusseldorf"), ElementsAre(german));
    EXPECT_THAT(found("stra\u00DFe"), ElementsAre(german));
}

/// Readers of caches give no parameters of their own, and where somebody came from says it too.
TEST_F(ScriptsTest, findsWhatFormsPutIntoAddresses) {
    const auto cached = add({{"URL", "https://find.example/?q=how+to+moor+a+b%C3%B6at"}});
    const auto after = add({{"URL", "https://boats.example/"},
                            {"Referrer", "https://find.example/#q=how+to+moor%21"}});
    const auto plus = add({{"URL", "https://find.example/c++/to+moor"}});
    EXPECT_THAT(found("\"how to moor\""), ElementsAre(cached, after));
    EXPECT_THAT(found("\"a b\u00F6at\""), ElementsAre(cached));
    EXPECT_THAT(found("\"moor!\""), ElementsAre(after));
    EXPECT_THAT(found("to+moor"), ElementsAre(cached, after, plus)) << "as it stands too";
    EXPECT_THAT(found("c++"), ElementsAre(plus));
}

TEST_F(ScriptsTest, findsHostsByTheNamesThatTheyAreCodedFrom) {
    const auto row = add({{"URL", "http://xn--bcher-kva.example/"},
                          {"Host", "xn--bcher-kva.example"},
                          {"CacheType", "Chrome Cache"}});
    EXPECT_THAT(found("b\u00FCcher"), ElementsAre(row));
    EXPECT_THAT(found("host:B\u00DCCHER"), ElementsAre(row));
    EXPECT_THAT(found("host:xn--bcher"), ElementsAre(row));
}

} // namespace
} // namespace nv::test
