#include "support/TestDoubles.h"

#include <gtest/gtest.h>

namespace nv::test {

ScriptedExaminer::~ScriptedExaminer() {
    for (const auto &[id, answer] : m_script)
        ADD_FAILURE() << "the message \"" << id << "\" never came";
}

Answer ScriptedExaminer::ask(const Message &message) {
    heard.push_back(message);
    if (m_script.empty() || m_script.front().first != message.id) {
        ADD_FAILURE() << "unexpected message \"" << message.id << "\": " << message.text;
        return message.unattended;
    }
    const Answer answer = m_script.front().second;
    m_script.pop_front();
    return answer;
}

} // namespace nv::test
