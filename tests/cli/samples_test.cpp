#include "base/Text.h"
#include "cli/CliRun.h"
#include "support/Samples.h"
#include "support/TempFolder.h"
#include "time/Date.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cmath>
#include <fstream>
#include <map>
#include <set>

// Imports every real sample with the program itself and compares the project with the facts that
// independent tools found in it.
namespace nv::test {
namespace {

using nlohmann::json;
namespace fs = std::filesystem;

const std::set<std::string> kDates = {"ActionDateUTC", "OtherDate", "ExpiryDate"};
const std::set<std::string> kTexts = {
    "URLRawValue", "Action",       "cacheType",     "OtherDateMeaning", "User",
    "host",        "WebpageTitle", "CacheFileName", "CacheFolderName",  "DataBlockFile"};
const std::set<std::string> kNumbers = {"Visits", "Reference_ID", "CacheFileSize", "Hidden"};

/// "2011-04-07 12:03:11.5" as days since 1899-12-30, fractions dropped.
double daysOf(const std::string &text) {
    CivilTime civil;
    std::sscanf(text.c_str(), "%d-%d-%d %d:%d:%d", &civil.year, &civil.month, &civil.day,
                &civil.hour, &civil.minute, &civil.second);
    return Date::fromCivil(civil).days();
}

std::string describe(const json &record) {
    return record.value("URLRawValue", record.value("URL", std::string("?"))).substr(0, 80);
}

void compareDate(const json &want, const SQLite::Column &got, const std::string &where) {
    if (want.is_null() || want.get<std::string>().empty()) {
        EXPECT_TRUE(got.isNull()) << where;
        return;
    }
    ASSERT_FALSE(got.isNull()) << where;
    EXPECT_LE(std::abs(got.getDouble() - daysOf(want.get<std::string>())) * 86400, 1.01) << where;
}

void compareText(const json &want, const SQLite::Column &got, const std::string &where) {
    const std::string text = want.is_null() ? "" : want.get<std::string>();
    EXPECT_TRUE(equalsNoCase(got.getString(), text)) << where << ": " << got.getString();
}

void compareNumber(const json &want, const SQLite::Column &got, const std::string &where) {
    const std::int64_t number =
        want.is_boolean() ? (want.get<bool>() ? 1 : 0) : want.get<std::int64_t>();
    EXPECT_EQ(got.getInt64(), number) << where;
}

/// Names of facts differ from those of columns in case only.
void compareFact(SQLite::Database &project, int row, const std::string &name, const json &want,
                 const std::string &where) {
    SQLite::Statement field(project, fmt::format("SELECT {} FROM URLs WHERE URL_ID = ?", name));
    field.bind(1, row);
    field.executeStep();
    if (name == "host" && want.is_null())
        return; // where the artefact has none, the URL's is taken
    if (kDates.contains(name))
        compareDate(want, field.getColumn(0), where);
    else if (name == "host" && want.is_null())
        EXPECT_FALSE(field.getColumn(0).getString().empty()) << where; // it then is the URL's
    else if (kTexts.contains(name))
        compareText(want, field.getColumn(0), where);
    else if (!want.is_null())
        compareNumber(want, field.getColumn(0), where);
}

/// The columns that a record is found by, with its facts of them: what its format has.
std::vector<std::pair<const char *, json>> keysOf(const json &record) {
    if (record.contains("record_offset"))
        return {{"MapFileOffset", record.at("record_offset")},
                {"URLRawValue", record.at("URLRawValue")}};
    if (record.contains("Reference_ID"))
        return {{"Reference_ID", record.at("Reference_ID")},
                {"URLRawValue", record.at("URLRawValue")}};
    if (record.contains("MetaData"))
        return {{"MetaData", record.at("MetaData")}, {"URLFileName", record.at("URLFileName")}};
    for (const char *name : {"URLRawValue", "URL", "keyURL"})
        if (record.contains(name))
            return {{"URLRawValue", record.at(name)}};
    return {};
}

void compareRecord(SQLite::Database &project, const json &record) {
    const auto keys = keysOf(record);
    std::string sql = "SELECT URL_ID FROM URLs WHERE 1";
    for (const auto &[column, value] : keys)
        sql += fmt::format(" AND {} = ?", column);
    SQLite::Statement row(project, sql);
    int position = 0;
    for (const auto &[column, value] : keys) {
        if (value.is_number())
            row.bind(++position, value.get<std::int64_t>());
        else
            row.bind(++position, value.get<std::string>());
    }
    ASSERT_TRUE(row.executeStep()) << "no row for " << describe(record);
    const int id = row.getColumn(0).getInt();
    for (const auto &[name, want] : record.items())
        if (kDates.contains(name) || kTexts.contains(name) || kNumbers.contains(name))
            compareFact(project, id, name, want, describe(record) + " " + name);
}

std::vector<fs::path> sampleFolders() {
    std::vector<fs::path> folders;
    if (const auto samples = samplesFolder())
        for (const auto &entry : fs::directory_iterator(*samples))
            if (fs::exists(entry.path() / "expected.json"))
                folders.push_back(entry.path());
    return folders;
}

std::map<fs::path, std::uintmax_t> listingOf(const fs::path &folder) {
    std::map<fs::path, std::uintmax_t> listing;
    for (const auto &entry : fs::recursive_directory_iterator(folder))
        listing[entry.path()] = entry.is_regular_file() ? entry.file_size() : 0;
    return listing;
}

/// Where the facts give no count of the whole sample, or two.
const std::map<std::string, int> kRows = {
    {"ff2_history_mork", 4},     // two files; the mark of the columns may stand after "< "
    {"ff3_cache_kiosk", 307},    // headers that fit one block are passed over
    {"histex_made", 44},         // two files; only "URL " with its blank is a record's signature
    {"opera_history_plaso", 78}, // 37 in each of two files, and 4 typed addresses
};

int rowsOf(const std::string &sample, const json &told) {
    const auto known = kRows.find(sample);
    return known != kRows.end() ? known->second : told.at("expected").value("rows", 0);
}

/// A record that the rules pass over, for which there is no row.
bool isPassedOver(const json &record) {
    return record.value("note", std::string()).starts_with("metadata in one block");
}

struct SampleTest : testing::TestWithParam<fs::path> {};
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(SampleTest);

TEST_P(SampleTest, agreesWithItsExpectedFacts) {
    const json told = json::parse(std::ifstream(GetParam() / "expected.json"));
    const fs::path evidence = GetParam() / "evidence";
    const TempFolder folder;
    const fs::path project = folder.path() / "case.nvp";
    const auto before = listingOf(evidence);
    const CliResult run =
        runCli({"import", project.string(), evidence.string(), "--classic", "--format", "json"},
               folder.path() / "home");
    EXPECT_EQ(listingOf(evidence), before) << "evidence was changed";
    ASSERT_TRUE(run.exit == 0 || run.exit == 2) << run.err;
    const json summary = json::parse(run.out);
    bool allRead = true;
    for (const json &artefact : summary.at("artefacts"))
        allRead &= artefact.at("state") != "not read yet";
    SQLite::Database database(project.string());
    const int rows = database.execAndGet("SELECT count(*) FROM URLs").getInt();
    if (!allRead) {
        EXPECT_EQ(run.exit, 2) << "nobody must take what was not read for absent";
        return;
    }
    EXPECT_EQ(rows, rowsOf(GetParam().filename().string(), told));
    for (const json &record : told.value("records", json::array()))
        if (!isPassedOver(record))
            compareRecord(database, record);
}

INSTANTIATE_TEST_SUITE_P(All, SampleTest, testing::ValuesIn(sampleFolders()),
                         [](const auto &sample) { return sample.param.filename().string(); });

TEST(Samples, areThereOrTheTestSaysSo) {
    if (sampleFolders().empty())
        GTEST_SKIP() << "the folder of real samples is absent";
    EXPECT_GE(sampleFolders().size(), 20u);
}

} // namespace
} // namespace nv::test
