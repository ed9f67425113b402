#pragma once

#include "base/Text.h"

#include <cstddef>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace nv {

/// An ordered list whose entries may have a key. Positions are 1-based; keys compare without
/// regard to case. Adding at the end and finding by key don't walk the list.
template <class Entry>
class KeyedList {
  public:
    void clear() {
        m_entries.clear();
        m_keys.clear();
        m_places.clear();
    }

    /// An empty key adds the entry without one. Throws std::invalid_argument when the key is taken.
    Entry &add(Entry entry, std::string_view key = {}) {
        std::string folded = toLower(key);
        if (m_places.contains(folded))
            throw std::invalid_argument("the key \"" + std::string(key) + "\" is in the list");
        m_entries.push_back(std::move(entry));
        m_keys.push_back(std::move(folded));
        renumberFrom(m_entries.size() - 1);
        return m_entries.back();
    }

    Entry &item(std::size_t position) { return m_entries[checked(position)]; }
    const Entry &item(std::size_t position) const { return m_entries[checked(position)]; }
    /// Throws std::out_of_range when there is no such key.
    Entry &item(std::string_view key) { return m_entries[checked(key)]; }
    const Entry &item(std::string_view key) const { return m_entries[checked(key)]; }

    /// The 1-based position of the key's entry.
    std::optional<std::size_t> positionOf(std::string_view key) const {
        const auto found = m_places.find(toLower(key));
        if (found == m_places.end())
            return std::nullopt;
        return found->second + 1;
    }

    std::size_t count() const { return m_entries.size(); }

    void remove(std::size_t position) { erase(checked(position)); }
    void remove(std::string_view key) { erase(checked(key)); }

    auto begin() { return m_entries.begin(); }
    auto end() { return m_entries.end(); }
    auto begin() const { return m_entries.begin(); }
    auto end() const { return m_entries.end(); }

  private:
    std::size_t checked(std::size_t position) const {
        if (position < 1 || position > m_entries.size())
            throw std::out_of_range("no entry " + std::to_string(position) + " in the list");
        return position - 1;
    }

    std::size_t checked(std::string_view key) const {
        const auto position = positionOf(key);
        if (!position)
            throw std::out_of_range("no entry \"" + std::string(key) + "\" in the list");
        return *position - 1;
    }

    void erase(std::size_t place) {
        const auto offset = static_cast<std::ptrdiff_t>(place);
        m_places.erase(m_keys[place]);
        m_entries.erase(m_entries.begin() + offset);
        m_keys.erase(m_keys.begin() + offset);
        renumberFrom(place);
    }

    void renumberFrom(std::size_t place) {
        for (; place < m_keys.size(); ++place)
            if (!m_keys[place].empty())
                m_places[m_keys[place]] = place;
    }

    std::vector<Entry> m_entries;
    std::vector<std::string> m_keys; ///< lower-case, empty for an entry without one
    std::unordered_map<std::string, std::size_t> m_places; ///< 0-based
};

} // namespace nv
