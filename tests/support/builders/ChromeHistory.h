#pragma once

#include "support/builders/SqliteFile.h"

#include <cstdint>
#include <string>
#include <vector>

namespace nv::test {

/// Microseconds since 1601, of seconds since 1970.
constexpr std::int64_t chromeTime(std::int64_t unixSeconds, std::int64_t microseconds = 0) {
    return (unixSeconds + 11644473600) * 1'000'000 + microseconds;
}

struct ChromePage {
    std::int64_t id = 1;
    std::string url{};
    std::string title{};
    std::int64_t visitCount = 1;
    std::int64_t lastVisitTime = 0;
    bool hidden = false;
    std::int64_t typedCount = 0;
    std::vector<std::int64_t> visitTimes{}; ///< rows of table visits
};

/// A "History" of Chrome.
class ChromeHistory : public SqliteFile {
  public:
    /// By the number in the file's table meta: Chrome 10 of 2011, 36 of 2014, 120 of 2023, and
    /// Chromium 156 of 2026, which alone has all tables around pages and visits.
    enum class Version { schema20 = 20, schema29 = 29, schema66 = 66, schema70 = 70 };

    explicit ChromeHistory(const std::filesystem::path &path, Version version = Version::schema29,
                           int pageSize = 4096, const std::string &encoding = "UTF-8");
    ChromeHistory &add(const ChromePage &page);
};

/// Three pages: one visited twice, one hidden, one that was never visited.
void addExamplePages(ChromeHistory &history);

} // namespace nv::test
