#include "import/AskedKinds.h"

#include "readers/RecordKind.h"
#include "readers/Registry.h"

#include <algorithm>

namespace nv {

bool AskedKinds::add(std::string_view key) {
    if (const Reader *reader = readerByKey(key)) {
        m_readers.insert(reader);
        return true;
    }
    const auto kinds = recordKinds();
    const auto found = std::ranges::find(kinds, key, &RecordKind::key);
    if (found == kinds.end())
        return false;
    m_kinds.insert(*found);
    return true;
}

void AskedKinds::clear() {
    m_readers.clear();
    m_kinds.clear();
}

bool AskedKinds::wantsAllOf(const Reader &reader) const {
    return (m_readers.empty() && m_kinds.empty()) || m_readers.contains(&reader);
}

bool AskedKinds::wants(const Reader &reader) const {
    return wantsAllOf(reader) || std::ranges::any_of(reader.kinds, [this](const RecordKind *kind) {
               return m_kinds.contains(kind);
           });
}

bool AskedKinds::wants(const Reader &reader, std::string_view cacheType) const {
    return wantsAllOf(reader) || m_kinds.contains(recordKind(cacheType));
}

std::vector<std::string> keysToAskFor() {
    std::vector<std::string> keys;
    for (const Reader *reader : registry())
        keys.emplace_back(reader->key);
    for (const RecordKind *kind : recordKinds())
        if (std::ranges::find(keys, kind->key) == keys.end())
            keys.emplace_back(kind->key);
    return keys;
}

} // namespace nv
