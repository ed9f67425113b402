#pragma once

#include "import/AdvancedMetadata.h"
#include "import/Categories.h"
#include "import/SavedContent.h"
#include "readers/EvidenceGaps.h"

#include <filesystem>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace nv {

/// What an import looks for in the content of records.
struct ContentLooks {
    Signatures signatures = Signatures::verify;
    bool intoPages = true;  ///< their titles, texts and links
    bool hashesAll = false; ///< not only where each body is hashed: for hash sets
};

/// Keeps what it is told, so that the log hears of records in their order whichever was looked at
/// first.
class KeptLog final : public GapLog {
  public:
    /// `log` must outlive it.
    explicit KeptLog(FailureLog &log) : m_log(log) {}
    /// Tells what wasn't told yet.
    ~KeptLog() override { tell(); }
    KeptLog(const KeptLog &) = delete;
    KeptLog &operator=(const KeptLog &) = delete;

    void write(const Failure &failure) override { m_kept.emplace_back(failure); }
    void unread(const std::filesystem::path &file, const std::string &reason) override {
        m_kept.emplace_back(Gap{file, reason});
    }
    void tell();

  private:
    struct Gap {
        std::filesystem::path file;
        std::string reason;
    };

    FailureLog &m_log;
    std::vector<std::variant<Failure, Gap>> m_kept;
};

/// One record on its way into the project, before its row is written: what its content says of it.
class RecordLook {
  public:
    /// Takes over what `content` has for the reader. Log and evidence of `extraction` must outlive
    /// it.
    RecordLook(UrlRecord taken, const Extraction &extraction, ContentProbe &content,
               const ContentLooks &looks);
    RecordLook(const RecordLook &) = delete;
    RecordLook &operator=(const RecordLook &) = delete;

    /// Whether look() may run on another thread: what it reads is in memory, or a file of the
    /// evidence. A scratch file has the name of the next record's.
    [[nodiscard]] bool mayRunBeside();
    /// Throws StorageFailure; all else is logged, and takes nothing from the record.
    void look();
    /// What look() and the steps before it had to tell, to the log.
    void tell() { m_log.tell(); }

    UrlRecord record;
    Verdict verdict;
    PageFindings page;

  private:
    ContentLooks m_looks;
    KeptLog m_log;
    Extraction m_extraction;
    Categories m_categories;
    AdvancedMetadata m_metadata;
    ContentProbe m_probe;
    std::optional<SavedContent> m_content; ///< let go of as soon as it was looked at
};

} // namespace nv
