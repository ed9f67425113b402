#include "search/Expression.h"

#include "search/ExpressionOptions.h"
#include "search/SearchFailure.h"

#include <fmt/format.h>

#include <utility>

namespace nv {

re2::RE2::Options expressionOptions(std::int64_t mostBytes) {
    re2::RE2::Options options;
    options.set_case_sensitive(false);
    options.set_log_errors(false);
    options.set_max_mem(mostBytes);
    return options;
}

namespace {

constexpr std::int64_t kMostBytes = std::int64_t{32} << 20;

std::string faultOf(std::string_view text, const re2::RE2 &compiled) {
    return fmt::format("the expression /{}/ can't be read: {}", text, compiled.error());
}

} // namespace

Expression::Expression(std::string text) : m_text(std::move(text)) {
    m_compiled = std::make_unique<re2::RE2>(m_text, expressionOptions(kMostBytes));
    if (!m_compiled->ok())
        throw SearchFailure(faultOf(m_text, *m_compiled));
}

std::optional<std::string> Expression::faultIn(std::string_view text) {
    const re2::RE2 compiled({text.data(), text.size()}, expressionOptions(kMostBytes));
    return compiled.ok() ? std::nullopt : std::optional(faultOf(text, compiled));
}

Expression::~Expression() = default;
Expression::Expression(Expression &&other) noexcept = default;

bool Expression::isIn(std::string_view text) const {
    return m_compiled->Match({text.data(), text.size()}, 0, text.size(), re2::RE2::UNANCHORED,
                             nullptr, 0);
}

std::optional<TextSpan> Expression::firstIn(std::string_view text, std::size_t from) const {
    const re2::StringPiece whole(text.data(), text.size());
    re2::StringPiece found;
    while (from <= text.size() &&
           m_compiled->Match(whole, from, text.size(), re2::RE2::UNANCHORED, &found, 1)) {
        const auto at = static_cast<std::size_t>(found.data() - text.data());
        if (!found.empty())
            return TextSpan{at, found.size()};
        from = at + 1;
    }
    return std::nullopt;
}

} // namespace nv
