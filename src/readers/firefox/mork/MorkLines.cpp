#include "readers/firefox/mork/MorkLines.h"

#include "readers/Limits.h"

#include <algorithm>

namespace nv {

MorkLine MorkLines::cutLine() {
    const std::size_t end = std::min(m_file.find_first_of("\r\n", m_at), m_file.size());
    const MorkLine line{m_at, m_file.substr(m_at, end - m_at)};
    m_at = end + (m_file.substr(end).starts_with("\r\n") ? 2 : 1);
    return line;
}

std::optional<MorkLine> MorkLines::next() {
    while (m_at < m_file.size()) {
        const MorkLine line = cutLine();
        if (line.text.size() <= limits::kMorkLineBytes)
            return line;
        if (!m_leftOutAt)
            m_leftOutAt = line.offset;
    }
    return std::nullopt;
}

double MorkLines::fraction() const {
    return m_file.empty()
               ? 1
               : std::min(1.0, static_cast<double>(m_at) / static_cast<double>(m_file.size()));
}

} // namespace nv
