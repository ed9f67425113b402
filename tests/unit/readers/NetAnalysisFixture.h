#pragma once

#include "base/Files.h"
#include "platform/ChildProcess.h"
#include "readers/ContentProbe.h"
#include "readers/results/NetAnalysis.h"
#include "support/TempFolder.h"
#include "support/TestDoubles.h"
#include "support/builders/NetAnalysisCase.h"

#include <gtest/gtest.h>

namespace nv::test {

/// Reads one case file, "Cases/one.net" below the folder of the evidence.
struct NetAnalysisFixture : testing::Test {
    void read(const std::string &bytes) {
        folder.write("Cases/one.net", bytes);
        readAgain();
    }
    void read(const NetAnalysisCase &made) { read(made.bytes()); }
    void readAgain() {
        const Evidence evidence(base);
        ContentProbe content;
        history = {};
        history.sourceFileID = SourceFileId{7};
        history.fullPath = file;
        history.version = "1.x";
        sink.records.clear();
        log.entries.clear();
        ReadContext context{history, evidence, content, clock, scratch.path(), sink, log, *watcher};
        result = readNetAnalysisFile(context, program);
    }
    /// Reads a case of one event and returns its record.
    const UrlRecord &only(const NetAnalysisEvent &event) {
        read(NetAnalysisCase().add(event));
        EXPECT_EQ(result.state, ReadState::complete) << result.reason;
        EXPECT_TRUE(log.entries.empty());
        EXPECT_EQ(sink.records.size(), 1U);
        return sink.records.at(0);
    }
    std::vector<std::string> urls() const {
        std::vector<std::string> texts;
        for (const UrlRecord &record : sink.records)
            texts.push_back(record.URL);
        return texts;
    }
    /// A program that stands in for norvelane-jet.
    void playProgram(const std::string &script) {
        program = folder.write("program", "#!/bin/sh\n" + script);
        std::filesystem::permissions(*program, std::filesystem::perms::owner_all);
    }

    TempFolder folder;
    TempFolder scratch;
    std::filesystem::path base = folder.path();
    std::filesystem::path file = folder.path() / "Cases/one.net";
    std::optional<std::filesystem::path> program = companionProgram("norvelane-jet");
    HistoryFile history;
    FixedClock clock;
    MemorySink sink;
    MemoryLog log;
    MemoryTask task;
    TaskMonitor *watcher = &task;
    ReadResult result;
};

} // namespace nv::test
