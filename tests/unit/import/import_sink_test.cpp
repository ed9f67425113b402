#include "base/Files.h"
#include "import/ImportSink.h"
#include "support/FailingReads.h"
#include "support/TestProject.h"

#include <SQLiteCpp/Statement.h>
#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

namespace nv {
namespace {

namespace fs = std::filesystem;

constexpr int kRecords = 120;

/// A page of a few hundred bytes up to more than is kept in memory; some are none, or hostile.
std::string bodyOfNumber(int number) {
    if (number % 11 == 3)
        return "GIF89a" + std::string(5000, static_cast<char>(number));
    const std::size_t size = number % 29 == 7 ? kBodyInMemory + 5 : number % 5 * 4000U + 200;
    std::string page = fmt::format("<html><head><title>Page {}</title></head><body>", number);
    if (number % 13 == 6) // deeper than the parser goes
        for (int depth = 0; depth < 3000; ++depth)
            page += "<div>";
    while (page.size() < size)
        page += fmt::format("<a href='#{}'>tide \xC3\xA4</a> ", page.size());
    return page;
}

/// The same records through a sink, into a project of their own.
struct ThroughASink {
    explicit ThroughASink(Workers *workers, test::FailingReads *watch = nullptr)
        : evidence(project.folder.path(), watch) {
        const Extraction extraction{evidence, project.folder.path(), project.log};
        WriteBatch batch(project.connection());
        ImportSink sink(store, ContentLooks(), extraction, content, batch, project.file, result);
        if (workers)
            sink.lookWith(*workers);
        for (int number = 0; number < kRecords; ++number)
            save(sink, number);
        sink.finish();
    }

    /// By turns one whose content is a file, one whose content the reader holds, and one without.
    void save(ImportSink &sink, int number) {
        UrlRecord record;
        record.cacheType = "IE Cache"; // whose bodies are files
        record.URL = record.URLRawValue = fmt::format("http://host/{}.html", number);
        record.CacheFileExists = number % 3 != 2;
        const std::string body = bodyOfNumber(number);
        record.CacheFileSize = static_cast<std::int64_t>(body.size());
        if (number % 3 == 0) {
            const fs::path file = project.folder.write(fmt::format("{}.html", number), body);
            record.RootPath = evidence.rootOf(file);
            record.CacheFileRelativePath = evidence.relativeOf(file);
        } else if (number % 3 == 1) {
            record.facts.add("cache_layout", "made up");
            content.hold({"held", true, Bytes(body.begin(), body.end())});
        }
        sink.save(record);
        content.forget();
    }

    std::vector<std::string> rows() {
        std::vector<std::string> found;
        SQLite::Statement all(
            project.connection(),
            "SELECT URL_ID || URL || Category || IsWebPage || coalesce(webPageTitle, '') || "
            "coalesce(length(HTMLBody), 0) || coalesce((SELECT group_concat(Value) FROM "
            "RecordFacts "
            "WHERE RecordFacts.URL_ID = URLs.URL_ID), '') || (SELECT Count(*) FROM Links WHERE "
            "Links.URL_ID = URLs.URL_ID) FROM URLs ORDER BY URL_ID");
        while (all.executeStep())
            found.push_back(all.getColumn(0).getString());
        return found;
    }
    std::vector<std::string> logged() const {
        std::vector<std::string> found;
        for (const Failure &each : project.log.entries)
            found.push_back(each.procedure + each.message.substr(each.message.rfind('/') + 1));
        return found;
    }

    test::TestProject project;
    RecordStore store = project.store();
    Evidence evidence;
    ContentProbe content;
    ArtefactResult result;
};

TEST(ImportSink, writesTheSameRowsAndLogWhoeverLooksAtTheContents) {
    ThroughASink alone(nullptr);
    EXPECT_EQ(alone.result.rowsSaved, static_cast<std::uint64_t>(kRecords));
    EXPECT_EQ(alone.rows().size(), static_cast<std::size_t>(kRecords));
    for (const std::size_t threads : {0U, 1U, 4U}) {
        Workers workers(threads);
        ThroughASink beside(&workers);
        EXPECT_EQ(beside.rows(), alone.rows());
        EXPECT_EQ(beside.logged(), alone.logged());
        EXPECT_EQ(beside.result.rowsSaved, alone.result.rowsSaved);
    }
}

TEST(ImportSink, losesNoRecordAndTellsOfAFileThatCantBeReadOnAnotherThread) {
    Workers workers(3);
    for (const std::size_t failing : {5U, 20U, 61U}) {
        test::FailingReads watch(failing);
        ThroughASink beside(&workers, &watch);
        EXPECT_EQ(beside.result.rowsSaved, static_cast<std::uint64_t>(kRecords));
        ASSERT_FALSE(watch.failed.empty());
        EXPECT_TRUE(std::ranges::any_of(beside.project.log.entries, [&](const Failure &each) {
            return each.message.find(watch.failed.filename().native()) != std::string::npos;
        }));
    }
}

TEST(ImportSink, endsWithRecordsThatWerentWritten) {
    test::TestProject project;
    RecordStore store = project.store();
    const Evidence evidence(project.folder.path());
    const Extraction extraction{evidence, project.folder.path(), project.log};
    ContentProbe content;
    ArtefactResult result;
    WriteBatch batch(project.connection());
    Workers workers(2);
    {
        ImportSink sink(store, ContentLooks(), extraction, content, batch, project.file, result);
        sink.lookWith(workers);
        for (int number = 0; number < 8; ++number) {
            UrlRecord record;
            record.CacheFileExists = true;
            record.CacheFileSize = 50'000;
            content.hold({"held", true, Bytes(50'000, 'x')});
            sink.save(record);
        }
    }
    EXPECT_EQ(project.number("SELECT Count(*) FROM URLs"),
              static_cast<std::int64_t>(result.rowsSaved));
}

} // namespace
} // namespace nv
