#include "base/Digest.h"
#include "base/Text.h"
#include "cli/CliCase.h"
#include "search/IndexFile.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>
#include <gmock/gmock.h>

#include <array>

namespace nv::test {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

/// Two cached pages: row 1 about tides, row 2 about the weather.
class SearchCliTest : public CliCase {
  protected:
    SearchCliTest() {
        IndexDat cache;
        cache.folder("ABCDEFGH");
        addCached(cache, "http://www.harbour-news.example/tide0.htm", "tide0[1].htm",
                  "<html><title>Tide tables</title><body>High water at Dover</body></html>");
        addCached(cache, "http://shop.example/weather.htm", "weather[1].htm",
                  "<html><title>Weather</title><body>No rain at Dover</body></html>");
        import(cache);
    }
    CliResult search(const std::string &text, std::vector<std::string> more = {}) {
        more.insert(more.begin(), {"search", project, text});
        return cli(more);
    }
    /// The ids that a search lists, in its order.
    std::string ids(const std::string &text) {
        const CliResult run = search(text, {"--format", "tsv"});
        EXPECT_EQ(run.exit, 0) << run.err;
        std::string found;
        const std::vector<std::string_view> lines = split(run.out, '\n');
        for (std::size_t line = 1; line < lines.size(); ++line)
            found += std::string(lines[line].substr(0, lines[line].find('\t'))) + " ";
        return std::string(trim(found));
    }
    fs::path index() const { return project + ".search"; }
};

/// Addresses of warrants and lists of threats have their escapes.
class RawAddressCliTest : public CliCase {
  protected:
    RawAddressCliTest() {
        IndexDat cache;
        cache.folder("ABCDEFGH");
        addCached(cache, "http://h.example/a%20b?to=http%3A%2F%2Fq.example", "a[1].htm", "x");
        addCached(cache, "http://h.example/plain", "b[1].htm", "x");
        import(cache);
    }
};

TEST_F(RawAddressCliTest, searchesAndListsFindTheAddressOfTheArtefact) {
    const auto search = [this](const std::string &text) {
        return cli({"search", project, text, "--format", "tsv"}).out;
    };
    const std::string whole = "http://h.example/a%20b?to=http%3A%2F%2Fq.example";
    EXPECT_THAT(search(whole), HasSubstr("\tAddress\thttp://h.example/a b?to=http://q.example\t"));
    EXPECT_THAT(search("%3A%2F"), HasSubstr("\tRaw address\t" + whole + "\t"));
    EXPECT_THAT(search("/http%3A%2F/"), HasSubstr("\tRaw address\t"));
    const fs::path list = folder.write("terms.txt", whole + "\nto=http%3A\n%2Fq\n");
    EXPECT_EQ(cli({"keywords", project, list.string(), "--format", "tsv"}).out,
              "Term\tRows\tHits\tLine\n" + whole +
                  "\t1\t1\t1\nto=http%3A\t1\t1\t2\n%2Fq\t1\t1\t3\n");
}

TEST_F(SearchCliTest, findsRowsAndSaysWhereTheTextStands) {
    const CliResult first = search("dover", {"--format", "tsv"});
    EXPECT_EQ(first.exit, 0) << first.err;
    EXPECT_THAT(first.out, StartsWith("URL_ID\tType\tActionDateUTC\tHost\tField\tSnippet\tURL\n"
                                      "1\tIE C"));
    EXPECT_THAT(first.out, HasSubstr("\twww.harbour-news.example\tPage\t"));
    EXPECT_THAT(first.out, HasSubstr("High water at Dover"));
    EXPECT_THAT(first.err, HasSubstr("search index of 2 rows made: "));
    EXPECT_THAT(first.err, HasSubstr("2 rows: 2 IE Cache; of 2 hosts: 1 shop.example, 1 "
                                     "www.harbour-news.example\n"));
    EXPECT_TRUE(fs::exists(index()));
    EXPECT_THAT(search("dover").err, Not(HasSubstr("index"))) << "it is made once";
    EXPECT_EQ(ids("dover -weather"), "1");
    EXPECT_EQ(ids("\"rain at\" host:shop"), "2");
    EXPECT_EQ(ids("*ove* after:2011-03-01"), "1 2");
    EXPECT_EQ(ids("/tide\\d/"), "1");
    EXPECT_EQ(ids("dover kind:history"), "");
}

TEST_F(SearchCliTest, looksThroughValuesAlone) {
    EXPECT_THAT(search("dover", {"--values"}).err, HasSubstr("0 rows\n"));
    EXPECT_THAT(search("tide", {"--values"}).err, HasSubstr("1 row: "));
}

TEST_F(SearchCliTest, countsAndLimits) {
    EXPECT_EQ(search("dover", {"--by", "host", "--format", "tsv"}).out,
              "Host\tRows\nshop.example\t1\nwww.harbour-news.example\t1\n");
    EXPECT_EQ(search("dover", {"--by", "kind", "--format", "tsv"}).out,
              "Type\tRows\nIE Cache\t2\n");
    const CliResult one = search("dover", {"--limit", "1", "--format", "tsv"});
    EXPECT_EQ(split(one.out, '\n').size(), 3u);
    EXPECT_THAT(one.err, HasSubstr("the first 1 of them are shown"));
}

TEST_F(SearchCliTest, saysWhatItCannotRead) {
    const CliResult wrong = search("/a(b/");
    EXPECT_EQ(wrong.exit, 1);
    EXPECT_THAT(wrong.err, HasSubstr("the expression /a(b/ can't be read: missing"));
    EXPECT_EQ(search("").exit, 1);
    EXPECT_EQ(search("after:noon").exit, 1);
    EXPECT_FALSE(fs::exists(index()));
    EXPECT_EQ(cli({"search", (folder.path() / "none.nvp").string(), "x"}).exit, 3);
}

/// A list that comes through a pipe is read once, and the trail has its hashes.
TEST_F(SearchCliTest, aListComesThroughAPipe) {
    const auto piped = [this](const std::string &list, const std::string &name) {
        return runProgram("/bin/sh",
                          {"-c",
                           "printf \"$0\" | \"$1\" keywords \"$2\" \"$3\" --format tsv "
                           "--keep \"Of $3\"",
                           list, cliProgram().string(), project, name},
                          folder.path() / "home");
    };
    for (const char *name : {"-", "/dev/stdin"}) {
        const CliResult run = piped("dover\\r\\ntide\\n", name);
        EXPECT_EQ(run.exit, 0) << run.err;
        EXPECT_EQ(run.out, "Term\tRows\tHits\tLine\ndover\t2\t2\t1\ntide\t1\t2\t2\n");
    }
    const std::string trail = cli({"trail", project, "--format", "tsv"}).out;
    EXPECT_THAT(trail, HasSubstr("standard input"));
    EXPECT_THAT(trail,
                HasSubstr(hashesOfFile(folder.write("terms.txt", "dover\r\ntide\n"))->sha256));
    const CliResult none = piped("", "-");
    EXPECT_EQ(none.exit, 1);
    EXPECT_THAT(none.err, HasSubstr("\"standard input\" is empty: a line for each term was "
                                    "expected: a text, \"whole words\" or /expression/"));
}

TEST_F(SearchCliTest, namesThatNoRowHasAreTold) {
    const CliResult kind = search("kind:foo");
    EXPECT_EQ(kind.exit, 0) << "as for each search that finds nothing";
    EXPECT_THAT(
        kind.err,
        HasSubstr("0 rows\nno row is of kind \"foo\"; there are: cache (2), IE Cache (2)\n"));
    EXPECT_THAT(search("dover host:shoop").err,
                HasSubstr("no row is of a host with \"shoop\" in its name; there are: shop.example "
                          "(1), www.harbour-news.example (1)"));
    EXPECT_THAT(search("tag:nosuch").err, HasSubstr("the project has no tags"));
    ASSERT_EQ(cli({"tag", project, "1", "--name", "Important"}).exit, 0);
    EXPECT_THAT(search("dover -tag:imprtant").err,
                HasSubstr("no row has a tag \"imprtant\"; there are: Important (1)"));
    EXPECT_THAT(search("dover -tag:important").err, Not(HasSubstr("there are")));
    EXPECT_THAT(search("nowhere").err, Not(HasSubstr("there are")));
    EXPECT_THAT(search("site:shop").err, HasSubstr("\"site:\" is no operator"));
}

TEST_F(SearchCliTest, keepsAResultThatOtherCommandsTake) {
    const CliResult kept = search("weather", {"--keep", "Rain"});
    EXPECT_EQ(kept.exit, 0) << kept.err;
    EXPECT_THAT(kept.err, HasSubstr("kept as \"Rain\"\n"));
    EXPECT_THAT(cli({"list", project, "--query", "Rain", "--format", "tsv"}).out,
                HasSubstr("http://shop.example/weather.htm"));
    EXPECT_THAT(cli({"results", project, "--format", "tsv"}).out, HasSubstr("Rain\tSearch\t1\t"));
    EXPECT_THAT(cli({"trail", project, "--format", "tsv"}).out,
                HasSubstr("Search\t1 row found by \"weather\", kept as \"Rain\"\t1"));
    const CliResult again = search("tide", {"--keep", "rain"});
    EXPECT_EQ(again.exit, 1);
    EXPECT_THAT(again.err, HasSubstr("the project has a result \"rain\""));
    for (const char *name : {"_DEFAULT", "TOP 25 URLs", "URLs", "a[b", " "})
        EXPECT_EQ(search("tide", {"--keep", name}).exit, 1) << name;
    EXPECT_EQ(cli({"results", "delete", project, "Rain"}).exit, 0);
    EXPECT_EQ(cli({"list", project, "--query", "Rain"}).exit, 1);
    EXPECT_EQ(cli({"results", "show", project, "Rain"}).exit, 1);
}

TEST_F(SearchCliTest, leavesEveryRowOfAProjectThatItOnlySearches) {
    const auto rows = [this] {
        return cli({"query", project, "SELECT * FROM URLs", "--format", "jsonl"}).out;
    };
    const std::string before = rows();
    ASSERT_FALSE(before.empty());
    search("*ove*");
    cli({"keywords", project, folder.write("terms.txt", "dover").string()});
    cli({"results", project});
    EXPECT_EQ(rows(), before);
    EXPECT_THAT(cli({"trail", project, "--format", "tsv"}).out,
                HasSubstr("rows found by \"*ove*\""))
        << "what is left of it is a note";
}

TEST_F(SearchCliTest, isNotDeceivedByAnIndexOfAnotherDay) {
    EXPECT_EQ(ids("dover"), "1 2");
    {
        SQLite::Database other(project, SQLite::OPEN_READWRITE);
        other.exec("UPDATE URLs SET HTMLBody = 'Calais' WHERE URL_ID = 1");
    }
    EXPECT_EQ(ids("dover"), "2");
    writeWhole(index(), text(index()).substr(0, 9000));
    EXPECT_EQ(ids("calais"), "1");
    fs::remove(index());
    EXPECT_EQ(ids("calais"), "1");
}

TEST_F(SearchCliTest, theNoteOfASearchLeavesTheIndexAsItIs) {
    EXPECT_EQ(ids("dover"), "1 2");
    const auto holds = [this] {
        SQLite::Database made(index().string());
        return made.execAndGet("SELECT Value FROM Facts WHERE Name = 'stamp'").getString() ==
               stampOf(project);
    };
    EXPECT_TRUE(holds());
    cli({"keywords", project, folder.write("terms.txt", "dover").string()});
    EXPECT_TRUE(holds());
    search("weather");
    EXPECT_TRUE(holds());
    EXPECT_EQ(cli({"verify", project}).exit, 0);
    const std::string trail = cli({"trail", project, "--format", "tsv"}).out;
    EXPECT_THAT(trail, HasSubstr("2 rows found by \"dover\""));
    EXPECT_THAT(trail, HasSubstr("1 of 1 term found in 2 of 2 rows"));
}

/// After a search and its note, whatever it is that changes rows.
TEST_F(SearchCliTest, changesAfterTheNoteOfASearchAreFound) {
    const auto change = [this](const std::string &statement) {
        SQLite::Database(project, SQLite::OPEN_READWRITE).exec(statement);
    };
    EXPECT_EQ(ids("dover"), "1 2");
    change("UPDATE URLs SET WebPageTitle = 'Seagulls' WHERE URL_ID = 1");
    EXPECT_EQ(ids("seagulls"), "1");
    ASSERT_EQ(cli({"note", project, "2", "lighthouse"}).exit, 0);
    EXPECT_EQ(ids("lighthouse"), "2");
    ASSERT_EQ(cli({"tag", project, "2", "--name", "Pier"}).exit, 0);
    EXPECT_EQ(ids("tag:pier"), "2");
    change("INSERT INTO RecordFacts (URL_ID, Name, Value) VALUES (1, 'title', 'breakwater')");
    EXPECT_EQ(ids("breakwater"), "1");
    ASSERT_EQ(cli({"upgrade", project, "--fix"}).exit, 0);
    EXPECT_EQ(ids("breakwater"), "1");
    IndexDat more;
    more.folder("ABCDEFGH");
    const fs::path place = folder.path() / "more";
    addCached(more, "http://late.example/", "late[1].htm", "<body>quayside</body>", place);
    writeWhole(place / "index.dat", more.bytes());
    ASSERT_EQ(cli({"import", project, place.string(), "--kinds", "ie-cache"}).exit, 0);
    EXPECT_EQ(ids("quayside"), "3");
    change("DELETE FROM URLs WHERE URL_ID = 3");
    EXPECT_EQ(ids("quayside"), "");
}

TEST_F(SearchCliTest, looksForAListOfKeywords) {
    const auto list = folder.write("terms.txt", "# first list\ndover\n\"rain\"\n/tide\\d/\nmoon\n");
    const CliResult run = cli({"keywords", project, list.string(), "--format", "tsv"});
    EXPECT_EQ(run.exit, 0) << run.err;
    EXPECT_EQ(run.out,
              "Term\tRows\tHits\tLine\ndover\t2\t2\t2\nrain\t1\t1\t3\ntide\\\\d\t1\t1\t4\n");
    EXPECT_THAT(run.err, HasSubstr("3 of 4 terms found in 2 of 2 rows\n"));
    EXPECT_THAT(cli({"keywords", project, list.string(), "--all", "--format", "tsv"}).out,
                HasSubstr("moon\t0\t0\t5\n"));
    const CliResult hits = cli({"keywords", project, list.string(), "--hits", "--format", "tsv"});
    EXPECT_THAT(hits.out, HasSubstr("2\train\tPage\t1\t"));
}

TEST_F(SearchCliTest, keepsTheHitsOfAList) {
    const auto list = folder.write("terms.txt", "dover\ntide");
    const CliResult run = cli({"keywords", project, list.string(), "--keep", "First list"});
    EXPECT_EQ(run.exit, 0) << run.err;
    EXPECT_EQ(cli({"results", "show", project, "First list", "--format", "tsv"}).out,
              "URL_ID\tTerm\tField\tHits\n1\ttide\tAddress\t1\n1\ttide\tTitle\t1\n"
              "1\tdover\tPage\t1\n2\tdover\tPage\t1\n");
    EXPECT_THAT(cli({"results", project, "--format", "tsv"}).out,
                HasSubstr("First list\tKeywords\t2\t"));
    EXPECT_THAT(cli({"trail", project, "--format", "tsv"}).out,
                HasSubstr("Keywords\t2 rows found by 2 terms, kept as \"First list\"\t2\t" +
                          list.string()));
}

TEST_F(SearchCliTest, namesTheLineOfAListThatItCannotRead) {
    const auto list = folder.write("terms.txt", "dover\n/a(/\n");
    const CliResult run = cli({"keywords", project, list.string()});
    EXPECT_EQ(run.exit, 1);
    EXPECT_THAT(run.err, HasSubstr("terms.txt\" line 2: the expression /a(/"));
    EXPECT_EQ(cli({"keywords", project, "/no/such/list"}).exit, 1);
}

/// Four visits around the night in which Berlin's clocks went forward; the first is of 2011-03-27
/// there already, the last of the day after.
TEST_F(SearchCliTest, datesGoByTheZoneOfTheProject) {
    IndexDat index;
    const std::array<std::uint64_t, 4> dates = {
        fileTime(2011, 3, 26, 23, 30), fileTime(2011, 3, 27, 0, 30), fileTime(2011, 3, 27, 21, 59),
        fileTime(2011, 3, 27, 22, 0)};
    for (std::size_t at = 0; at < dates.size(); ++at)
        index.add({.url = fmt::format("Visited: ada@http://n{}.example/", at + 1),
                   .secondDate = dates.at(at)});
    const auto file = folder.write("night/History.IE5/index.dat", index.bytes());
    const auto found = [&](const char *zone) {
        project = (folder.path() / fmt::format("{}.nvp", std::string(zone).substr(0, 3))).string();
        EXPECT_EQ(cli({"import", project, file.parent_path().string(), "--zone", zone}).exit, 0);
        return ids("after:2011-03-27 before:2011-03-28");
    };
    EXPECT_EQ(found("UTC"), "2 3 4");
    EXPECT_THAT(search("after:2011-03-27").err, HasSubstr("by the clock of UTC\n"));
    EXPECT_EQ(found("Europe/Berlin"), "1 2 3");
    EXPECT_EQ(ids("after:2011-03-27T02:30"), "3 4") << "an hour that wasn't there";
    EXPECT_EQ(ids("kind:history -before:2011-03-28"), "4");
    EXPECT_THAT(search("before:2011-03-28", {"--keep", "Night"}).err,
                HasSubstr("before: and after: go by the clock of Europe/Berlin\n"));
    EXPECT_THAT(cli({"results", project, "--format", "csv"}).out,
                HasSubstr("before:2011-03-28 [dates by Europe/Berlin]"));
    EXPECT_THAT(cli({"trail", project, "--format", "jsonl"}).out,
                HasSubstr("[dates by Europe/Berlin]"));
    EXPECT_THAT(search("example").err, Not(HasSubstr("clock of"))) << "no date was asked for";
}

} // namespace
} // namespace nv::test
