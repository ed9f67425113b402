#pragma once

#include "readers/Reader.h"

#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace nv {

/// What an import is asked for by key: readers with all that they make, and single kinds of
/// records. Nothing named means everything.
class AskedKinds {
  public:
    /// Takes the key of a reader, else that of a kind. False when there is neither.
    [[nodiscard]] bool add(std::string_view key);
    void clear();

    /// Whether files of the format are read at all.
    bool wants(const Reader &reader) const;
    /// Whether the reader's records of that `CacheType` are stored.
    bool wants(const Reader &reader, std::string_view cacheType) const;
    /// Whether each record of the reader is.
    bool wantsAllOf(const Reader &reader) const;

  private:
    std::set<const Reader *> m_readers;
    std::set<const RecordKind *> m_kinds;
};

/// All keys that can be asked for, each once, those of readers first.
std::vector<std::string> keysToAskFor();

} // namespace nv
