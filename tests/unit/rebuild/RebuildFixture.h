#pragma once

#include "base/Files.h"
#include "base/Text.h"
#include "readers/Dissection.h"
#include "rebuild/RebuildWebPage.h"
#include "support/TempFolder.h"
#include "support/TestDoubles.h"
#include "support/TestProject.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace nv::test {

/// A project with cached pages and parts as files of Internet Explorer's or Opera's cache, which
/// lie in a folder of evidence.
class RebuildFixture : public testing::Test {
  protected:
    RebuildFixture() {
        std::filesystem::create_directories(evidenceFolder);
        std::filesystem::create_directories(temp);
    }

    /// Stores a record of `url`, whose content is `content`; an empty one is a file that is gone.
    UrlId add(const std::string &url, const std::string &content,
              const std::string &cacheType = "IE Cache") {
        UrlRecord record;
        record.cacheType = cacheType;
        record.URL = record.URLRawValue = url;
        record.host = parseHost(url);
        record.CacheFolderName = "ABCDEFGH";
        record.CacheFileName = "file" + std::to_string(++m_files) + "." + getFileExtension(url);
        const auto file = evidenceFolder / record.CacheFolderName / record.CacheFileName;
        record.RootPath = evidence.rootOf(file);
        record.CacheFileRelativePath = evidence.relativeOf(file);
        record.CacheFileExists = !content.empty();
        std::filesystem::create_directories(file.parent_path());
        if (!content.empty())
            writeWhole(file, content);
        store.saveRecord(record, project.file);
        return record.URLID;
    }

    UrlRecord get(UrlId id) { return *store.getURL(id); }
    RebuildContext context() {
        return {project.connection(), store, evidence, temp, project.log, task, settings};
    }
    bool rebuild(UrlId id) {
        page = get(id);
        return rebuildWebPage(page, Batch::no, context(), project.clock);
    }
    /// The value of a column of the only row that `where` picks.
    std::string tag(const std::string &column, const std::string &where) {
        return project.text("SELECT " + column + " FROM Tags WHERE " + where);
    }
    std::string fileOf(UrlId id, const std::string &name) {
        const auto file = rebuildFolderOf(id, context()) / name;
        return std::filesystem::exists(file) ? std::string(ByteView(readWhole(file)).raw()) : "";
    }

    TestProject project;
    RecordStore store = project.store();
    std::filesystem::path evidenceFolder = project.folder.path() / "evidence";
    std::filesystem::path temp = project.folder.path() / "temp";
    Evidence evidence{evidenceFolder};
    Unwatched task;
    RebuildSettings settings;
    UrlRecord page;

  private:
    int m_files = 0;
};

} // namespace nv::test
