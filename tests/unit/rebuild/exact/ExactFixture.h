#pragma once

#include "db/marks/RebuiltParts.h"
#include "rebuild/LocalNames.h"
#include "unit/rebuild/RebuildFixture.h"

#include <fmt/format.h>

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace nv::test {

/// The first bytes of a picture: enough for its kind to be told.
inline constexpr const char *kPng = "\x89PNG\r\n\x1a\n";

/// A cached answer.
struct Answer {
    std::string url;
    std::string body;
    std::string type{};      ///< MIME type; empty for none
    double day = 40000;      ///< when it was answered, as days
    std::int64_t source = 0; ///< its row of SourceFiles
    std::string status{"200 OK"};
    std::string location{}; ///< of a redirect
    std::string charset{};
    std::string cacheType{"Opera Cache"};
    std::string raw{};   ///< the address as the browser kept it; empty for the same
    bool headers = true; ///< the cache has them
};

/// A project whose pages are rebuilt exactly.
class ExactFixture : public RebuildFixture {
  protected:
    ExactFixture() {
        settings.method = MethodChoice::exact;
        settings.wideRecordIds = true;
    }

    UrlId put(const Answer &answer) {
        UrlRecord record;
        record.cacheType = answer.cacheType;
        record.URL = answer.url;
        record.URLRawValue = answer.raw.empty() ? answer.url : answer.raw;
        record.host = parseHost(answer.url);
        record.URLFileExt = getFileExtension(answer.url.substr(0, answer.url.find_first_of("?#")));
        record.ActionDateUTC = Date::fromDays(answer.day);
        record.MIMEType = answer.type;
        record.MetaData = answer.headers ? headersOf(answer) : std::string();
        record.HistoryFilePath = "/evidence/Default/Cache";
        const auto file = evidenceFolder / fmt::format("part{}", ++m_parts);
        record.RootPath = evidence.rootOf(file);
        record.CacheFileRelativePath = evidence.relativeOf(file);
        record.CacheFileName = file.filename().string();
        record.CacheFileExists = !answer.body.empty();
        if (!answer.body.empty())
            writeWhole(file, answer.body);
        HistoryFile from = project.file;
        from.sourceFileID = SourceFileId{answer.source};
        record.SourceFile_ID = from.sourceFileID;
        store.saveRecord(record, from);
        return record.URLID;
    }
    UrlId putPage(const std::string &html, const std::string &url = "https://host/dir/page.html") {
        return put({.url = url, .body = html, .type = "text/html", .charset = "utf-8"});
    }
    /// A row of SourceFiles of that profile.
    std::int64_t source(const std::string &profile) {
        project.connection().exec(
            fmt::format("INSERT INTO SourceFiles (FileName, Browser, Profile, Person) VALUES "
                        "('index', 'Chrome', '{}', 'anna')",
                        profile));
        return project.number("SELECT max(SourceFile_ID) FROM SourceFiles");
    }

    std::vector<PartNote> notes(UrlId html) {
        return RebuiltParts(project.connection()).notes(html);
    }
    /// "address: rule -> record" of each note.
    std::vector<std::string> found(UrlId html) {
        std::vector<std::string> lines;
        for (const PartNote &note : notes(html))
            lines.push_back(
                fmt::format("{}: {} -> {}", note.address, note.rule, number(note.part)));
        return lines;
    }
    std::string pageText(UrlId html) { return fileOf(html, pageNameOf(html)); }

  private:
    static std::string headersOf(const Answer &answer) {
        std::string lines = fmt::format("HTTP/1.1 {}\r\n", answer.status);
        if (!answer.location.empty())
            lines += fmt::format("Location: {}\r\n", answer.location);
        const std::string charset =
            answer.charset.empty() ? "" : fmt::format("; charset={}", answer.charset);
        return answer.type.empty()
                   ? lines
                   : lines + fmt::format("Content-Type: {}{}\r\n", answer.type, charset);
    }

    int m_parts = 0;
};

} // namespace nv::test
