#pragma once

#include "base/Digest.h"
#include "db/records/RecordFacts.h"
#include "reports/report/ReportWriter.h"
#include "reports/report/SortTable.h"
#include "unit/rebuild/RebuildFixture.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>
#include <gmock/gmock.h>

#include <set>
#include <string>
#include <vector>

namespace nv::test {

/// Draws by writing "JPEG" and the name of the source. A source that holds "broken" fails.
class FakeDrawing final : public Drawing {
  public:
    void draw(std::span<const DrawJob> jobs, std::chrono::seconds,
              const std::function<bool(std::size_t, const Drawn &)> &take,
              const std::function<bool()> &goOn) override {
        for (std::size_t i = 0; i < jobs.size(); ++i)
            if (!goOn() || !take(i, drawOne(jobs[i])))
                return;
    }
    std::vector<DrawJob> drawn;

  private:
    Drawn drawOne(const DrawJob &job) {
        drawn.push_back(job);
        const Bytes source = readWhole(job.source);
        if (ByteView(source).find("broken"))
            return {false, "not a picture", 0, 0, 0};
        writeWhole(job.target, "JPEG");
        return {true, "", 100, 100, 0};
    }
};

/// A project from which reports are made into the folder "temp/Report".
class ReportFixture : public RebuildFixture {
  protected:
    ReportFixture() {
        images = project.folder.path() / "images";
        std::filesystem::create_directories(images);
        for (const char *name : {"ie.gif", "net.gif", "report-default.png", "norvelane-logo.png"})
            writeWhole(images / name, "picture");
        writeWhole(images / "readme.txt", "not for reports");
    }

    /// A row of a history, at noon of a day of May 2011.
    UrlId addHistory(const std::string &url, int day, const std::string &cacheType = "IE Daily") {
        UrlRecord record;
        record.cacheType = cacheType;
        record.URL = record.URLRawValue = url;
        record.IsHistory = true;
        record.Action = "Visited";
        record.Visits = 3;
        record.User = "mara";
        record.ActionDateUTC = Date::fromCivil({2011, 5, day, 12, 0, 0});
        store.saveRecord(record, project.file);
        return record.URLID;
    }
    void set(UrlId id, const std::string &column, const std::string &value) {
        SQLite::Statement update(project.connection(),
                                 "UPDATE URLs SET " + column + " = ? WHERE URL_ID = ?");
        update.bind(1, value);
        update.bind(2, number(id));
        update.exec();
    }

    ReportContext reportContext() {
        RebuildContext rebuilding = context();
        ReportContext ctx{{rebuilding.project, rebuilding.records, rebuilding.evidence,
                           rebuilding.tempFolderPath, rebuilding.log, *monitor, settings},
                          project.zone,
                          project.clock,
                          drawing,
                          {}};
        ctx.settings.images = images;
        ctx.settings.version = "0.1.0";
        return ctx;
    }
    RowIds allRows() {
        RowIds ids;
        SQLite::Statement row(project.connection(), "SELECT URL_ID FROM URLs ORDER BY URL_ID");
        while (row.executeStep())
            ids.push_back(row.getColumn(0).getInt());
        return ids;
    }
    /// The finished page; empty when there is none.
    std::string make(int type, const std::function<void(ReportWriter &)> &options = {}) {
        const ReportContext ctx = reportContext();
        ReportWriter report(ctx);
        report.reportType = type;
        if (options)
            options(report);
        fillSortTable(project.connection(), allRows(),
                      report.includeAll ? ReportRows::all : ReportRows::tagged, task);
        type == 0 ? report.createGraphicalReport(temp) : report.createTabularReport(temp);
        cancelled = report.cancel;
        notes = notesOf(report);
        return textAt(report.reportFilePath);
    }
    /// As an import notes it of what it has read.
    void hashThen(UrlId id, std::string_view content) {
        Digest digest(DigestAlgorithm::sha256);
        digest.add(content);
        FactList facts;
        facts.add("content_sha256", digest.takeHex());
        RecordFacts(project.connection()).store(id, facts);
    }
    static std::string textAt(const std::filesystem::path &file) {
        return std::filesystem::exists(file) ? std::string(ByteView(readWhole(file)).raw()) : "";
    }
    std::string inReport(const std::string &name) { return textAt(made.path / name); }

    std::filesystem::path images;
    ReportFolder made{temp};
    FakeDrawing drawings;
    Drawing *drawing = &drawings;
    Unwatched nobody;
    TaskMonitor *monitor = &nobody;
    bool cancelled = false;
    std::vector<std::string> notes; ///< of the report that was made last
};

inline std::size_t countOf(std::string_view text, std::string_view what) {
    std::size_t count = 0;
    for (std::size_t at = text.find(what); at != std::string_view::npos;
         at = text.find(what, at + what.size()))
        ++count;
    return count;
}

} // namespace nv::test
