#include "cli/AskedSpan.h"

#include "cli/UsageError.h"
#include "views/limits/TypedSpan.h"

#include <fmt/format.h>

namespace nv::cli {

namespace {

std::int64_t dateOrRefusal(std::optional<std::int64_t> second, const std::string &text,
                           std::string_view option) {
    if (!second)
        throw UsageError(fmt::format("{} {}: a date was expected, such as 2011-03-01 or "
                                     "\"2011-03-01 19:30\"",
                                     option, text));
    return *second;
}

} // namespace

std::int64_t secondAsked(const std::string &text, std::string_view option) {
    return dateOrRefusal(secondTyped(text), text, option);
}

std::int64_t endAsked(const std::string &text, std::string_view option) {
    return dateOrRefusal(endTyped(text), text, option);
}

} // namespace nv::cli
