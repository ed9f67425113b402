#pragma once

#include "base/Files.h"
#include "base/Text.h"
#include "import/ImportRun.h"
#include "import/Scan.h"
#include "rebuild/Harvest.h"
#include "rebuild/LocalNames.h"
#include "rebuild/RebuildWebPage.h"
#include "support/TestProject.h"
#include "support/builders/WebSite.h"

#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace nv::test {

/// Files of a rebuild folder by name.
using Files = std::map<std::string, std::string>;

/// A project with the site in one browser's form, imported as an examiner would.
class ImportedSite {
  public:
    ImportedSite(const WebSite &site, SiteCache cache) {
        writeSite(site, cache, evidence);
        std::filesystem::create_directories(temp);
        const Evidence found(evidence);
        Unwatched task;
        ImportClass job;
        job.StartingDirectory = evidence.string();
        job.HistoryFiles = scan(job, task, project.log).HistoryFiles;
        const ImportRun run{project.connection(),
                            project.projectZone(),
                            found,
                            project.clock,
                            project.log,
                            task,
                            temp};
        static_cast<void>(runImport(run, job));
    }

    UrlId idOf(const std::string &url) {
        SQLite::Statement row(project.connection(), "SELECT URL_ID FROM URLs WHERE URL = ?");
        row.bind(1, url);
        return row.executeStep() ? UrlId{row.getColumn(0).getInt64()} : UrlId::none;
    }
    /// Runs `work` with the page and what rebuilding needs.
    template <class Work>
    bool with(UrlId id, Work &&work) {
        const Evidence found(evidence);
        RecordStore store = project.store();
        Unwatched task;
        const RebuildContext ctx{project.connection(), store, found, temp, project.log, task, {}};
        URLClass page = *store.GetURL(id);
        return work(page, ctx);
    }
    bool rebuild(UrlId id) {
        return with(id, [this](URLClass &page, const RebuildContext &ctx) {
            return RebuildWebPage(page, Batch::no, ctx, project.clock);
        });
    }
    /// Closes and opens the project, with nothing left of the rebuild but its rows.
    bool harvestLater(UrlId id) {
        std::filesystem::remove_all(temp);
        std::filesystem::create_directories(temp);
        project.database.CloseDB();
        project.database.open();
        return with(id, UnpackIngredients);
    }
    Files files(UrlId id) {
        Files files;
        for (const std::filesystem::directory_entry &entry :
             std::filesystem::directory_iterator(temp / (sidOf(id) + ".NVR")))
            files[entry.path().filename().string()] =
                readWhole(entry.path()).empty() ? "" : ByteView(readWhole(entry.path())).raw();
        return files;
    }
    std::vector<Substitution> substitutions(UrlId id) {
        return substitutionsOf(project.text("SELECT IngredientIDs FROM URLs WHERE URL_ID = " +
                                            std::to_string(number(id))),
                               {});
    }
    std::string urlOf(std::int64_t id) {
        return project.text("SELECT URL FROM URLs WHERE URL_ID = " + std::to_string(id));
    }
    /// The rebuilt page with every local name replaced by the URL of its record.
    std::string textOfPage(UrlId id) {
        std::string text = project.text("SELECT RebuiltSourceCode FROM URLs WHERE URL_ID = " +
                                        std::to_string(number(id)));
        for (const Substitution &part : substitutions(id))
            if (part.TagURLID > 0)
                text = replaceAll(text, part.NewTag, "{" + urlOf(part.TagURLID) + "}");
        return text;
    }
    /// Contents of the parts by URL.
    Files parts(UrlId id) {
        Files parts;
        for (const auto &[name, content] : files(id))
            if (name.front() == '0' && !name.ends_with(".htm"))
                parts[urlOf(std::stoi(name))] = content;
        return parts;
    }

    TestProject project;
    std::filesystem::path evidence = project.folder.path() / "evidence";
    std::filesystem::path temp = project.folder.path() / "temp";
};

} // namespace nv::test
