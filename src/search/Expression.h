#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace re2 {
class RE2;
}

namespace nv {

/// A place in a text, in bytes.
struct TextSpan {
    std::size_t at = 0;
    std::size_t length = 0;
    bool operator==(const TextSpan &) const = default;
};

/// A regular expression. Letters match in either case unless it says "(?-i)", and matching takes
/// time in proportion to the text, whatever the expression.
class Expression {
  public:
    /// Throws SearchFailure that says what is wrong with it.
    explicit Expression(std::string text);
    ~Expression();
    Expression(Expression &&other) noexcept;
    Expression &operator=(Expression &&) = delete;
    Expression(const Expression &) = delete;
    Expression &operator=(const Expression &) = delete;

    /// What the constructor would throw; nothing for one that can be read.
    static std::optional<std::string> faultIn(std::string_view text);

    const std::string &text() const { return m_text; }
    bool isIn(std::string_view text) const;
    /// The first match that isn't empty and begins at `from` or later.
    std::optional<TextSpan> firstIn(std::string_view text, std::size_t from = 0) const;

  private:
    std::string m_text;
    std::unique_ptr<re2::RE2> m_compiled;
};

} // namespace nv
