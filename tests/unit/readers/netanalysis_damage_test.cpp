#include "unit/readers/NetAnalysisFixture.h"

#include <fmt/format.h>
#include <gmock/gmock.h>

#include <set>
#include <stdexcept>

namespace nv {
namespace {

using test::Jet4;
using test::NetAnalysisCase;
using testing::HasSubstr;
using Reading = test::NetAnalysisFixture;

/// A case whose events take two pages; the second has a long text on a page of its own.
struct NetAnalysisDamage : Reading {
    NetAnalysisDamage() {
        for (int i = 1; i <= 60; ++i)
            made.add({.internetHistory = fmt::format("http://a/{}", i),
                      .contentData = i == 2 ? std::string(5000, 'x') : std::string()});
        bytes = made.bytes();
        pages = made.file().rowPages("History");
        definition = made.file().definitionPage("History") * Jet4::kPage;
    }
    void put16(std::size_t at, unsigned number) {
        bytes.at(at) = static_cast<char>(number & 0xFF);
        bytes.at(at + 1) = static_cast<char>(number >> 8);
    }
    std::size_t rowsOfPage(std::size_t page) const {
        return static_cast<std::uint8_t>(bytes.at(page * Jet4::kPage + Jet4::kPageRowsAt));
    }
    void expectCutShort(std::size_t records, std::uint64_t notReached, const std::string &reason) {
        EXPECT_EQ(result.state, ReadState::cutShort);
        EXPECT_EQ(sink.records.size(), records);
        EXPECT_EQ(result.notReached, notReached);
        EXPECT_THAT(result.reason, HasSubstr(reason));
        EXPECT_FALSE(log.entries.empty());
        EXPECT_THAT(result.reason, testing::StartsWith(file.string() + ": "));
    }

    NetAnalysisCase made;
    std::string bytes;
    std::vector<std::size_t> pages;
    std::size_t definition = 0;
};

TEST_F(NetAnalysisDamage, isNotThereAtFirst) {
    ASSERT_GE(pages.size(), 2U);
    read(bytes);
    EXPECT_EQ(result.state, ReadState::complete) << result.reason;
    EXPECT_EQ(sink.records.size(), 60U);
}

TEST_F(NetAnalysisDamage, ofTheCountOfRowsLosesNone) {
    for (const unsigned count : {0U, 59U, 0xFFFFU}) {
        put16(definition + Jet4::kRowCountAt, count);
        read(bytes);
        expectCutShort(60, 0,
                       fmt::format("table History counts {} rows, and 60 were found", count));
    }
    put16(definition + Jet4::kRowCountAt, 61);
    read(bytes);
    expectCutShort(60, 1, "table History counts 61 rows, and 60 were found");
    EXPECT_EQ(urls().back(), "http://a/60"); // none is read twice
}

TEST_F(NetAnalysisDamage, ofAPagesOwnerCostsThatPage) {
    const std::size_t lost = rowsOfPage(pages[0]);
    bytes[pages[0] * Jet4::kPage + 4] = 0x55;
    read(bytes);
    expectCutShort(60 - lost, lost, fmt::format("and {} were found", 60 - lost));
}

TEST_F(NetAnalysisDamage, ofTheListOfPagesLosesNone) {
    const std::size_t at = definition + 55; // row:u8 page:u24 of the list
    const std::size_t page = static_cast<std::uint8_t>(bytes[at + 1]) * Jet4::kPage;
    const std::size_t row = static_cast<std::uint8_t>(bytes[at]);
    const std::size_t entry = page + Jet4::kPageRowsAt + 2 + 2 * row;
    const std::size_t list = page + static_cast<std::uint8_t>(bytes[entry]) +
                             256U * static_cast<std::uint8_t>(bytes[entry + 1]);
    const std::string sound = bytes;
    bytes.replace(list + 5, 64, std::string(64, '\0'));
    read(bytes);
    expectCutShort(60, 0, "60 rows of table History lie on pages that its list of pages lacks");
    bytes.replace(list + 5, 64, std::string(64, '\xFF')); // also pages that aren't the table's
    read(bytes);
    EXPECT_EQ(result.state, ReadState::complete) << result.reason;
    EXPECT_EQ(sink.records.size(), 60U);
    bytes[list] = 1; // the long form, which these bytes are not
    read(bytes);
    expectCutShort(60, 0, "60 rows of table History");
    bytes = sound;
    bytes[list] = 9;
    read(bytes);
    EXPECT_EQ(result.state, ReadState::complete) << result.reason;
    EXPECT_EQ(sink.records.size(), 60U);
}

TEST_F(NetAnalysisDamage, ofARowsEntryCostsItAndItsNeighbour) {
    put16(pages[0] * Jet4::kPage + Jet4::kPageRowsAt + 2 + 2 * 3, 0x1FFF);
    read(bytes);
    EXPECT_EQ(result.state, ReadState::cutShort);
    EXPECT_GE(sink.records.size(), 57U);
    EXPECT_EQ(result.notReached, 60 - sink.records.size());
    EXPECT_THAT(log.entries.at(0).message,
                HasSubstr(fmt::format("record at {}", pages[0] * Jet4::kPage + 20)));
}

TEST_F(NetAnalysisDamage, ofAPagesNumberOfRowsMakesNoneUp) {
    put16(pages.back() * Jet4::kPage + Jet4::kPageRowsAt, 900);
    read(bytes);
    expectCutShort(60, 0, "1 row can't be read");
    EXPECT_THAT(log.entries.at(0).message, HasSubstr("number of rows makes no sense"));
}

TEST_F(NetAnalysisDamage, ofALongTextKeepsTheRow) {
    std::size_t at = bytes.find("LVAL");
    ASSERT_NE(at, std::string::npos);
    bytes[at - 4] = 0x05; // the text's page is no page of rows any more
    put16(at + Jet4::kPageRowsAt - 4 + 2, 0x1FFF);
    read(bytes);
    expectCutShort(60, 0, "1 row with values that are cut");
    EXPECT_THAT(log.entries.at(0).message, HasSubstr("its value of column \"ContentData\" is cut"));
    EXPECT_EQ(sink.records[1].URL, "http://a/2");
}

TEST_F(NetAnalysisDamage, ofALongTextThatLeadsBackToItselfEnds) {
    const std::size_t at = bytes.find("LVAL") - 4;
    const auto page = static_cast<unsigned>(at / Jet4::kPage);
    for (unsigned row = 0; row < 2; ++row) {
        const std::size_t entry = at + Jet4::kPageRowsAt + 2 + std::size_t{2} * row;
        const std::size_t begin = static_cast<std::uint8_t>(bytes[entry]) +
                                  256U * static_cast<std::uint8_t>(bytes[entry + 1]);
        if (begin == 0)
            continue;
        put16(at + begin, page << 8 | row);
        put16(at + begin + 2, 0);
    }
    read(bytes);
    EXPECT_EQ(sink.records.size(), 60U);
}

TEST_F(NetAnalysisDamage, ofAFileThatEndsAmidAPageLeavesTheRowsBefore) {
    // Rows lie from the end of a page downwards: those that come last are whole.
    const std::string whole = bytes;
    const std::size_t first = rowsOfPage(pages[0]);
    std::size_t before = 60;
    for (const std::size_t length : {4095U, 3000U, 2000U, 600U, 14U, 12U}) {
        read(whole.substr(0, pages[1] * Jet4::kPage + length));
        EXPECT_EQ(result.state, ReadState::cutShort);
        EXPECT_LT(sink.records.size(), before == first ? before + 1 : before) << length;
        EXPECT_GE(sink.records.size(), first);
        EXPECT_EQ(result.notReached, 60 - sink.records.size());
        EXPECT_THAT(result.reason, HasSubstr("the file ends amid a page"));
        for (const UrlRecord &record : sink.records)
            EXPECT_TRUE(record.URL.starts_with("http://a/")) << record.URL;
        before = sink.records.size();
    }
    EXPECT_EQ(before, first);
    read(whole + "tail");
    expectCutShort(60, 0, "the file ends amid a page");
}

TEST_F(NetAnalysisDamage, ofTheProgramItselfIsNamed) {
    const std::string head = "echo '{\"rows\":3,\"kinds\":[\"text\",\"text\"]}'\n";
    const std::string events =
        "[ $2 = Case ] && " + head.substr(0, head.size() - 1) +
        " && echo '{\"end\":true}' && exit\n"
        "echo '{\"rows\":2,\"kinds\":[\"text\",\"text\",\"bool\",\"number\",\"text\",\"text\","
        "\"text\",\"date\",\"date\",\"text\",\"text\",\"text\",\"text\",\"text\",\"number\"]}'\n"
        "echo '{\"row\":[\"http://a/\",null,null,null,null,null,null,null,null,null,null,null,"
        "null,null,null]}'\n";
    playProgram(events + "kill -SEGV $$");
    read(bytes);
    expectCutShort(1, 1, "crashed on the file (signal 11)");
    playProgram(events + "kill -XCPU $$"); // its limit of time
    read(bytes);
    expectCutShort(1, 1, "got stuck in the file");
    playProgram(events + "exit 0");
    read(bytes);
    expectCutShort(1, 1, "ended before the last row");
    playProgram(events + "echo nonsense");
    read(bytes);
    expectCutShort(1, 1, "makes no sense");
    playProgram("kill -SEGV $$");
    read(bytes);
    EXPECT_EQ(result.state, ReadState::failed);
    EXPECT_THAT(result.reason, HasSubstr("crashed on the file (signal 11)"));
}

TEST_F(NetAnalysisDamage, ofTheInstallationIsToldFromDamageOfTheFile) {
    program.reset();
    read(bytes);
    EXPECT_EQ(result.state, ReadState::failed);
    EXPECT_THAT(result.reason, HasSubstr("norvelane-jet, which reads such files, is missing"));
    EXPECT_EQ(log.entries.size(), 1U);
    program = "/nowhere/norvelane-jet";
    read(bytes);
    EXPECT_EQ(result.state, ReadState::failed);
    EXPECT_THAT(result.reason, HasSubstr("can't be started"));
}

TEST_F(NetAnalysisDamage, anywhereEndsWithAReason) {
    std::set<std::size_t> places;
    for (const std::size_t page : {std::size_t{0}, std::size_t{1}, std::size_t{2}, std::size_t{3},
                                   definition / Jet4::kPage, pages[0], pages[1]})
        for (const std::size_t at : {0, 1, 4, 12, 14, 15, 20, 43, 45, 55, 56, 70, 4000, 4090})
            places.insert(page * Jet4::kPage + at);
    for (const std::size_t at : places)
        for (const int value : {0x00, 0xFF}) {
            std::string damaged = bytes;
            damaged[at] = static_cast<char>(value);
            read(damaged);
            EXPECT_LE(sink.records.size(), 60U) << at;
            EXPECT_EQ(result.state == ReadState::complete, result.reason.empty()) << at;
            EXPECT_TRUE(result.state != ReadState::complete || sink.records.size() == 60U) << at;
            EXPECT_TRUE(result.state != ReadState::failed || sink.records.empty()) << at;
            EXPECT_NE(result.state, ReadState::cancelled) << at;
        }
}

TEST_F(NetAnalysisDamage, ofEveryLengthEndsWithAReason) {
    for (std::size_t length = 0; length < bytes.size(); length += 1021) {
        read(bytes.substr(0, length));
        EXPECT_NE(result.state, ReadState::complete) << length;
        EXPECT_FALSE(result.reason.empty()) << length;
        EXPECT_LT(sink.records.size(), 60U) << length;
    }
}

struct FailingSink final : RecordSink {
    void save(UrlRecord &record) override {
        if (record.URL == "http://a/2")
            throw std::runtime_error("no room in the row");
        saved.push_back(record.URL);
    }
    std::vector<std::string> saved;
};

struct FullSink final : RecordSink {
    void save(UrlRecord &) override { throw StorageFailure("the disk is full"); }
};

TEST_F(NetAnalysisDamage, ofOneRecordEndsNothingButAFullDiskDoes) {
    folder.write("Cases/one.net", bytes);
    const Evidence evidence(base);
    ContentProbe content;
    history.fullPath = file;
    FailingSink failing;
    ReadContext context{history, evidence, content, clock, scratch.path(), failing, log, task};
    EXPECT_EQ(parseNetAnalysisFile(context).state, ReadState::complete);
    EXPECT_EQ(failing.saved.size(), 59U);
    ASSERT_EQ(log.entries.size(), 1U);
    EXPECT_THAT(log.entries[0].message, HasSubstr("no room in the row"));
    FullSink full;
    ReadContext stopped{history, evidence, content, clock, scratch.path(), full, log, task};
    EXPECT_THROW(parseNetAnalysisFile(stopped), StorageFailure);
}

} // namespace
} // namespace nv
