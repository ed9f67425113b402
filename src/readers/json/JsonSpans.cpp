#include "readers/json/JsonSpans.h"

#include "base/Text.h"

#include <nlohmann/json.hpp>

#include <optional>

namespace nv {

namespace {

constexpr std::size_t kDeepest = 200;
constexpr std::size_t kMostMembers = 5000;

class Scan {
  public:
    Scan(std::string_view text,
         const std::function<bool(const std::vector<JsonSpan> &, std::uint64_t)> &wants,
         const std::function<bool(const JsonFound &)> &take)
        : m_text(text), m_wants(wants), m_take(take) {}

    void run() {
        while (!m_isDone && m_at < m_text.size()) {
            const char each = m_text[m_at];
            if (each == '{' || each == '[')
                open(each == '[');
            else if (each == '}' || each == ']')
                close();
            else if (each == '"')
                takeString();
            else if (each == ',' || each == ':' || static_cast<unsigned char>(each) <= ' ')
                ++m_at;
            else
                takeWord();
        }
        // The end of the file broke it off: what stands before is there.
        if (m_found)
            m_take(*m_found);
    }

  private:
    struct Level {
        bool isArray;
    };

    void open(bool isArray) {
        if (m_levels.size() >= kDeepest) {
            m_isDone = true;
            return;
        }
        if (!isArray && !m_found && m_wants(m_names, m_at)) {
            m_found.emplace();
            m_found->offset = m_at;
            m_found->above = m_names;
            m_found->own = {m_path, m_name, {}, m_at};
            m_depth = m_levels.size();
        }
        m_levels.push_back({isArray});
        m_names.push_back({std::move(m_path), m_name, {}, m_at});
        m_path.clear();
        m_name = {};
        ++m_at;
    }

    void close() {
        ++m_at;
        if (m_levels.empty()) {
            m_isDone = true;
            return;
        }
        m_levels.pop_back();
        m_names.pop_back();
        m_name = {};
        m_path.clear();
        if (m_found && m_levels.size() == m_depth) {
            m_isDone = !m_take(*m_found);
            m_found.reset();
        }
    }

    void takeString() {
        const std::size_t begin = m_at++;
        while (m_at < m_text.size() && m_text[m_at] != '"')
            m_at += m_text[m_at] == '\\' ? 2 : 1;
        if (m_at >= m_text.size()) {
            m_isDone = true;
            return;
        }
        ++m_at;
        const std::string_view own = m_text.substr(begin, m_at - begin);
        const bool isName = !m_levels.empty() && !m_levels.back().isArray && m_name.empty();
        if (isName) {
            m_name = own;
            m_path = jsonText(own);
        } else {
            takeValue(own);
        }
    }

    void takeWord() {
        const std::size_t end =
            std::min(m_text.find_first_of(",:{}[]\" \t\r\n", m_at), m_text.size());
        takeValue(m_text.substr(m_at, end - m_at));
        m_at = end;
    }

    void takeValue(std::string_view value) {
        if (m_found && m_found->members.size() < kMostMembers) {
            std::string path;
            for (std::size_t at = m_depth + 1; at < m_names.size(); ++at)
                path += m_names[at].path + ".";
            m_found->members.push_back({path + m_path, m_name, value, 0});
        }
        m_name = {};
        m_path.clear();
    }

    std::string_view m_text;
    const std::function<bool(const std::vector<JsonSpan> &, std::uint64_t)> &m_wants;
    const std::function<bool(const JsonFound &)> &m_take;
    std::size_t m_at = 0;
    bool m_isDone = false;
    std::vector<Level> m_levels;
    std::vector<JsonSpan> m_names; ///< of the levels
    std::string_view m_name;       ///< of the value that comes
    std::string m_path;
    std::optional<JsonFound> m_found;
    std::size_t m_depth = 0; ///< of it
};

} // namespace

void findJsonObjects(
    std::string_view text,
    const std::function<bool(const std::vector<JsonSpan> &above, std::uint64_t offset)> &wants,
    const std::function<bool(const JsonFound &found)> &take) {
    Scan(text, wants, take).run();
}

std::string jsonText(std::string_view value) {
    if (!value.starts_with('"'))
        return std::string(value);
    const nlohmann::json read = nlohmann::json::parse(decodeText(value), nullptr, false);
    return read.is_string() ? read.get<std::string>() : std::string();
}

} // namespace nv
