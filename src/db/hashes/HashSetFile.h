#pragma once

#include "base/Files.h"
#include "db/hashes/HashSetForm.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <vector>

namespace nv {

/// A file of hashes, asked without being loaded: in memory are half a megabyte of index for each
/// length of hashes, and the bytes that were looked at last. Hashes that are asked in their order
/// are found quickest.
class HashSetFile {
  public:
    /// Throws FileFailure for a file that can't be opened, and StorageFailure for one that isn't a
    /// whole file of hashes.
    explicit HashSetFile(const std::filesystem::path &path);

    const std::filesystem::path &path() const { return m_file.path(); }
    const HashSetFacts &facts() const { return m_facts; }
    /// How many different hashes it has of an algorithm.
    std::uint64_t count(DigestAlgorithm algorithm) const;
    std::uint64_t count() const;

    /// Throws FileFailure when the file can't be read, StorageFailure when it has shrunk.
    bool has(const HashValue &hash);

  private:
    struct Section {
        HashSection place;
        std::size_t width = 0; ///< bytes of a hash
        std::vector<std::uint64_t> index;
    };

    [[noreturn]] void fail(std::string_view why) const;
    Bytes read(std::uint64_t offset, std::uint64_t count) const;
    HashSetTail readTail() const;
    void readSection(Section &section) const;
    bool isFound(const HashValue &hash, const Section &section, std::uint64_t first,
                 std::uint64_t end);

    FileReader m_file;
    HashSetFacts m_facts;
    std::array<Section, kHashAlgorithms.size()> m_sections;
    std::uint64_t m_blockPlace = 0; ///< in the file, of what was read last
    Bytes m_block;
};

} // namespace nv
