#include "search/TermAutomaton.h"

#include "search/SearchFailure.h"

#include <fmt/format.h>

namespace nv {

namespace {

constexpr std::size_t kMostBytes = std::size_t{256} << 20;

} // namespace

TermAutomaton::TermAutomaton(std::span<const std::string> terms) {
    addClasses(terms);
    addNode();
    for (std::size_t number = 0; number < terms.size(); ++number)
        addTerm(terms[number], number);
    link();
}

/// 256 next steps a node would fill the cache with steps that nobody takes.
void TermAutomaton::addClasses(std::span<const std::string> terms) {
    for (const std::string &term : terms)
        for (const char c : term)
            if (std::uint16_t &known = m_class.at(static_cast<unsigned char>(c)); known == 0)
                known = static_cast<std::uint16_t>(m_classes++);
}

void TermAutomaton::addNode() {
    m_next.resize(m_next.size() + m_classes, 0);
    m_shorter.push_back(0);
    m_ends.push_back(0);
    m_term.push_back(0);
    if (m_next.size() * sizeof(std::uint32_t) > kMostBytes)
        throw SearchFailure(fmt::format("the list has too many or too long terms to look for them "
                                        "in {} MB of memory: divide it",
                                        kMostBytes >> 20));
}

void TermAutomaton::addTerm(const std::string &term, std::size_t number) {
    std::uint32_t node = 0;
    for (const char c : term) {
        const std::size_t step = node * m_classes + m_class.at(static_cast<unsigned char>(c));
        if (m_next[step] == 0) {
            const auto fresh = static_cast<std::uint32_t>(m_ends.size());
            addNode();
            m_next[step] = fresh;
        }
        node = m_next[step];
    }
    m_ends[node] = node;
    m_term[node] = static_cast<std::uint32_t>(number);
}

/// Level by level, so that what a node leads back to is done before it.
void TermAutomaton::link() {
    std::vector<std::uint32_t> queue;
    queue.reserve(m_ends.size());
    for (std::size_t step = 1; step < m_classes; ++step)
        if (m_next[step] != 0)
            queue.push_back(m_next[step]);
    for (std::size_t at = 0; at < queue.size(); ++at)
        linkNode(queue[at], queue);
}

void TermAutomaton::linkNode(std::uint32_t node, std::vector<std::uint32_t> &queue) {
    const std::uint32_t shorter = m_shorter[node];
    if (m_ends[node] == 0)
        m_ends[node] = m_ends[shorter];
    for (std::size_t step = 1; step < m_classes; ++step) {
        std::uint32_t &next = m_next[node * m_classes + step];
        const std::uint32_t back = m_next[shorter * m_classes + step];
        if (next == 0) {
            next = back;
            continue;
        }
        m_shorter[next] = back;
        queue.push_back(next);
    }
}

} // namespace nv
