#include "SearchedProject.h"
#include "base/Digest.h"
#include "base/Files.h"
#include "search/KeywordRun.h"
#include "search/KeywordTexts.h"
#include "search/SearchFailure.h"

#include <array>
#include <fstream>
#include <random>
#include <sys/stat.h>
#include <thread>

namespace nv::test {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

std::string failureOf(const std::string &text) {
    try {
        parseKeywords(text, "list.txt");
    } catch (const SearchFailure &failure) {
        return failure.what();
    }
    return "";
}

/// "line:term", with the signs of whole words and expressions.
std::vector<std::string> termsOf(std::string_view text, PlainTerms plain = PlainTerms::anywhere) {
    std::vector<std::string> terms;
    for (const Keyword &term : parseKeywords(text, "list", plain).terms) {
        const std::string sign = term.isExpression ? "/" : term.isWholeWord ? "\"" : "";
        terms.push_back(fmt::format("{}:{}{}{}", term.line, sign, term.text, sign));
    }
    return terms;
}

TEST(KeywordList, readsTermsPhrasesAndExpressions) {
    EXPECT_THAT(
        termsOf("\xEF\xBB\xBFtide\r\n# a comment\r\n\r\n  low water \n\"spring tide\"\n/t.de/\n"),
        ElementsAre("1:tide", "4:low water", "5:\"spring tide\"", "6:/t.de/"));
    EXPECT_THAT(termsOf("a;b\n/half\n\"\"\n"), ElementsAre("1:a;b", "2:/half", "3:\"\""));
    EXPECT_THAT(termsOf("tide\n/t/", PlainTerms::wholeWords), ElementsAre("1:\"tide\"", "2:/t/"));
    EXPECT_THAT(termsOf("tide\rlow water\r\r# no\n\rmoon"),
                ElementsAre("1:tide", "2:low water", "6:moon"));
    EXPECT_THAT(termsOf("Z\xFCrich"), ElementsAre("1:Z\xC3\xBCrich"));
}

TEST(KeywordList, takesEachTermOnce) {
    const KeywordList list = parseKeywords("tide\nTIDE\n\"tide\"\n/tide/\n/TIDE/\ntide", "list");
    EXPECT_EQ(list.terms.size(), 4u);
    EXPECT_EQ(list.repeated, 2u);
}

TEST(KeywordList, namesTheLineThatItCannotRead) {
    EXPECT_THAT(failureOf("tide\n/a(/\n"), HasSubstr("\"list.txt\" line 2: the expression /a(/"));
    EXPECT_THAT(failureOf("\n\"--\"\n"), HasSubstr("line 2: \"--\" has no word in it"));
    EXPECT_THAT(failureOf("ok\nt" + std::string("\0i\0", 3)),
                HasSubstr("line 2: there are zero bytes in it: text in UTF-8, in UTF-16 with"));
    EXPECT_THAT(failureOf("ok\n" + std::string(3000, 'a')), HasSubstr("line 2: the term has 3000"));
    EXPECT_THAT(failureOf("# nothing\n\n"), HasSubstr("holds no terms"));
    EXPECT_THAT(failureOf(""),
                HasSubstr("\"list.txt\" is empty: a line for each term was expected"));
    EXPECT_THAT(failureOf("# nothing\n"), HasSubstr("\"whole words\" or /expression/"));
}

TEST(KeywordList, readsFilesInUtf16) {
    const TempFolder folder;
    const auto file =
        folder.write("list.txt", std::string_view("\xFF\xFEt\0i\0d\0e\0\r\0\n\0\xFC\0x\0", 18));
    const KeywordList list = readKeywords(file);
    ASSERT_EQ(list.terms.size(), 2u);
    EXPECT_EQ(list.terms[0].text, "tide");
    EXPECT_EQ(list.terms[1].text, "\u00FCx");
    EXPECT_THROW(readKeywords(folder.path() / "none.txt"), FileFailure);
}

TEST(KeywordList, readsAPipeToItsEnd) {
    const TempFolder folder;
    const fs::path pipe = folder.path() / "pipe";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    std::string text = "\xEF\xBB\xBFtide\r\n";
    for (int term = 0; term < 20'000; ++term)
        text += fmt::format("term{}\r\n", term); // more than a pipe holds at once
    std::thread writer([&] { std::ofstream(pipe, std::ios::binary) << text; });
    const KeywordList list = readKeywords(pipe);
    writer.join();
    EXPECT_EQ(list.terms.size(), 20'001u);
    EXPECT_EQ(list.terms.front().text, "tide");
    EXPECT_EQ(list.hashes.size, text.size());
    EXPECT_EQ(list.file, pipe.string());
    const fs::path file = folder.write("list.txt", text);
    EXPECT_EQ(list.hashes, *hashesOfFile(file));
    EXPECT_EQ(readKeywords(file).hashes, list.hashes);
}

TEST(TermAutomaton, findsWhatLookingForEachFinds) {
    std::mt19937 random(7);
    for (int turn = 0; turn < 50; ++turn) {
        std::set<std::string> distinct;
        while (distinct.size() < 12) {
            std::string term;
            for (std::size_t length = 1 + random() % 4; length > 0; --length)
                term.push_back(static_cast<char>('a' + random() % 3));
            distinct.insert(term);
        }
        const std::vector<std::string> terms(distinct.begin(), distinct.end());
        std::string text;
        for (int at = 0; at < 200; ++at)
            text.push_back(static_cast<char>('a' + random() % 4));
        std::vector<std::size_t> expected(terms.size());
        for (std::size_t term = 0; term < terms.size(); ++term)
            for (std::size_t at = text.find(terms[term]); at != std::string::npos;
                 at = text.find(terms[term], at + 1))
                ++expected[term];
        std::vector<std::size_t> found(terms.size());
        TermAutomaton(terms).eachIn(text, [&](std::uint32_t term, std::size_t end) {
            EXPECT_EQ(text.substr(end - terms[term].size(), terms[term].size()), terms[term]);
            ++found[term];
        });
        EXPECT_EQ(found, expected);
    }
}

TEST(TermAutomaton, refusesTermsThatNeedTooMuchMemory) {
    std::vector<std::string> terms;
    std::mt19937 random(7);
    for (int term = 0; term < 2000; ++term) {
        terms.emplace_back();
        for (int at = 0; at < 2000; ++at)
            terms.back().push_back(static_cast<char>(random() % 256));
    }
    EXPECT_THROW(TermAutomaton automaton(terms), SearchFailure);
}

std::vector<std::string> inText(const std::string &list, const std::string &text) {
    const KeywordList terms = parseKeywords(list, "list");
    KeywordTexts texts(terms);
    std::vector<std::string> lines;
    const std::array<TextSpan, 1> whole = {{{0, text.size()}}};
    for (const TermInText &found : texts.in(text, whole))
        lines.push_back(fmt::format("{} {} at {}+{}", terms.terms[found.term].text, found.hits,
                                    found.first.at, found.first.length));
    std::ranges::sort(lines);
    return lines;
}

TEST(KeywordTexts, findsTermsWordsAndExpressionsInEitherCase) {
    const std::string text = "The Tide: TIDES, low\nwater; \u00DCBER tide";
    EXPECT_THAT(inText("tide\nwater\nmoon", text), ElementsAre("tide 3 at 4+4", "water 1 at 21+5"));
    EXPECT_THAT(inText("\"tide\"", text), ElementsAre("tide 2 at 4+4"));
    EXPECT_THAT(inText("\u00FCber", text), ElementsAre("\u00FCber 1 at 28+5"));
    EXPECT_THAT(inText("/t[ij]des?/\n/moon/\n/x*/", text), ElementsAre("t[ij]des? 3 at 4+4"))
        << "an expression that matches nothing at all has no hits";
    EXPECT_THAT(inText("ide\ntide\n\"ide\"", "tide"), ElementsAre("ide 1 at 1+3", "tide 1 at 0+4"));
    EXPECT_THAT(inText("tide", ""), IsEmpty());
}

TEST(KeywordTexts, findsLettersWithMarksHoweverTheyAreCoded) {
    EXPECT_THAT(inText("M\u00FCller\n\"mu\u0308ller\"", "mu\u0308ller M\u00FCLLER"),
                ElementsAre("M\u00FCller 2 at 0+8", "mu\u0308ller 2 at 0+8"));
}

TEST(KeywordTexts, findsWholeWordsOfScriptsWithoutSpaces) {
    EXPECT_THAT(inText("\"\u5929\u6C14\"\n\"tide\"", "\u4ECA\u5929\u5929\u6C14\u5F88\u597D tides"),
                ElementsAre("\u5929\u6C14 1 at 6+6"));
    EXPECT_THAT(inText("\"tide\"", "\u5929tide\u6C14 tides"), ElementsAre("tide 1 at 3+4"));
}

struct KeywordRunTest : testing::Test, SearchedProject {
    KeywordRunTest() {
        add({{"URL", "http://a.example/tide"}, {"HTMLBody", "tide after tide and the moon"}});
        add({{"URL", "http://b.example/"}, {"Notes", "nothing"}});
        add({{"URL", "http://c.example/"}, {"MetaData", "Server: Moon"}});
    }
    KeywordFound run(const KeywordList &list, TaskMonitor &monitor, std::size_t most = 1000) {
        KeywordTexts terms(list);
        return findKeywords(connection(), terms, monitor, most);
    }
};

TEST_F(KeywordRunTest, looksThroughAllTextsInOnePass) {
    const KeywordList list = parseKeywords("tide\nmoon\nsun", "list");
    const KeywordFound found = run(list, task);
    EXPECT_EQ(found.rowsLooked, 3);
    EXPECT_EQ(found.rowsFound, 2);
    EXPECT_THAT(found.rows, ElementsAre(1, 2, 0));
    EXPECT_THAT(found.times, ElementsAre(3, 2, 0));
    ASSERT_EQ(found.hits.size(), 4u);
    EXPECT_EQ(found.hits[0].field, SearchField::address);
    EXPECT_EQ(found.hits[0].first, (TextSpan{17, 4}));
    EXPECT_EQ(found.hits[3].row, 3);
    EXPECT_EQ(found.hits[3].field, SearchField::headers);
    EXPECT_FALSE(found.isCancelled || found.isCut);
}

TEST_F(KeywordRunTest, countsOnWhereNoMoreHitsFit) {
    const KeywordList list = parseKeywords("tide\nmoon", "list");
    const KeywordFound found = run(list, task, 2);
    EXPECT_TRUE(found.isCut);
    EXPECT_EQ(found.hits.size(), 2u);
    EXPECT_THAT(found.times, ElementsAre(3, 2));
}

TEST_F(KeywordRunTest, endsWhenItIsCancelled) {
    CancelAfter soon(1);
    const KeywordFound found = run(parseKeywords("example", "list"), soon);
    EXPECT_TRUE(found.isCancelled);
    EXPECT_EQ(found.rowsLooked, 2);
}

TEST_F(KeywordRunTest, takesThousandsOfTermsAndExpressions) {
    std::string text = "tide\n";
    for (int term = 0; term < 5'000; ++term)
        text += fmt::format("keyword{}\n", term);
    for (int term = 0; term < 500; ++term)
        text += fmt::format("/exp[a-z]+{}\\b/\n", term);
    add({{"URL", "http://d.example/"}, {"HTMLBody", "keyword4999 expression17"}});
    const KeywordList list = parseKeywords(text, "list");
    const KeywordFound found = run(list, task);
    EXPECT_EQ(found.rowsFound, 2);
    std::vector<std::string> terms;
    for (const KeywordHit &hit : found.hits)
        if (hit.row == 4)
            terms.push_back(list.terms[hit.term].text);
    EXPECT_THAT(terms, testing::UnorderedElementsAre("keyword4", "keyword49", "keyword499",
                                                     "keyword4999", "exp[a-z]+17\\b"));
}

} // namespace
} // namespace nv::test
