#pragma once

#include "support/builders/SqliteFile.h"

#include <cstdint>
#include <string>

namespace nv::test {

/// One cookie; the units of its dates are those of the file that it goes into.
struct Cookie {
    std::string host = ".example.com";
    std::string name = "session";
    std::string value = "1";
    std::int64_t lastAccess = 0;
    std::int64_t expiry = 0;
    std::int64_t creation = 0;
    std::string encrypted{}; ///< bytes; Chrome's only
};

/// A "Cookies" of Chrome. Dates in microseconds since 1601; each creation date once only.
class ChromeCookies : public SqliteFile {
  public:
    explicit ChromeCookies(const std::filesystem::path &path, int pageSize = 4096);
    ChromeCookies &add(const Cookie &cookie);
};

/// A "cookies.sqlite" of Firefox. Last access in microseconds since 1970, expiry in seconds.
class FirefoxCookies : public SqliteFile {
  public:
    explicit FirefoxCookies(const std::filesystem::path &path, int pageSize = 4096);
    FirefoxCookies &add(const Cookie &cookie);
};

} // namespace nv::test
