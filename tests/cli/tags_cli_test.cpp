#include "cli/CliCase.h"

#include <gmock/gmock.h>

namespace nv::test {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

/// A project of three imported rows.
class TagsCliTest : public CliCase {
  protected:
    TagsCliTest() {
        IndexDat index;
        for (const char *url :
             {"http://one.example/", "http://two.example/", "http://three.example/"})
            index.add({.url = url});
        const auto file = folder.write("evidence/index.dat", index.bytes());
        EXPECT_EQ(cli({"import", project, file.string()}).exit, 0);
    }
    /// What a call that has to succeed prints.
    std::string out(const std::vector<std::string> &arguments) const {
        const CliResult run = cli(arguments);
        EXPECT_EQ(run.exit, 0) << run.err;
        return run.out;
    }
    std::string ids(const std::vector<std::string> &more) const {
        std::vector<std::string> call{"list",       project,    "--columns",
                                      "COL_URL_ID", "--format", "tsv"};
        call.insert(call.end(), more.begin(), more.end());
        return out(call);
    }
};

TEST_F(TagsCliTest, rowsGetTagsByNameAndLoseThem) {
    EXPECT_EQ(out({"tag", project, "1", "2", "--name", "Important", "--note", "see photo"}),
              "2 rows tagged \"Important\"\n");
    EXPECT_EQ(out({"tag", project, "2", "--name", "Später", "--color", "#0f6cbd"}),
              "1 row tagged \"Später\"\n");
    EXPECT_EQ(out({"tags", project, "--format", "csv"}),
              "Position,Name,Color,Rows,Note\r\n1,Important,#d13438,2,\r\n2,Später,#0f6cbd,1,\r\n");
    EXPECT_THAT(out({"list", project, "--tag", "important", "--format", "tsv"}),
                HasSubstr("tag_names"));
    EXPECT_THAT(out({"list", project, "--tag", "important"}), HasSubstr("Important, Später"));
    EXPECT_EQ(ids({"--tag", "Important"}), "id\n1\n2\n");
    EXPECT_EQ(cli({"list", project, "--tag", "Important"}).err, "the tag hides 1 of 3 rows\n");
    EXPECT_EQ(ids({}), "id\n1\n2\n3\n");
    const CliResult again = cli({"tag", project, "1", "--name", "IMPORTANT"});
    EXPECT_EQ(again.out, "0 rows tagged \"Important\"\n");
    EXPECT_THAT(again.err, HasSubstr("1 row had it before"));
    EXPECT_EQ(out({"tag", project, "1", "3", "--name", "Important", "--remove"}),
              "1 row untagged \"Important\"\n");
    EXPECT_EQ(ids({"--tag", "Important"}), "id\n2\n");
    EXPECT_EQ(
        out({"query", project, "SELECT Count(*) AS n FROM URLs WHERE Tagged", "--format", "tsv"}),
        "n\n0\n")
        << "the tick is another thing";
}

TEST_F(TagsCliTest, rowsAreChosenAsOtherCommandsChooseThem) {
    EXPECT_EQ(out({"tag", project, "--where", "Host LIKE 't%'", "--name", "T"}),
              "2 rows tagged \"T\"\n");
    EXPECT_EQ(out({"tag", project, "--host", "two", "--name", "Two"}), "1 row tagged \"Two\"\n");
    EXPECT_EQ(out({"tag", project, "--query", "_DEFAULT", "--name", "All"}),
              "3 rows tagged \"All\"\n");
    EXPECT_EQ(out({"tag", project, "--host", "one"}), "1 row ticked\n");
    EXPECT_THAT(out({"search", project, "tag:T -tag:Two", "--format", "tsv"}),
                HasSubstr("three.example"));
}

TEST_F(TagsCliTest, whatMakesNoSenseIsRefusedAndChangesNothing) {
    for (const std::vector<std::string> &call :
         {std::vector<std::string>{"tag", project, "--name", "A"},
          {"tag", project, "1", "--where", "1", "--name", "A"},
          {"tag", project, "1", "--note", "why"},
          {"tag", project, "1", "--name", " "},
          {"tag", project, "1", "--name", ""},
          {"tag", project, "1", "--name", "\u00A0\u3000 "},
          {"tag", project, "1", "--name", "", "--remove"},
          {"tag", project, "1", "--name", "", "--off"},
          {"tag", project, "1", "--name", "A\nB"},
          {"tag", project, "1", "--name", "A", "--color", "red"},
          {"tag", project, "1", "--name", "A", "--off"},
          {"tag", project, "1", "--name", "None", "--remove"},
          {"tag", project, "99", "--name", "A"},
          {"list", project, "--tag", "None"},
          {"tags", "delete", project, "None"},
          {"tags", "change", project, "None", "--name", "A"},
          {"tags", "change", project, "None"}}) {
        const CliResult run = cli(call);
        EXPECT_EQ(run.exit, 1) << testing::PrintToString(call) << run.err;
        EXPECT_EQ(run.out, "") << testing::PrintToString(call);
    }
    EXPECT_THAT(cli({"tag", project, "1", "--name", ""}).err,
                HasSubstr("--name: a name of more than blanks was expected"));
    EXPECT_EQ(
        out({"query", project, "SELECT Count(*) AS n FROM URLs WHERE Tagged", "--format", "tsv"}),
        "n\n0\n")
        << "nor is the tick set in place of it";
    EXPECT_THAT(cli({"list", project, "--tag", "None"}).err, HasSubstr("no tag \"None\""));
    EXPECT_EQ(out({"tags", project, "--format", "csv"}), "Position,Name,Color,Rows,Note\r\n");
}

TEST_F(TagsCliTest, aTagIsChangedMovedAndDeleted) {
    out({"tag", project, "1", "--name", "First"});
    out({"tag", project, "2", "--name", "Second"});
    EXPECT_EQ(out({"tags", "change", project, "second", "--name", "For the hearing", "--note",
                   "court, 3 May", "--position", "1"}),
              "\"For the hearing\" changed\n");
    EXPECT_EQ(cli({"tags", "change", project, "First", "--name", "for THE hearing"}).exit, 1);
    EXPECT_EQ(out({"tags", project, "--format", "csv"}),
              "Position,Name,Color,Rows,Note\r\n1,For the hearing,#0f6cbd,1,\"court, 3 May\"\r\n"
              "2,First,#d13438,1,\r\n");
    EXPECT_EQ(out({"tags", "delete", project, "First"}), "\"First\" deleted: 1 row had it\n");
    EXPECT_THAT(out({"tags", project}), Not(HasSubstr("First")));
    EXPECT_EQ(ids({}), "id\n1\n2\n3\n");
}

TEST_F(TagsCliTest, exportsAndReportsCarryThem) {
    const auto exported = [this](const std::string &format, const std::vector<std::string> &more) {
        std::vector<std::string> call{"export", project, "-", "--format", format};
        call.insert(call.end(), more.begin(), more.end());
        return out(call);
    };
    EXPECT_THAT(exported("csv", {}), Not(HasSubstr("tag_names")));
    EXPECT_THAT(exported("jsonl", {}), Not(HasSubstr("tag_names")));
    out({"tag", project, "1", "2", "--name", "A, \"b\" <i>", "--note", "why <b>"});
    out({"tag", project, "2", "--name", "C"});
    EXPECT_THAT(exported("csv", {"--tag", "C"}), HasSubstr("tag_names\r\n"));
    EXPECT_THAT(exported("csv", {"--tag", "C"}), EndsWith("\"A, \"\"b\"\" <i>, C\"\r\n"));
    EXPECT_THAT(exported("csv", {"--tag", "C"}), Not(HasSubstr("one.example")));
    EXPECT_THAT(exported("jsonl", {"--tag", "C"}),
                HasSubstr("\"tag_names\":[\"A, \\\"b\\\" <i>\",\"C\"]"));
    EXPECT_THAT(exported("jsonl", {"--columns", "tag_names,COL_URL_ID"}),
                Not(HasSubstr("\"tag_names\":\"")))
        << "they are a list, not a text";
    EXPECT_THAT(exported("csv", {"--columns", "COL_URL_ID,tag_names", "--tag", "C"}),
                EndsWith("2,\"A, \"\"b\"\" <i>, C\"\r\n"));
    for (const char *type : {"graphical", "tabular"}) {
        const auto report = folder.path() / type;
        out({"report", project, "--type", type, "--tag", "C", "--out", report.string()});
        const bool isGraphical = std::string_view(type) == "graphical";
        const std::string page =
            text(report / (isGraphical ? "index-cache.htm" : "index-history.htm"));
        EXPECT_THAT(page, HasSubstr("two.example")) << type;
        EXPECT_THAT(page, Not(HasSubstr("one.example"))) << type;
        EXPECT_THAT(page, HasSubstr("A, &quot;b&quot; &lt;i&gt;")) << type;
        EXPECT_THAT(page, Not(HasSubstr("<i>"))) << type;
    }
    const auto plain = folder.path() / "plain";
    out({"report", project, "--type", "graphical", "--out", plain.string(), "--notes"});
    EXPECT_THAT(text(plain / "index-cache.htm"), HasSubstr("why &lt;b&gt;"));
}

} // namespace
} // namespace nv::test
