#pragma once

#include "support/builders/SqliteFile.h"

#include <cstdint>
#include <string>
#include <vector>

namespace nv::test {

// Databases of a profile of today's Firefox, each with its own tables only. Dates in microseconds
// since 1970 where nothing else is said.

struct PlacesPage {
    std::int64_t id = 1;
    std::string url{};
    std::string title{};
    std::int64_t visitCount = 1;
};

struct PlacesVisit {
    std::int64_t id = 1;
    std::int64_t place = 1;
    std::int64_t date = 0;
    std::int64_t type = 1;
    std::int64_t from = 0;
};

struct PlacesBookmark {
    std::int64_t id = 1;
    std::int64_t type = 1; ///< 2 for a folder
    std::int64_t page = 0; ///< 0 for none
    std::int64_t parent = 0;
    std::string title{};
    std::string guid{};
    std::int64_t added = 0;
};

/// A "places.sqlite" with bookmarks and annotations.
class CurrentPlaces : public SqliteFile {
  public:
    explicit CurrentPlaces(const std::filesystem::path &path, int pageSize = 4096);
    CurrentPlaces &add(const PlacesPage &page);
    CurrentPlaces &add(const PlacesVisit &visit);
    CurrentPlaces &add(const PlacesBookmark &bookmark);
    CurrentPlaces &annotate(std::int64_t page, const std::string &name, const std::string &content,
                            std::int64_t added);
};

/// A "formhistory.sqlite".
class FirefoxForms : public SqliteFile {
  public:
    explicit FirefoxForms(const std::filesystem::path &path, int pageSize = 4096);
    FirefoxForms &add(const std::string &field, const std::string &value, std::int64_t lastUsed);
};

/// A "permissions.sqlite". Dates in milliseconds.
class FirefoxPermissions : public SqliteFile {
  public:
    explicit FirefoxPermissions(const std::filesystem::path &path, int pageSize = 4096);
    FirefoxPermissions &add(const std::string &origin, const std::string &type,
                            std::int64_t setting, std::int64_t modified);
};

/// A "favicons.sqlite".
class FirefoxFavicons : public SqliteFile {
  public:
    explicit FirefoxFavicons(const std::filesystem::path &path, int pageSize = 4096);
    /// A page with an icon of its own.
    FirefoxFavicons &add(const std::string &page, const std::string &icon);
};

/// A "downloads.sqlite" of Firefox 3 to 25.
class FirefoxDownloads : public SqliteFile {
  public:
    explicit FirefoxDownloads(const std::filesystem::path &path, int pageSize = 4096);
    FirefoxDownloads &add(const std::string &source, const std::string &target,
                          std::int64_t started, std::int64_t state);
};

/// A "logins.json"; dates in milliseconds, the encrypted name in base64.
struct FirefoxLogin {
    std::string site;
    std::string encryptedName{};
    std::int64_t created = 0;
};
std::string firefoxLogins(const std::vector<FirefoxLogin> &logins);

} // namespace nv::test
