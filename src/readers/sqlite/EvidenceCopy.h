#pragma once

#include "readers/Evidence.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

namespace nv {

/// A copy of an SQLite file with its log and journal, below the scratch folder and gone with this
/// object. SQLite writes beside what it opens, so evidence itself is never opened.
class EvidenceCopy {
  public:
    /// `name` is what the copy is called: two that are open at a time need two. Throws
    /// EvidenceFailure when the file can't be read, StorageFailure when the copy can't be written.
    EvidenceCopy(const Evidence &evidence, const std::filesystem::path &database,
                 const std::filesystem::path &scratch, std::string_view name = "~evidence.sqlite");
    ~EvidenceCopy();
    EvidenceCopy(const EvidenceCopy &) = delete;
    EvidenceCopy &operator=(const EvidenceCopy &) = delete;

    const std::filesystem::path &path() const { return m_copy; }
    /// Bytes of the database with its log: no more rows than this can be in them.
    std::uint64_t size() const { return m_size; }
    /// What the database's log lacks by damage; names it. Empty for a sound one, and for none.
    const std::string &logDamage() const { return m_logDamage; }

  private:
    explicit EvidenceCopy(std::filesystem::path copy);
    void copyAll(const Evidence &evidence, const std::filesystem::path &database);
    void remove() const;

    std::filesystem::path m_copy;
    std::uint64_t m_size = 0;
    std::string m_logDamage;
};

} // namespace nv
