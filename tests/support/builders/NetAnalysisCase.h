#pragma once

#include "support/builders/Jet4.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace nv::test {

/// One row of table `History`. What is empty or nothing is null in the file.
struct NetAnalysisEvent {
    std::string Type = "URL";
    std::optional<double> LastVisited = {}; ///< days since 1899-12-30, local
    std::optional<double> SecondaryDate = {};
    std::string User = {};
    std::optional<std::int32_t> Hits = {};
    std::string InternetHistory = {};
    std::string Hostname = {};
    std::string URLFileName = {};
    bool FileExists = false;
    std::optional<std::int32_t> fileOffset = {};
    std::string HistoryVersion = {};
    std::string ContentData = {};
    std::string Comment = {};
    std::string Status = {};
    std::string SearchCriteria = {};
    JetPlace place = JetPlace::here;
};

/// Days since 1899-12-30, as a case file keeps a date of 1900 or later.
double jetDate(int year, int month, int day, int hour = 0, int minute = 0, int second = 0);

/// Makes a case file: a Jet 4 database with tables `Case` and `History`.
class NetAnalysisCase {
  public:
    explicit NetAnalysisCase(std::string_view CachePath = "C:\\Export\\Content.IE5",
                             std::string_view Version = "1.37");
    NetAnalysisCase &add(const NetAnalysisEvent &event);
    std::string bytes() const { return m_file.bytes(); }
    /// Where the last bytes() put things.
    const Jet4 &file() const { return m_file; }

  private:
    Jet4 m_file;
    std::int32_t m_events = 0;
};

} // namespace nv::test
