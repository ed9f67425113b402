#pragma once

#include "base/Files.h"
#include "rebuild/RebuildWebPage.h"
#include "support/TestProject.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include <filesystem>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace nv::bench {

/// A project with pages of one host among many cached parts, all of which are one picture.
struct CachedPages {
    static constexpr const char *kHost = "host1.example";

    test::TestProject project;
    RecordStore store = project.store();
    std::filesystem::path folder = project.folder.path() / "evidence";
    std::filesystem::path temp = project.folder.path() / "temp";
    Evidence evidence{folder};
    Unwatched task;
    std::string cacheType;
    std::vector<UrlId> pages;

    CachedPages(std::string kind, std::string_view picture) : cacheType(std::move(kind)) {
        std::filesystem::create_directories(folder);
        std::filesystem::create_directories(temp);
        writeWhole(folder / "part.gif", picture);
    }

    RebuildContext context(const RebuildSettings &settings) {
        return {project.connection(), store, evidence, temp, project.log, task, settings};
    }
    UrlId add(const std::string &url, const std::string &name, const std::string &host) {
        UrlRecord record;
        record.cacheType = cacheType;
        record.URL = record.URLRawValue = url;
        record.host = host;
        record.URLFileExt = name.substr(name.rfind('.') + 1);
        record.ActionDateUTC = Date::fromDays(45000);
        record.CacheFileName = name;
        record.RootPath = evidence.rootOf(folder / name);
        record.CacheFileRelativePath = evidence.relativeOf(folder / name);
        record.CacheFileExists = true;
        store.saveRecord(record, project.file);
        return record.URLID;
    }
    /// The next page, with a picture at each of the addresses.
    void addPage(std::string_view origin, const std::vector<std::string> &pictures) {
        std::string html = "<!DOCTYPE html><html><h1>A page</h1>";
        for (const std::string &url : pictures)
            html += fmt::format("<p>Text <img src=\"{}\" ></p>\r\n", url);
        const std::string name = fmt::format("page{}.htm", pages.size());
        writeWhole(folder / name, html + "</html> ");
        pages.push_back(add(fmt::format("{}{}/{}", origin, kHost, name), name, kHost));
    }
    /// Calls `take` with each page after it was rebuilt.
    template <class Take>
    void rebuildAll(benchmark::State &state, const RebuildContext &ctx, Take &&take) {
        for (const UrlId id : pages) {
            UrlRecord page = *store.getURL(id);
            if (!rebuildWebPage(page, Batch::yes, ctx, project.clock))
                state.SkipWithError("a page was not rebuilt");
            take(page);
        }
    }
};

} // namespace nv::bench
