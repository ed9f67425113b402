#pragma once

#include "reports/case/CaseFrame.h"
#include "reports/case/Redactor.h"
#include "views/rows/IdLoader.h"

#include <cstddef>
#include <fstream>
#include <map>
#include <string>

namespace nv {

struct RecordOrigin;
struct ValueOrigin;

inline constexpr std::size_t kCaseOriginsAPage = 25;
/// More would make a book of it; `explain` tells each.
inline constexpr std::size_t kMostCaseOrigins = 500;

/// The appendix that tells where each value of a row comes from. What is redacted stands in it in
/// no form: neither in values nor in the bytes, names and hashes that would tell them.
class CaseOrigins {
  public:
    /// All must outlive it; `section` is that of the appendix.
    CaseOrigins(const ReportContext &ctx, const CaseFrame &frame, const CaseSection &section,
                Redactor &redactor)
        : m_ctx(ctx), m_frame(frame), m_section(section), m_redactor(redactor) {}

    /// Settles which rows are told and in which order: file by file, so that each is read once.
    void choose(RowIds ids);
    /// "origins-1.htm#o17"; empty for a row that isn't told.
    std::string placeOf(UrlId id) const;
    /// Reads the evidence again. False when cancelled. Throws StorageFailure.
    bool write(const std::filesystem::path &folder, TaskMonitor &task);

  private:
    void begin(const std::filesystem::path &folder, std::size_t number);
    void end(std::size_t number);
    void writeRow(const RecordOrigin &origin);
    std::string valueRow(const ValueOrigin &value);
    bool isWithheld(UrlId id);
    std::string safe(const std::string &text);
    std::string safeBytes(const ValueOrigin &value, bool isRedacted);

    const ReportContext &m_ctx;
    const CaseFrame &m_frame;
    const CaseSection &m_section;
    Redactor &m_redactor;
    RowIds m_ids;
    std::size_t m_asked = 0; ///< rows that might be told
    std::map<std::int32_t, std::size_t> m_places;
    std::ofstream m_page;
    std::filesystem::path m_path;
};

} // namespace nv
