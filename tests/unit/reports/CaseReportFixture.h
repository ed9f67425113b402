#pragma once

#include "reports/case/CaseReport.h"
#include "reports/case/CaseTables.h"
#include "reports/report/PublishReport.h"
#include "support/SmallFiles.h"
#include "unit/reports/ReportFixture.h"

#include <cstddef>
#include <filesystem>
#include <functional>
#include <initializer_list>
#include <string>

namespace nv::test {

namespace fs = std::filesystem;

/// Makes reports of a case, and looks into what would be handed over.
class CaseReportFixture : public ReportFixture {
  protected:
    /// The first page; empty when there is none.
    std::string makeCase(const std::function<void(ReportWriter &)> &options = {}) {
        const ReportContext ctx = reportContext();
        ReportWriter report(ctx);
        report.reportType = kCaseType;
        report.caseOptions.cards = CaseCards::all;
        if (options)
            options(report);
        fillSortTable(project.connection(), allRows(),
                      report.includeAll ? ReportRows::all : ReportRows::tagged, task);
        createCaseReport(report, ctx, temp);
        cancelled = report.cancel;
        failed = report.recordsFailed;
        notes = notesOf(report);
        return file("index.htm");
    }
    std::string redacted(std::initializer_list<std::string> rules) {
        return makeCase([&](ReportWriter &each) {
            for (const std::string &rule : rules)
                each.caseOptions.redactions.push_back(redactionRules(rule).front());
        });
    }
    std::string file(const std::string &name) { return textAt(folder.path / name); }
    /// Every byte of what is handed over.
    std::string everything() {
        std::string all;
        for (const auto &entry : fs::recursive_directory_iterator(folder.path))
            if (entry.is_regular_file())
                all += textOf(entry.path().filename()) + textAt(entry.path());
        return all;
    }
    std::size_t filesWith(const std::string &what) {
        return everything().find(what) == std::string::npos ? 0 : 1;
    }

    ReportFolder folder = ReportFolder::of(temp, kCaseType);
    std::size_t failed = 0;
};

} // namespace nv::test
