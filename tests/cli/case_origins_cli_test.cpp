#include "base/Base64.h"
#include "base/Text.h"
#include "cli/CliCase.h"

#include <fmt/format.h>
#include <gmock/gmock.h>

#include <algorithm>

namespace nv::test {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::Not;

/// The forms in which a word could be handed over. Of base64 those letters that the word alone
/// decides, from each of three places within a group.
std::vector<std::string> formsOf(const std::string &word) {
    std::vector<std::string> forms = {word};
    std::string hex;
    std::string percent;
    std::string wide;
    std::string wideHex;
    for (const char c : word) {
        const auto byte = static_cast<unsigned char>(c);
        hex += fmt::format("{:02x}", byte);
        percent += fmt::format("%{:02x}", byte);
        wide += std::string(1, c) + '\0';
        wideHex += fmt::format("{:02x}00", byte);
    }
    forms.insert(forms.end(), {hex, percent, wide.substr(0, wide.size() - 1),
                               wideHex.substr(0, wideHex.size() - 2)});
    for (const std::size_t before : {0U, 1U, 2U}) {
        const std::string padded = std::string(before, 'x') + word;
        const std::string code = base64(viewOf(padded));
        const std::size_t first = before == 0 ? 0 : 4;
        forms.push_back(code.substr(first, padded.size() / 3 * 4 - first));
    }
    std::erase_if(forms, [](const std::string &form) { return form.size() < 4; });
    return forms;
}

class CaseOriginsCliTest : public CliCase {
  protected:
    /// Caches of two browsers: keys, headers, certificates in binary and in base64.
    CaseOriginsCliTest() {
        const fs::path golden = NV_GOLDEN_DIR;
        fs::create_directories(evidence / "mara");
        fs::copy(golden / "chromium-simple-cache/every-kind/input", evidence / "mara/Cache",
                 fs::copy_options::recursive);
        fs::copy(golden / "firefox-cache2/every-kind-of-entry/input", evidence / "mara/cache2",
                 fs::copy_options::recursive);
        const CliResult run = cli({"import", project, evidence.string()});
        EXPECT_NE(run.exit, 1) << run.err;
    }
    CliResult report(const std::vector<std::string> &more = {}) {
        std::vector<std::string> all{"report", project,      "--type",     "case",
                                     "--out",  out.string(), "--overwrite"};
        if (std::ranges::find(more, "--no-origins") == more.end())
            all.emplace_back("--origins");
        all.insert(all.end(), more.begin(), more.end());
        return cli(all);
    }
    std::string everything() const {
        std::string bytes;
        for (const auto &entry : fs::recursive_directory_iterator(out)) {
            bytes += textOf(entry.path().filename());
            if (entry.is_regular_file())
                bytes += text(entry.path());
        }
        return bytes;
    }
    void expectNowhere(const std::string &word) const {
        const std::string all = everything();
        for (const std::string &form : formsOf(word))
            EXPECT_FALSE(containsNoCase(all, form)) << word << " as " << form;
    }
    void tickAll() { ASSERT_EQ(cli({"tag", project, "--where", "URL_ID > 0"}).exit, 0); }

    fs::path out = folder.path() / "out";
};

TEST_F(CaseOriginsCliTest, anAppendixTellsOfRowsWithTheTick) {
    ASSERT_EQ(cli({"tag", project, "1", "2"}).exit, 0);
    const CliResult run = report();
    ASSERT_EQ(run.exit, 0) << run.err;
    const std::string page = text(out / "origins-1.htm");
    EXPECT_THAT(page, HasSubstr("<h2>Row 1</h2>"));
    EXPECT_THAT(page, HasSubstr("the head of the answer"));
    EXPECT_THAT(page, HasSubstr("docs/formats/chromium-simple-cache.md"));
    EXPECT_THAT(page, HasSubstr("<td data-h=\"Check\">same</td>"));
    EXPECT_THAT(page, Not(HasSubstr("<h2>Row 3</h2>")));
    EXPECT_THAT(
        text(out / "index.htm"),
        HasSubstr("<a href=\"origins-1.htm\"><span>How each value is known</span><b>2</b>"));
    EXPECT_THAT(text(out / "ticked-1.htm"), HasSubstr("href=\"origins-1.htm#o1\""));
    ASSERT_EQ(report({"--no-origins"}).exit, 0);
    EXPECT_FALSE(fs::exists(out / "origins-1.htm"));
    EXPECT_THAT(text(out / "ticked-1.htm"), Not(HasSubstr("origins-1.htm")));
}

/// Words that stand in the evidence as text, in binary certificates and within base64 are there
/// without a redaction, and in no form with one.
TEST_F(CaseOriginsCliTest, whatIsRedactedStandsInNoFormInIt) {
    tickAll();
    ASSERT_EQ(report().exit, 0);
    const std::string open = everything();
    for (const char *word : {"quay.example", "host.example", "application/json", "mara"})
        ASSERT_TRUE(containsNoCase(open, word)) << word;
    const CliResult run = report({"--blur", "host=quay.example", "--leave-out", "host=gone.example",
                                  "--blur", "value=host.example", "--blur", "person=mara", "--blur",
                                  "value=application/json", "--trail"});
    ASSERT_EQ(run.exit, 0) << run.err;
    EXPECT_TRUE(fs::exists(out / "origins-1.htm"));
    for (const char *word :
         {"quay.example", "host.example", "gone.example", "application/json", "mara"})
        expectNowhere(word);
    const std::string page = text(out / "origins-1.htm");
    EXPECT_THAT(page, HasSubstr("Not told: the host or the picture of this row is redacted."));
    EXPECT_THAT(page, HasSubstr("[redacted]"));
    EXPECT_THAT(page, Not(HasSubstr("HashedURL")));
}

TEST_F(CaseOriginsCliTest, tagsAreSectionsWithColorAndNote) {
    ASSERT_EQ(cli({"tag", project, "1", "3", "--name", "Tide table", "--note", "seen by Quill",
                   "--color", "#d13438"})
                  .exit,
              0);
    ASSERT_EQ(cli({"tag", project, "3", "--name", "Second"}).exit, 0);
    ASSERT_EQ(report({"--cards", "tagged"}).exit, 0);
    const std::string index = text(out / "index.htm");
    EXPECT_THAT(index, HasSubstr("Tide table</span><b>2</b>"));
    EXPECT_THAT(index, HasSubstr("Second</span><b>1</b>"));
    EXPECT_THAT(index, HasSubstr("fill=\"#d13438\""));
    const std::string cards = text(out / "tagged-1.htm");
    EXPECT_THAT(cards, HasSubstr("<bdi>Tide table</bdi> <span class=\"dim\"><bdi>seen by Quill"));
    EXPECT_THAT(text(out / "tag1.csv"), HasSubstr("\"Tide table, Second\",seen by Quill"));
    EXPECT_THAT(text(out / "tag1-1.htm"), HasSubstr("<bdi>Tide table</bdi>"));
    EXPECT_THAT(text(out / "origins-1.htm"), HasSubstr("<h2>Row 3</h2>"));
    ASSERT_EQ(report({"--cards", "tagged", "--no-tag-notes"}).exit, 0);
    EXPECT_THAT(everything(), HasSubstr("Tide table"));
    expectNowhere("seen by Quill");
    ASSERT_EQ(
        report({"--cards", "tagged", "--blur", "value=Tide table", "--blur", "value=by Quill"})
            .exit,
        0);
    expectNowhere("Tide table");
    expectNowhere("by Quill");
    EXPECT_THAT(text(out / "index.htm"), HasSubstr("[redacted]</span><b>2</b>"));
}

TEST_F(CaseOriginsCliTest, rowsChosenByATagHaveCards) {
    ASSERT_EQ(cli({"tag", project, "2", "--name", "Ebb"}).exit, 0);
    const CliResult run = report({"--tag", "Ebb"});
    ASSERT_EQ(run.exit, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr("1 row reported"));
    EXPECT_TRUE(fs::exists(out / "tagged-1.htm"));
    EXPECT_THAT(text(out / "origins-1.htm"), HasSubstr("<h2>Row 2</h2>"));
    EXPECT_THAT(text(out / "index.htm"), HasSubstr("the tag &quot;Ebb&quot;"));
    ASSERT_EQ(report({"--tag", "Ebb", "--leave-out", "value=Ebb"}).exit, 0);
    expectNowhere("\"Ebb\"");
    EXPECT_THAT(text(out / "index.htm"), HasSubstr("<dt>Rows left out</dt><dd>1</dd>"));
}

} // namespace
} // namespace nv::test
