#pragma once

#include "base/Files.h"
#include "base/Text.h"
#include "reports/exports/ExportRows.h"
#include "support/WorkingFolder.h"
#include "unit/views/MadeProject.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <string>
#include <vector>

namespace nv::test {

/// Exports of the rows of a project that a test fills.
struct ExportFixture : testing::Test {
    /// To be called once they are there.
    void load() {
        table.loadURLs(nobody);
        table.sortBy(UrlColumn::Id, SortDirection::Ascending, nobody);
    }
    std::string written(ExportFormat format) {
        job.format = format;
        job.outputFilePath = out;
        EXPECT_EQ(exportRows(job, table, project.folder.path(), nobody), ExportEnd::exported);
        return std::string(ByteView(readWhole(out)).raw());
    }
    std::vector<std::string> lines(ExportFormat format) {
        std::vector<std::string> list;
        const std::string text = written(format);
        for (const std::string_view line : split(text, '\n'))
            if (!line.empty())
                list.emplace_back(line);
        return list;
    }
    std::vector<nlohmann::json> objects(ExportFormat format) {
        std::vector<nlohmann::json> list;
        for (const std::string &line : lines(format))
            list.push_back(nlohmann::json::parse(line));
        return list;
    }

    MadeProject project;
    Unwatched nobody;
    UrlTable table{project.db(), project.log, project.zone};
    Export job;
    TempFolder folder;
    std::filesystem::path out = folder.path() / "out.txt";
};

} // namespace nv::test
