#pragma once

#include "support/builders/SqliteFile.h"

#include <cstdint>
#include <string>
#include <vector>

namespace nv::test {

/// Microseconds since 1970.
constexpr std::int64_t firefoxTime(std::int64_t unixSeconds, std::int64_t microseconds = 0) {
    return unixSeconds * 1'000'000 + microseconds;
}

struct PlacesRow {
    std::int64_t id = 1;
    std::string url{};
    std::string title{};
    std::int64_t visitCount = 1;
    bool hidden = false;
    std::vector<std::int64_t> visitDates{}; ///< rows of table moz_historyvisits, in this order
};

/// A "places.sqlite" of Firefox.
class Places : public SqliteFile {
  public:
    enum class Version { firefox3, firefox41, firefox115 };

    explicit Places(const std::filesystem::path &path, Version version = Version::firefox3,
                    int pageSize = 4096, const std::string &encoding = "UTF-8");
    Places &add(const PlacesRow &row);
};

/// Three places: one visited twice, one hidden, one that Firefox made by itself.
void addExamplePlaces(Places &places);

} // namespace nv::test
