#pragma once

#include "base/Files.h"
#include "cli/CliRun.h"
#include "support/TempFolder.h"
#include "support/WorkingFolder.h"
#include "support/builders/IndexDat.h"

#include <gtest/gtest.h>

namespace nv::test {

/// A folder of its own for evidence, the project and the program's home.
class CliCase : public testing::Test {
  protected:
    CliResult cli(const std::vector<std::string> &arguments) const {
        return runCli(arguments, folder.path() / "home");
    }
    /// The same, called from within `place`.
    CliResult cliIn(const std::filesystem::path &place,
                    const std::vector<std::string> &arguments) const {
        const WorkingFolder in(place);
        return cli(arguments);
    }
    /// Lays a cached file where an index of the cache in `place` finds it by its only folder.
    void addCached(IndexDat &index, const std::string &url, const std::string &name,
                   const std::string &content, const std::filesystem::path &place = {}) const {
        const auto file = (place.empty() ? evidence : place) / "ABCDEFGH" / name;
        std::filesystem::create_directories(file.parent_path());
        writeWhole(file, content);
        index.add({.url = url,
                   .secondDate = fileTime(2011, 3, 1, 12),
                   .fileSize = static_cast<std::uint32_t>(content.size()),
                   .folder = 0,
                   .fileName = name});
    }
    void import(const IndexDat &cache) const {
        std::filesystem::create_directories(evidence);
        writeWhole(evidence / "index.dat", cache.bytes());
        const CliResult run = cli({"import", project, evidence.string(), "--kinds", "ie-cache"});
        ASSERT_LE(run.exit, 1) << run.err; // 1: there was nothing of that kind
    }
    /// Empty where there is no such file.
    static std::string text(const std::filesystem::path &file) {
        return std::filesystem::exists(file) ? std::string(ByteView(readWhole(file)).raw()) : "";
    }

    TempFolder folder;
    std::filesystem::path evidence = folder.path() / "evidence";
    std::string project = (folder.path() / "case.nvp").string();
};

} // namespace nv::test
