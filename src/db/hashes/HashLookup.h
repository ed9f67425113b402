#pragma once

#include "db/hashes/HashSetFile.h"
#include "db/records/FactList.h"

#include <array>
#include <cstdint>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

namespace nv {

/// The facts that hold a hash of a file.
inline constexpr std::array<std::string_view, 4> kHashFacts = {"content_md5", "content_sha1",
                                                               "content_sha256", "sha256"};
/// The facts that tell that a record's file is in a set: value its name, raw form the hash by which
/// it was found.
inline constexpr std::array<std::string_view, 2> kHashSetFacts = {"hashset_known",
                                                                  "hashset_notable"};
std::string_view factFor(HashMeaning meaning);

/// Adds that the record's file is in the set.
void addHashSetFact(FactList &facts, const HashSetFacts &set, DigestAlgorithm by);

/// Tells of one record after the other in which sets its file is.
class HashLookup {
  public:
    explicit HashLookup(std::vector<HashSetFile> sets)
        : m_sets(std::move(sets)), m_found(m_sets.size()) {}

    std::span<const HashSetFile> sets() const { return m_sets; }
    /// Adds a fact for each set that has one of the hashes among the facts. Throws as
    /// HashSetFile::has() does.
    void addFindings(FactList &facts);
    /// How many records were found so far, by the place of the set.
    std::span<const std::uint64_t> found() const { return m_found; }

  private:
    std::vector<HashSetFile> m_sets;
    std::vector<std::uint64_t> m_found;
};

} // namespace nv
