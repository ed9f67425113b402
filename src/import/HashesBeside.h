#pragma once

#include "base/Workers.h"
#include "import/HistoryFiles.h"
#include "import/ImportSummary.h"
#include "import/OpenedFiles.h"
#include "readers/Evidence.h"
#include "readers/EvidenceGaps.h"

#include <filesystem>
#include <set>
#include <vector>

namespace nv {

/// Hashes the files that an import reads beside its artefacts, which the scan has hashed: logs and
/// journals of databases, blocks and bodies of caches. Each file is hashed once an import.
class HashesBeside {
  public:
    /// All must outlive this.
    HashesBeside(const Evidence &evidence, OpenedFiles &opened, Workers &workers,
                 HistoryFiles &artefacts);

    /// Log and journal of a database are hashed where they are there, whether anything is read of
    /// them or not: one that is there later can then be told as new.
    void addLogsOf(const std::filesystem::path &artefact);
    /// Of the files that were opened since the last call, in the order of their names' bytes. One
    /// that can't be read is told to `log` and comes without hashes.
    [[nodiscard]] std::vector<FileBeside> take(GapLog &log);

  private:
    bool isNew(const std::filesystem::path &file) const;
    void hash(FileBeside &file) const;

    const Evidence &m_evidence;
    OpenedFiles &m_opened;
    Workers &m_workers;
    std::set<std::filesystem::path> m_known; ///< artefacts, folders too, and what was hashed
};

} // namespace nv
