#include "db/hashes/HashLookup.h"

#include "db/records/RecordFacts.h"

#include <algorithm>
#include <functional>

namespace nv {

std::string_view factFor(HashMeaning meaning) {
    return kHashSetFacts.at(meaning == HashMeaning::known ? 0 : 1);
}

void addHashSetFact(FactList &facts, const HashSetFacts &set, DigestAlgorithm by) {
    if (set.meaning == HashMeaning::known)
        facts.add("hashset_known", set.name, std::string(wordOf(by)));
    else
        facts.add("hashset_notable", set.name, std::string(wordOf(by)));
}

void HashLookup::addFindings(FactList &facts) {
    std::vector<HashValue> hashes;
    for (const RecordFact &fact : facts)
        if (std::ranges::find(kHashFacts, fact.name) != kHashFacts.end())
            if (const auto hash = hashIn(factText(fact.value)))
                hashes.push_back(*hash);
    // As a match does it: the strongest hash tells.
    std::ranges::sort(hashes, std::greater(), &HashValue::algorithm);
    for (std::size_t place = 0; place < m_sets.size(); ++place) {
        HashSetFile &set = m_sets[place];
        const auto found =
            std::ranges::find_if(hashes, [&set](const HashValue &hash) { return set.has(hash); });
        if (found == hashes.end())
            continue;
        addHashSetFact(facts, set.facts(), found->algorithm);
        ++m_found[place];
    }
}

} // namespace nv
