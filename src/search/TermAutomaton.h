#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace nv {

/// Finds any number of terms in one pass over a text, by the method of Aho and Corasick: a step a
/// byte, however many terms there are.
class TermAutomaton {
  public:
    /// Each term once and none empty. Throws SearchFailure for terms that need too much memory.
    explicit TermAutomaton(std::span<const std::string> terms);

    /// Tells `found(term, end)` of every place, overlapping ones too, in the order of their ends:
    /// `term` counts from 0, `end` is the byte behind it.
    template <class Found>
    void eachIn(std::string_view text, Found &&found) const {
        std::uint32_t node = 0;
        for (std::size_t at = 0; at < text.size(); ++at) {
            node = m_next[node * m_classes + m_class[static_cast<unsigned char>(text[at])]];
            for (std::uint32_t end = m_ends[node]; end != 0; end = m_ends[m_shorter[end]])
                found(m_term[end], at + 1);
        }
    }

  private:
    void addClasses(std::span<const std::string> terms);
    void addTerm(const std::string &term, std::size_t number);
    void addNode();
    void link();
    void linkNode(std::uint32_t node, std::vector<std::uint32_t> &queue);

    // Node 0 is the root. Bytes that no term has are class 0, which leads back to it.
    std::size_t m_classes = 1;
    std::array<std::uint16_t, 256> m_class{};
    std::vector<std::uint32_t> m_next;    ///< by node and class
    std::vector<std::uint32_t> m_shorter; ///< by node: that of its longest proper end
    std::vector<std::uint32_t> m_ends; ///< by node: the nearest one, itself first, that ends a term
    std::vector<std::uint32_t> m_term; ///< by node: the term that it ends, where it does
};

} // namespace nv
