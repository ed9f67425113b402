#include "ui/parts/Limits.h"

#include <QUndoCommand>

#include <algorithm>
#include <utility>

namespace nv {

namespace {

constexpr int kMostSteps = 30; ///< of undo: one of a search holds the rows that it found
constexpr int kNeverMerged = -1;

} // namespace

/// One step of undo: from these limits to those.
class LimitsChange final : public QUndoCommand {
  public:
    LimitsChange(Limits &limits, Limits::States before, Limits::States after, int typing)
        : QUndoCommand(Limits::tr("Limits")), m_limits(limits), m_before(std::move(before)),
          m_after(std::move(after)), m_typing(typing) {}

    int id() const override { return m_typing; }
    /// Letter by letter isn't how somebody takes a search back.
    bool mergeWith(const QUndoCommand *next) override {
        m_after = static_cast<const LimitsChange *>(next)->m_after;
        setObsolete(m_after == m_before);
        return true;
    }
    void undo() override { m_limits.put(m_before); }
    void redo() override {
        // The first time, as it comes onto the stack, it has been done already.
        if (std::exchange(m_isDone, true))
            m_limits.put(m_after);
    }

  private:
    Limits &m_limits;
    Limits::States m_before;
    Limits::States m_after;
    int m_typing;
    bool m_isDone = false;
};

Limits::Limits() {
    m_history.setUndoLimit(kMostSteps);
}

void Limits::add(Limiter &limiter) {
    m_limiters.push_back(&limiter);
    m_states.emplace_back();
}

std::vector<Limits::Chip> Limits::chips() const {
    std::vector<Chip> chips;
    for (Limiter *limiter : m_limiters)
        for (LimitChip &chip : limiter->chips())
            chips.push_back({limiter, std::move(chip)});
    return chips;
}

void Limits::lift(const Chip &chip) {
    chip.limiter->setLimit(chip.chip.without);
    emit loadWanted(chip.limiter->asksAgain());
}

void Limits::liftAll() {
    bool asksAgain = false;
    for (Limiter *limiter : m_limiters) {
        if (limiter->chips().empty())
            continue;
        limiter->setLimit({});
        asksAgain |= limiter->asksAgain();
    }
    emit loadWanted(asksAgain);
}

bool Limits::isTyped() const {
    return std::ranges::any_of(m_limiters,
                               [](const Limiter *limiter) { return limiter->isBeingTyped(); });
}

Limits::States Limits::statesNow() const {
    States states;
    states.reserve(m_limiters.size());
    for (const Limiter *limiter : m_limiters)
        states.push_back(limiter->limit());
    return states;
}

void Limits::put(const States &states) {
    m_isPutting = true;
    bool asksAgain = false;
    for (std::size_t at = 0; at < m_limiters.size(); ++at) {
        if (states.at(at) == m_limiters[at]->limit())
            continue;
        m_limiters[at]->setLimit(states.at(at));
        asksAgain |= m_limiters[at]->asksAgain();
    }
    emit loadWanted(asksAgain);
    m_isPutting = false;
    m_states = statesNow();
    m_wasTyped = false;
    emit changed();
}

void Limits::look() {
    if (m_isPutting)
        return;
    const States before = std::exchange(m_states, statesNow());
    const bool isFirst = std::exchange(m_isFirst, false);
    if (before != m_states) {
        const bool typed = isTypedAlone(before);
        m_typing += typed && !m_wasTyped ? 1 : 0;
        m_wasTyped = typed;
        if (!isFirst)
            m_history.push(
                new LimitsChange(*this, before, m_states, typed ? m_typing : kNeverMerged));
    }
    emit changed();
}

/// Nothing but what is being typed is another than before.
bool Limits::isTypedAlone(const States &before) const {
    for (std::size_t at = 0; at < m_limiters.size(); ++at)
        if (before.at(at) != m_states.at(at) && !m_limiters[at]->isBeingTyped())
            return false;
    return true;
}

void Limits::forget() {
    m_history.clear();
    m_states.assign(m_limiters.size(), {});
    m_isFirst = true;
    m_wasTyped = false;
    emit changed();
}

} // namespace nv
