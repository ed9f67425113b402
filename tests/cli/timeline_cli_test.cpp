#include "cli/CliCase.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

namespace nv::test {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using testing::HasSubstr;
using testing::StartsWith;

/// A cache of four files, three on one day and one a week later, and one without a date.
class TimelineCliTest : public CliCase {
  protected:
    TimelineCliTest() {
        IndexDat index;
        index.folder("ABCDEFGH");
        for (const auto &[name, date] :
             {std::pair("a", fileTime(2011, 3, 1, 12)), std::pair("b", fileTime(2011, 3, 1, 12)),
              std::pair("c", fileTime(2011, 3, 1, 22)), std::pair("d", fileTime(2011, 3, 8, 12)),
              std::pair("e", fileTime(1601, 1, 1))})
            index.add({.url = std::string("http://") + name + ".example/",
                       .secondDate = date,
                       .fileSize = 6,
                       .folder = 0,
                       .fileName = name});
        fs::create_directories(evidence);
        writeWhole(evidence / "index.dat", index.bytes());
        const CliResult run = cli({"import", project, evidence.string(), "--kinds", "ie-cache",
                                   "--zone", "Europe/Berlin"});
        EXPECT_EQ(run.exit, 0) << run.err;
    }
    CliResult timeline(std::vector<std::string> more) {
        std::vector<std::string> words{"timeline", project};
        words.insert(words.end(), more.begin(), more.end());
        return cli(words);
    }
};

TEST_F(TimelineCliTest, countsByUnits) {
    const CliResult days = timeline({"--format", "csv", "--stack", "browser"});
    EXPECT_EQ(days.exit, 0) << days.err;
    EXPECT_THAT(days.out, StartsWith("Time,Events,Internet Explorer\r\n"
                                     "2011-03-01,3,3\r\n2011-03-08,1,1\r\n"));
    EXPECT_THAT(days.err, HasSubstr("in the zone Europe/Berlin"));
    EXPECT_EQ(timeline({"--format", "tsv", "--by", "hour", "--to", "2011-03-01"}).out,
              "Time\tEvents\n2011-03-01 13:00\t2\n2011-03-01 23:00\t1\n");
    EXPECT_EQ(timeline({"--format", "csv", "--by", "year", "--host", "d.example"}).out,
              "Time,Events\r\n2011,1\r\n");
    EXPECT_THAT(timeline({"--format", "csv", "--hours"}).out,
                HasSubstr("2011-03-01,0,0,0,0,0,0,0,0,0,0,0,0,0,2,"));
}

TEST_F(TimelineCliTest, theImportLeavesNarrowIndexesWithoutWhichTheSameIsTold) {
    const auto told = [&] {
        std::string all;
        for (const char *stack : {"none", "kind", "browser"})
            all += timeline({"--format", "csv", "--stack", stack}).out;
        return all + cli({"places", project}).out;
    };
    const auto hasIndexes = [&] {
        SQLite::Database database(project);
        return database
            .execAndGet("SELECT count(*) FROM sqlite_master WHERE name IN ('URLTimeIndex', "
                        "'URLHostIndex')")
            .getInt();
    };
    EXPECT_EQ(hasIndexes(), 2);
    const Bytes before = readWhole(project);
    const std::string quick = told();
    EXPECT_THAT(quick, HasSubstr("a.example"));
    EXPECT_EQ(readWhole(project), before) << "nothing is written to look at it";
    SQLite::Database(project, SQLite::OPEN_READWRITE)
        .exec("DROP INDEX URLTimeIndex; DROP INDEX URLHostIndex");
    EXPECT_EQ(told(), quick);
    EXPECT_EQ(hasIndexes(), 0) << "whoever only looks makes none";
}

TEST_F(TimelineCliTest, listsGaps) {
    EXPECT_EQ(timeline({"--gaps", "3", "--format", "csv"}).out,
              "From,To,Days\r\n2011-03-02,2011-03-07,6\r\n");
    EXPECT_EQ(timeline({"--gaps", "7", "--format", "csv"}).out, "From,To,Days\r\n");
}

TEST_F(TimelineCliTest, isOneObjectForPrograms) {
    const json object = json::parse(timeline({"--format", "json", "--stack", "kind"}).out);
    EXPECT_THAT(object.at("zone").get<std::string>(), StartsWith("Europe/Berlin"));
    EXPECT_EQ(object.at("events"), 4);
    EXPECT_EQ(object.at("slots").at(0),
              json::parse(R"({"time":"2011-03-01","events":3,"parts":{"Cache":3}})"));
    EXPECT_EQ(object.at("gaps").at(0).at("days"), 6);
}

TEST_F(TimelineCliTest, drawsAPicture) {
    const fs::path picture = folder.path() / "time.png";
    const CliResult run =
        timeline({"--format", "png", "--out", picture.string(), "--stack", "kind", "--hours"});
    if (!fs::exists(cliProgram().parent_path() / "norvelane-draw")) {
        EXPECT_EQ(run.exit, 3);
        EXPECT_THAT(run.err, HasSubstr("norvelane-draw"));
        GTEST_SKIP() << "norvelane-draw isn't built";
    }
    EXPECT_EQ(run.exit, 0) << run.err;
    EXPECT_THAT(text(picture), StartsWith("\x89PNG"));
    EXPECT_EQ(timeline({"--format", "png", "--out", picture.string()}).exit, 1);
    EXPECT_EQ(timeline({"--format", "png", "--out", picture.string(), "--overwrite"}).exit, 0);
    EXPECT_EQ(timeline({"--format", "png", "--out", (evidence / "time.png").string()}).exit, 1);
}

TEST_F(TimelineCliTest, refusesWhatMakesNoSense) {
    for (const std::vector<std::string> &words : {std::vector<std::string>{"--by", "week"},
                                                  {"--format", "png"},
                                                  {"--out", "a.png"},
                                                  {"--from", "yesterday"},
                                                  {"--hours", "--by", "minute"},
                                                  {"--gaps", "0"},
                                                  {"--gaps", "2", "--hours"},
                                                  {"--format", "png", "--out", "a.jpg"},
                                                  {"--query", "no such query"}})
        EXPECT_EQ(timeline(words).exit, 1) << testing::PrintToString(words);
    EXPECT_EQ(timeline({"--host", "nobody", "--format", "csv"}).out, "Time,Events\r\n");
}

} // namespace
} // namespace nv::test
