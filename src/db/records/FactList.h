#pragma once

#include "db/schema/FactNames.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace nv {

/// Nothing, a number or a text in UTF-8.
using FactValue = std::variant<std::monostate, std::int64_t, double, std::string>;

/// Something about a record that table `URLs` has no column for; a row of table `RecordFacts`.
struct RecordFact {
    std::string name;
    FactValue value; ///< in words or in the unit of docs/formats/facts.md
    FactValue raw;   ///< as the source stores it; nothing when that is the value

    friend bool operator==(const RecordFact &, const RecordFact &) = default;
};

/// The facts of a record, in the order of their adding. A name may be there several times, as of
/// the hops of a chain.
class FactList {
  public:
    /// Nothing is added for a fact that the source leaves empty. What has no words has its raw form
    /// for its value, so that a number that nobody knows isn't lost.
    void add(FactName name, FactValue value, FactValue raw = {}) {
        if (isEmpty(value))
            value = std::exchange(raw, {});
        if (!isEmpty(value))
            m_facts.push_back({std::string(name.word()), std::move(value), std::move(raw)});
    }
    /// As a project has it, also of a name that a later build has given.
    void addStored(RecordFact fact) { m_facts.push_back(std::move(fact)); }

    void clear() { m_facts.clear(); }
    bool empty() const { return m_facts.empty(); }
    std::size_t size() const { return m_facts.size(); }
    auto begin() const { return m_facts.begin(); }
    auto end() const { return m_facts.end(); }

    friend bool operator==(const FactList &, const FactList &) = default;

  private:
    static bool isEmpty(const FactValue &value) {
        const auto *text = std::get_if<std::string>(&value);
        return text ? text->empty() : std::holds_alternative<std::monostate>(value);
    }

    std::vector<RecordFact> m_facts;
};

} // namespace nv
