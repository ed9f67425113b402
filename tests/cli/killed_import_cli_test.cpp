#include "cli/CliCase.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <chrono>
#include <csignal>
#include <thread>

// An import that the system ends: nothing of it may look as if it had been whole.
namespace nv::test {
namespace {

using nlohmann::json;
using testing::AllOf;
using testing::HasSubstr;

struct KilledImportCliTest : CliCase {
    /// Takes some seconds to read.
    void writeEvidence() const {
        IndexDat cache;
        cache.folder("ABCDEFGH");
        for (int i = 0; i < 3000; ++i)
            addCached(cache, "http://host.example/" + std::to_string(i),
                      "page" + std::to_string(i) + ".htm", "<html><body>" + std::to_string(i));
        writeWhole(evidence / "index.dat", cache.bytes());
    }
    std::int64_t number(const std::string &sql) const {
        return SQLite::Database(project).execAndGet(sql).getInt64();
    }
    /// As soon as its begin can be seen, long before its end.
    void importKilled() const {
        CliProcess run({"import", project, evidence.string(), "--kinds", "ie-cache"},
                       folder.path() / "home");
        const auto hasBegun = [this] {
            try {
                return number("SELECT count(*) FROM AuditTrail") > 0;
            } catch (const SQLite::Exception &) {
                return false; // it isn't made yet
            }
        };
        for (int i = 0; i < 20'000 && !hasBegun(); ++i)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        run.signal(SIGKILL);
        run.finish();
    }
    json summary(const std::vector<std::string> &more) const {
        std::vector<std::string> words = {"summary", project, "--format", "json"};
        words.insert(words.end(), more.begin(), more.end());
        return json::parse(cli(words).out);
    }
};

TEST_F(KilledImportCliTest, itIsToldByAllWhoTellOfImports) {
    writeEvidence();
    importKilled();
    ASSERT_EQ(number("SELECT count(*) FROM AuditTrail"), 1) << "it was faster than the test";
    const std::int64_t rows = number("SELECT count(*) FROM URLs");
    json told = summary({});
    EXPECT_EQ(told["light"], "red");
    EXPECT_EQ(told["all_imports"], true);
    EXPECT_EQ(told["ended"], "");
    EXPECT_EQ(told["rows"], rows) << "what was written before is kept";
    EXPECT_EQ(told["not_read"][0]["state"], "never ended");
    EXPECT_THAT(cli({"verify", project}).err, HasSubstr("its end isn't told"));

    IndexDat fewer;
    fewer.folder("ABCDEFGH");
    addCached(fewer, "http://host.example/last", "page0.htm", "<html><body>x");
    writeWhole(evidence / "index.dat", fewer.bytes());
    const CliResult next = cli({"import", project, evidence.string(), "--kinds", "ie-cache"});
    EXPECT_EQ(next.exit, 0);
    EXPECT_THAT(next.err, HasSubstr("An earlier import began "));
    told = summary({"--all"});
    EXPECT_EQ(told["light"], "red");
    EXPECT_THAT(told["not_read"][0]["reason"].get<std::string>(),
                HasSubstr(rows == 0 ? "no row of it is here"
                                    : "rows 1 to " + std::to_string(rows) + " are of it"));
    EXPECT_THAT(cli({"summary", project}).out,
                AllOf(HasSubstr("Complete. "), HasSubstr("1 earlier import")));
    EXPECT_THAT(cli({"verify", project}).err, HasSubstr("The case trail is whole"));
}

} // namespace
} // namespace nv::test
