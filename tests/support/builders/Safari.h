#pragma once

#include "support/builders/SqliteFile.h"

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace nv::test {

/// Names and values of an HTTP header, in their order.
using Headers = std::vector<std::pair<std::string, std::string>>;

/// The response object of a cached file in XML form. `type` stands after the headers.
std::string safariResponse(const std::string &url, const Headers &headers);

/// The header that servers send with a page or a picture.
Headers headersOf(const std::string &type, const std::string &date,
                  const std::string &lastModified = {});

struct SafariEntry {
    std::int64_t id = 1;
    std::string url = "http://www.example.com/";
    std::optional<std::string> response{}; ///< as it is stored; nothing is NULL
    std::optional<std::string> body{};
    bool isOnDisk = false; ///< in later versions: `body` is the name of a file
};

/// A "Cache.db" of Safari.
class SafariCache : public SqliteFile {
  public:
    enum class Version {
        oneTable,   ///< header and body in table cfurl_cache_blob_data
        bodiesApart ///< bodies in table cfurl_cache_receiver_data
    };

    explicit SafariCache(const std::filesystem::path &path, Version version = Version::oneTable,
                         int pageSize = 4096);
    SafariCache &add(const SafariEntry &entry);
    /// The entry in the list only.
    SafariCache &addWithoutBlobs(std::int64_t id, const std::string &url);

  private:
    void addBody(const SafariEntry &entry);

    Version m_version;
};

/// Two pages and a picture, one of them without anything cached.
void addExampleEntries(SafariCache &cache);

/// One entry of a history. Values are written as they stand; one that is nothing is left out.
struct SafariVisit {
    std::string url{};
    std::optional<std::string> title{};
    std::optional<std::string> lastVisited{}; ///< seconds since 2001
    std::optional<std::string> visitCount = "1";
    std::vector<std::string> redirects{};
};

/// A "History.plist" of Safari in XML form.
class SafariHistory {
  public:
    enum class Spacing { lines, none };
    explicit SafariHistory(Spacing spacing = Spacing::lines) : m_spacing(spacing) {}

    SafariHistory &add(const SafariVisit &visit);
    /// XML of the test's own amid the entries.
    SafariHistory &addXml(const std::string &xml);
    std::string text() const;

  private:
    std::string m_entries;
    Spacing m_spacing;
};

/// Three pages, one of them without a title.
void addExampleVisits(SafariHistory &history);

} // namespace nv::test
