#pragma once

#include "support/builders/SqliteFile.h"

#include <cstdint>
#include <string>

namespace nv::test {

// Databases of a profile of Chromium 156, beside its history.

/// Bytes of hexadecimal digits.
std::string bytesOfHex(const std::string &digits);

/// Values that Linux's "v10" gives, made with another program than the tested one.
namespace cipher {
/// "harbour light"
inline constexpr const char *kPlain = "91a4eb9d453b6daa042c6b25f776f682";
/// The same after the SHA-256 of ".example.com", and of ".other.example".
inline constexpr const char *kOfHost = "1bb654833fa6f8a731528db92d657dc37c87544a81ba7875d0681273543"
                                       "b4e4fc4ca2198862ca76a018587eec906007d";
inline constexpr const char *kOfOtherHost = "da73fafdeff1dc737535adc83d12de5375fd125f14618064932ad1"
                                            "3890e26278bcef3bd12021813c1b013d3b8afbf535";
/// Three control characters.
inline constexpr const char *kNoText = "51ef1dbce253f87aa75c312c7faa3a04";
/// Nothing after the SHA-256 of ".example.com".
inline constexpr const char *kEmptyOfHost = "1bb654833fa6f8a731528db92d657dc37c87544a81ba7875d06812"
                                            "73543b4e4f17cbe87997e8760c1ffbb117c700f653";
} // namespace cipher

/// "v10" and the bytes of the digits.
std::string v10(const std::string &digits);

struct ChromiumCookie {
    std::string host = ".example.com";
    std::string name = "session";
    std::string value{};
    std::string encrypted{}; ///< bytes
    std::int64_t created = 0;
    std::int64_t expires = 0;
    std::int64_t lastAccess = 0;
    std::int64_t lastUpdate = 0;
    std::string path = "/";
    std::string topFrameSite{};
    int secure = 1;
    int httpOnly = 0;
    int sameSite = -1;
    int sourceScheme = 2;
    int sourcePort = 443;
};

/// A "Cookies" with the number of its tables' version.
class ChromiumCookies : public SqliteFile {
  public:
    explicit ChromiumCookies(const std::filesystem::path &path, int version = 24);
    ChromiumCookies &add(const ChromiumCookie &cookie);
};

/// A "Web Data" with the tables of forms, addresses, cards and search engines, all empty.
class ChromiumWebData : public SqliteFile {
  public:
    explicit ChromiumWebData(const std::filesystem::path &path);
    ChromiumWebData &addForm(const std::string &name, const std::string &value, std::int64_t first,
                             std::int64_t last, std::int64_t count);
    ChromiumWebData &addAddressPart(const std::string &guid, int type, const std::string &value);
};

struct ChromiumLogin {
    std::string site = "https://mail.example.com/login";
    std::string user = "mara";
    std::string password{}; ///< bytes
    std::int64_t created = 0;
    std::int64_t lastUsed = 0;
    std::int64_t passwordChanged = 0;
    std::int64_t timesUsed = 0;
    bool neverSave = false;
};

/// A "Login Data".
class ChromiumLogins : public SqliteFile {
  public:
    explicit ChromiumLogins(const std::filesystem::path &path);
    ChromiumLogins &add(const ChromiumLogin &login);
};

} // namespace nv::test
