#pragma once

#include "base/Storage.h"
#include "db/hashes/HashSetForm.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>

namespace nv {

/// Sorts hashes that arrive in any order into a file of hashes. What doesn't fit into memory lies
/// in the scratch folder meanwhile. All throw StorageFailure.
class HashSetMaker {
  public:
    static constexpr std::size_t kInMemory = std::size_t{64} << 20; ///< bytes of hashes

    /// `scratch` is an existing folder of the program's own, in which nobody else uses names that
    /// begin with "~hashes".
    explicit HashSetMaker(std::filesystem::path scratch, std::size_t inMemory = kInMemory);
    ~HashSetMaker();
    HashSetMaker(const HashSetMaker &) = delete;
    HashSetMaker &operator=(const HashSetMaker &) = delete;

    void add(const HashValue &hash);
    /// Writes the file at `target`, over one that is there, once. `goOn` is asked now and then with
    /// the part that is done, 0 to 1; false ends it, and leaves no whole file. The number of
    /// different hashes.
    std::optional<std::uint64_t> writeTo(const std::filesystem::path &target,
                                         const HashSetFacts &facts,
                                         const std::function<bool(double)> &goOn);

  private:
    class Sorter;
    template <std::size_t Width>
    class SorterOf;

    void makeRoom();

    std::size_t m_inMemory;
    std::array<std::unique_ptr<Sorter>, kHashAlgorithms.size()> m_sorters;
};

} // namespace nv
