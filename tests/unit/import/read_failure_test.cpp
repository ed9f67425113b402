#include "base/Files.h"
#include "import/ImportRun.h"
#include "import/Scan.h"
#include "readers/Registry.h"
#include "support/FailingReads.h"
#include "support/Places.h"
#include "support/TestProject.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <vector>

namespace nv {
namespace {

namespace fs = std::filesystem;

/// One import of a folder, from the scan on.
struct Reading {
    Reading(test::TestProject &project, const fs::path &input, test::FailingReads &watch) {
        job.StartingDirectory = input;
        found = scan(job, task, log, &watch);
        job.HistoryFiles = std::move(found.HistoryFiles);
        job.gaps = found.gaps;
        const Evidence evidence(input, &watch);
        const ImportRun run{
            project.connection(),  project.projectZone(), evidence, project.clock, log, task,
            project.folder.path(), nv::readerFor};
        summary = runImport(run, job);
    }

    /// What the examiner is told: no word of it stands in for a count of rows.
    std::string told() const {
        std::string text = summary.failure;
        for (const UnreadPlace &place : summary.gaps.unreadable)
            text += fmt::format("unread {}\n", textOf(place.path));
        for (const ArtefactResult &each : summary.artefacts) {
            text += fmt::format("{} {} {} {} {} {}\n", textOf(each.path), stateWord(each.state),
                                each.reason, each.rowsLost, each.notReached, each.warning);
            for (const auto &[reason, count] : each.passedOver)
                text += fmt::format("{} {}\n", reason, count);
            for (const auto &[reason, count] : each.noted)
                text += fmt::format("{} {}\n", reason, count);
        }
        return text;
    }
    bool logNames(const fs::path &path) const {
        return std::ranges::any_of(log.entries, [text = textOf(path)](const Failure &failure) {
            return failure.message.find(text) != std::string::npos;
        });
    }
    std::set<std::string> readers() const {
        std::set<std::string> keys;
        for (const ArtefactResult &each : summary.artefacts)
            keys.insert(each.readerKey);
        return keys;
    }

    test::MemoryLog log;
    Unwatched task;
    ImportClass job;
    ScanResult found;
    ImportSummary summary;
};

/// Of each folder of cases the one with the most files: there the most can fail.
std::vector<fs::path> richestCases() {
    const auto files = [](const fs::path &folder) {
        const fs::recursive_directory_iterator all(folder);
        return std::count_if(begin(all), end(all),
                             [](const auto &entry) { return entry.is_regular_file(); });
    };
    std::vector<fs::path> richest;
    for (const auto &format : fs::directory_iterator(test::goldenFolder())) {
        std::vector<fs::path> inputs;
        for (const auto &each : fs::directory_iterator(format.path()))
            if (fs::is_directory(each.path() / "input"))
                inputs.push_back(each.path() / "input");
        std::ranges::sort(inputs);
        if (!inputs.empty())
            richest.push_back(*std::ranges::max_element(inputs, {}, files));
    }
    std::ranges::sort(richest);
    return richest;
}

std::string wordOf(EvidenceWatch::Step step) {
    using Step = EvidenceWatch::Step;
    return step == Step::list ? "listing" : step == Step::open ? "opening" : "reading";
}

TEST(ReadFailure, ofAnyStepOfAnyFormatIsToldAndNamesItsFile) {
    std::set<std::string> readers;
    test::TestProject project;
    project.connection().exec("PRAGMA synchronous = OFF"); // hundreds of imports
    for (const fs::path &input : richestCases()) {
        test::FailingReads none;
        const Reading whole(project, input, none);
        readers.merge(whole.readers());
        const std::string toldOfWhole = whole.told();
        for (std::size_t step = 0; step < none.steps; ++step) {
            test::FailingReads bad(step);
            const Reading reading(project, input, bad);
            ASSERT_FALSE(bad.failed.empty());
            SCOPED_TRACE(fmt::format("step {} of {}: {} {}", step, none.steps,
                                     wordOf(bad.failedStep), textOf(bad.failed)));
            EXPECT_NE(reading.told(), toldOfWhole);
            EXPECT_TRUE(reading.logNames(bad.failed));
        }
    }
    EXPECT_GE(readers.size(), 12u) << "the cases' files are found and read";
}

} // namespace
} // namespace nv
