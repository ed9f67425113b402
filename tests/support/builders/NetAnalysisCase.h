#pragma once

#include "support/builders/Jet4.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace nv::test {

/// One row of table `History`. What is empty or nothing is null in the file.
struct NetAnalysisEvent {
    std::string type = "URL";
    std::optional<double> lastVisited = {}; ///< days since 1899-12-30, local
    std::optional<double> secondaryDate = {};
    std::string user = {};
    std::optional<std::int32_t> hits = {};
    std::string internetHistory = {};
    std::string hostname = {};
    std::string urlFileName = {};
    bool fileExists = false;
    std::optional<std::int32_t> fileOffset = {};
    std::string historyVersion = {};
    std::string contentData = {};
    std::string comment = {};
    std::string status = {};
    std::string searchCriteria = {};
    JetPlace place = JetPlace::here;
};

/// Days since 1899-12-30, as a case file keeps a date of 1900 or later.
double jetDate(int year, int month, int day, int hour = 0, int minute = 0, int second = 0);

/// Makes a case file: a Jet 4 database with tables `Case` and `History`.
class NetAnalysisCase {
  public:
    explicit NetAnalysisCase(std::string_view cachePath = "C:\\Export\\Content.IE5",
                             std::string_view version = "1.37");
    NetAnalysisCase &add(const NetAnalysisEvent &event);
    std::string bytes() const { return m_file.bytes(); }
    /// Where the last bytes() put things.
    const Jet4 &file() const { return m_file; }

  private:
    Jet4 m_file;
    std::int32_t m_events = 0;
};

} // namespace nv::test
