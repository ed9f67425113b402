#pragma once

#include "base/FailureLog.h"
#include "readers/Evidence.h"
#include "readers/chrome/cache/CacheRecords.h"

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace nv {

/// The files "data_0" to "data_255" beside an index, each opened once and kept open.
class ChromeBlockFiles {
  public:
    /// Failures are logged once a file. All must outlive this.
    ChromeBlockFiles(const Evidence &evidence, std::filesystem::path folder, FailureLog &log,
                     std::string_view procedure)
        : m_evidence(evidence), m_folder(std::move(folder)), m_log(&log), m_procedure(procedure) {}
    /// For a body alone, whose lacks the reading has told: a file that is there and can't be opened
    /// throws EvidenceFailure. `evidence` must outlive this.
    ChromeBlockFiles(const Evidence &evidence, std::filesystem::path folder)
        : m_evidence(evidence), m_folder(std::move(folder)) {}

    /// Null when there is no such file, or it can't be opened.
    const EvidenceFile *file(std::uint8_t number);
    /// Why file() gives null; names the file.
    const std::string &lackOf(std::uint8_t number);
    /// What is told of files that have been opened and end before their heads say so.
    std::vector<std::string> cutShort() const;
    /// The path that the file has or would have.
    std::string pathOf(std::uint8_t number) const;
    /// Up to `count` bytes of the block; none when the address names no block, its file is missing
    /// or ends before it. Throws EvidenceFailure.
    Bytes read(const ChromeAddressMap &map, std::uint64_t count);

  private:
    struct Opened {
        std::optional<EvidenceFile> reader;
        std::string lack;
        std::string missingEnd{};
    };

    Opened &opened(std::uint8_t number);
    Opened open(std::uint8_t number) const;
    Opened openLogged(const std::filesystem::path &path) const;
    std::string missingEndOf(const EvidenceFile &file) const;
    void write(const std::string &message) const;

    const Evidence &m_evidence;
    std::filesystem::path m_folder;
    FailureLog *m_log = nullptr; ///< may be null
    std::string_view m_procedure;
    std::map<std::uint8_t, Opened> m_files;
};

} // namespace nv
