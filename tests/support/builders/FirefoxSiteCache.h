#pragma once

#include "support/builders/SnappyFrames.h"
#include "support/builders/SqliteFile.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace nv::test {

/// An entry of a site's cache in Firefox. Texts are raw bytes.
struct FirefoxSiteEntry {
    std::string url = "https://app.example/page.html";
    std::string query = {};
    std::string fragment = {};
    std::string method = "GET";
    std::string referrer = "about:client";
    int type = 0;
    int status = 200;
    std::string statusText = "OK";
    std::string body = "{00112233-4455-6677-8899-aabbccddee9e}"; ///< in folder 158
    int cache = 1;
    std::vector<std::pair<std::string, std::string>> headers = {
        {"Date", "Tue, 14 Nov 2023 22:13:20 GMT"},
        {"Content-Type", "text/html; charset=utf-8"},
        {"Content-Encoding", "gzip"}};
    std::vector<std::pair<std::string, std::string>> requestHeaders = {};
    std::vector<std::string> urls = {}; ///< empty: that of the entry
};

/// Makes a "caches.sqlite" of schema 31 and the folder "morgue" beside it. Cache 1 is the site's
/// own, "pages", and cache 2 the browser's, "scripts".
class FirefoxSiteCacheFiles {
  public:
    explicit FirefoxSiteCacheFiles(const std::filesystem::path &folder);

    FirefoxSiteCacheFiles &add(const FirefoxSiteEntry &entry);
    /// Writes the bytes of a body's file, "158/{...}.final".
    FirefoxSiteCacheFiles &addBody(const std::string &name, std::string_view bytes);
    /// Where a body of that number lies.
    static std::string bodyName(const std::string &id);

    SqliteFile &file() { return m_file; }
    std::filesystem::path close();

  private:
    std::filesystem::path m_folder;
    SqliteFile m_file;
    int m_count = 0;
};

} // namespace nv::test
