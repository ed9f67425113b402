#pragma once

#include "reports/case/CaseFrame.h"
#include "reports/case/CaseRow.h"

#include <filesystem>
#include <fstream>

namespace nv {

/// More rows than this go into a further page.
inline constexpr std::size_t kCaseRowsAPage = 20000;

/// Writes the rows of one section: its pages one after the other, and the list of all of them. A
/// row costs its own memory only.
class CaseTable {
  public:
    /// All must outlive it; `folder` is that of the report. Throws StorageFailure.
    CaseTable(const CaseFrame &frame, const CaseSection &section,
              const std::filesystem::path &folder);

    void add(const CaseRow &row);
    /// In place of a row that can't be read.
    void addBroken(UrlId id);
    void finish();

  private:
    void begin();
    void beginRow();
    void endPage();

    const CaseFrame &m_frame;
    const CaseSection &m_section;
    std::filesystem::path m_folder;
    std::filesystem::path m_path;
    std::ofstream m_page;
    std::ofstream m_list;
    std::size_t m_number = 0; ///< of the page in hand, from 1
    std::size_t m_rows = 0;   ///< of that page
};

/// The tags of a row with their colours and notes, as HTML; empty without any.
std::string caseTags(const CaseRow &row);

/// Throws StorageFailure when a file didn't take what was written.
void checkWritten(std::ostream &file, const std::filesystem::path &path);

} // namespace nv
