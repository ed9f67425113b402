#pragma once

#include <filesystem>
#include <string>

namespace nv {
struct ImportSummary;
} // namespace nv

namespace nv::cli {

class Session;

/// Throws UsageError when no summary of an import can be written to `file`: it is there already,
/// or nothing may be written there. A project must be open.
void checkSummaryFile(Session &session, const std::filesystem::path &file, bool overwrite);

/// The summary of an import as a page that is asked for before it. Whatever keeps it from being
/// written, its end tells that there is none.
class SummaryPage {
  public:
    /// An empty `file` asks for none. Throws as checkSummaryFile().
    SummaryPage(Session &session, std::filesystem::path file);
    ~SummaryPage();
    SummaryPage(const SummaryPage &) = delete;
    SummaryPage &operator=(const SummaryPage &) = delete;

    /// Once the import has ended, also by a failure or a cancel, and before its project is closed.
    /// False when a page was asked for and isn't there.
    bool write(const ImportSummary &summary);

  private:
    void keepMissing(const std::string &reason);

    Session &m_session;
    std::filesystem::path m_file;
    std::string m_missing; ///< what is told at the end
};

} // namespace nv::cli
